#include "author/check/Report.h"

#include <algorithm>
#include <cwctype>
#include <iterator>
#include <utility>

namespace {

/// Longer things are cut: a finding is a sentence.
constexpr size_t longestQuote = 120;

/// What keeps an element, or all of the script, from doing its part.
constexpr Fault gapMakers[] = {
    Fault::noProduct,
    Fault::misplacedElement,
    Fault::elementWithoutMeaning,
    Fault::noSequence,
    Fault::unreachedDefinition,
    Fault::referenceWithoutId,
    Fault::referenceToNothing,
    Fault::circleOfReferences,
    Fault::hiddenId,
    Fault::outsideFolders,
    Fault::noDirectory,
    Fault::endlessMaking,
    Fault::missingAttribute,
    Fault::childrenNeverRead,
    Fault::modeUnknown,
    Fault::keyActionUnknown,
    Fault::rootUnknown,
    Fault::variableTypeUnknown,
    Fault::directoryUnknown,
    Fault::brackets,
    Fault::variableUnknown,
    Fault::integerInText,
    Fault::numberSign,
    Fault::textBehindVariable,
    Fault::directoryWithoutPath,
    Fault::expressionGrammar,
    Fault::expressionVariable,
    Fault::expressionTypes,
    Fault::assignmentToConst,
    Fault::notAnInteger,
    Fault::valueOutsideKey,
    Fault::keyWithoutRoot,
};

bool makesGap(Fault fault) {
    return std::find(std::begin(gapMakers), std::end(gapMakers), fault) != std::end(gapMakers);
}

/// A remedy, as it goes on behind "help:".
std::wstring asHelp(std::wstring remedy) {
    remedy.front() = static_cast<wchar_t>(std::towlower(remedy.front()));
    return remedy;
}

}  // namespace

void Report::tell(Fault fault, Span place, bool surely, std::wstring text, std::wstring help) {
    add(fault, place.offset, std::move(text),
        {false, surely && kindOf(fault).endsRun, place.length, std::move(help)});
}

void Report::tellOfFile(Fault fault, std::wstring text, std::wstring help) {
    add(fault, 0, std::move(text), {true, kindOf(fault).endsRun, 0, std::move(help)});
}

void Report::add(Fault fault, size_t offset, std::wstring text, Entry entry) {
    gaps |= makesGap(fault);
    if (entry.help.empty())
        entry.help = asHelp(kindOf(fault).remedy);
    const bool endsRun = entry.endsRun;
    const auto [known, isNew] =
        found.try_emplace(Key(offset, fault, std::move(text)), std::move(entry));
    if (!isNew)
        known->second.endsRun |= endsRun;
}

void Report::handOut(const std::function<void(const Finding&)>& tellFinding) const {
    ScriptText::Places places(script);
    for (const auto& [key, entry] : found) {
        const auto& [offset, fault, text] = key;
        Finding finding{&kindOf(fault), entry.endsRun, file, {}, text, entry.help, {}};
        if (!entry.ofFile) {
            finding.place = places.next({offset, entry.length});
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

std::wstring asSubject(std::wstring_view text) {
    return text.empty() ? L"An empty text" : inMarks(text);
}
