#include "motion/CFileMtElement.h"

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "logging/Log.h"
#include "system/ClockCalls.h"
#include "system/FileOperations.h"
#include "system/PathText.h"
#include "system/ProcessOperations.h"

static_assert(sizeof(CFileMtElement) == sizeof(CMotionElement));

namespace {

/// What an ended process is given to let go of its executable, in milliseconds.
constexpr uint32_t killDelay = 1000;

/// Ends the program that runs from `target`, if one does. That it can't be ended is no failure:
/// the copy or the deletion is tried all the same.
void killRunningTarget(const std::wstring& target) {
    uint32_t processId = 0;
    if (!findProcessByPath(processId, target.c_str()))
        return;
    if (!killProcessById(processId, 1)) {
        writeLog(WARNNING, "Failed to kill process(", target, ")");
        return;
    }
    clockCalls.Sleep(killDelay);
    writeLog(INFO, "Kill process (", target, ") success.");
}

std::wstring joined(const std::wstring& directory, const std::wstring& name) {
    const WideText path = joinPath(directory.c_str(), name.c_str());
    return path ? path.get() : L"";
}

}  // namespace

struct CFileMtElement::Texts {
    std::wstring path;
    std::wstring name;
    std::wstring source;
    std::wstring supportDelayInstall = noKeyword;
    std::wstring killProcess = noKeyword;
};

CFileMtElement::CFileMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context) {
    requireActionKind(fileKind);
}

void CFileMtElement::getAttributes(std::vector<AttributeDeclaration>& list) const {
    assignDeclarations(list, fileKind.declared);
}

void CFileMtElement::getDerivedAttributes(std::vector<AttributeDeclaration>& list) const {
    assignDeclarations(list, fileKind.derived);
}

int32_t CFileMtElement::execute(CContext& context) {
    Texts texts;
    if (!getAttributesText({&texts.path, &texts.name, &texts.source, &texts.supportDelayInstall,
                            &texts.killProcess},
                           fileKind.fetched, context))
        return -1;
    const std::wstring target = joined(texts.path, texts.name);
    if (texts.killProcess == yesKeyword)
        killRunningTarget(target);
    switch (context.runMode) {
        case RUNMODE_INSTALL:
        case RUNMODE_UPGRADE:
            return install(texts, target, context);
        case RUNMODE_UNINSTALL:
            return uninstall(texts, target, context);
        default:
            return -1;
    }
}

int32_t CFileMtElement::install(const Texts& texts, const std::wstring& target,
                                CContext& context) const {
    // A directory that can't be made shows up as a failure of the copy.
    if (const WideText directory = parentDirectory(target.c_str()))
        createDirectories(directory.get());
    announce(ACTION_COPY_FILE, texts.name, L"", context);

    const std::wstring source = joined(hostProgramDirectory(), texts.source);
    const bool delayAllowed = texts.supportDelayInstall == yesKeyword;
    const int32_t result = copyFileWithDelay(source.c_str(), target.c_str(), delayAllowed);
    switch (result) {
        case COPY_DONE:
            return 0;
        case COPY_DELAYED:
            context.subject().setRebootRequired();
            return 0;
        case COPY_FAILED:
            context.subject().setErrorInfo(ACTION_COPY_FILE, texts.name, result);
            return result;
        default:
            break;
    }
    std::wstring message;
    getSystemMessage(result, message);
    context.subject().setErrorInfo(ACTION_COPY_FILE, texts.name, result, nullptr, message.c_str());
    return result;
}

int32_t CFileMtElement::uninstall(const Texts& texts, const std::wstring& target,
                                  CContext& context) const {
    announce(ACTION_DELETE_FILE, texts.name, L"", context);
    writeLog(WARNNING, "delete file ", target);
    const int32_t result = deleteFile(target.c_str());
    if (result != 0)
        context.subject().setErrorInfo(ACTION_DELETE_FILE, texts.name, 0);
    return result;
}
