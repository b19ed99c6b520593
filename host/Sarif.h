#pragma once

#include <string>
#include <vector>

#include "Findings.h"

/// All findings of a check as one document of the Static Analysis Results Interchange Format,
/// version 2.1.0, which code-review systems read.
std::wstring sarifText(const std::vector<ScriptFinding>& findings);
