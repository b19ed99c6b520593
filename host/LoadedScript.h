#pragma once

#include <temz/temz.h>

#include <functional>
#include <memory>
#include <string>

#include "ExitCodes.h"

/// What a run does with the product, as it is told.
std::wstring modeWord(temz_mode mode);

struct ContextDeleter {
    void operator()(temz_context* context) const { temz_free(context); }
};
using ContextPtr = std::unique_ptr<temz_context, ContextDeleter>;

/// What has kept a script from being loaded.
struct LoadProblem {
    Ending ending = Ending::done;
    std::wstring text;
};

/// Why the script of a command can't be opened. `warn` is told when the engine may misread it.
LoadProblem findScriptProblem(const std::wstring& script,
                              const std::function<void(const std::wstring&)>& warn);

/// Finds what surely ends a run of the script half-way; `refusal` is said in front of that. Also
/// why it can't be looked for. Ending::done when there is nothing.
LoadProblem findFatalProblem(const std::wstring& script, const wchar_t* refusal);

/// A context with the script. Null, with the problem, when it can't be loaded.
ContextPtr loadScript(const std::wstring& script, LoadProblem& problem);

/// The text of temz_last_failure; empty when that can't be had, either.
std::wstring lastFailure(temz_context* context);
