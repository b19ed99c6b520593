#pragma once

#include <string>

#include "Report.h"

/// Shows a run on the console: a bar on a terminal, a line for each action elsewhere; failures on
/// the error stream; and the last line, which says what the run has come to.
class ConsoleReporter final : public Reporter {
public:
    enum class Detail { all, failuresOnly };

    /// `log` is named in the last line; empty for none.
    ConsoleReporter(Detail detail, std::wstring log);

    void began(const Action& action) override;
    void failed(const Action& action, const Failure& failure, unsigned attempt) override;
    void warned(const std::wstring& text) override;
    void finished(const RunSummary& summary) override;

private:
    void drawBar(unsigned percent, const std::wstring& action);
    void leaveBar();

    const Detail detail;
    const std::wstring log;
    const bool terminal;
    bool barDrawn = false;
};
