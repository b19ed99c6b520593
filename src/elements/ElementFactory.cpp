#include "elements/ElementFactory.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <new>
#include <utility>

#include "elements/CDirectoryElement.h"
#include "elements/MakingScope.h"
#include "engine/CContext.h"
#include "engine/CProductElement.h"
#include "expression/CVariableElement.h"
#include "motion/CCautionMtElement.h"
#include "motion/CComponentMtElement.h"
#include "motion/CConditionMtElement.h"
#include "motion/CCopyFileMtElement.h"
#include "motion/CCustomActionMtElement.h"
#include "motion/CFeatureMtElement.h"
#include "motion/CFileMtElement.h"
#include "motion/CFileSearchMtElement.h"
#include "motion/CFragmentMtElement.h"
#include "motion/CInstallMtElement.h"
#include "motion/CRegistryKeyMtElement.h"
#include "motion/CRegistryValueMtElement.h"
#include "motion/CRemoveDirectoryMtElement.h"
#include "motion/CServiceControlMtElement.h"
#include "motion/CShellExcuteMtElement.h"
#include "motion/CShortcutMtElement.h"
#include "system/Exhaustion.h"

namespace {

std::wstring lastCreateError;
bool ranShort = false;

template <class Pointer, class Element>
Pointer makeFromNode(const XmlHandle& node, CContext& context) {
    return makeOwned<Pointer, Element>(node, context);
}

template <class Element, const ElementKind& kind>
MotionElementPtr makeByReference(const wchar_t* id, CContext& context) {
    return makeOwned<MotionElementPtr, Element>(kind.name, id, context);
}

/// How the elements of one kind are made. One row in one of the tables is all that a new class
/// needs here.
template <class Pointer>
struct Maker {
    const ElementKind* kind;
    Pointer (*fromNode)(const XmlHandle& node, CContext& context);
    Pointer (*byReference)(const wchar_t* id, CContext& context) = nullptr;
};

constexpr Maker<MotionElementPtr> motionMakers[] = {
    {&installKind, &makeFromNode<MotionElementPtr, CInstallMtElement>},
    {&fragmentKind, &makeFromNode<MotionElementPtr, CFragmentMtElement>,
     &makeByReference<CFragmentMtElement, fragmentKind>},
    {&featureKind, &makeFromNode<MotionElementPtr, CFeatureMtElement>,
     &makeByReference<CFeatureMtElement, featureKind>},
    {&componentKind, &makeFromNode<MotionElementPtr, CComponentMtElement>,
     &makeByReference<CComponentMtElement, componentKind>},
    {&conditionKind, &makeFromNode<MotionElementPtr, CConditionMtElement>},
    {&customActionKind, &makeFromNode<MotionElementPtr, CCustomActionMtElement>},
    {&fileKind, &makeFromNode<MotionElementPtr, CFileMtElement>},
    {&shortcutKind, &makeFromNode<MotionElementPtr, CShortcutMtElement>},
    {&shellExcuteKind, &makeFromNode<MotionElementPtr, CShellExcuteMtElement>},
    {&serviceControlKind, &makeFromNode<MotionElementPtr, CServiceControlMtElement>},
    {&copyFileKind, &makeFromNode<MotionElementPtr, CCopyFileMtElement>},
    {&fileSearchKind, &makeFromNode<MotionElementPtr, CFileSearchMtElement>},
    {&registryKeyKind, &makeFromNode<MotionElementPtr, CRegistryKeyMtElement>},
    {&registryValueKind, &makeFromNode<MotionElementPtr, CRegistryValueMtElement>},
    {&removeDirectoryKind, &makeFromNode<MotionElementPtr, CRemoveDirectoryMtElement>},
    {&cautionKind, &makeFromNode<MotionElementPtr, CCautionMtElement>},
};

constexpr Maker<ElementPtr> lookedUpMakers[] = {
    {&directoryKind, &makeFromNode<ElementPtr, CDirectoryElement>},
    {&productKind, &makeFromNode<ElementPtr, CProductElement>},
    {&variableKind, &makeFromNode<ElementPtr, CVariableElement>},
    {&variableConstKind, &makeFromNode<ElementPtr, CVariableElement>},
};

PassingText idOf(const XmlHandle& node) {
    return PassingText(attributeOf(node, idAttribute));
}

template <class Makers>
auto findMaker(const Makers& makers, const wchar_t* name) {
    return std::find_if(std::begin(makers), std::end(makers),
                        [name](const auto& maker) { return wcscmp(maker.kind->name, name) == 0; });
}

const ReferenceKind* findReference(const wchar_t* name) {
    for (const ReferenceKind& reference : motionReferences())
        if (wcscmp(reference.name, name) == 0)
            return &reference;
    return nullptr;
}

/// What both factories share: reads the node's name, which `make` gets, and turns a thrown message
/// into a null result.
template <class Pointer, class Make>
Pointer makeGuarded(const wchar_t* prefix, const XmlHandle* node, Make make) {
    const MakingScope scope;
    ranShort = false;
    try {
        if (node == nullptr)
            throw std::wstring(L"The parameter node is NULL.");
        scope.check();
        const PassingText name(elementNameOf(*node));
        if (!name)
            throw std::wstring(L"Fail to get element name.");
        Pointer element = make(name.get());
        scope.check();
        return element;
    } catch (const std::wstring& message) {
        lastCreateError.assign(prefix).append(message);
        return nullptr;
    }
}

template <class Pointer>
void finish(Pointer* element, CContext& context) {
    if (element == nullptr || !*element)
        return;
    std::wstring message;
    if ((*element)->readDeclaredAttributes(context, message) &&
        (*element)->resolveDerivedAttributes(context, message))
        return;
    element->reset();
    throw std::wstring(std::move(message));
}

}  // namespace

ElementPtr CreateElement(const XmlHandle* node, CContext& context) {
    return makeGuarded<ElementPtr>(
        L"Create Element error:", node, [&](const wchar_t* name) -> ElementPtr {
            ElementPtr element;
            if (const auto* maker = findMaker(lookedUpMakers, name);
                maker != std::end(lookedUpMakers))
                element = maker->fromNode(*node, context);
            else if (wcscmp(directoryReference.name, name) == 0)
                element = createDirectoryRefElement(name, idOf(*node).get(), context);
            finishElement(&element, context);
            if (!element)
                element = CreateMotionElement(node, context, nullptr);
            if (!element)
                throw getLastCreateError();
            return element;
        });
}

MotionElementPtr CreateMotionElement(const XmlHandle* node, CContext& context, CElement* parent) {
    return makeGuarded<MotionElementPtr>(
        L"Create Motion Element error:", node, [&](const wchar_t* name) {
            MotionElementPtr element;
            if (const auto* maker = findMaker(motionMakers, name);
                maker != std::end(motionMakers)) {
                element = maker->fromNode(*node, context);
                if (parent)
                    element->setParent(parent);
            } else if (findReference(name)) {
                element = createRefMotionElement(name, idOf(*node).get(), context);
            } else {
                throw std::wstring(name) + L" element name is undefined.";
            }
            finishElement(&element, context);
            return element;
        });
}

std::wstring getLastCreateError() {
    return lastCreateError;
}

bool lastCreateRanShort() {
    return ranShort;
}

MotionElementPtr createRefMotionElement(const wchar_t* elementName, const wchar_t* id,
                                        CContext& context) {
    if (elementName == nullptr || id == nullptr)
        throw std::wstring(L"The name or id is NULL in createRefMotionElement.");
    const ReferenceKind* reference = findReference(elementName);
    if (reference == nullptr)
        throw std::wstring(elementName) + L" element undefined.";
    try {
        return findMaker(motionMakers, reference->target->name)->byReference(id, context);
    } catch (const std::bad_alloc&) {
        ranShort = true;
        throw InsufficientMemory();
    }
}

ElementPtr createDirectoryRefElement(const wchar_t* elementName, const wchar_t* id,
                                     CContext& context) {
    if (wcscmp(elementName, directoryReference.name) != 0 || id == nullptr)
        return nullptr;
    try {
        return makeOwned<ElementPtr, CDirectoryElement>(directoryReference.target->name, id,
                                                        context);
    } catch (const std::wstring& message) {
        lastCreateError = message;
        return nullptr;
    }
}

void finishElement(ElementPtr* element, CContext& context) {
    finish(element, context);
}

void finishElement(MotionElementPtr* element, CContext& context) {
    finish(element, context);
}
