#include "Plan.h"

#include <algorithm>

namespace {

/// Which number of the summary a change belongs to; null for none.
struct CountedChange {
    uint32_t code;
    unsigned PlanSummary::*number;
};

constexpr CountedChange countedChanges[] = {
    {TEMZ_CHANGE_FILE_ADDED, &PlanSummary::filesAdded},
    {TEMZ_CHANGE_FILE_REPLACED, &PlanSummary::filesReplaced},
    {TEMZ_CHANGE_FILE_REMOVED, &PlanSummary::filesRemoved},
    {TEMZ_CHANGE_FILE_AT_RESTART, &PlanSummary::filesAtRestart},
    {TEMZ_CHANGE_KEY_ADDED, &PlanSummary::keys},
    {TEMZ_CHANGE_KEY_REMOVED, &PlanSummary::keys},
    {TEMZ_CHANGE_VALUE_SET, &PlanSummary::values},
    {TEMZ_CHANGE_SERVICE_STARTED, &PlanSummary::services},
    {TEMZ_CHANGE_SERVICE_STOPPED, &PlanSummary::services},
    {TEMZ_CHANGE_SERVICE_REMOVED, &PlanSummary::services},
    {TEMZ_CHANGE_SERVICE_CHANGED, &PlanSummary::services},
    {TEMZ_CHANGE_LINK_WRITTEN, &PlanSummary::links},
    {TEMZ_CHANGE_PROCESS_ENDED, &PlanSummary::programs},
    {TEMZ_CHANGE_PROGRAM_STARTED, &PlanSummary::programs},
    {TEMZ_CHANGE_ACTION_CALLED, &PlanSummary::programs},
};

/// "C:", or the share of a path in the network.
std::wstring driveOf(const std::wstring& path) {
    if (!path.starts_with(L"\\\\"))
        return path.substr(0, path.find(L'\\'));
    const size_t share = path.find(L'\\', path.find_first_not_of(L'\\'));
    return path.substr(0, share == std::wstring::npos ? share : path.find(L'\\', share + 1));
}

/// What a file takes more than what it replaces. Until a restart, both are there. What is removed
/// may go after what comes, and so doesn't count.
uint64_t bytesNeededBy(const Step& step) {
    switch (step.code) {
        case TEMZ_CHANGE_FILE_ADDED:
        case TEMZ_CHANGE_FILE_AT_RESTART:
            return step.bytes;
        case TEMZ_CHANGE_FILE_REPLACED:
            return step.bytes - std::min(step.bytes, step.bytesBefore);
        default:
            return 0;
    }
}

void countChange(const Step& step, PlanSummary& summary) {
    for (const CountedChange& row : countedChanges)
        if (row.code == step.code)
            ++(summary.*row.number);
    if (const uint64_t bytes = bytesNeededBy(step))
        summary.bytesNeeded[driveOf(step.object)] += bytes;
    summary.unforeseeable += step.unforeseeable;
}

}  // namespace

PlanSummary summaryOf(const Plan& plan) {
    PlanSummary summary;
    for (const Step& step : plan.steps) {
        if (step.kind == TEMZ_STEP_CHANGE)
            countChange(step, summary);
        if (step.kind != TEMZ_STEP_FAILURE)
            continue;
        const bool isVital = step.fate == TEMZ_FAILURE_VITAL;
        summary.vitalFailures += isVital && !step.uncertain;
        summary.uncertainFailures += isVital && step.uncertain;
        summary.otherFailures += step.fate == TEMZ_FAILURE_NOT_VITAL;
        summary.endsUnasked = summary.endsUnasked || step.fate == TEMZ_FAILURE_ENDS_RUN;
    }
    return summary;
}

bool wouldSucceed(const PlanSummary& summary) {
    return summary.vitalFailures == 0 && !summary.endsUnasked;
}
