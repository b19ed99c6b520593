#pragma once

#include <string>

#include "CommandLine.h"
#include "ExitCodes.h"

/// Carries out a command that runs a script, from the log's opening to the last line.
Ending runScript(const CommandLine& command);

/// Tells in JSON, as the whole of a run, why a command line is no command.
void tellNoCommand(const std::wstring& problem);
