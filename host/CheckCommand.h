#pragma once

#include <string>

#include "CommandLine.h"
#include "ExitCodes.h"

/// Checks a script and tells what is wrong with it. Nothing is run.
Ending checkScriptFile(const CommandLine& command);

/// Tells in JSON, as the whole of a check, why a command line is none.
void tellNoCheck(const std::wstring& problem);
