#include "RunText.h"

namespace {

constexpr wchar_t indent[] = L"\n      ";

std::wstring counted(unsigned number, const wchar_t* one, const wchar_t* many) {
    return std::to_wstring(number) + L" " + (number == 1 ? one : many);
}

/// Whether the run hasn't begun.
bool nothingWasTried(const RunSummary& summary) {
    switch (summary.ending) {
        case Ending::otherRunGoesOn:
        case Ending::scriptNotOpened:
        case Ending::scriptNotLoaded:
        case Ending::logNotOpened:
            return true;
        case Ending::stoppedByUser:
            return !summary.reason.empty();
        default:
            return false;
    }
}

std::wstring headline(const RunSummary& summary) {
    const std::wstring code = L" (" + std::to_wstring(exitCodeOf(summary.ending)) + L")";
    const std::wstring done = summary.total >= summary.actions && summary.total > 0
                                  ? std::to_wstring(summary.done) + L" of " +
                                        counted(summary.total, L"action", L"actions")
                                  : counted(summary.done, L"action", L"actions");
    if (!summary.stoppedAt.empty())
        return L"Stopped before " + summary.stoppedAt + L", after " + done + code +
               L". What was done before stays.";
    if (succeeded(summary.ending))
        return L"Done: " + counted(summary.done, L"action", L"actions") + L".";
    if (nothingWasTried(summary))
        return L"Nothing was done" + code + L".";
    if (summary.ending == Ending::stoppedByUser)
        return (summary.sessionEnded ? L"Ended with the session after "
                                     : L"Ended by the user after ") +
               done + code + L". What was done before stays.";
    return L"Failed after " + done + code + L". What was done before stays.";
}

std::wstring list(const std::vector<std::wstring>& texts) {
    std::wstring all;
    for (const std::wstring& text : texts)
        all += (all.empty() ? L"" : L"; ") + text;
    return all;
}

}  // namespace

std::wstring failureText(const Failure& failure) {
    std::wstring text = failure.what;
    if (failure.code != TEMZ_ERROR_MESSAGE)
        text += L" failed";
    if (!failure.why.empty()) {
        if (text.ends_with(L'.'))
            text.pop_back();
        text += L": " + failure.why;
    }
    if (text.back() != L'.')
        text += L'.';
    if (failure.systemError != 0)
        text += L" [error " + std::to_wstring(failure.systemError) + L"]";
    if (!failure.source.empty())
        text += indent + (L"from " + failure.source + L" to " + failure.target);
    else if (!failure.target.empty())
        text += indent + (L"at " + failure.target);
    if (!failure.advice.empty())
        text += indent + failure.advice;
    return text;
}

std::wstring summaryText(const RunSummary& summary, const std::wstring& log) {
    std::wstring text = headline(summary);
    if (!summary.leftOut.empty())
        text += L" Left out: " + list(summary.leftOut) + L".";
    if (!summary.waiting.empty())
        text += L" Until the machine is restarted (Restart, not Shut down) these wait: " +
                list(summary.waiting) + L".";
    if (!log.empty())
        text += L" The log: " + log;
    return text;
}
