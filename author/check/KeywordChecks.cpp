#include "author/check/Checks.h"

namespace {

/// An attribute with one word that has a meaning, and what any other text counts as.
struct SingleWord {
    const ElementKind* kind;
    const wchar_t* attribute;
    const wchar_t* word;
};

constexpr SingleWord singleWords[] = {
    {&fileKind, L"Vital", yesKeyword},
    {&shellExcuteKind, L"Vital", yesKeyword},
    {&serviceControlKind, L"Vital", yesKeyword},
    {&registryValueKind, L"Vital", yesKeyword},
    {&removeDirectoryKind, L"Vital", yesKeyword},
    {&fileKind, L"KillProcess", yesKeyword},
    {&fileKind, L"SupportDelayInstall", yesKeyword},
    {&componentKind, L"SupportDelayInstall", yesKeyword},
    {&serviceControlKind, L"Wait", yesKeyword},
    {&customActionKind, L"Return", checkKeyword},
    {&shellExcuteKind, L"Return", syncKeyword},
};

/// Other words for the one with a meaning: those of other languages for yes, and those that other
/// elements know.
constexpr const wchar_t* affirmations[] = {L"true", L"1", L"on", L"yes", checkKeyword, syncKeyword};

void checkSingleWord(const Action& action, const SingleWord& row) {
    const KnownText* text = action.text(row.attribute);
    const AttributeNode* own = action.node.find(row.attribute);
    if (!text || !own || !text->exact || text->text == row.word || text->text == noKeyword)
        return;
    const wchar_t* meant[] = {row.word};
    std::wstring nearest = action.checked.nearMiss.find(text->text, meant);
    if (text->text.size() > nearest.size() && text->text.ends_with(nearest))
        nearest.clear();  // as "async", which is meant as the opposite
    for (const wchar_t* affirmation : affirmations)
        if (_wcsicmp(text->text.c_str(), affirmation) == 0)
            nearest = row.word;
    const std::wstring what = asSubject(text->text) + L" is no word of `" + row.attribute +
                              L"` and counts as `" + noKeyword + L"`.";
    if (nearest.empty())
        action.checked.report.tellOf(
            Fault::keywordUnknown, own->valuePlace, what,
            std::wstring(L"the word with a meaning is `") + row.word + L"`.");
    else
        action.checked.report.tellOf(Fault::keywordMisspelt, own->valuePlace, what,
                                     didYouMean(nearest));
}

template <class Keyword>
std::wstring helpWith(const Action& action, const std::wstring& word,
                      std::span<const Keyword> keywords) {
    std::wstring help = didYouMean(action.checked.nearMiss.find(word, keywords));
    if (!help.empty())
        return help;
    for (const Keyword& keyword : keywords)
        help.append(help.empty() ? L"use " : L", ").append(inMarks(keyword.word));
    return help + L".";
}

/// The keyword of an attribute; null, told as a fault of this kind, when there is none of it.
template <class Keyword>
void checkWord(const Action& action, const wchar_t* attribute, std::span<const Keyword> keywords,
               Fault fault, const std::wstring& effect) {
    const KnownText* text = action.text(attribute);
    if (!text || !text->exact || findKeyword(keywords, text->text))
        return;
    const std::wstring what =
        asSubject(text->text) + L" is no word of `" + attribute + L"`" + effect;
    const std::wstring help = helpWith(action, text->text, keywords);
    if (action.is(registryValueKind))
        action.tellFailure(fault, action.placeOf(attribute), what, help);
    else
        action.checked.report.tell(fault, action.placeOf(attribute), action.isSure(), what, help);
}

/// A version is read up to its first piece that is no number.
void checkVersion(const Action& action) {
    constexpr size_t mostPieces = 4;
    const KnownText* version = action.text(L"MinVersion");
    if (!version || !version->exact || version->text.empty())
        return;
    std::wstring rest = version->text;
    size_t pieces = 0;
    for (size_t dot = 0; dot != std::wstring::npos; rest.erase(0, dot + 1)) {
        dot = rest.find(L'.');
        const std::wstring piece = rest.substr(0, dot);
        const bool isNumber = !piece.empty() && piece.size() <= 5 &&
                              piece.find_first_not_of(L"0123456789") == std::wstring::npos &&
                              std::stoul(piece) <= UINT16_MAX;
        if (!isNumber || ++pieces > mostPieces)
            return action.checked.report.tellOf(Fault::versionUnknown,
                                                action.placeOf(L"MinVersion"),
                                                inMarks(version->text) + L" is no version.");
    }
}

}  // namespace

void checkKeywords(const Checked& checked) {
    forEachAction(checked, [](const Action& action) {
        for (const SingleWord& row : singleWords)
            if (action.is(*row.kind))
                checkSingleWord(action, row);
        if (action.is(serviceControlKind))
            checkWord(action, L"Action", serviceActionKeywords(), Fault::serviceActionUnknown,
                      L", so nothing is done.");
        if (action.is(registryKeyKind)) {
            checkWord(action, L"Action", registryKeyActionKeywords(), Fault::keyActionUnknown,
                      L" of a `RegistryKey`, which ends the run.");
            if (action.node.find(L"Root"))  // otherwise told at the key that it is taken from
                checkWord(action, L"Root", registryRootKeywords(), Fault::rootUnknown, L".");
        }
        if (action.is(fileSearchKind))
            checkVersion(action);
        if (action.is(registryValueKind))
            checkWord(action, L"Type", registryTypeKeywords(), Fault::valueTypeUnknown, L".");
    });
}
