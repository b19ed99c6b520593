#include "ConsoleObserver.h"

#include <algorithm>
#include <utility>

#include "Console.h"
#include "Messages.h"

namespace {

constexpr size_t barWidth = 30;

}  // namespace

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
