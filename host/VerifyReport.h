#pragma once

#include <memory>
#include <vector>

#include "ExitCodes.h"
#include "author/verify/Difference.h"

/// Who tells what a verification does and finds.
class VerifyReport {
public:
    VerifyReport() = default;
    VerifyReport(const VerifyReport&) = delete;
    VerifyReport& operator=(const VerifyReport&) = delete;
    virtual ~VerifyReport() = default;

    virtual void started(const std::wstring& script) = 0;
    virtual void runBegins(const std::wstring& mode, const std::wstring& script) = 0;
    virtual void runEnded(const std::wstring& mode, const std::wstring& script, int exitCode) = 0;
    virtual void installed(const Picture& before, const Picture& after) = 0;
    /// Nothing can be verified; comes in the place of all but `started`.
    virtual void refused(const std::wstring& reason, Ending ending) = 0;
    virtual void finished(const std::vector<Difference>& differences, Ending ending) = 0;
};

/// As text, or as one JSON object a line.
std::unique_ptr<VerifyReport> makeVerifyReport(bool json);
