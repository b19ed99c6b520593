#include <cwchar>
#include <cwctype>
#include <limits>

#include "author/check/Checks.h"
#include "system/TextParsing.h"

namespace {

bool isRemoved(const MadeElement& key) {
    return actionOf(key, registryKeyActionKeywords()) == ACTION_REMOVE_REGISTRY_KEY;
}

/// The number of REG_DWORD in the table of types.
constexpr uint32_t dwordType = 4;

bool isDword(const KnownText* type) {
    if (!type || !type->exact)
        return false;
    const RegistryKeyword* keyword = findKeyword(registryTypeKeywords(), type->text);
    return keyword && keyword->number == dwordType;
}

/// The decimal digits of a hexadecimal number, or else the general remedy.
std::wstring decimalHelp(const std::wstring& text) {
    wchar_t* end = nullptr;
    const unsigned long number = wcstoul(text.c_str(), &end, 16);
    const bool isHexadecimal = text.size() > 2 && text[0] == L'0' &&
                               std::towlower(text[1]) == L'x' && *end == L'\0' &&
                               text.size() <= wcslen(L"0xFFFFFFFF");
    if (!isHexadecimal)
        return {};
    return L"write digits alone: " + std::to_wstring(static_cast<int32_t>(number)) + L".";
}

void checkValue(const Action& action) {
    const MadeElement* key = action.visit.made->around;
    while (key->kind == &conditionKind)
        key = key->around;
    if (isRemoved(*key))
        action.tellFailure(Fault::valueInRemovedKey, action.node.place,
                           L"The key of this `RegistryValue` has just been removed.",
                           L"remove the element: the value goes with its key.");
    const KnownText& value = *action.text(L"Value");
    if (!isDword(action.text(L"Type")) || !value.exact || value.opaqueEnd > 0)
        return;
    using Limits = std::numeric_limits<int32_t>;
    int32_t number = 0;
    if (!parseIntText(value.text.c_str(), number))
        action.tellFailure(Fault::notADword, action.placeOf(L"Value"),
                           asSubject(value.text) + L" is no decimal number.",
                           decimalHelp(value.text));
    else if ((number == Limits::max() || number == Limits::min()) &&
             value.text != std::to_wstring(number))
        action.checked.report.tellOf(
            Fault::dwordOutOfRange, action.placeOf(L"Value"),
            inMarks(value.text) + L" is written as " + std::to_wstring(number) + L".",
            L"beyond 2147483647 write the negative number of the same bits.");
}

void checkKey(const Action& action) {
    const AttributeNode* key = action.node.find(L"Key");
    for (const RegistryKeyword& root : registryRootKeywords())
        if (key &&
            (key->value == root.word || key->value.starts_with(std::wstring(root.word) + L"\\")))
            action.checked.report.tellOf(Fault::rootInKey,
                                         action.checked.model.spanIn(*key, 0, wcslen(root.word)),
                                         inMarks(root.word) + L" is taken for a key below " +
                                             inMarks(action.text(L"Root")->text) + L".");
    if (isRemoved(*action.visit.made) && action.text(L"Key")->isSurelyEmpty())
        action.checked.report.tellOf(
            Fault::emptyKeyRemoved, action.placeOf(L"Key"),
            L"An empty `Key` means all that " + inMarks(action.text(L"Root")->text) + L" holds.",
            L"name the key.");
}

}  // namespace

void checkRegistry(const Checked& checked) {
    forEachAction(checked, [](const Action& action) {
        if (action.is(registryValueKind))
            checkValue(action);
        else if (action.is(registryKeyKind))
            checkKey(action);
    });
}
