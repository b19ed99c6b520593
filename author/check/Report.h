#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "author/check/FindingKinds.h"
#include "author/check/ScriptText.h"

/// Gathers what the checks find in one script, and hands it out in order of place. What is found
/// several times, because several ways lead to an element, is told once, and ends a run for sure
/// when it does so on one of them.
class Report {
public:
    Report(const ScriptText& script, std::wstring file) : script(script), file(std::move(file)) {}

    /// `surely` tells whether every machine comes there in at least one mode. Without a help of its
    /// own a finding gets the remedy of its kind.
    void tell(Fault fault, Span place, bool surely, std::wstring text, std::wstring help = {});
    /// For what holds whether or not a run comes there.
    void tellOf(Fault fault, Span place, std::wstring text, std::wstring help = {}) {
        tell(fault, place, true, std::move(text), std::move(help));
    }
    /// For what concerns the file as a whole.
    void tellOfFile(Fault fault, std::wstring text, std::wstring help = {});

    /// Whether something was found that keeps parts of the script from working. What these would
    /// have done is missing in all that a run was seen to do.
    bool hasGaps() const { return gaps; }

    void handOut(const std::function<void(const Finding&)>& tellFinding) const;

private:
    struct Entry {
        bool ofFile;
        bool endsRun;
        size_t length;
        std::wstring help;
    };
    void add(Fault fault, size_t offset, std::wstring text, Entry entry);

    using Key = std::tuple<size_t, Fault, std::wstring>;  // the place comes first: the order

    const ScriptText& script;
    std::wstring file;
    std::map<Key, Entry> found;
    bool gaps = false;
};

/// The thing in the marks in which findings name things.
std::wstring inMarks(std::wstring_view thing);

/// A text that begins a sentence: in marks, or "An empty text".
std::wstring asSubject(std::wstring_view text);
