#pragma once

#include <string>

#include "CommandLine.h"
#include "ExitCodes.h"

/// Carries out a command that plans a run, and shows and keeps the plan as it says.
Ending showPlan(const CommandLine& command);

/// Tells in JSON, as the whole of a plan, why a command line is none.
void tellNoPlan(const std::wstring& problem);
