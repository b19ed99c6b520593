#pragma once

#include <string>

#include "Report.h"

/// A failure as the lines that a person reads.
std::wstring failureText(const Failure& failure);

/// The last line of a run: what was done, what was left out and why, and what waits for a restart.
/// `log` is named at its end, if it isn't empty.
std::wstring summaryText(const RunSummary& summary, const std::wstring& log);
