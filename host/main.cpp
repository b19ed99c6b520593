// Runs install scripts from the command line: a host of the C interface, as a model for others.

#include "CommandLine.h"
#include "Console.h"
#include "ExitCodes.h"
#include "Explain.h"
#include "PlanCommand.h"
#include "SafeStart.h"
#include "ScriptRun.h"
#include "Version.h"

namespace {

Ending refuse(const std::wstring& problem) {
    write(Stream::error, L"temz: " + problem + L"\n\n" + usage());
    return Ending::badCommandLine;
}

Ending explainSubject(const std::wstring& subject) {
    const std::wstring text = explain(subject);
    if (text.empty())
        return refuse(subject + L" is nothing that there is an explanation for.");
    write(Stream::output, text);
    return Ending::done;
}

Ending carryOut(const CommandLine& command) {
    switch (command.verb) {
        case Verb::run:
            return runScript(command);
        case Verb::plan:
            return showPlan(command);
        case Verb::explain:
            return explainSubject(command.subject);
        case Verb::helpCodes:
            write(Stream::output, exitCodeTable());
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
    std::wstring problem;
    const auto command = readCommandLine(count, arguments, problem);
    const Ending ending = command ? carryOut(*command) : refuse(problem);
    waitForKeyIfAlone();
    return exitCodeOf(ending);
}
