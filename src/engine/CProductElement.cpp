#include "engine/CProductElement.h"

#include <utility>

#include "elements/ElementFactory.h"
#include "engine/CContext.h"
#include "motion/WalkCalls.h"
#include "system/PathText.h"
#include "system/ShellOperations.h"

CProductElement::CProductElement(const XmlHandle& node, CContext& context)
    : CElement(node, context, productKind) {}

int32_t CProductElement::run(IterfaceContext* hostContext) {
    auto& context = static_cast<CContext&>(*hostContext);
    const XmlHandle sequenceNode = firstChildOf(node, installKind.name);
    clearRunState();
    const MotionElementPtr sequence =
        CreateMotionElement(sequenceNode ? &sequenceNode : nullptr, context, nullptr);
    if (!sequence) {
        setErrorText(L"Failed to create install element.");
        return -1;
    }
    sequence->setProgressRange(0, 100);
    return walkCalls.VisitElement(*sequence, context);
}

bool CProductElement::getDirectory(std::wstring& path, const wchar_t* directoryId,
                                   IterfaceContext* hostContext) {
    auto& context = static_cast<CContext&>(*hostContext);
    if (!getSpecialFolder(directoryId, path) && !findDirectory(path, directoryId, context))
        return false;
    path = withSeparator(std::move(path));
    return true;
}

bool CProductElement::findDirectory(std::wstring& path, const wchar_t* directoryId,
                                    CContext& context) {
    const XmlHandlePtr found = context.findElementById(directoryKind.name, directoryId);
    if (!found)
        return failToGet(std::wstring(L"can't get the ") + directoryId + L" directory");
    const ElementPtr directory = CreateElement(found.get(), context);
    if (!directory)
        return failToGet(getLastCreateError());
    const std::wstring* own = directory->find(pathAttribute);
    if (own == nullptr)
        return failToGet(directory->describe() + L" element can't get " + pathAttribute +
                         L" attribute.");
    path.reserve(own->size() + 1);  // for a separator behind it
    path = *own;
    return true;
}

bool CProductElement::failToGet(const std::wstring& reason) {
    setErrorText(L"Get directory error:" + reason);
    return false;
}
