#pragma once

#include "CommandLine.h"
#include "ExitCodes.h"

/// Gives out a script for a folder: a whole one, or a part for another script.
Ending giveProduct(const CommandLine& command);
Ending givePart(const CommandLine& command);
