#include "motion/CShellExcuteMtElement.h"

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "system/ShellCommand.h"

static_assert(sizeof(CShellExcuteMtElement) == sizeof(CMotionElement));

CShellExcuteMtElement::CShellExcuteMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, shellExcuteKind) {
    requireActionKind();
}

int32_t CShellExcuteMtElement::execute(CContext& context) {
    std::wstring file;
    std::wstring returnKeyword;
    std::wstring exeCommand;
    std::wstring ignoredShow;  // the window is hidden, whatever a script says
    std::wstring title;
    if (!getAttributesText({&file, &returnKeyword, &exeCommand, &ignoredShow, &title},
                           shellExcuteKind.fetched, context))
        return -1;
    announce(ACTION_SHELL_EXCUTE, file, title, context);
    const bool wait = returnKeyword == syncKeyword;
    if (runShellCommand(file.c_str(), exeCommand.c_str(), wait, false) == 0)
        return 0;
    context.subject().setErrorInfo(ACTION_SHELL_EXCUTE, file, noSystemError, title.c_str());
    return -1;
}
