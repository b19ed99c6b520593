#pragma once

#include "CommandLine.h"
#include "ExitCodes.h"

/// Gives out the XML Schema of install scripts.
Ending giveSchema(const CommandLine& command);
