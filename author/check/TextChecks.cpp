#include <cwchar>
#include <iterator>

#include "author/check/Checks.h"
#include "logging/IterfaceProduct.h"

namespace {

constexpr size_t recordLimit = std::extent_v<decltype(ActionInfo::text1)>;

/// An attribute that goes into a field of the record of an action as it stands.
struct Announced {
    const ElementKind* kind;
    const wchar_t* attribute;
};

constexpr Announced announced[] = {
    {&conditionKind, L"Expression"}, {&customActionKind, L"DllEntry"},
    {&customActionKind, L"Title"},   {&fileKind, L"Name"},
    {&shortcutKind, L"Name"},        {&shellExcuteKind, L"File"},
    {&shellExcuteKind, L"Title"},    {&registryKeyKind, L"Title"},
    {&removeDirectoryKind, L"Path"}, {&removeDirectoryKind, L"Title"},
    {&cautionKind, L"Title"},
};

/// An attribute with which an action fails when it is empty.
struct NeverEmpty {
    const ElementKind* kind;
    const wchar_t* attribute;
    Modes modes;
};

constexpr NeverEmpty neverEmpty[] = {
    {&shellExcuteKind, L"File", allModes},     {&removeDirectoryKind, L"Path", allModes},
    {&customActionKind, L"DllFile", allModes}, {&customActionKind, L"DllEntry", allModes},
    {&fileKind, L"Name", installingModes},     {&fileKind, L"Source", installingModes},
    {&shortcutKind, L"Path", installingModes},
};

void checkRecord(const Action& action, std::wstring_view place, const KnownText& text) {
    action.tellLength(Fault::textTooLong, Fault::textLikelyTooLong, action.placeOf(place), text,
                      recordLimit);
}

/// What several attributes make up together.
void checkJoined(const Action& action) {
    const auto exactKeyword = [&](const wchar_t* attribute, auto keywords) {
        const KnownText* text = action.text(attribute);
        return text && text->exact && findKeyword(keywords, text->text);
    };
    if (action.is(serviceControlKind) && exactKeyword(L"Action", serviceActionKeywords()))
        checkRecord(action, L"Name", *action.text(L"Name"));
    const bool isKey =
        action.is(registryKeyKind) && exactKeyword(L"Action", registryKeyActionKeywords());
    const bool isValue =
        action.is(registryValueKind) && exactKeyword(L"Type", registryTypeKeywords());
    if ((!isKey && !isValue) || !exactKeyword(L"Root", registryRootKeywords()))
        return;
    KnownText display = *action.text(L"Root");
    display.append(L"\\");
    display.append(*action.text(L"Key"));
    if (isValue) {
        display.append(L"[Value Name]");
        display.append(*action.text(L"Name"));
    }
    checkRecord(action, isKey ? L"Key" : L"Name", display);
}

}  // namespace

void checkTexts(const Checked& checked) {
    forEachAction(checked, [&](const Action& action) {
        for (const Announced& row : announced)
            if (const KnownText* text = action.is(*row.kind) ? action.text(row.attribute) : nullptr)
                checkRecord(action, row.attribute, *text);
        checkJoined(action);
        for (const NeverEmpty& row : neverEmpty)
            if (const KnownText* text = action.is(*row.kind) ? action.text(row.attribute) : nullptr;
                text && text->isSurelyEmpty())
                action.tellFailure(Fault::emptyText, action.placeOf(row.attribute),
                                   std::wstring(L"The `") + row.attribute + L"` is empty.",
                                   L"fill it.", row.modes);
        // Only where the file is there the expression is evaluated.
        if (action.is(fileSearchKind))
            checkExpression(*action.visit.made, checked.model, checked.variables, checked.nearMiss,
                            false, checked.report);
    });
}
