#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Plan.h"

/// A plan that is kept, to be approved and then held against the run: the calls that change
/// something, in their order.
struct KeptPlan {
    std::wstring scriptHash;
    std::wstring mode;
    std::vector<PlannedCall> calls;
    std::vector<PlannedElement> elements;  ///< by their first calls
};

/// Writes the file. Gives why that isn't possible; empty when it is.
std::wstring keepPlan(const Plan& plan, const std::wstring& path);

/// Reads one. Nothing when it can't be read or is none; `problem` then tells why.
std::optional<KeptPlan> readPlan(const std::wstring& path, std::wstring& problem);

/// Holds a run against a plan, call by call.
class PlanHold {
public:
    explicit PlanHold(KeptPlan plan) : plan(std::move(plan)) {}

    /// Takes a call that is about to be made. False when the plan doesn't have it next: it must not
    /// be made then.
    bool take(const PlannedCall& call);
    /// The call that was taken last has been made.
    void returned(const CallResult& result);
    /// Which call has had another result than the plan has for it, and both; empty when none. No
    /// other call must be made then.
    std::wstring otherResult() const;
    /// What the plan has next; null at its end.
    const PlannedCall* next() const;
    /// How many of its calls the run hasn't come to.
    size_t left() const { return plan.calls.size() - position; }

    /// An action is announced, for the first time.
    void announced() { announcedAt = position; }
    /// Whether that action has come to the end of what the plan has of it.
    bool isBetweenActions() const;
    /// It has failed and is carried out once more: its calls may come again.
    void retried();

private:
    KeptPlan plan;
    size_t position = 0;
    size_t announcedAt = 0;
    size_t again = 0;  // from where on calls may come once more; at most `position`
    std::optional<CallResult> departed;  // the result of the call before `position` if not its own
};
