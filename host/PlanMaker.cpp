#include "PlanMaker.h"

#include <utility>

#include "CallbackGuard.h"
#include "DeepStack.h"
#include "RunWatch.h"

namespace {

temz_answer answerTo(const std::function<bool()>& stopWanted) {
    return stopWanted() ? TEMZ_STOP : TEMZ_CONTINUE;
}

/// Follows a plan through the engine's callbacks.
class PlanMaker {
public:
    PlanMaker(const std::function<bool()>& stopWanted, const Witnesses& witnesses, Plan& plan)
        : stopWanted(stopWanted), witnesses(witnesses), plan(plan) {}

    void make(temz_context* context, temz_mode mode,
              const std::vector<temz_assumption>& assumptions) {
        temz_planner planner{};
        planner.size = sizeof planner;
        planner.assumption_count = static_cast<uint32_t>(assumptions.size());
        planner.assumptions = assumptions.data();
        planner.user = this;
        planner.step = [](void* user, const temz_step* step) {
            auto& maker = *static_cast<PlanMaker*>(user);
            maker.guard.run([&] { maker.take(*step); });
        };
        temz_observer observer{};
        observer.size = sizeof observer;
        observer.user = this;
        observer.update = [](void* user, const temz_outcome*) {
            auto& maker = *static_cast<PlanMaker*>(user);
            return maker.guard.answer([&] { return answerTo(maker.stopWanted); });
        };
        temz_tracer tracer{};
        tracer.size = sizeof tracer;
        tracer.user = this;
        tracer.call = [](void* user, const temz_call* call) {
            auto& maker = *static_cast<PlanMaker*>(user);
            maker.guard.run([&] { maker.hear(*call); });
        };
        tracer.permit = [](void* user, const temz_call* call) {
            auto& maker = *static_cast<PlanMaker*>(user);
            return maker.guard.answer([&]() -> temz_answer {
                maker.plan.calls.push_back(plannedCall(copyOf(*call)));
                return TEMZ_CONTINUE;
            });
        };
        temz_set_observer(context, &observer);
        temz_set_tracer(context, &tracer);
        plan.status = guard.statusOf(temz_plan(context, mode, &planner, nullptr));
        temz_set_observer(context, nullptr);
        temz_set_tracer(context, nullptr);
    }

private:
    /// A call that changes something has asked for its permit just before.
    void hear(const temz_call& call) {
        action.calls.push_back(copyOf(call));
        if (call.changes)
            plan.calls.back().result = resultOf(action.calls.back());
    }

    void take(const temz_step& told) {
        Step step;
        step.kind = told.kind;
        step.depth = told.depth;
        step.line = told.line;
        step.element = told.element;
        step.id = told.id;
        step.object = told.object;
        step.detail = told.detail;
        step.before = told.before;
        step.after = told.after;
        step.bytes = told.bytes;
        step.bytesBefore = told.bytes_before;
        step.code = told.code;
        step.holds = told.holds != 0;
        step.fate = told.fate;
        step.sameContent = told.same_content != 0;
        step.unforeseeable = told.unforeseeable != 0;
        step.elements = told.elements;
        step.files = told.files;
        follow(told, step);
        plan.steps.push_back(std::move(step));
    }

    /// Keeps the action that is under way, and asks the machine where a step calls for it.
    void follow(const temz_step& told, Step& step) {
        switch (step.kind) {
            case TEMZ_STEP_ELEMENT:
                action = {};
                plan.elements.push_back({plan.calls.size(), step.element, step.line});
                break;
            case TEMZ_STEP_ACTION:
                action.code = step.code;
                action.text1 = step.object;
                action.text2 = step.detail;
                break;
            case TEMZ_STEP_CHANGE:
                unforeseeable |= step.unforeseeable;
                if (step.code == TEMZ_CHANGE_FILE_AT_RESTART)
                    step.holders = witnesses.holdersOf(step.object);
                break;
            case TEMZ_STEP_FAILURE:
                step.failure = diagnose(action, errorOf(told), witnesses);
                step.uncertain = unforeseeable;
                break;
            default:
                break;
        }
    }

    static void copyText(temz_char (&target)[TEMZ_TEXT_LENGTH], const temz_char* text) {
        std::wstring(text).copy(target, TEMZ_TEXT_LENGTH - 1);
    }

    static temz_error errorOf(const temz_step& step) {
        temz_error error{};
        error.code = step.code;
        error.system_error = step.system_error;
        copyText(error.text1, step.object);
        copyText(error.text2, step.detail);
        copyText(error.message, step.message);
        return error;
    }

    const std::function<bool()>& stopWanted;
    const Witnesses& witnesses;
    Plan& plan;
    CallbackGuard guard;
    Action action;
    bool unforeseeable = false;  // something was, so far
};

}  // namespace

void makePlan(temz_context* context, temz_mode mode, const std::vector<Assumption>& assumptions,
              const std::function<bool()>& stopWanted, const Witnesses& witnesses, Plan& plan) {
    std::vector<temz_assumption> records;
    records.reserve(assumptions.size());
    for (const Assumption& assumption : assumptions)
        records.push_back({assumption.name.c_str(), assumption.value.c_str()});
    PlanMaker maker(stopWanted, witnesses, plan);
    onDeepStack([&] { maker.make(context, mode, records); });
}

unsigned countActions(temz_context* context, temz_mode mode,
                      const std::function<bool()>& stopWanted) {
    struct Count {
        const std::function<bool()>& stopWanted;
        CallbackGuard guard = {};
        unsigned actions = 0;
    } count{stopWanted};
    temz_observer observer{};
    observer.size = sizeof observer;
    observer.user = &count;
    observer.update = [](void* user, const temz_outcome*) {
        auto& counted = *static_cast<Count*>(user);
        ++counted.actions;
        return counted.guard.answer([&] { return answerTo(counted.stopWanted); });
    };
    temz_status status = TEMZ_INTERNAL;
    onDeepStack([&] {
        temz_set_observer(context, &observer);
        status = count.guard.statusOf(temz_plan(context, mode, nullptr, nullptr));
        temz_set_observer(context, nullptr);
    });
    return status == TEMZ_OK ? count.actions : 0;
}
