#include <limits>

#include "author/check/Checks.h"
#include "system/TextParsing.h"

namespace {

bool isExactly(const KnownText* text, std::wstring_view word) {
    return text && text->exact && text->text == word;
}

const wchar_t* wordOf(ActionCode action) {
    for (const ActionKeyword& keyword : registryKeyActionKeywords())
        if (keyword.action == action)
            return keyword.word;
    return L"";
}

/// The number of REG_DWORD in the table of types.
constexpr uint32_t dwordType = 4;

bool isDword(const KnownText* type) {
    if (!type || !type->exact)
        return false;
    const RegistryKeyword* keyword = findKeyword(registryTypeKeywords(), type->text);
    return keyword && keyword->number == dwordType;
}

void checkValue(const Action& action) {
    const MadeElement* key = action.visit.made->around;
    while (key && key->kind == &conditionKind)
        key = key->around;
    if (key && isExactly(key->find(L"Action"), wordOf(ACTION_REMOVE_REGISTRY_KEY)))
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
                           inMarks(value.text) + L" is no decimal number.",
                           L"write digits alone, with a minus sign in front if need be.");
    else if ((number == Limits::max() || number == Limits::min()) &&
             value.text != std::to_wstring(number))
        action.checked.report.tellOf(
            Fault::dwordOutOfRange, action.placeOf(L"Value"),
            inMarks(value.text) + L" is written as " + std::to_wstring(number) + L".",
            L"beyond 2147483647 write the negative number of the same bits.");
}

void checkKey(const Action& action) {
    if (isExactly(action.text(L"Action"), wordOf(ACTION_REMOVE_REGISTRY_KEY)) &&
        action.text(L"Key")->isSurelyEmpty())
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
