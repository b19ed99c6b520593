#include "ScriptRun.h"

#include <windows.h>

#include <memory>
#include <vector>

#include "Console.h"
#include "ConsoleReporter.h"
#include "Diagnosis.h"
#include "JsonReporter.h"
#include "LoadedScript.h"
#include "LogReporter.h"
#include "Machine.h"
#include "PendingFiles.h"
#include "PlanFile.h"
#include "PlanMaker.h"
#include "RunEnd.h"
#include "RunGuard.h"
#include "RunWarnings.h"
#include "RunWatch.h"
#include "SessionEnd.h"
#include "StopRequest.h"
#include "Version.h"

namespace {

RunHeader headerWithoutCommand() {
    RunHeader header;
    header.version = programVersion();
    header.commandLine = GetCommandLineW();
    header.windows = windowsVersion();
    header.user = userName();
    header.elevated = isElevated();
    return header;
}

std::optional<temz_answer> askUser() {
    if (!canAsk())
        return std::nullopt;
    dropTypedAhead();
    std::wstring line;
    while (true) {
        write(Stream::error, L"Retry, abort or ignore? [r/a/i] ");
        if (!readLine(line) || line == L"a" || line == L"abort")
            return TEMZ_ABORT;
        if (line == L"r" || line == L"retry")
            return TEMZ_RETRY;
        if (line == L"i" || line == L"ignore")
            return TEMZ_IGNORE;
    }
}

Failure diagnoseHere(const Action& action, const temz_error& error) {
    return diagnose(action, error, realWitnesses);
}

/// Sees to files that were replaced with delay and are deleted before the restart came: it would
/// bring them back.
class PendingWatch final : public Reporter {
public:
    PendingWatch(const std::vector<std::unique_ptr<Reporter>>& others, bool drop)
        : others(others), drop(drop) {}

    void ended(const Action& action, Fate fate) override {
        if (action.code != TEMZ_ACTION_DELETE_FILE || fate != Fate::done)
            return;
        const std::wstring target = placesOf(action).target;
        if (!drop)
            deleted.push_back(target);
        else if (isReplacementPending(target))
            warn(dropReplacement(target)
                     ? target + L" no longer waits for the next restart."
                     : L"The next restart brings " + target + L" back: that can't be taken back.");
    }

    /// At the end of the run, which may have removed the staged file itself.
    void warnOfThoseThatComeBack() const {
        for (const std::wstring& target : deleted)
            if (isReplacementPending(target))
                warn(L"The next restart brings " + target +
                     L" back, which waits for it since it was replaced. --drop-pending takes that "
                     L"back.");
    }

private:
    void warn(const std::wstring& text) const {
        for (const auto& other : others)
            other->warned(text);
    }

    const std::vector<std::unique_ptr<Reporter>>& others;
    const bool drop;
    std::vector<std::wstring> deleted;
};

/// Has the wish to stop know which action it finds under way.
class ActionWatch final : public Reporter {
public:
    explicit ActionWatch(StopRequest& stop) : stop(stop) {}

    void began(const Action& action) override {
        stop.setAction(describeAction(action.code, action.text1, action.text2));
    }

private:
    StopRequest& stop;
};

/// One command that runs a script.
class ScriptRun {
public:
    explicit ScriptRun(const CommandLine& command) : command(command) {}

    Ending carryOut() {
        const std::wstring logProblem = openReporters();
        tell([this](Reporter& reporter) { reporter.started(header()); });
        for (const std::wstring& text : runWarnings(realRunWitnesses))
            warn(text);
        summary.ending =
            logProblem.empty() ? runLoaded() : refuse(Ending::logNotOpened, logProblem);
        summary.sessionEnded = summary.ending == Ending::stoppedByUser && stop.isSessionEnding();
        if (summary.sessionEnded)
            warn(L"Windows ends the session.");
        tell([this](Reporter& reporter) { reporter.finished(summary); });
        if (log && log->writeError() != ERROR_SUCCESS)
            write(Stream::error,
                  L"temz: The log is incomplete: " + systemTextWithCode(log->writeError()) + L"\n");
        return summary.ending;
    }

private:
    /// Gives why the log can't be opened; empty when it can, or there is to be none.
    std::wstring openReporters() {
        std::wstring problem;
        std::wstring logPath;
        if (!command.log.empty()) {
            auto reporter = LogReporter::open(
                command.log,
                command.verbose ? LogReporter::Detail::calls : LogReporter::Detail::actions,
                problem);
            if (reporter) {
                log = reporter.get();
                reporters.push_back(std::move(reporter));
                logPath = wholePath(command.log);
            }
        }
        if (command.json)
            reporters.push_back(std::make_unique<JsonReporter>(
                command.verbose ? JsonReporter::Detail::calls : JsonReporter::Detail::actions));
        else
            reporters.push_back(std::make_unique<ConsoleReporter>(
                command.quiet ? ConsoleReporter::Detail::failuresOnly
                              : ConsoleReporter::Detail::all,
                logPath));
        return problem;
    }

    RunHeader header() const {
        RunHeader header = headerWithoutCommand();
        header.mode = modeWord(command.mode);
        header.script = wholePath(command.script);
        header.scriptHash = sha256OfFile(header.script);
        return header;
    }

    Ending runLoaded() {
        LoadProblem problem =
            findScriptProblem(command.script, [this](const std::wstring& text) { warn(text); });
        if (problem.ending == Ending::done && !command.noCheck)
            problem = findFatalProblem(command.script,
                                       L" isn't started: a run would surely end half-way. "
                                       L"--no-check starts it all the same.");
        if (problem.ending != Ending::done)
            return refuse(problem.ending, problem.text);
        std::optional<PlanHold> plan;
        if (!command.plan.empty())
            if (const std::wstring reason = readApprovedPlan(plan); !reason.empty())
                return refuse(Ending::scriptNotLoaded, reason);
        RunGuard guard;
        if (!guard && command.waitSeconds > 0) {
            warn(L"Another run goes on on this machine, and is waited for.");
            guard.wait(std::chrono::seconds(command.waitSeconds), stop.event());
        }
        if (!guard && stop.wanted())
            return refuse(Ending::stoppedByUser, L"The wait for another run was ended.");
        if (!guard)
            return refuse(Ending::otherRunGoesOn, L"Another run goes on on this machine.");
        const ContextPtr context = loadScript(command.script, problem);
        if (!context)
            return refuse(problem.ending, problem.text);
        return run(context.get(), plan ? &*plan : nullptr);
    }

    /// Reads the plan that the run must keep to. Why it can't; empty when it can.
    std::wstring readApprovedPlan(std::optional<PlanHold>& plan) {
        std::wstring reason;
        std::optional<KeptPlan> kept = readPlan(command.plan, reason);
        if (kept && kept->scriptHash != header().scriptHash)
            reason = L"It is of another script.";
        else if (kept && kept->mode != modeWord(command.mode))
            reason = L"It is of another mode: " + kept->mode + L".";
        else if (kept)
            plan.emplace(*std::move(kept));
        return plan ? L"" : L"The plan " + command.plan + L" can't be kept to. " + reason;
    }

    Ending refuse(Ending ending, const std::wstring& reason) {
        summary.reason = reason;
        return ending;
    }

    void warn(const std::wstring& text) {
        tell([&text](Reporter& reporter) { reporter.warned(text); });
    }

    Ending run(temz_context* context, PlanHold* plan) {
        const unsigned total =
            countActions(context, command.mode, [this] { return stop.wanted(); });
        const QuickEditOff quickEditOff;
        ActionWatch current(stop);
        PendingWatch pending(reporters, command.dropPending);
        std::vector<Reporter*> watchers{&current, &pending};
        for (const auto& reporter : reporters)
            watchers.push_back(reporter.get());
        const bool asks = command.mayAsk();
        RunWatch watch(watchers, command.onError,
                       {[this] { return stop.wanted(); }, diagnoseHere,
                        [asks] { return asks ? askUser() : std::nullopt; },
                        [this](std::chrono::milliseconds time) { stop.wait(time); }, plan});
        temz_outcome outcome{};
        outcome.size = sizeof outcome;
        const temz_status status = watch.run(context, command.mode, outcome);
        pending.warnOfThoseThatComeBack();
        summary = watch.summary();
        summary.total = total;
        if (plan && status == TEMZ_OK && !plan->otherResult().empty())
            warn(L"The run has left its plan at its end: " + plan->otherResult());
        if (plan && status == TEMZ_OK && plan->left() > 0)
            warn(L"The plan has more than there was to do: its last calls, " +
                 std::to_wstring(plan->left()) + L" of them, weren't made.");
        const std::optional<Failure>& first = watch.firstFailure();
        return endingOf({status, watch.endedByUser(), summary.ignored > 0 && !command.acceptIgnored,
                         summary.restartNeeded, first && first->notElevated});
    }

    template <class Tell>
    void tell(const Tell& tellOne) {
        for (const auto& reporter : reporters)
            tellOne(*reporter);
    }

    const CommandLine& command;
    StopRequest stop;
    const SessionEnd sessionEnd{stop};
    std::vector<std::unique_ptr<Reporter>> reporters;
    const LogReporter* log = nullptr;  // of the reporters; null when there is none
    RunSummary summary;
};

}  // namespace

Ending runScript(const CommandLine& command) {
    return ScriptRun(command).carryOut();
}

void tellNoCommand(const std::wstring& problem) {
    JsonReporter reporter(JsonReporter::Detail::actions);
    RunSummary summary;
    summary.ending = Ending::badCommandLine;
    summary.reason = problem;
    reporter.started(headerWithoutCommand());
    reporter.finished(summary);
}
