#pragma once

#include "CommandLine.h"
#include "ExitCodes.h"

/// How a command ends for which there isn't enough memory, of which the user is told. It takes none
/// itself.
Ending endForLackOfMemory(Verb verb);
