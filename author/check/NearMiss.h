#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

/// Looks among known words for the one that was probably meant. What one check spends on this is
/// bounded, so that a script that is wrong everywhere is still checked in linear time; when it is
/// spent, nothing is suggested any more.
class NearMiss {
public:
    /// The candidate that is nearest to the word, and near enough; empty if none is. What has no
    /// letter in common with the word is never near.
    template <class Candidates>
    std::wstring find(std::wstring_view word, const Candidates& candidates) {
        std::wstring best;
        size_t bestDistance = limitFor(word) + 1;
        for (const auto& candidate : candidates) {
            if (budget == 0)
                return {};
            const std::wstring_view text = textOf(candidate);
            if (text == word || !spend(word, text))
                continue;
            if (const size_t distance = distanceBetween(word, text, bestDistance);
                distance < bestDistance && distance < std::min(word.size(), text.size())) {
                bestDistance = distance;
                best = text;
            }
        }
        return best;
    }

    /// As `find`; where that gives none, the candidate with the longest beginning in common.
    template <class Candidates>
    std::wstring findAlike(std::wstring_view word, const Candidates& candidates) {
        std::wstring best = find(word, candidates);
        if (!best.empty())
            return best;
        size_t longest = leastBeginning(word) - 1;
        for (const auto& candidate : candidates) {
            const std::wstring_view text = textOf(candidate);
            if (text == word || !spend(1))
                continue;
            if (const size_t length = commonBeginning(word, text); length > longest) {
                longest = length;
                best = text;
            }
        }
        return best;
    }

private:
    static std::wstring_view textOf(const wchar_t* text) { return text; }
    static std::wstring_view textOf(std::wstring_view text) { return text; }
    template <class Row>
    static auto textOf(const Row& row) -> decltype(std::wstring_view(row.word)) {
        return row.word;
    }

    static size_t limitFor(std::wstring_view word);
    static size_t distanceBetween(std::wstring_view word, std::wstring_view other, size_t limit);
    /// Whether the two are worth a comparison; takes what that, or the look, costs.
    bool spend(std::wstring_view word, std::wstring_view other);
    bool spend(size_t cost);
    static size_t leastBeginning(std::wstring_view word);
    static size_t commonBeginning(std::wstring_view word, std::wstring_view other);

    size_t budget = 20'000'000;  // cells of the tables of distances
};

/// "did you mean `word`?", or nothing for an empty word.
std::wstring didYouMean(const std::wstring& word);
