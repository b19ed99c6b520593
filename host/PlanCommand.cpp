#include "PlanCommand.h"

#include "Console.h"
#include "LoadedScript.h"
#include "Machine.h"
#include "PlanFile.h"
#include "PlanHtml.h"
#include "PlanJson.h"
#include "PlanMaker.h"
#include "PlanText.h"
#include "StopRequest.h"
#include "TextOutput.h"
#include "Version.h"

namespace {

void warn(const std::wstring& text) {
    write(Stream::error, L"temz: " + text + L"\n");
}

PlanHeader headerOf(const CommandLine& command) {
    PlanHeader header;
    header.version = programVersion();
    header.windows = windowsVersion();
    header.mode = modeWord(command.mode);
    header.script = wholePath(command.script);
    header.scriptHash = sha256OfFile(header.script);
    for (const Assumption& assumption : command.assumptions)
        header.assumptions.push_back(assumption.name + L" = " + assumption.value);
    return header;
}

/// Why there is no plan; Ending::done when there is one.
LoadProblem findPlanProblem(temz_status status, temz_context* context) {
    switch (status) {
        case TEMZ_OK:
        case TEMZ_RUN_FAILED:  // which the plan tells
            return {};
        case TEMZ_STOPPED:
            return {Ending::stoppedByUser, L"The plan was ended by the user."};
        case TEMZ_NOT_FOUND:
            return {Ending::badCommandLine,
                    L"The script has no variable " + lastFailure(context) + L"."};
        case TEMZ_BAD_VALUE:
            return {Ending::badCommandLine,
                    L"The variable " + lastFailure(context) + L" can only be an integer."};
        default:
            return {Ending::failed, temz_status_text(status)};
    }
}

/// Makes the plan, but for its header. Why there is none.
LoadProblem makePlan(const CommandLine& command, Plan& plan) {
    LoadProblem problem = findScriptProblem(command.script, warn);
    // The engine itself plans, and would end as it would in the run.
    if (problem.ending == Ending::done && !command.noCheck)
        problem =
            findFatalProblem(command.script, L" isn't planned: a run would surely end half-way.");
    if (problem.ending != Ending::done)
        return problem;
    const ContextPtr context = loadScript(command.script, problem);
    if (!context)
        return problem;
    StopRequest stop;
    makePlan(
        context.get(), command.mode, command.assumptions, [&stop] { return stop.wanted(); },
        realWitnesses, plan);
    return findPlanProblem(plan.status, context.get());
}

/// Writes the files that the command wants. Why one of them can't be written.
LoadProblem writeFiles(const CommandLine& command, const Plan& plan) {
    std::wstring unwritten;
    if (!command.out.empty())
        unwritten = keepPlan(plan, command.out);
    if (unwritten.empty() && !command.html.empty())
        unwritten = writeTextFile(command.html, planHtml(plan));
    return unwritten.empty() ? LoadProblem() : LoadProblem{Ending::notCarriedOut, unwritten};
}

}  // namespace

Ending showPlan(const CommandLine& command) {
    Plan plan;
    plan.header = headerOf(command);
    LoadProblem problem = makePlan(command, plan);
    if (problem.ending != Ending::done)
        plan.steps.clear();
    else
        problem = writeFiles(command, plan);
    const bool isShown = problem.ending == Ending::done;
    const Ending ending = !isShown                        ? problem.ending
                          : wouldSucceed(summaryOf(plan)) ? Ending::done
                                                          : Ending::faultsFound;
    if (command.json)
        writePlanAsJson(plan, exitCodeOf(ending), problem.text);
    else if (isShown)
        write(Stream::output, planText(plan, canShowColours()));
    if (!isShown)
        warn(problem.text);
    return ending;
}

void tellNoPlan(const std::wstring& problem) {
    Plan plan;
    plan.header.version = programVersion();
    plan.header.windows = windowsVersion();
    writePlanAsJson(plan, exitCodeOf(Ending::badCommandLine), problem);
}
