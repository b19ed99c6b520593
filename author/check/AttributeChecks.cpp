#include <algorithm>

#include "author/check/Checks.h"

namespace {

/// What is read in place of an attribute that isn't. Without a kind it holds for the others.
struct Instead {
    const ElementKind* kind;
    const wchar_t* attribute;
    const wchar_t* help;
};

constexpr Instead instead[] = {
    {&fileKind, L"On", L"limit the component around it: <Component On=\"$\">."},
    {&shortcutKind, L"On", L"limit the component around it: <Component On=\"$\">."},
    {&registryValueKind, L"On", L"limit the key around it: <RegistryKey On=\"$\">."},
    {&fileSearchKind, L"On", L"limit the fragment around it: <Fragment On=\"$\">."},
    {&copyFileKind, L"On", L"a CopyFile does nothing in any mode."},
    {&featureKind, L"On", L"limit the components in it: <Component On=\"$\">."},
    {&installKind, L"On", L"limit what stands in it: <Fragment On=\"$\">."},
    {&conditionKind, L"On", L"limit what stands in it, or a <Fragment On=\"$\"> around it."},
    {nullptr, L"Vital", L"its failure is always vital."},
    {&componentKind, L"Path", L"a component goes to the Directory in which it is defined."},
    {&fileKind, L"Path", L"a file goes to the Directory in which its component is defined."},
    {&shortcutKind, L"Path",
     L"a shortcut goes to the Directory in which its component is defined."},
    {&registryValueKind, L"Key", L"the Key of the RegistryKey around it counts."},
    {&registryValueKind, L"Root", L"the Root of the RegistryKey around it counts."},
    {&directoryKind, L"Name", L"the name of the folder is its `Path`."},
    {&fileKind, L"Condition", L"put a <Condition Expression=\"$\"> around it."},
};

std::wstring helpFor(const ElementNode& element, const AttributeNode& attribute) {
    for (const Instead& row : instead) {
        if ((row.kind && row.kind != element.kind) || attribute.name != row.attribute)
            continue;
        std::wstring help = row.help;
        if (const size_t mark = help.find(L'$'); mark != std::wstring::npos)
            help.replace(mark, 1, attribute.value);
        return help;
    }
    return {};
}

/// What is read, and changes nothing.
struct WithoutEffect {
    const ElementKind* kind;
    const wchar_t* attribute;
    const wchar_t* reason;
};

constexpr WithoutEffect withoutEffect[] = {
    {&shellExcuteKind, L"Show", L"the window is always hidden."},
    {&registryKeyKind, L"Vital", L"a key that fails always ends the run."},
};

void checkRead(const Checked& checked, const ElementNode& element, const AttributeNode& attribute) {
    std::vector<const wchar_t*> names{idAttribute};
    for (const AttributeDeclaration& declaration : element.kind->declared)
        names.push_back(declaration.name);
    const bool isRead = std::any_of(names.begin(), names.end(),
                                    [&](const wchar_t* name) { return attribute.name == name; });
    if (!isRead) {
        std::wstring help = helpFor(element, attribute);
        if (help.empty())
            help = didYouMean(checked.nearMiss.find(attribute.name, names));
        checked.report.tellOf(
            Fault::attributeNeverRead, attribute.namePlace,
            inMarks(attribute.name) + L" is never read on a " + inMarks(element.name) + L".", help);
        return;
    }
    for (const WithoutEffect& row : withoutEffect)
        if (row.kind == element.kind && attribute.name == row.attribute)
            checked.report.tellOf(Fault::attributeWithoutEffect, attribute.namePlace,
                                  inMarks(attribute.name) + L" has no effect on a " +
                                      inMarks(element.name) + L": " + row.reason);
}

void checkReference(const Checked& checked, const ElementNode& element) {
    const wchar_t* const names[] = {idAttribute};
    for (const AttributeNode& attribute : element.attributes) {
        if (attribute.name == idAttribute)
            continue;
        std::wstring help;
        if (!element.find(idAttribute))
            help = didYouMean(checked.nearMiss.find(attribute.name, names));
        if (help.empty())
            help = std::wstring(L"put it on the `") + element.reference->target->name +
                   L"` that it refers to.";
        checked.report.tellOf(
            Fault::attributeNeverRead, attribute.namePlace,
            inMarks(attribute.name) + L" is never read on a " + inMarks(element.name) + L".", help);
    }
    if (element.firstChild != noElement && element.reference != &directoryReference)
        checked.report.tellOf(Fault::childrenNeverRead, checked.model[element.firstChild].place,
                              L"What stands in a " + inMarks(element.name) + L" is never read.",
                              std::wstring(L"put it into the `") + element.reference->target->name +
                                  L"` that it refers to.");
}

}  // namespace

void checkAttributes(const Checked& checked) {
    for (const ElementNode& element : checked.model.elements()) {
        if (element.parent == noElement)
            continue;  // the root is never asked
        if (element.reference)
            checkReference(checked, element);
        else if (element.kind)
            for (const AttributeNode& attribute : element.attributes)
                if (attribute.name.find(L':') == std::wstring::npos && attribute.name != L"xmlns")
                    checkRead(checked, element, attribute);
    }
}
