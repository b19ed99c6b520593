#include "RunWatch.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "Diagnosis.h"
#include "PendingFiles.h"

namespace {

/// How the engine's log tells that a failure doesn't matter to the script.
constexpr std::wstring_view notVitalLine = L"The last error isn't vital - ignore.";

// The pauses before retries, where the policy names none.
constexpr std::chrono::milliseconds firstPause{250};
constexpr std::chrono::milliseconds longestPause{2000};

}  // namespace

Call copyOf(const temz_call& call) {
    Call copy;
    copy.group = call.group;
    copy.name = call.name;
    copy.arguments.assign(call.arguments, call.arguments + call.argument_count);
    copy.result = call.result;
    copy.failed = call.failed != 0;
    copy.systemError = call.system_error;
    copy.duration = std::chrono::nanoseconds(call.duration);
    return copy;
}

PlannedCall plannedCall(const Call& call) {
    return {call.group, call.name, call.arguments};
}

CallResult resultOf(const Call& call) {
    return call.failed ? CallResult(call.systemError) : std::nullopt;
}

RunWatch::RunWatch(std::vector<Reporter*> reporters, std::optional<ErrorPolicy> policy,
                   WatchDuties duties)
    : reporters(std::move(reporters)), policy(policy), duties(std::move(duties)) {}

temz_status RunWatch::run(temz_context* runContext, temz_mode mode, temz_outcome& outcome) {
    context = runContext;
    temz_observer observer{};
    observer.size = sizeof observer;
    observer.user = this;
    observer.update = [](void* user, const temz_outcome* now) {
        auto& watch = *static_cast<RunWatch*>(user);
        return watch.guard.answer([&] { return watch.update(*now); });
    };
    observer.ask = [](void* user, const temz_outcome* now) {
        auto& watch = *static_cast<RunWatch*>(user);
        return watch.guard.answer([&] { return watch.decide(now->error); });
    };
    temz_tracer tracer{};
    tracer.size = sizeof tracer;
    tracer.user = this;
    tracer.call = [](void* user, const temz_call* call) {
        auto& watch = *static_cast<RunWatch*>(user);
        watch.guard.run([&] { watch.hear(*call); });
    };
    if (duties.plan)
        tracer.permit = [](void* user, const temz_call* call) {
            auto& watch = *static_cast<RunWatch*>(user);
            return watch.guard.answer([&] { return watch.permit(*call); });
        };
    temz_set_observer(context, &observer);
    temz_set_tracer(context, &tracer);
    const temz_status ended = temz_run(context, mode, &outcome);
    const temz_status status = guard.statusOf(planLeft ? temz_status{TEMZ_RUN_FAILED} : ended);
    if (guard.hasCaught())
        fate = Fate::failed;
    temz_set_observer(context, nullptr);
    temz_set_tracer(context, nullptr);

    // What keeps an action from being made at all, and a condition that fails, end a run unasked.
    if (status == TEMZ_RUN_FAILED && fate != Fate::failed) {
        settle(tellFailure(outcome.error), Fate::failed);
    } else if (status != TEMZ_OK && status != TEMZ_RUN_FAILED && status != TEMZ_STOPPED) {
        counted.reason = temz_status_text(status);
    }
    endAction();
    counted.restartNeeded = outcome.restart != 0;
    return status;
}

temz_answer RunWatch::update(const temz_outcome& now) {
    const bool again = std::exchange(retrying, false) && now.action.code == action.code &&
                       now.action.text1 == action.text1 && now.action.text2 == action.text2;
    std::vector<Call> calls = takeCallsAhead(now.action.code);
    if (again) {
        action.calls = std::move(calls);
        return TEMZ_CONTINUE;
    }
    endAction();
    if (duties.plan)
        duties.plan->announced();
    percent = std::max(percent, std::min<unsigned>(now.progress, 100));
    action = {++counted.actions, percent,          now.action.code,
              now.action.text1,  now.action.text2, std::move(calls)};
    if (duties.stopWanted()) {
        fate = Fate::stopped;
        userEnded = true;
        counted.stoppedAt = describeAction(action.code, action.text1, action.text2);
        return TEMZ_STOP;
    }
    tell([this](Reporter& reporter) { reporter.began(action); });
    return TEMZ_CONTINUE;
}

// The directories for a copy are made before it is announced.
std::vector<Call> RunWatch::takeCallsAhead(uint32_t code) {
    if (code != TEMZ_ACTION_COPY_FILE)
        return {};
    const auto last =
        std::find_if(action.calls.rbegin(), action.calls.rend(),
                     [](const Call& call) { return call.name != L"CreateDirectoryW"; });
    std::vector<Call> ahead(last.base(), action.calls.end());
    action.calls.erase(last.base(), action.calls.end());
    return ahead;
}

temz_answer RunWatch::decide(const temz_error& error) {
    Failure failure = tellFailure(error);
    const temz_answer answer = policy ? answerByPolicy() : answerByUser();
    retrying = answer == TEMZ_RETRY;
    if (retrying && duties.plan)
        duties.plan->retried();
    if (!retrying)
        settle(std::move(failure), answer == TEMZ_IGNORE ? Fate::ignored : Fate::failed);
    return answer;
}

temz_answer RunWatch::answerByPolicy() {
    if (policy->answer != TEMZ_RETRY)
        return policy->answer;
    if (attempt > policy->retries)
        return TEMZ_ABORT;
    duties.wait(pauseBeforeRetry());
    if (!duties.stopWanted())
        return TEMZ_RETRY;
    userEnded = true;
    return TEMZ_ABORT;
}

temz_answer RunWatch::answerByUser() {
    const std::optional<temz_answer> answer = duties.ask();
    userEnded = answer == TEMZ_ABORT;
    return answer.value_or(TEMZ_ABORT);
}

std::chrono::milliseconds RunWatch::pauseBeforeRetry() const {
    if (policy->pause)
        return std::chrono::seconds(*policy->pause);
    std::chrono::milliseconds pause = firstPause;
    for (unsigned i = 1; i < attempt && pause < longestPause; ++i)
        pause *= 2;
    return std::min(pause, longestPause);
}

void RunWatch::hear(const temz_call& heard) {
    Call call = copyOf(heard);
    tell([&call](Reporter& reporter) { reporter.called(call); });
    if (call.name == L"MoveFileExW" && !call.failed)
        addWaiting(call.arguments[1]);
    if (duties.plan && heard.changes)
        duties.plan->returned(resultOf(call));
    const bool notVital = call.group == L"log" && call.arguments[0].ends_with(notVitalLine);
    action.calls.push_back(std::move(call));
    if (!notVital)
        return;
    temz_outcome now{};
    now.size = sizeof now;
    temz_get_outcome(context, &now);
    settle(tellFailure(now.error), Fate::nonVital);
}

temz_answer RunWatch::permit(const temz_call& call) {
    const Call coming = copyOf(call);
    if (std::wstring other = duties.plan->otherResult(); !other.empty())
        return leavePlan(L"The run has left its plan", std::move(other));
    if (duties.plan->take(plannedCall(coming)))
        return TEMZ_CONTINUE;
    const PlannedCall* next = duties.plan->next();
    return leavePlan(
        L"The run was about to leave its plan",
        L"it comes to " + callText(coming) + L", and the plan " +
            (next ? L"has " + callText(next->name, next->arguments) : L"has nothing more"));
}

temz_answer RunWatch::leavePlan(const wchar_t* what, std::wstring why) {
    if (duties.plan->isBetweenActions())
        endAction();
    Failure failure;
    failure.code = TEMZ_ERROR_MESSAGE;
    failure.what = what;
    failure.why = std::move(why);
    failure.advice = L"See what has changed by temz plan, and have the new plan approved.";
    tell([&](Reporter& reporter) { reporter.failed(action, failure, 1); });
    settle(std::move(failure), Fate::failed);
    planLeft = true;
    return TEMZ_STOP;
}

void RunWatch::addWaiting(const std::wstring& path) {
    const bool known =
        std::any_of(counted.waiting.begin(), counted.waiting.end(),
                    [&path](const std::wstring& other) { return isSamePath(path, other); });
    if (!known)
        counted.waiting.push_back(path);
}

Failure RunWatch::tellFailure(const temz_error& error) {
    if (action.number > 0 && !isFailureOf(action, error))
        endAction();
    Failure failure = duties.diagnose(action, error);
    attempt = failure.what == lastFailed ? attempt + 1 : 1;
    lastFailed = failure.what;
    tell([&](Reporter& reporter) { reporter.failed(action, failure, attempt); });
    return failure;
}

// Some actions fail unannounced, several of them perhaps since the last announcement.
void RunWatch::settle(Failure failure, Fate itsFate) {
    fate = itsFate;
    lastFailed.clear();
    counted.ignored += fate == Fate::ignored;
    counted.nonVital += fate == Fate::nonVital;
    if (fate != Fate::failed)
        counted.leftOut.push_back(failure.why.empty() ? failure.what
                                                      : failure.what + L" (" + failure.why + L")");
    if (!first)
        first = std::move(failure);
}

void RunWatch::endAction() {
    const Action ended = std::exchange(action, {});
    const Fate itsFate = std::exchange(fate, Fate::done);
    lastFailed.clear();
    if (ended.number == 0)
        return;
    counted.done += itsFate == Fate::done;
    tell([&](Reporter& reporter) { reporter.ended(ended, itsFate); });
}
