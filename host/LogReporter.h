#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "Handles.h"
#include "Report.h"

/// Writes a run to a file, in UTF-8: a header, each action with its whole paths, each failure with
/// the call that failed, and the end. The file is appended to and can be read meanwhile.
class LogReporter final : public Reporter {
public:
    enum class Detail { actions, calls };

    /// Null when the file can't be opened; `problem` then tells why.
    static std::unique_ptr<LogReporter> open(const std::wstring& path, Detail detail,
                                             std::wstring& problem);

    /// Why lines are missing: the system's error code of the first that couldn't be written; 0 when
    /// all stand there.
    DWORD writeError() const { return firstError; }

    void started(const RunHeader& header) override;
    void called(const Call& call) override;
    void failed(const Action& action, const Failure& failure, unsigned attempt) override;
    void ended(const Action& action, Fate fate) override;
    void warned(const std::wstring& text) override;
    void finished(const RunSummary& summary) override;

private:
    LogReporter(FilePtr file, Detail detail) : file(std::move(file)), detail(detail) {}

    /// Writes a line with the time in front of it.
    void line(const std::wstring& text);

    FilePtr file;
    const Detail detail;
    DWORD firstError = ERROR_SUCCESS;
};
