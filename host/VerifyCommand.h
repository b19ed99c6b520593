#pragma once

#include <string>

#include "CommandLine.h"
#include "ExitCodes.h"

/// Takes a product through its life on this machine, and tells what isn't as it was before.
Ending verifyScript(const CommandLine& command);

/// Tells in JSON, as the whole of a verification, why a command line is none.
void tellNoVerification(const std::wstring& problem);
