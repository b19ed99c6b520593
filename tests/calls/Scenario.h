#pragma once

#include <cstdint>
#include <deque>
#include <ostream>
#include <string>
#include <vector>

#include "calls/CallFaults.h"
#include "calls/Machine.h"

/// Something that a script does on a machine in a certain state. What it does in the three modes
/// may be the same.
struct Scenario {
    const char* name;
    /// What stands in the script's component, whose directory is {app}; or a whole script.
    const char* elements;
    /// Makes the machine ready.
    void (*prepare)(Machine& machine, int32_t mode);
    /// Why it can't be had on this machine; null when it can.
    const char* (*obstacle)() = [] { return static_cast<const char*>(nullptr); };
};
inline void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

/// All kinds of elements, and all actions on machines that show what they call.
const std::vector<Scenario>& scenarios();

/// The scenario's script, where {app} and the like stand for the places of a machine.
std::string scriptOf(const Scenario& scenario);

/// What one run has come to: how it ended, what the host heard and was asked, the machine and the
/// log, a line each; and the calls that it has made.
struct ScenarioRun {
    std::vector<std::string> lines;
    std::vector<CallUse> uses;
    bool hasFailed = false;  ///< the call that was to fail
};

/// Loads and runs the scenario's script on a machine of its own, where `fault` strikes a use of a
/// call. The observer's answers are `answers`, and ANSWER_IGNORE behind them.
ScenarioRun runScenario(const Scenario& scenario, int32_t mode, const CallUse& use = {},
                        const Fault& fault = {}, std::deque<int32_t> answers = {});
