#pragma once

#include <temz/temz.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "CallbackGuard.h"
#include "PlanFile.h"
#include "Report.h"

/// What is done about a vital failure when nobody is asked.
struct ErrorPolicy {
    temz_answer answer = TEMZ_ABORT;
    unsigned retries = 0;  ///< with TEMZ_RETRY: attempts after the first, then the run ends
    std::optional<unsigned>
        pause;  ///< seconds before each of them; without it, a pause that doubles
};

/// What a watch asks of the rest of the program.
struct WatchDuties {
    /// Whether the user wants the run to end before its next action.
    std::function<bool()> stopWanted;
    /// Why an action has failed.
    std::function<Failure(const Action&, const temz_error&)> diagnose;
    /// What to do about a vital failure when no policy says it; nothing when nobody answers.
    std::function<std::optional<temz_answer>()> ask;
    /// Waits; ends at once when the user wants the run to end.
    std::function<void(std::chrono::milliseconds)> wait;
    /// The plan that the run must keep to; null for none.
    PlanHold* plan = nullptr;
};

/// A copy that outlives the callback.
Call copyOf(const temz_call& call);

/// What a plan keeps of a call, and what comes of it when it has returned.
PlannedCall plannedCall(const Call& call);
CallResult resultOf(const Call& call);

/// Follows a run through the engine's callbacks: tells the reporters, keeps the calls of the action
/// that is under way, counts, and decides about failures.
class RunWatch {
public:
    RunWatch(std::vector<Reporter*> reporters, std::optional<ErrorPolicy> policy,
             WatchDuties duties);
    RunWatch(const RunWatch&) = delete;
    RunWatch& operator=(const RunWatch&) = delete;

    /// Carries out the script that the context has loaded. The status is temz_run's, or
    /// TEMZ_RUN_FAILED for a run that was to leave its plan, or what has kept the run from being
    /// followed to its end.
    temz_status run(temz_context* context, temz_mode mode, temz_outcome& outcome);

    /// What has been counted; the exit code is the caller's to decide.
    const RunSummary& summary() const { return counted; }
    /// Whether the run was ended by an answer of the user's.
    bool endedByUser() const { return userEnded; }
    /// The first failure of the run that wasn't taken back by a retry.
    const std::optional<Failure>& firstFailure() const { return first; }

private:
    temz_answer update(const temz_outcome& now);
    temz_answer decide(const temz_error& error);
    void hear(const temz_call& heard);
    temz_answer permit(const temz_call& call);
    temz_answer leavePlan(const wchar_t* what, std::wstring why);

    temz_answer answerByPolicy();
    temz_answer answerByUser();
    std::chrono::milliseconds pauseBeforeRetry() const;
    /// Also ends the action before, where the failure isn't its own.
    Failure tellFailure(const temz_error& error);
    /// Takes a failure for final.
    void settle(Failure failure, Fate itsFate);
    void endAction();  ///< and begins what is of no action, until the next is announced
    /// Several elements may name the same file.
    void addWaiting(const std::wstring& path);
    std::vector<Call> takeCallsAhead(uint32_t code);

    template <class Tell>
    void tell(const Tell& tellOne) {
        for (Reporter* reporter : reporters)
            tellOne(*reporter);
    }

    std::vector<Reporter*> reporters;
    std::optional<ErrorPolicy> policy;
    WatchDuties duties;

    CallbackGuard guard;
    temz_context* context = nullptr;
    Action action;           // the one that is under way
    Fate fate = Fate::done;  // as far as it is known
    unsigned percent = 0;
    std::wstring lastFailed;
    unsigned attempt = 0;   // of what failed last
    bool retrying = false;  // the next announcement may be the same action's
    RunSummary counted;
    std::optional<Failure> first;
    bool userEnded = false;
    bool planLeft = false;
};
