#pragma once

#include "Plan.h"

/// Writes a plan to the standard output as one JSON object a line, which plan.schema.json
/// describes. `exitCode` stands in the last one, and `reason`, why there is no plan or it can't be
/// kept.
void writePlanAsJson(const Plan& plan, int exitCode, const std::wstring& reason);
