#pragma once

#include <temz/temz.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Report.h"

// What a run would do, as it is shown to people. All that is written of a plan is made from these
// records.

/// A step of the engine's (see temz_step), with what the machine says of it.
struct Step {
    uint32_t kind = 0;
    uint32_t depth = 0;
    uint32_t line = 0;
    std::wstring element;
    std::wstring id;
    std::wstring object;
    std::wstring detail;
    std::wstring before;
    std::wstring after;
    uint64_t bytes = 0;
    uint64_t bytesBefore = 0;
    uint32_t code = 0;
    bool holds = false;
    uint32_t fate = 0;
    bool sameContent = false;
    bool unforeseeable = false;
    uint32_t elements = 0;
    uint32_t files = 0;

    std::vector<std::wstring> holders;  ///< of a file that waits for the restart: "sync.exe (4312)"
    Failure failure;                    ///< of TEMZ_STEP_FAILURE
    bool uncertain = false;             ///< it fails, unless what can't be foreseen prevents that
};

/// The system's error code with which a call fails; nothing when it succeeds.
using CallResult = std::optional<uint32_t>;

/// A call that changes something, by which a run is held against its plan.
struct PlannedCall {
    std::wstring group;
    std::wstring name;
    std::vector<std::wstring> arguments;
    CallResult result = {};

    /// Whether both ask for the same, whatever comes of it.
    bool asksAs(const PlannedCall& other) const {
        return group == other.group && name == other.name && arguments == other.arguments;
    }
};

/// Where in the plan's calls an element begins to act.
struct PlannedElement {
    size_t firstCall = 0;
    std::wstring element;
    uint32_t line = 0;
};

struct PlanHeader {
    std::wstring version;  ///< of the program
    std::wstring windows;
    std::wstring mode;
    std::wstring script;                    ///< whole path
    std::wstring scriptHash;                ///< SHA-256
    std::vector<std::wstring> assumptions;  ///< "OS_BIT = 32"
};

struct Plan {
    PlanHeader header;
    std::vector<Step> steps;
    std::vector<PlannedCall> calls;
    std::vector<PlannedElement> elements;
    temz_status status = TEMZ_OK;  ///< temz_plan's
};

/// What a plan comes to.
struct PlanSummary {
    unsigned filesAdded = 0;
    unsigned filesReplaced = 0;
    unsigned filesRemoved = 0;
    unsigned filesAtRestart = 0;
    unsigned links = 0;
    unsigned keys = 0;
    unsigned values = 0;
    unsigned services = 0;
    unsigned programs = 0;                         ///< started, ended, and called in libraries
    std::map<std::wstring, uint64_t> bytesNeeded;  ///< by the drive
    unsigned vitalFailures = 0;                    ///< at each of which a run asks, or ends
    unsigned otherFailures = 0;
    unsigned uncertainFailures = 0;
    bool endsUnasked = false;
    unsigned unforeseeable = 0;
};
PlanSummary summaryOf(const Plan& plan);

/// Whether a run would come to its end without a vital failure.
bool wouldSucceed(const PlanSummary& summary);
