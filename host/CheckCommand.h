#pragma once

#include "CommandLine.h"
#include "ExitCodes.h"

/// Checks a script and tells what is wrong with it. Nothing is run.
Ending checkScriptFile(const CommandLine& command);
