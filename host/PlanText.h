#pragma once

#include <string>

#include "Plan.h"

/// A plan for a person at a console: what it is of, what it comes to, and the tree of its steps.
/// With colours by the control sequences of a terminal, or without.
std::wstring planText(const Plan& plan, bool inColour);
