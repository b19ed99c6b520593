// Runs install scripts from the command line: a host of the C interface, as a model for others.

#include <new>

#include "CheckCommand.h"
#include "CommandLine.h"
#include "Console.h"
#include "ConsoleWindow.h"
#include "DraftCommands.h"
#include "ExitCodes.h"
#include "Explain.h"
#include "Findings.h"
#include "PlanCommand.h"
#include "SafeStart.h"
#include "SchemaCommand.h"
#include "ScriptRun.h"
#include "Shortage.h"
#include "TextOutput.h"
#include "VerifyCommand.h"
#include "Version.h"

namespace {

Ending refuse(const std::wstring& problem) {
    return endWith(Ending::badCommandLine, problem + L" See temz help.");
}

/// A reader of JSON gets the lines of the command that he has asked for, and those of a run where
/// no telling which.
void tellInJson(const std::wstring& problem, std::optional<Verb> verb) {
    if (verb == Verb::check)
        tellNoCheck(problem);
    else if (verb == Verb::plan)
        tellNoPlan(problem);
    else if (verb == Verb::verify)
        tellNoVerification(problem);
    else
        tellNoCommand(problem);
}

Ending explainSubject(const CommandLine& command) {
    const std::wstring text = explain(command.subject);
    if (text.empty())
        return refuse(command.subject + L" is nothing that there is an explanation for.");
    write(Stream::output, text);
    return Ending::done;
}

Ending carryOut(const CommandLine& command) {
    switch (command.verb) {
        case Verb::run:
            return runScript(command);
        case Verb::check:
            return checkScriptFile(command);
        case Verb::plan:
            return showPlan(command);
        case Verb::explain:
            return explainSubject(command);
        case Verb::verify:
            return verifyScript(command);
        case Verb::draftProduct:
            return giveProduct(command);
        case Verb::draftPart:
            return givePart(command);
        case Verb::schema:
            return giveSchema(command);
        case Verb::helpCodes:
            write(Stream::output, exitCodeTable());
            return Ending::done;
        case Verb::helpFindings:
            write(Stream::output, findingTable());
            return Ending::done;
        case Verb::version:
            write(Stream::output, L"temz " + programVersion() + L"\n");
            return Ending::done;
        case Verb::help:
            break;
    }
    write(Stream::output, usage());
    return Ending::done;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    const SafeStart safeStart;
    auto verb = Verb::help;
    try {
        std::wstring problem;
        const auto command = readCommandLine(count, arguments, problem);
        if (command)
            verb = command->verb;
        else if (wantsJson(count, arguments))
            tellInJson(problem, namedVerb(count, arguments));
        const Ending ending = command ? endOfTelling(verb, carryOut(*command)) : refuse(problem);
        if (command ? command->mayAsk() : count < 2)
            waitForKeyIfAlone();
        return exitCodeOf(ending);
    } catch (const std::bad_alloc&) {
        return exitCodeOf(endForLackOfMemory(verb));
    }
}
