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
void killRunningTarget(const wchar_t* target) {
    uint32_t processId = 0;
    if (!findProcessByPath(processId, target))
        return;
    if (!killProcessById(processId, 1)) {
        writeLog(WARNNING, "Failed to kill process(", target, ")");
        return;
    }
    clockCalls.Sleep(killDelay);
    writeLog(INFO, "Kill process (", target, ") success.");
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
    : CMotionElement(node, context, fileKind) {
    requireActionKind();
}

int32_t CFileMtElement::execute(CContext& context) {
    Texts texts;
    if (!getAttributesText({&texts.path, &texts.name, &texts.source, &texts.supportDelayInstall,
                            &texts.killProcess},
                           fileKind.fetched, context))
        return -1;
    const WideText target = joinPath(texts.path.c_str(), texts.name.c_str());
    if (!target)
        return failExhausted(context);
    if (texts.killProcess == yesKeyword)
        killRunningTarget(target.get());
    switch (context.runMode) {
        case RUNMODE_INSTALL:
        case RUNMODE_UPGRADE:
            return install(texts, target.get(), context);
        case RUNMODE_UNINSTALL:
            return uninstall(texts, target.get(), context);
        default:
            return -1;
    }
}

int32_t CFileMtElement::install(const Texts& texts, const wchar_t* target,
                                CContext& context) const {
    // A directory that can't be made shows up as a failure of the copy.
    if (const WideText directory = parentDirectoryOrThrow(target))
        createDirectories(directory.get());
    announce(ACTION_COPY_FILE, texts.name, L"", context);

    const WideText source = joinPath(hostProgramDirectory().c_str(), texts.source.c_str());
    if (!source)
        return failExhausted(context);
    const bool delayAllowed = texts.supportDelayInstall == yesKeyword;
    const int32_t result = copyFileWithDelay(source.get(), target, delayAllowed);
    if (result == COPY_DONE)
        return 0;
    if (result == COPY_DELAYED) {
        context.subject().setRebootRequired();
        return 0;
    }
    std::wstring message;
    if (result != COPY_FAILED)
        getSystemMessage(result, message);
    context.subject().setErrorInfo(ACTION_COPY_FILE, texts.name, result, nullptr, message.c_str());
    return result;
}

int32_t CFileMtElement::uninstall(const Texts& texts, const wchar_t* target,
                                  CContext& context) const {
    announce(ACTION_DELETE_FILE, texts.name, L"", context);
    writeLog(WARNNING, "delete file ", target);
    const int32_t result = deleteFile(target);
    if (result != 0)
        context.subject().setErrorInfo(ACTION_DELETE_FILE, texts.name, 0);
    return result;
}
