#pragma once

#include <string>
#include <vector>

#include "Plan.h"

/// One line of the tree that people see of a plan.
struct PlanLine {
    uint32_t depth = 0;
    uint32_t scriptLine = 0;
    wchar_t symbol = L' ';      ///< of a change its own, '?' for what can't be foreseen, 'x' for a
                                ///< failure, blank for all else
    const wchar_t* area = L"";  ///< by which lines are chosen: "group", "file", "failure", ...
    std::wstring object;
    std::wstring effect;
};

/// The lines of a plan: its groups, conditions and searches, what changes and fails in them, what
/// is left out, and the actions with nothing to do.
std::vector<PlanLine> linesOf(const Plan& plan);
