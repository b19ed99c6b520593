#include "ConsoleObserver.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "Console.h"

namespace {

struct ActionName {
    uint32_t code;
    const wchar_t* text;
};

constexpr ActionName actionNames[] = {
    {ACTION_CONDITION, L"Checking"},
    {ACTION_COPY_FILE, L"Copying"},
    {ACTION_DELETE_FILE, L"Deleting"},
    {ACTION_STOP_SERVICE, L"Stopping service"},
    {ACTION_START_SERVICE, L"Starting service"},
    {ACTION_REMOVE_SERVICE, L"Removing service"},
    {ACTION_SHORTCUT, L"Shortcut"},
    {ACTION_CUSTOM_ACTION, L"Custom action"},
    {ACTION_SHELL_EXCUTE, L"Starting"},
    {ACTION_CREATE_REGISTRY_KEY, L"Creating registry key"},
    {ACTION_REMOVE_REGISTRY_KEY, L"Removing registry key"},
    {ACTION_REGISTRY_VALUE, L"Writing registry value"},
    {ACTION_REMOVE_DIRECTORY, L"Removing directory"},
    {ACTION_CAUTION, L"Caution:"},
};

constexpr size_t barWidth = 30;

/// The action with its texts: "Copying app.exe".
std::wstring describeAction(uint32_t code, const wchar_t* text1, const wchar_t* text2) {
    const auto* named = std::find_if(std::begin(actionNames), std::end(actionNames),
                                     [code](const ActionName& name) { return name.code == code; });
    std::wstring action =
        named == std::end(actionNames) ? L"Action " + std::to_wstring(code) : named->text;
    for (const wchar_t* text : {text1, text2})
        if (*text)
            action += std::wstring(L" ") + text;
    return action;
}

/// The system's text for an error code; empty when it has none.
std::wstring systemMessage(uint32_t code) {
    wchar_t text[512];
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                       text, static_cast<DWORD>(std::size(text)), nullptr);
    return std::wstring(text, length);
}

std::wstring withoutLineEnd(std::wstring text) {
    text.erase(text.find_last_not_of(L"\r\n ") + 1);
    return text;
}

}  // namespace

std::wstring describeFailure(const ErrorInfo& error) {
    std::wstring reason = withoutLineEnd(error.message);
    if (error.code == ERROR_CODE_MESSAGE)
        return reason;
    const bool hasCode = error.systemError != 0 && error.systemError != UINT32_MAX;
    if (reason.empty() && hasCode)
        reason = withoutLineEnd(systemMessage(error.systemError));
    std::wstring failure = describeAction(error.code, error.text1, error.text2) + L" failed";
    if (!reason.empty())
        failure += L": " + reason;
    if (hasCode)
        failure += L" (error " + std::to_wstring(error.systemError) + L")";
    return failure;
}

ConsoleObserver::ConsoleObserver(std::optional<ErrorPolicy> policy)
    : policy(policy),
      retriesLeft(policy ? policy->retries : 0),
      terminal(isTerminal(Stream::output)) {}

void ConsoleObserver::update(IterfaceProduct* product) {
    const ActionInfo& info = product->actionInfo;
    const std::wstring action = describeAction(info.code, info.text1, info.text2);
    if (!std::exchange(retrying, false) && policy)
        retriesLeft = policy->retries;
    highest = std::max(highest, std::min<unsigned>(product->progress, 100));
    if (terminal)
        drawBar(highest, action);
    else
        write(Stream::output, action + L"\n");
}

ObserverAnswer ConsoleObserver::askOnError(ErrorInfo* error) {
    leaveBar();
    write(Stream::error, L"temz: " + describeFailure(*error) + L"\n");
    const ObserverAnswer answer = policy ? answerByPolicy() : canAsk() ? askUser() : ANSWER_ABORT;
    aborted = answer == ANSWER_ABORT;
    return answer;
}

ObserverAnswer ConsoleObserver::answerByPolicy() {
    if (policy->answer != ANSWER_RETRY)
        return policy->answer;
    if (retriesLeft == 0)
        return ANSWER_ABORT;
    --retriesLeft;
    retrying = true;
    return ANSWER_RETRY;
}

ObserverAnswer ConsoleObserver::askUser() {
    std::wstring line;
    while (true) {
        write(Stream::error, L"Retry, abort or ignore? [r/a/i] ");
        if (!readLine(line) || line == L"a" || line == L"abort") {
            userAborted = true;
            return ANSWER_ABORT;
        }
        if (line == L"r" || line == L"retry")
            return ANSWER_RETRY;
        if (line == L"i" || line == L"ignore")
            return ANSWER_IGNORE;
    }
}

void ConsoleObserver::finish(bool success) {
    if (success && terminal)
        drawBar(highest = 100, L"Done");
    leaveBar();
}

void ConsoleObserver::drawBar(unsigned percent, const std::wstring& action) {
    const size_t filled = barWidth * percent / 100;
    std::wstring number = std::to_wstring(percent);
    number.insert(0, 3 - number.size(), L' ');
    std::wstring line = L"[" + std::wstring(filled, L'#') + std::wstring(barWidth - filled, L'.') +
                        L"] " + number + L"% " + action;
    // The last column stays free, or the terminal would begin a new line.
    line.resize(terminalWidth() - 1, L' ');
    write(Stream::output, L"\r" + line);
    barDrawn = true;
}

void ConsoleObserver::leaveBar() {
    if (barDrawn)
        write(Stream::output, L"\n");
    barDrawn = false;
}
