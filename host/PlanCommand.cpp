#include "PlanCommand.h"

#include "Console.h"
#include "Findings.h"
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

Ending refuse(const LoadProblem& problem) {
    warn(problem.text);
    return problem.ending;
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

Ending refuseToWrite(const std::wstring& problem) {
    return refuse({Ending::notCarriedOut, problem});
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

Ending endingOf(const Plan& plan) {
    return wouldSucceed(summaryOf(plan)) ? Ending::done : Ending::faultsFound;
}

}  // namespace

Ending showPlan(const CommandLine& command) {
    LoadProblem problem;
    const std::wstring path = findScript(command.script, warn, problem);
    if (path.empty())
        return refuse(problem);
    // The engine itself plans, and would end as it would in the run.
    const std::wstring faults = command.noCheck ? L"" : fatalFaults(command.script);
    if (!faults.empty())
        return refuse({Ending::scriptNotLoaded,
                       command.script + L" isn't planned: a run would surely end half-way.\n" +
                           faults.substr(0, faults.size() - 1)});
    Plan plan;
    plan.header = headerOf(command);
    const ContextPtr context = loadScript(command.script, path, problem);
    if (!context)
        return refuse(problem);
    {
        StopRequest stop;
        makePlan(
            context.get(), command.mode, command.assumptions, [&stop] { return stop.wanted(); },
            realWitnesses, plan);
    }
    problem = findPlanProblem(plan.status, context.get());
    if (problem.ending != Ending::done)
        return refuse(problem);

    if (!command.out.empty() && !keepPlan(plan, command.out))
        return refuseToWrite(command.out + L" can't be written.");
    if (!command.html.empty())
        if (const std::wstring unwritten = writeTextFile(command.html, planHtml(plan));
            !unwritten.empty())
            return refuseToWrite(unwritten);
    const Ending ending = endingOf(plan);
    if (command.json)
        writePlanAsJson(plan, exitCodeOf(ending));
    else
        write(Stream::output, planText(plan, canShowColours()));
    return ending;
}
