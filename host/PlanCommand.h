#pragma once

#include "CommandLine.h"
#include "ExitCodes.h"

/// Carries out a command that plans a run, and shows and keeps the plan as it says.
Ending showPlan(const CommandLine& command);
