#include "PlanMaker.h"

#include <utility>

#include "DeepStack.h"
#include "RunWatch.h"

namespace {

/// Follows a plan through the engine's callbacks.
class PlanMaker {
public:
    PlanMaker(const std::function<bool()>& stopWanted, const Witnesses& witnesses, Plan& plan)
        : stopWanted(stopWanted), witnesses(witnesses), plan(plan) {}

    void make(temz_context* context, temz_mode mode, const std::vector<Assumption>& assumptions) {
        std::vector<temz_assumption> records;
        records.reserve(assumptions.size());
        for (const Assumption& assumption : assumptions)
            records.push_back({assumption.name.c_str(), assumption.value.c_str()});
        temz_planner planner{};
        planner.size = sizeof planner;
        planner.assumption_count = static_cast<uint32_t>(records.size());
        planner.assumptions = records.data();
        planner.user = this;
        planner.step = [](void* self, const temz_step* step) {
            static_cast<PlanMaker*>(self)->take(*step);
        };
        temz_observer observer{};
        observer.size = sizeof observer;
        observer.user = this;
        observer.update = [](void* self, const temz_outcome*) -> temz_answer {
            return static_cast<PlanMaker*>(self)->stopWanted() ? TEMZ_STOP : TEMZ_CONTINUE;
        };
        temz_tracer tracer{};
        tracer.size = sizeof tracer;
        tracer.user = this;
        tracer.call = [](void* self, const temz_call* call) {
            static_cast<PlanMaker*>(self)->hear(*call);
        };
        tracer.permit = [](void* self, const temz_call* call) -> temz_answer {
            static_cast<PlanMaker*>(self)->plan.calls.push_back(plannedCall(copyOf(*call)));
            return TEMZ_CONTINUE;
        };
        temz_set_observer(context, &observer);
        temz_set_tracer(context, &tracer);
        plan.status = temz_plan(context, mode, &planner, nullptr);
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
                unforeseeable = unforeseeable || step.unforeseeable;
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
    Action action;
    bool unforeseeable = false;  // something was, so far
};

}  // namespace

void makePlan(temz_context* context, temz_mode mode, const std::vector<Assumption>& assumptions,
              const std::function<bool()>& stopWanted, const Witnesses& witnesses, Plan& plan) {
    onDeepStack([&] { PlanMaker(stopWanted, witnesses, plan).make(context, mode, assumptions); });
}

unsigned countActions(temz_context* context, temz_mode mode,
                      const std::function<bool()>& stopWanted) {
    struct Count {
        const std::function<bool()>& stopWanted;
        unsigned actions = 0;
    } count{stopWanted};
    temz_observer observer{};
    observer.size = sizeof observer;
    observer.user = &count;
    observer.update = [](void* user, const temz_outcome*) -> temz_answer {
        auto& counted = *static_cast<Count*>(user);
        ++counted.actions;
        return counted.stopWanted() ? TEMZ_STOP : TEMZ_CONTINUE;
    };
    temz_status status = TEMZ_INTERNAL;
    onDeepStack([&] {
        temz_set_observer(context, &observer);
        status = temz_plan(context, mode, nullptr, nullptr);
        temz_set_observer(context, nullptr);
    });
    return status == TEMZ_OK ? count.actions : 0;
}
