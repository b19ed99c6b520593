#include "capi/Session.h"

#include <utility>
#include <vector>

#include "logging/IterfaceObserver.h"
#include "plan/Assumptions.h"
#include "plan/PlanSteps.h"
#include "plan/Rehearsal.h"
#include "system/TextFields.h"
#include "trace/Tracer.h"

#define SAME_NUMBER(theirs, ours) \
    static_assert(static_cast<int>(theirs) == static_cast<int>(ours), "numbers of the interface")
SAME_NUMBER(TEMZ_INSTALL, RUNMODE_INSTALL);
SAME_NUMBER(TEMZ_UNINSTALL, RUNMODE_UNINSTALL);
SAME_NUMBER(TEMZ_UPGRADE, RUNMODE_UPGRADE);
SAME_NUMBER(TEMZ_RETRY, ANSWER_RETRY);
SAME_NUMBER(TEMZ_ABORT, ANSWER_ABORT);
SAME_NUMBER(TEMZ_IGNORE, ANSWER_IGNORE);
SAME_NUMBER(TEMZ_ERROR_MESSAGE, ERROR_CODE_MESSAGE);
SAME_NUMBER(TEMZ_ERROR_REMOVE_SHORTCUT, ERROR_CODE_REMOVE_SHORTCUT);
SAME_NUMBER(TEMZ_STEP_GROUP + static_cast<int>(StepKind::leftOut), TEMZ_STEP_LEFT_OUT);
SAME_NUMBER(TEMZ_CHANGE_FILE_ADDED + static_cast<int>(ChangeKind::actionCalled),
            TEMZ_CHANGE_ACTION_CALLED);
SAME_NUMBER(TEMZ_FAILURE_ENDS_RUN, FailureFate::endsRun);
#undef SAME_NUMBER

namespace {

/// Leaves the engine through the walk, which takes its elements down, when the host stops a run.
struct RunStopped {};

/// Hands the engine's notifications on to the host's functions.
class ObserverBridge final : public IterfaceObserver {
public:
    ObserverBridge(const Session& session, const temz_observer& observer)
        : session(session), observer(observer) {}

    void update(IterfaceProduct*) override {
        if (observer.update == nullptr)
            return;
        const temz_outcome now = session.outcome();
        if (observer.update(observer.user, &now) != TEMZ_CONTINUE)
            throw RunStopped();
    }

    ObserverAnswer askOnError(ErrorInfo*) override {
        if (observer.ask == nullptr)
            return ANSWER_ABORT;
        const temz_outcome now = session.outcome();
        switch (observer.ask(observer.user, &now)) {
            case TEMZ_RETRY:
                return ANSWER_RETRY;
            case TEMZ_IGNORE:
                return ANSWER_IGNORE;
            default:
                return ANSWER_ABORT;
        }
    }

private:
    const Session& session;
    const temz_observer observer;  // a copy: the host may set another one meanwhile
};

/// Tells the steps of a plan to the host's function.
class PlannerBridge final : public StepListener {
public:
    explicit PlannerBridge(const temz_planner& planner) : planner(planner) {}

    bool wantsSteps() const override { return planner.step != nullptr; }

    void step(const PlanStep& step) override {
        if (planner.step == nullptr)
            return;
        temz_step record{};
        record.size = sizeof record;
        record.kind = static_cast<uint32_t>(step.kind) + TEMZ_STEP_GROUP;
        record.depth = step.depth;
        record.line = step.line;
        record.element = step.element.c_str();
        record.id = step.id.c_str();
        record.object = step.object.c_str();
        record.detail = step.detail.c_str();
        record.before = step.before.c_str();
        record.after = step.after.c_str();
        record.message = step.message.c_str();
        record.bytes = step.bytes;
        record.bytes_before = step.bytesBefore;
        record.code = step.kind == StepKind::change
                          ? static_cast<uint32_t>(step.change) + TEMZ_CHANGE_FILE_ADDED
                          : step.code;
        record.system_error = step.systemError;
        record.holds = step.holds ? 1 : 0;
        record.fate = static_cast<uint32_t>(step.fate);
        record.same_content = step.sameContent ? 1 : 0;
        record.unforeseeable = step.unforeseeable ? 1 : 0;
        record.elements = step.leftOut.elements;
        record.files = step.leftOut.files;
        planner.step(planner.user, &record);
    }

private:
    const temz_planner& planner;
};

/// Follows a plan on behalf of the host's observer, if there is one, and goes on past failures.
class PlanObserver final : public IterfaceObserver {
public:
    PlanObserver(PlanSteps& steps, IterfaceObserver* host) : steps(steps), host(host) {}

    void update(IterfaceProduct* product) override {
        if (host)
            host->update(product);
        steps.announced();
    }

    ObserverAnswer askOnError(ErrorInfo*) override {
        steps.failed();
        return ANSWER_IGNORE;
    }

private:
    PlanSteps& steps;
    IterfaceObserver* const host;
};

/// Hands the engine's calls on to the host's function.
class TracerBridge final : public CallListener {
public:
    explicit TracerBridge(const temz_tracer& tracer) : tracer(tracer) {}

    void heard(const TracedCall& traced) override {
        if (tracer.call != nullptr)
            show(traced, [this](const temz_call& call) { tracer.call(tracer.user, &call); });
    }

    bool givesPermits() const override { return tracer.permit != nullptr; }

    void permit(const TracedCall& traced) override {
        show(traced, [this](const temz_call& call) {
            if (tracer.permit(tracer.user, &call) != TEMZ_CONTINUE)
                throw RunStopped();
        });
    }

private:
    template <class Show>
    static void show(const TracedCall& traced, const Show& showCall) {
        std::vector<const temz_char*> arguments;
        for (const std::wstring& argument : traced.arguments)
            arguments.push_back(argument.c_str());
        temz_call call{};
        call.size = sizeof call;
        call.failed = traced.failed ? 1 : 0;
        call.system_error = traced.systemError;
        call.argument_count = static_cast<uint32_t>(arguments.size());
        call.group = traced.group.c_str();
        call.name = traced.name.c_str();
        call.arguments = arguments.data();
        call.result = traced.result.c_str();
        call.duration = static_cast<uint64_t>(traced.duration.count());
        call.changes = traced.changes ? 1 : 0;
        showCall(call);
    }

    const temz_tracer tracer;
};

/// The host's tracer, if there is one, for the length of a run.
class TracerScope {
public:
    explicit TracerScope(const std::optional<temz_tracer>& tracer) {
        if (tracer)
            wrapper.emplace(traced.emplace(listener.emplace(*tracer)));
    }

private:
    std::optional<TracerBridge> listener;
    std::optional<Tracer> traced;
    std::optional<CallWrapper<Tracer>> wrapper;
};

/// The product's observer for the length of a run.
class ObserverScope {
public:
    ObserverScope(IterfaceProduct& product, IterfaceObserver* observer) : product(product) {
        product.observer = observer;
    }
    ObserverScope(const ObserverScope&) = delete;
    ObserverScope& operator=(const ObserverScope&) = delete;
    ~ObserverScope() { product.observer = nullptr; }

private:
    IterfaceProduct& product;
};

}  // namespace

temz_status Session::load(const temz_char* path) {
    lastFailure.clear();
    context->lastError.clear();
    try {
        if (context->load(path))
            return TEMZ_OK;
    } catch (...) {
        unload();
        throw;
    }
    unload();
    lastFailure = context->lastError;
    return TEMZ_LOAD_FAILED;
}

void Session::unload() {
    context->unload();
    variableElements.clear();
    result = 0;
}

IterfaceProduct& Session::prepareProduct(temz_mode mode) {
    IterfaceProduct& product = *context->getProduct();
    context->runMode = mode;
    // The engine never looks at it, and hands it on as the number that it is.
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    product.observerData = reinterpret_cast<void*>(static_cast<uintptr_t>(actionValue));
    return product;
}

temz_status Session::run(temz_mode mode) {
    IterfaceProduct& product = prepareProduct(mode);
    std::optional<ObserverBridge> bridge;
    if (observer)
        bridge.emplace(*this, *observer);
    const ObserverScope observed(product, bridge ? &*bridge : nullptr);
    const TracerScope traced(tracer);
    return runProduct(product);
}

// From within: what answers in the machine's place, the host's tracer, and what tells the steps.
temz_status Session::plan(temz_mode mode, const temz_planner& planner) {
    const Assumptions assumptions(*context);
    for (uint32_t i = 0; i < planner.assumption_count; ++i)
        Assumptions::assume(*context, planner.assumptions[i].name, planner.assumptions[i].value);

    IterfaceProduct& product = prepareProduct(mode);
    std::optional<ObserverBridge> bridge;
    if (observer)
        bridge.emplace(*this, *observer);
    PlannerBridge listener(planner);
    PlanSteps steps(*context, listener);
    PlanObserver planObserver(steps, bridge ? &*bridge : nullptr);
    const ObserverScope observed(product, &planObserver);

    Rehearsal rehearsal(steps);
    const CallWrapper<Rehearsal> rehearsed(rehearsal);
    const TracerScope traced(tracer);
    const CallWrapper<PlanSteps> followed(steps);
    const temz_status status = runProduct(product);
    if (status == TEMZ_RUN_FAILED)
        steps.ended();
    return status;
}

temz_status Session::checkAssumption(const temz_assumption& assumption) {
    if (assumption.name == nullptr || assumption.value == nullptr)
        return TEMZ_NULL_ARGUMENT;
    lastFailure.clear();
    switch (Assumptions::check(*context, assumption.name, assumption.value)) {
        case Assumptions::Answer::unknownVariable:
            lastFailure = assumption.name;
            return TEMZ_NOT_FOUND;
        case Assumptions::Answer::noInteger:
            lastFailure = assumption.name;
            return TEMZ_BAD_VALUE;
        default:
            return TEMZ_OK;
    }
}

temz_status Session::runProduct(IterfaceProduct& product) {
    result = 0;
    try {
        result = product.run(context.get());
        return result == 0 ? TEMZ_OK : TEMZ_RUN_FAILED;
    } catch (const RunStopped&) {
        return TEMZ_STOPPED;
    } catch (const std::wstring& message) {
        // Some actions let a message through, such as that a variable's number is none.
        result = -1;
        product.errorInfo = {};
        product.errorInfo.code = ERROR_CODE_MESSAGE;
        copyCut(product.errorInfo.message, message.c_str());
        return TEMZ_RUN_FAILED;
    } catch (...) {
        result = -1;
        throw;
    }
}

temz_outcome Session::outcome() const {
    const IterfaceProduct& product = *context->getProduct();
    temz_outcome outcome{};
    outcome.size = sizeof outcome;
    outcome.result = result;
    outcome.restart = product.rebootRequired ? 1 : 0;
    outcome.progress = product.progress;
    outcome.action.code = product.actionInfo.code;
    copyCut(outcome.action.text1, product.actionInfo.text1);
    copyCut(outcome.action.text2, product.actionInfo.text2);
    outcome.error.code = product.errorInfo.code;
    outcome.error.system_error = product.errorInfo.systemError;
    copyCut(outcome.error.text1, product.errorInfo.text1);
    copyCut(outcome.error.text2, product.errorInfo.text2);
    copyCut(outcome.error.message, product.errorInfo.message);
    return outcome;
}

temz_status Session::findVariable(const temz_char* name, std::wstring& text) {
    lastFailure.clear();
    if (context->getVariable(text, name))
        return TEMZ_OK;
    lastFailure = context->lastError;
    return TEMZ_NOT_FOUND;
}

temz_status Session::findDirectory(const temz_char* id, std::wstring& text) {
    lastFailure.clear();
    IterfaceProduct& product = *context->getProduct();
    // A question leaves the record of the run as it is.
    const ErrorInfo ofRun = product.errorInfo;
    const bool found = product.getDirectory(text, id, context.get());
    if (!found)
        lastFailure = product.errorInfo.message;
    product.errorInfo = ofRun;
    return found ? TEMZ_OK : TEMZ_NOT_FOUND;
}
