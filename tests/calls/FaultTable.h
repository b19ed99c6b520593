#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "calls/Scenario.h"

/// The uses of a call that a row is about, and how they fail.
struct FaultedUses {
    enum Mode { anyMode, placing, removing };
    /// `once` is what the engine asks once in a process, and `never` what no run asks.
    enum Made { often, once, never };

    size_t firstTime = 0;       ///< of the uses with the same texts; 0 for all
    size_t lastTime = 0;        ///< 0 for `firstTime` alone
    const char* scenario = "";  ///< "" for all
    Mode mode = anyMode;
    Fault fault = {};
    Made made = often;
};

/// What comes of it when a call fails. Where several rows are about one use and fault, the first
/// holds.
struct FaultRow {
    const char* call;       ///< "file.CopyFileW"
    const char* arguments;  ///< the texts of the use; "" for any
    FaultedUses uses;
    /// What a run is told and leaves other than an undisturbed one: "- " and a line that it lacks,
    /// "+ " and one that it has in addition. For {arguments} stand those of the use.
    std::vector<std::string> differences;
    /// Why the call isn't made at all or not made fail here; null when it is.
    const char* reason = nullptr;

    bool isAbout(const Scenario& scenario, int32_t mode, const CallUse& use) const;
};

/// Everything that each call's failure leads to.
const std::vector<FaultRow>& faultTable();

/// The faults that strike a use, and the row for each.
std::vector<const FaultRow*> rowsOf(const Scenario& scenario, int32_t mode, const CallUse& use);

/// How a run that a fault has struck differs from an undisturbed one, in the way of a row's. A line
/// in another place is lacking in one and additional in the other.
std::vector<std::string> differencesBetween(const ScenarioRun& undisturbed, const ScenarioRun& run);
/// The differences of a row for one use.
std::vector<std::string> differencesOf(const FaultRow& row, const CallUse& use);
