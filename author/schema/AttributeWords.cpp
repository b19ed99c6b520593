#include "author/schema/AttributeWords.h"

#include "elements/Vocabulary.h"

namespace {

template <auto keywords>
std::vector<const wchar_t*> wordsIn() {
    std::vector<const wchar_t*> words;
    for (const auto& keyword : keywords())
        words.push_back(keyword.word);
    return words;
}

template <const wchar_t* word>
std::vector<const wchar_t*> wordOrNo() {
    return {word, noKeyword};
}

constexpr WordList modes{L"Modes", wordsIn<onKeywords>};
constexpr WordList yesOrNo{L"YesOrNo", wordOrNo<yesKeyword>};
constexpr WordList checkOrNo{L"CheckOrNo", wordOrNo<checkKeyword>};
constexpr WordList syncOrNo{L"SyncOrNo", wordOrNo<syncKeyword>};
constexpr WordList serviceAction{L"ServiceAction", wordsIn<serviceActionKeywords>};
constexpr WordList keyAction{L"KeyAction", wordsIn<registryKeyActionKeywords>};
constexpr WordList root{L"RegistryRoot", wordsIn<registryRootKeywords>};
constexpr WordList valueType{L"RegistryValueType", wordsIn<registryTypeKeywords>};
constexpr WordList variableType{L"VariableType", wordsIn<variableTypeKeywords>};

constexpr const WordList* lists[] = {&modes,     &yesOrNo, &checkOrNo, &syncOrNo,    &serviceAction,
                                     &keyAction, &root,    &valueType, &variableType};

struct Place {
    const ElementKind* kind;  // null for every element that has the attribute
    const wchar_t* attribute;
    const WordList* words;
};

constexpr Place places[] = {
    {nullptr, L"On", &modes},
    {nullptr, L"SupportDelayInstall", &yesOrNo},
    {nullptr, L"KillProcess", &yesOrNo},
    {nullptr, L"Vital", &yesOrNo},
    {nullptr, L"Wait", &yesOrNo},
    {&customActionKind, L"Return", &checkOrNo},
    {&shellExcuteKind, L"Return", &syncOrNo},
    {&serviceControlKind, L"Action", &serviceAction},
    {&registryKeyKind, L"Action", &keyAction},
    {&registryKeyKind, L"Root", &root},
    {&registryValueKind, L"Type", &valueType},
    {&variableKind, L"Type", &variableType},
    {&variableConstKind, L"Type", &variableType},
};

}  // namespace

const WordList* wordsOf(const std::wstring& element, const std::wstring& attribute) {
    for (const Place& place : places)
        if (attribute == place.attribute && (place.kind == nullptr || element == place.kind->name))
            return place.words;
    return nullptr;
}

std::vector<const WordList*> wordLists() {
    return {std::begin(lists), std::end(lists)};
}
