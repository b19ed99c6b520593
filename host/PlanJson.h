#pragma once

#include "Plan.h"

/// Writes a plan to the standard output as one JSON object a line, which plan.schema.json
/// describes. `exitCode` stands in the last one.
void writePlanAsJson(const Plan& plan, int exitCode);
