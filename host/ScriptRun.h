#pragma once

#include "CommandLine.h"
#include "ExitCodes.h"

/// Carries out a command that runs a script, from the log's opening to the last line.
Ending runScript(const CommandLine& command);
