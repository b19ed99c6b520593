#include "motion/CShortcutMtElement.h"

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "logging/Log.h"
#include "system/FileOperations.h"
#include "system/PathText.h"
#include "system/ShellLink.h"

static_assert(sizeof(CShortcutMtElement) == sizeof(CMotionElement));

struct CShortcutMtElement::Texts {
    std::wstring path;
    std::wstring name;
    std::wstring description;  // must be there, and means nothing
    std::wstring target;
    std::wstring workingDirectory;
    std::wstring icoFile;
};

CShortcutMtElement::CShortcutMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, shortcutKind) {
    requireActionKind();
}

int32_t CShortcutMtElement::execute(CContext& context) {
    Texts texts;
    if (!getAttributesText({&texts.path, &texts.name, &texts.description, &texts.target,
                            &texts.workingDirectory, &texts.icoFile},
                           shortcutKind.fetched, context))
        return -1;
    const WideText path = joinPath(texts.path.c_str(), texts.name.c_str());
    if (!path)
        return failExhausted(context);
    const std::wstring link = path.get() + std::wstring(L".lnk");
    switch (context.runMode) {
        case RUNMODE_INSTALL:
        case RUNMODE_UPGRADE:
            return create(texts, link, context);
        case RUNMODE_UNINSTALL:
            return remove(texts, link, context);
        default:
            return 0;
    }
}

int32_t CShortcutMtElement::create(const Texts& texts, const std::wstring& link,
                                   CContext& context) const {
    const auto fail = [&](uint32_t systemError) {
        context.subject().setErrorInfo(ACTION_SHORTCUT, texts.name, systemError);
        return -1;
    };
    announce(ACTION_SHORTCUT, texts.name, L"", context);
    writeLog(INFO, "linkFile:", link);
    writeLog(INFO, "target:", texts.target);
    writeLog(INFO, "workDir:", texts.workingDirectory);
    writeLog(INFO, "icoFile:", texts.icoFile);

    const WideText directory = parentDirectoryOrThrow(link.c_str());
    if (!directory) {
        writeLog(ERROR, "Fail to get short cut path.");
        return fail(1);
    }
    if (!createDirectories(directory.get())) {
        writeLog(ERROR, "Fail to create short cut path:", texts.path);
        return fail(1);
    }
    if (createShellLink(link.c_str(), texts.target.c_str(), texts.workingDirectory.c_str(),
                        texts.icoFile.c_str()) != 0) {
        writeLog(ERROR, "Fail to create short cut:", link);
        return fail(0);
    }
    return 0;
}

int32_t CShortcutMtElement::remove(const Texts& texts, const std::wstring& link,
                                   CContext& context) const {
    announce(ACTION_SHORTCUT, texts.name, L"", context);
    writeLog(WARNNING, "delete file ", link);
    if (deleteFile(link.c_str()) == 0)
        return 0;
    writeLog(ERROR, "Fail to delete short cut:", link);
    context.subject().setErrorInfo(ERROR_CODE_REMOVE_SHORTCUT, texts.name, 0);
    return -1;
}
