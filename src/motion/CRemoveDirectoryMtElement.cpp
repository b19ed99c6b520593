#include "motion/CRemoveDirectoryMtElement.h"

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "system/FileOperations.h"

static_assert(sizeof(CRemoveDirectoryMtElement) == sizeof(CMotionElement));

CRemoveDirectoryMtElement::CRemoveDirectoryMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, removeDirectoryKind) {
    requireActionKind();
}

int32_t CRemoveDirectoryMtElement::execute(CContext& context) {
    std::wstring path;
    std::wstring title;
    if (!getAttributesText({&path, &title}, removeDirectoryKind.fetched, context))
        return -1;
    announce(ACTION_REMOVE_DIRECTORY, path, title, context);
    if (removeDirectoryTree(path.c_str()))
        return 0;
    context.subject().setErrorInfo(ACTION_REMOVE_DIRECTORY, path, noSystemError, title.c_str());
    return -1;
}
