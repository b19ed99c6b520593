#pragma once

#include <temz/IterfaceContext.h>
#include <temz/IterfaceObserver.h>

#include <optional>
#include <string>

/// What is done about a vital failure when nobody is asked.
struct ErrorPolicy {
    ObserverAnswer answer = ANSWER_ABORT;
    unsigned retries = 0;  ///< with ANSWER_RETRY: attempts after the first, then the run is aborted
};

struct CommandLine {
    RunMode mode = RUNMODE_INSTALL;
    std::wstring script;
    std::optional<ErrorPolicy>
        onError;  ///< nothing: ask the user, or abort where nobody can answer
};

/// Reads `install|uninstall|upgrade SCRIPT [--on-error=abort|ignore|retry:N]`, where the option may
/// stand anywhere. Nothing when the arguments are no such command; `problem` then tells why.
std::optional<CommandLine> readCommandLine(int count, const wchar_t* const* arguments,
                                           std::wstring& problem);

/// Whether the user just wants to know how the program is called.
bool asksForHelp(int count, const wchar_t* const* arguments);

extern const wchar_t usage[];
