#include "logging/CSubject.h"

#include "logging/IterfaceObserver.h"
#include "logging/Log.h"
#include "system/TextFields.h"

void CSubject::setActionInfo(const ActionInfo& action, uint32_t percent) {
    if (&action != &actionInfo)
        actionInfo = action;
    progress = percent;
    notifyObserver();
}

void CSubject::setErrorText(const std::wstring& text) {
    setErrorInfo(ERROR_CODE_MESSAGE, {}, 0, nullptr, text.c_str());
}

void CSubject::setErrorInfo(uint32_t code, const std::wstring& text1, uint32_t systemError,
                            const wchar_t* text2, const wchar_t* message) {
    errorInfo = {};
    errorInfo.code = code;
    errorInfo.systemError = systemError;
    copyCut(errorInfo.text1, text1.c_str());
    if (text2)
        copyCut(errorInfo.text2, text2);
    if (message)
        copyCut(errorInfo.message, message);
}

int32_t CSubject::clearRunState() {
    progress = 0;
    rebootRequired = false;
    actionInfo = {};
    errorInfo = {};
    return 0;
}

void CSubject::notifyObserver() {
    if (IterfaceObserver* listener = observerOrWarning())
        listener->update(this);
}

int32_t CSubject::askObserver(ErrorInfo* error) {
    IterfaceObserver* listener = observerOrWarning();
    return listener ? listener->askOnError(error) : ANSWER_ABORT;
}

IterfaceObserver* CSubject::observerOrWarning() const {
    if (observer == nullptr)
        writeLog(WARNNING, "Observer is NULL in subject.");
    return observer;
}
