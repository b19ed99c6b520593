#pragma once

#include <cstdint>
#include <string>

#include "logging/IterfaceProduct.h"

/// ErrorInfo::systemError of an action whose failure has no number of the system's.
inline constexpr uint32_t noSystemError = 0xFFFFFFFF;

/// The engine's side of the link to the host: fills the members that the host reads, and calls its
/// observer. Kept apart from IterfaceProduct so that the host sees only what it can call.
class CSubject : public IterfaceProduct {
public:
    /// Takes over the record, unless it is the subject's own, and the percentage, and notifies.
    void setActionInfo(const ActionInfo& action, uint32_t percent);

    /// Records a failure that `text` alone tells, cut to 511 characters.
    void setErrorText(const std::wstring& text);

    /// Records a failed action; texts are cut to 511 characters, a null one leaves its field empty.
    void setErrorInfo(uint32_t code, const std::wstring& text1, uint32_t systemError,
                      const wchar_t* text2 = nullptr, const wchar_t* message = nullptr);

    void setRebootRequired() { rebootRequired = true; }

    /// Clears all that a run leaves behind; the host's members stay. The result is always 0.
    int32_t clearRunState();

    /// Calls the observer; without one a line goes to the log.
    void notifyObserver();

    /// Asks the observer what to do about a failed action. Without one a line goes to the log and
    /// the answer is ANSWER_ABORT.
    int32_t askObserver(ErrorInfo* error);

private:
    /// The observer; null, with a line in the log, when there is none.
    IterfaceObserver* observerOrWarning() const;
};
