#include "ConsoleObserver.h"

#include <algorithm>
#include <utility>

#include "Console.h"
#include "Messages.h"

namespace {

constexpr size_t barWidth = 30;

/// How many columns a unit of UTF-16 takes on a terminal, roughly: two for most Asian characters,
/// and for a surrogate pair as a whole.
size_t columnsOf(wchar_t unit) {
    constexpr wchar_t firstAsian = 0x2E80;
    const bool endsPair = unit >= 0xDC00 && unit <= 0xDFFF;
    return endsPair ? 0 : unit < firstAsian ? 1 : 2;
}

/// What of a text fits into so many columns of one line, filled up with blanks.
std::wstring fitted(const std::wstring& text, size_t columns) {
    std::wstring line;
    for (const wchar_t unit : text) {
        if (columnsOf(unit) > columns)
            break;
        columns -= columnsOf(unit);
        line += unit < L' ' ? L' ' : unit;
    }
    return line + std::wstring(columns, L' ');
}

}  // namespace

ConsoleObserver::ConsoleObserver(std::optional<ErrorPolicy> policy)
    : policy(policy), terminal(isTerminal(Stream::output)) {}

void ConsoleObserver::update(IterfaceProduct* product) {
    const ActionInfo& info = product->actionInfo;
    const std::wstring action = describeAction(info.code, info.text1, info.text2);
    if (!std::exchange(retrying, false))
        refillRetries();
    highest = std::max(highest, std::min<unsigned>(product->progress, 100));
    // The user should read a caution, so the bar doesn't take its line.
    if (terminal && info.code != ACTION_CAUTION) {
        drawBar(highest, action);
    } else {
        leaveBar();
        write(Stream::output, action + L"\n");
    }
}

ObserverAnswer ConsoleObserver::askOnError(ErrorInfo* error) {
    leaveBar();
    write(Stream::error, L"temz: " + describeFailure(*error) + L"\n");
    // Not every action that fails has been announced.
    const std::wstring action = describeAction(error->code, error->text1, error->text2);
    if (std::exchange(failedAction, action) != action)
        refillRetries();
    const ObserverAnswer answer = decide();
    retrying = answer == ANSWER_RETRY;
    aborted = answer == ANSWER_ABORT;
    return answer;
}

void ConsoleObserver::refillRetries() {
    retriesLeft = policy ? policy->retries : 0;
}

ObserverAnswer ConsoleObserver::decide() {
    if (!policy)
        return canAsk() ? askUser() : ANSWER_ABORT;
    if (policy->answer != ANSWER_RETRY)
        return policy->answer;
    if (retriesLeft == 0)
        return ANSWER_ABORT;
    --retriesLeft;
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
    const std::wstring line = L"[" + std::wstring(filled, L'#') +
                              std::wstring(barWidth - filled, L'.') + L"] " + number + L"% " +
                              action;
    // The last column stays free, or the terminal would begin a new line.
    write(Stream::output, L"\r" + fitted(line, terminalWidth() - 1));
    barDrawn = true;
}

void ConsoleObserver::leaveBar() {
    if (barDrawn)
        write(Stream::output, L"\n");
    barDrawn = false;
}
