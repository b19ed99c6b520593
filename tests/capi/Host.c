#include "Host.h"

#include "Kernel32.h"

#define SCRIPT_FILE FOLDER L"\\script.xml"
#define CLEAR_UP SCRIPT(L"<Fragment><RemoveDirectory Path='" FOLDER L"'/></Fragment>")

Host host;

static temz_answer hearUpdate(void* user, const temz_outcome* now) {
    Host* const self = (Host*)user;
    ++self->updates;
    self->lastUpdate = *now;
    if (self->inUpdate != NULL)
        self->inUpdate(now);
    return self->updates == self->stopAt ? self->stop : TEMZ_CONTINUE;
}

static temz_answer hearQuestion(void* user, const temz_outcome* now) {
    Host* const self = (Host*)user;
    const int index = self->asks++;
    self->lastAsk = *now;
    if (self->inAsk != NULL)
        self->inAsk(now);
    return index < self->answerCount ? self->answers[index] : TEMZ_ABORT;
}

static void noteCall(HeardCall* heard, const temz_call* call) {
    copyText(heard->group, sizeof heard->group / sizeof(temz_char), call->group);
    copyText(heard->name, sizeof heard->name / sizeof(temz_char), call->name);
    heard->failed = call->failed;
    heard->systemError = call->system_error;
    heard->changes = call->changes;
    heard->argumentCount = call->argument_count;
    for (uint32_t i = 0; i < call->argument_count && i < MOST_ARGUMENTS; ++i)
        copyText(heard->arguments[i], sizeof heard->arguments[i] / sizeof(temz_char),
                 call->arguments[i]);
    copyText(heard->result, sizeof heard->result / sizeof(temz_char), call->result);
}

static void hearCall(void* user, const temz_call* call) {
    Host* const self = (Host*)user;
    if (self->calls < MOST_CALLS)
        noteCall(&self->heard[self->calls], call);
    ++self->calls;
    if (self->inCall != NULL)
        self->inCall(call);
}

static temz_answer givePermit(void* user, const temz_call* call) {
    Host* const self = (Host*)user;
    noteCall(&self->asked, call);
    if (self->inPermit != NULL)
        self->inPermit(call);
    return ++self->permits == self->refuseAt ? self->refusal : TEMZ_CONTINUE;
}

temz_observer observerOfHost(void) {
    temz_observer observer;
    observer.size = sizeof observer;
    observer.user = &host;
    observer.update = hearUpdate;
    observer.ask = hearQuestion;
    return observer;
}

temz_tracer tracerOfHost(void) {
    temz_tracer tracer;
    tracer.size = sizeof tracer;
    tracer.user = &host;
    tracer.call = hearCall;
    tracer.permit = NULL;
    return tracer;
}

static void hearStep(void* user, const temz_step* step) {
    Host* const self = (Host*)user;
    if (self->steps < MOST_STEPS) {
        HeardStep* const heard = &self->heardSteps[self->steps];
        heard->step = *step;
        copyText(heard->element, sizeof heard->element / sizeof(temz_char), step->element);
        copyText(heard->id, sizeof heard->id / sizeof(temz_char), step->id);
        copyText(heard->object, sizeof heard->object / sizeof(temz_char), step->object);
        copyText(heard->detail, sizeof heard->detail / sizeof(temz_char), step->detail);
        copyText(heard->message, sizeof heard->message / sizeof(temz_char), step->message);
    }
    ++self->steps;
    if (self->inStep != NULL)
        self->inStep(step);
}

temz_planner plannerOfHost(void) {
    temz_planner planner;
    planner.size = sizeof planner;
    planner.assumption_count = 0;
    planner.assumptions = NULL;
    planner.user = &host;
    planner.step = hearStep;
    return planner;
}

void trace(void) {
    const temz_tracer tracer = tracerOfHost();
    CHECK_NUMBER(TEMZ_OK, temz_set_tracer(host.context, &tracer));
}

void guard(void) {
    temz_tracer tracer = tracerOfHost();
    tracer.call = NULL;
    tracer.permit = givePermit;
    CHECK_NUMBER(TEMZ_OK, temz_set_tracer(host.context, &tracer));
}

void openHost(void) {
    const temz_observer observer = observerOfHost();
    CreateDirectoryW(FOLDER, NULL);
    fillMemory(0, &host, sizeof host);
    host.stop = TEMZ_STOP;
    host.refusal = TEMZ_STOP;
    CHECK_NUMBER(TEMZ_OK, temz_create(&host.context));
    CHECK_NUMBER(TEMZ_OK, temz_set_observer(host.context, &observer));
    CHECK_NUMBER(TEMZ_OK, temz_set_action_value(host.context, (uint64_t)(uintptr_t)&host.action));
}

void closeHost(void) {
    CHECK_NUMBER(TEMZ_OK, temz_set_observer(host.context, NULL));
    CHECK_NUMBER(TEMZ_OK, temz_set_tracer(host.context, NULL));
    CHECK_NUMBER(TEMZ_OK, temz_unload(host.context));
    CHECK_NUMBER(TEMZ_OK, load(CLEAR_UP));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK(!isThere(FOLDER));
    CHECK_NUMBER(TEMZ_OK, temz_free(host.context));
}

temz_status load(const temz_char* script) {
    CHECK(writeText(SCRIPT_FILE, script));
    return temz_load(host.context, SCRIPT_FILE);
}

temz_status run(temz_mode mode) {
    host.outcome = usedOutcome();
    return temz_run(host.context, mode, &host.outcome);
}

temz_status plan(temz_mode mode) {
    const temz_planner planner = plannerOfHost();
    host.outcome = usedOutcome();
    return temz_plan(host.context, mode, &planner, &host.outcome);
}

temz_status planAssuming(const temz_assumption* assumptions, uint32_t count) {
    temz_planner planner = plannerOfHost();
    planner.assumptions = assumptions;
    planner.assumption_count = count;
    host.outcome = usedOutcome();
    return temz_plan(host.context, TEMZ_INSTALL, &planner, &host.outcome);
}

const HeardStep* heardStep(uint32_t kind, int index) {
    for (int i = 0; i < host.steps && i < MOST_STEPS; ++i)
        if (host.heardSteps[i].step.kind == kind && index-- == 0)
            return &host.heardSteps[i];
    return NULL;
}

const HeardCall* heardCall(const temz_char* name, int index) {
    for (int i = 0; i < host.calls && i < MOST_CALLS; ++i)
        if (isSameText(host.heard[i].name, name) && index-- == 0)
            return &host.heard[i];
    return NULL;
}

temz_outcome usedOutcome(void) {
    temz_outcome outcome;
    fillMemory(0x5A, &outcome, sizeof outcome);
    outcome.size = sizeof outcome;
    return outcome;
}
