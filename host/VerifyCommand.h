#pragma once

#include "CommandLine.h"
#include "ExitCodes.h"

/// Takes a product through its life on this machine, and tells what isn't as it was before.
Ending verifyScript(const CommandLine& command);
