#include "engine/CProductElement.h"

#include <memory>

#include "elements/ElementFactory.h"
#include "engine/CContext.h"
#include "motion/WalkCalls.h"
#include "system/PathText.h"
#include "system/ShellOperations.h"

int32_t CProductElement::run(IterfaceContext* hostContext) {
    auto& context = static_cast<CContext&>(*hostContext);
    const XmlHandle sequenceNode = firstChildOf(handle(), installKind.name);
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
    std::wstring error = L"Get directory error:";
    if (!getSpecialFolder(directoryId, path) && !findDirectory(path, directoryId, context, error)) {
        setErrorText(error);
        return false;
    }
    path = withSeparator(path);
    return true;
}

bool CProductElement::findDirectory(std::wstring& path, const wchar_t* directoryId,
                                    CContext& context, std::wstring& error) {
    const XmlHandlePtr found = context.findElementById(directoryKind.name, directoryId);
    if (!found) {
        error.append(L"can't get the ").append(directoryId).append(L" directory");
        return false;
    }
    const ElementPtr directory = CreateElement(found.get(), context);
    if (!directory) {
        error += getLastCreateError();
        return false;
    }
    const auto record = std::make_unique<AttributeRecord>();
    if (!directory->getAttribute(pathAttribute, *record)) {
        error.append(directory->describe())
            .append(L" element can't get ")
            .append(pathAttribute)
            .append(L" attribute.");
        return false;
    }
    path = record->value;
    return true;
}
