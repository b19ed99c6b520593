#pragma once

#include <optional>
#include <string>
#include <vector>

#include "PlanMaker.h"
#include "RunWatch.h"

/// What the program is asked to do.
enum class Verb {
    run,
    check,
    plan,
    verify,
    draftProduct,
    draftPart,
    schema,
    explain,
    help,
    helpCodes,
    helpFindings,
    version
};

struct CommandLine {
    Verb verb = Verb::help;
    temz_mode mode = TEMZ_INSTALL;
    std::wstring script;   ///< that is run, planned, checked or verified
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
    bool noCheck = false;

    std::wstring payload;  ///< the folder of the files; empty for none

    // Of Verb::check.
    std::wstring previous;              ///< empty for none
    std::wstring sarif;                 ///< empty for none
    std::vector<std::wstring> ignored;  ///< codes of findings
    bool warningsAsErrors = false;

    std::wstring plan;  ///< the file with the plan that a run must keep to; empty for none

    // Of Verb::plan.
    std::vector<Assumption> assumptions;
    std::wstring html;  ///< where the plan goes as a page; empty for nowhere

    // Of Verb::verify.
    std::wstring upgradeFrom;  ///< the script of the version before; empty for none
    bool onThisMachine = false;

    std::wstring name;  ///< of a product to be drafted
    std::wstring out;   ///< where a text goes, or a plan is kept; empty for nowhere

    bool mayAsk() const { return !quiet && !passive && !json; }
};

/// Reads the arguments behind the program's name. Nothing when they are no command; `problem` then
/// tells why.
std::optional<CommandLine> readCommandLine(int count, const wchar_t* const* arguments,
                                           std::wstring& problem);

/// Whether arguments that are no command ask at least for JSON.
bool wantsJson(int count, const wchar_t* const* arguments);

/// The command that arguments name which are no command line; nothing where they name none.
std::optional<Verb> namedVerb(int count, const wchar_t* const* arguments);

/// How the program is called: all commands and options with what they mean.
std::wstring usage();
