#include "CheckCommand.h"

#include <algorithm>

#include "Console.h"
#include "Findings.h"
#include "JsonLine.h"
#include "Machine.h"
#include "PayloadFolder.h"
#include "Sarif.h"
#include "ScriptFile.h"
#include "TextOutput.h"
#include "Version.h"

namespace {

constexpr wchar_t schemaVersion[] = L"temz-check-1";

/// Who tells what a check has found.
class CheckReporter {
public:
    CheckReporter() = default;
    CheckReporter(const CheckReporter&) = delete;
    CheckReporter& operator=(const CheckReporter&) = delete;
    virtual ~CheckReporter() = default;

    virtual void started(const std::wstring& /*script*/) {}
    virtual void found(const ScriptFinding& finding) = 0;
    virtual void failed(const std::wstring& problem) = 0;
    virtual void finished(const FindingCounts& counts, Ending ending) = 0;
};

class TextCheckReporter final : public CheckReporter {
    void found(const ScriptFinding& finding) override {
        const size_t width = isTerminal(Stream::output) ? terminalWidth() - 1 : 0;
        write(Stream::output, findingText(finding, width));
    }
    void failed(const std::wstring& problem) override {
        write(Stream::error, L"temz: " + problem + L"\n");
    }
    void finished(const FindingCounts& counts, Ending ending) override {
        if (ending != Ending::notCarriedOut)
            write(Stream::output, countText(counts) + L"\n");
    }
};

class JsonCheckReporter final : public CheckReporter {
    void started(const std::wstring& script) override {
        writeJsonLine(jsonEvent(L"start")
                          .add(L"schema", schemaVersion)
                          .add(L"version", programVersion())
                          .add(L"script", script)
                          .add(L"sha256", sha256OfFile(script)));
    }
    void found(const ScriptFinding& finding) override {
        writeJsonLine(jsonEvent(L"finding")
                          .add(L"severity", severityWord(finding.severity))
                          .add(L"code", finding.code)
                          .add(L"endsRun", finding.endsRun)
                          .add(L"file", finding.file)
                          .add(L"line", finding.line)
                          .add(L"column", finding.column)
                          .add(L"length", finding.length)
                          .add(L"text", finding.text)
                          .add(L"help", finding.help)
                          .add(L"source", finding.sourceLine));
    }
    void failed(const std::wstring& problem) override {
        writeJsonLine(jsonEvent(L"problem").add(L"text", problem));
    }
    void finished(const FindingCounts& counts, Ending ending) override {
        writeJsonLine(jsonEvent(L"end")
                          .add(L"exitCode", exitCodeOf(ending))
                          .add(L"errors", counts.errors)
                          .add(L"warnings", counts.warnings)
                          .add(L"notes", counts.notes));
    }
};

std::wstring whyNotRead(const std::wstring& file) {
    const std::wstring problem = findOpenProblem(file);
    return problem.empty() ? L"" : file + L" can't be opened: " + problem;
}

/// Why nothing could be checked, from the status and the files.
std::wstring problemOf(temz_status status, const CommandLine& command) {
    if (status == TEMZ_OK)
        return {};
    for (const std::wstring& file : {command.script, command.previous})
        if (std::wstring problem = file.empty() ? L"" : whyNotRead(file); !problem.empty())
            return problem;
    std::wstring problem;
    if (!command.payload.empty() && !readPayloadFolder(command.payload, problem))
        return problem;
    return temz_status_text(status);
}

/// Leaves out what the author doesn't want to hear of, and makes warnings errors.
void applyWishes(const CommandLine& command, std::vector<ScriptFinding>& findings) {
    std::erase_if(findings, [&command](const ScriptFinding& finding) {
        return std::find(command.ignored.begin(), command.ignored.end(), finding.code) !=
               command.ignored.end();
    });
    if (command.warningsAsErrors)
        for (ScriptFinding& finding : findings)
            if (finding.severity == TEMZ_SEVERITY_WARNING)
                finding.severity = TEMZ_SEVERITY_ERROR;
}

Ending check(const CommandLine& command, CheckReporter& reporter) {
    std::vector<ScriptFinding> findings;
    reporter.started(wholePath(command.script));
    std::wstring problem =
        problemOf(findFaults(command.script, command.payload, command.previous, findings), command);
    applyWishes(command, findings);
    const FindingCounts counts(findings);
    if (problem.empty())
        for (const ScriptFinding& finding : findings)
            reporter.found(finding);
    if (problem.empty() && !command.sarif.empty())
        problem = writeTextFile(command.sarif, sarifText(findings));
    if (!problem.empty())
        reporter.failed(problem);
    const Ending ending = !problem.empty()    ? Ending::notCarriedOut
                          : counts.errors > 0 ? Ending::faultsFound
                                              : Ending::done;
    reporter.finished(counts, ending);
    return ending;
}

}  // namespace

Ending checkScriptFile(const CommandLine& command) {
    if (command.json) {
        JsonCheckReporter reporter;
        return check(command, reporter);
    }
    TextCheckReporter reporter;
    return check(command, reporter);
}

void tellNoCheck(const std::wstring& problem) {
    JsonCheckReporter json;
    CheckReporter& reporter = json;
    reporter.started({});
    reporter.failed(problem);
    reporter.finished(FindingCounts({}), Ending::badCommandLine);
}
