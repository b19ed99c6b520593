#include "ConsoleReporter.h"

#include <utility>

#include "Columns.h"
#include "Console.h"
#include "Diagnosis.h"
#include "RunText.h"

namespace {

constexpr size_t barWidth = 30;

/// What of a text fits into so many columns of one line, filled up with blanks.
std::wstring fitted(const std::wstring& text, size_t columns) {
    std::wstring line = cutToColumns(text, columns);
    return line.append(columns - columnsOf(line), L' ');
}

}  // namespace

ConsoleReporter::ConsoleReporter(Detail detail, std::wstring log)
    : detail(detail), log(std::move(log)), terminal(isTerminal(Stream::output)) {}

void ConsoleReporter::began(const Action& action) {
    if (detail == Detail::failuresOnly)
        return;
    const std::wstring text = describeAction(action.code, action.text1, action.text2);
    // The user should read a caution, so the bar doesn't take its line.
    if (terminal && action.code != TEMZ_ACTION_CAUTION) {
        drawBar(action.percent, text);
    } else {
        leaveBar();
        write(Stream::output, text + L"\n");
    }
}

void ConsoleReporter::failed(const Action&, const Failure& failure, unsigned) {
    leaveBar();
    write(Stream::error, L"temz: " + failureText(failure) + L"\n");
}

void ConsoleReporter::warned(const std::wstring& text) {
    if (detail == Detail::failuresOnly)
        return;
    leaveBar();
    write(Stream::error, L"temz: " + text + L"\n");
}

void ConsoleReporter::finished(const RunSummary& summary) {
    const bool success = succeeded(summary.ending);
    if (detail == Detail::failuresOnly && success && summary.ignored + summary.nonVital == 0)
        return;
    if (success && terminal && detail == Detail::all)
        drawBar(100, L"Done");
    leaveBar();
    if (!summary.reason.empty())
        write(Stream::error, L"temz: " + summary.reason + L"\n");
    write(success ? Stream::output : Stream::error, summaryText(summary, log) + L"\n");
}

void ConsoleReporter::drawBar(unsigned percent, const std::wstring& action) {
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

void ConsoleReporter::leaveBar() {
    if (std::exchange(barDrawn, false))
        write(Stream::output, L"\n");
}
