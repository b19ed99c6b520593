#include "author/check/Report.h"

#include <utility>

namespace {

/// Longer things are cut: a finding is a sentence.
constexpr size_t longestQuote = 120;

}  // namespace

void Report::tell(Fault fault, Span place, bool surely, std::wstring text, std::wstring help) {
    const bool endsRun = surely && kindOf(fault).endsRun;
    const auto [entry, isNew] =
        found.try_emplace(Key(place.offset, fault, std::move(text)),
                          Entry{false, endsRun, place.length, std::move(help)});
    if (!isNew)
        entry->second.endsRun |= endsRun;
}

void Report::tellOfFile(Fault fault, std::wstring text, std::wstring help) {
    found.try_emplace(Key(0, fault, std::move(text)),
                      Entry{true, kindOf(fault).endsRun, 0, std::move(help)});
}

void Report::handOut(const std::function<void(const Finding&)>& tellFinding) const {
    for (const auto& [key, entry] : found) {
        const auto& [offset, fault, text] = key;
        Finding finding{&kindOf(fault), entry.endsRun, file, {}, text, entry.help, {}};
        if (!entry.ofFile) {
            finding.place = script.placeOf({offset, entry.length});
            finding.sourceLine = script.line(finding.place.line);
        }
        tellFinding(finding);
    }
}

std::wstring inMarks(std::wstring_view thing) {
    std::wstring text = L"`";
    text += thing.substr(0, longestQuote);
    if (thing.size() > longestQuote)
        text += L"\u2026";
    return text += L'`';
}
