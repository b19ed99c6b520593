#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "author/SystemDirectories.h"

/// A text of a script as far as it is known without a machine. A folder of the system stands in it
/// as its word in brackets, and a variable that a run can change as the value that it begins with.
struct KnownText {
    std::wstring text;
    bool exact = true;     ///< no variable in it can change
    size_t opaqueEnd = 0;  ///< behind the last folder word; from there on it is the script's own
    size_t shortest = 0;   ///< length on any machine, and on one where folders have long paths
    size_t longest = 0;

    static KnownText of(std::wstring_view literal) {
        KnownText known;
        known.append(literal);
        return known;
    }
    static KnownText ofFolder(std::wstring_view word) {
        KnownText known;
        known.text.append(L"[").append(word).append(L"]");
        known.opaqueEnd = known.text.size();
        known.shortest = shortestFolder;
        known.longest = longestFolder;
        return known;
    }
    static KnownText ofChanging(std::wstring_view beginning) {
        KnownText known = of(beginning);
        known.exact = false;
        known.shortest = 0;
        return known;
    }

    void append(std::wstring_view literal) {
        text += literal;
        shortest += literal.size();
        longest += literal.size();
    }
    void append(const KnownText& other) {
        if (other.opaqueEnd > 0)
            opaqueEnd = text.size() + other.opaqueEnd;
        text += other.text;
        exact = exact && other.exact;
        shortest += other.shortest;
        longest += other.longest;
    }
    /// As every path that others are joined to.
    void addSeparator() {
        if (!text.empty() && text.back() != L'\\' && text.back() != L'/')
            append(L"\\");
    }
    bool startsWithFolder() const { return opaqueEnd > 0 && text.front() == L'['; }
    bool isSurelyEmpty() const { return text.empty() && exact; }

private:
    static constexpr size_t shortestFolder = 3;  // a drive's root
};
