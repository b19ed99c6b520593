#pragma once

#include <optional>
#include <string>
#include <vector>

#include "PlanMaker.h"
#include "RunWatch.h"

/// What the program is asked to do.
enum class Verb { run, plan, explain, help, helpCodes, version };

struct CommandLine {
    Verb verb = Verb::help;
    temz_mode mode = TEMZ_INSTALL;
    std::wstring script;   ///< of a run
    std::wstring subject;  ///< of Verb::explain

    std::optional<ErrorPolicy> onError;  ///< nothing: ask the user, or abort where nobody answers
    bool quiet = false;                  ///< asks nothing and tells failures only
    bool passive = false;                ///< asks nothing
    bool json = false;
    std::wstring log;  ///< empty for none
    bool verbose = false;
    bool acceptIgnored = false;
    bool dropPending = false;
    unsigned waitSeconds = 0;  ///< for the end of another run
    std::wstring plan;         ///< the file with the plan that a run must keep to; empty for none

    // Of Verb::plan.
    std::vector<Assumption> assumptions;
    std::wstring html;  ///< where the plan goes as a page; empty for nowhere
    std::wstring out;   ///< where it is kept; empty for nowhere
};

/// Reads the arguments behind the program's name. Nothing when they are no command; `problem` then
/// tells why.
std::optional<CommandLine> readCommandLine(int count, const wchar_t* const* arguments,
                                           std::wstring& problem);

/// How the program is called: all commands and options with what they mean.
std::wstring usage();
