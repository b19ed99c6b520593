#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Diagnosis.h"
#include "Plan.h"

/// A variable that a plan finds with another value.
struct Assumption {
    std::wstring name;
    std::wstring value;
};

/// Has the engine plan the script that the context has loaded, and fills in all of the plan but its
/// header. Ends early when the user wants no more of it.
void makePlan(temz_context* context, temz_mode mode, const std::vector<Assumption>& assumptions,
              const std::function<bool()>& stopWanted, const Witnesses& witnesses, Plan& plan);

/// How many actions a run will announce when nothing ends it early; 0 when that can't be foreseen,
/// or the user wants no run any more.
unsigned countActions(temz_context* context, temz_mode mode,
                      const std::function<bool()>& stopWanted);
