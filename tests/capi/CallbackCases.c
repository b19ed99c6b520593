#include "Cases.h"
#include "Functions.h"
#include "Host.h"

static temz_context* another = NULL;

static void expectNoCreation(temz_status status) {
    temz_context* made = another;
    CHECK_NUMBER(status, temz_create(&made));
    CHECK(made == NULL);
}

/* The callbacks that were inside the function, by their kind. */
static int insideUpdate = 0;
static int insideAsk = 0;
static int insideCall = 0;

static void callEverything(void) {
    for (int i = 0; i < FUNCTION_COUNT; ++i)
        checkNumber(functions[i].insideCallback, functions[i].call(host.context), functions[i].name,
                    __FILE__, __LINE__);
    CHECK_NUMBER(TEMZ_IN_CALLBACK, temz_free(host.context));
    CHECK_NUMBER(TEMZ_OK, temz_free(NULL));
    expectNoCreation(TEMZ_IN_CALLBACK);
}

static void callEverythingInUpdate(const temz_outcome* now) {
    (void)now;
    if (++insideUpdate == 1)
        callEverything();
}

static void callEverythingInAsk(const temz_outcome* now) {
    (void)now;
    if (++insideAsk == 1)
        callEverything();
}

static void callEverythingInCall(const temz_call* call) {
    (void)call;
    if (++insideCall == 1)
        callEverything();
}

void callbacksMayAskAndSetButNotChange(void) {
    insideUpdate = insideAsk = insideCall = 0;
    host.inUpdate = callEverythingInUpdate;
    host.inAsk = callEverythingInAsk;
    host.inCall = callEverythingInCall;
    host.action.result = 5;
    host.answerCount = 1;
    host.answers[0] = TEMZ_IGNORE;
    trace();
    CHECK_NUMBER(TEMZ_OK, load(ONE_ACTION));

    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));

    CHECK_NUMBER(1, insideUpdate);
    CHECK_NUMBER(1, insideAsk);
    CHECK(insideCall > 0);
}

static void changeAnother(const temz_outcome* now) {
    (void)now;
    CHECK_NUMBER(TEMZ_IN_CALLBACK, temz_load(another, L"install.xml"));
    CHECK_NUMBER(TEMZ_IN_CALLBACK, temz_unload(another));
    CHECK_NUMBER(TEMZ_IN_CALLBACK, temz_run(another, TEMZ_INSTALL, NULL));
    CHECK_NUMBER(TEMZ_IN_CALLBACK, temz_free(another));
    CHECK_NUMBER(TEMZ_OK, temz_last_failure(another, NULL, 0, NULL));
}

void callbacksMayNotChangeAnotherContext(void) {
    host.inUpdate = changeAnother;
    CHECK_NUMBER(TEMZ_OK, temz_create(&another));
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(1, host.updates);
    CHECK_NUMBER(TEMZ_OK, temz_free(another));
}

static void askForTheOutcome(const temz_outcome* now) {
    temz_outcome asked = usedOutcome();
    CHECK_NUMBER(TEMZ_OK, temz_get_outcome(host.context, &asked));
    CHECK(isSameMemory(now, &asked, sizeof asked));
}

void callbacksSeeTheRunGoOn(void) {
    host.inUpdate = askForTheOutcome;
    host.inAsk = askForTheOutcome;
    host.action.result = 5;
    CHECK_NUMBER(TEMZ_OK, load(ONE_ACTION));
    CHECK_NUMBER(TEMZ_RUN_FAILED, run(TEMZ_INSTALL));
    CHECK_NUMBER(1, host.updates);
    CHECK_NUMBER(1, host.asks);
    CHECK_NUMBER(TEMZ_RUN_FAILED, run(TEMZ_INSTALL));
}

static int heardByAnother = 0;

static temz_answer countUpdate(void* user, const temz_outcome* now) {
    (void)now;
    ++*(int*)user;
    return TEMZ_CONTINUE;
}

static void countCall(void* user, const temz_call* call) {
    (void)call;
    ++*(int*)user;
}

static void setAnotherObserver(const temz_outcome* now) {
    temz_observer observer = observerOfHost();
    (void)now;
    observer.user = &heardByAnother;
    observer.update = countUpdate;
    observer.ask = NULL;
    CHECK_NUMBER(TEMZ_OK, temz_set_observer(host.context, &observer));
}

void runGoesOnWithTheObserverItBeganWith(void) {
    heardByAnother = 0;
    host.inUpdate = setAnotherObserver;
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(3, host.updates);
    CHECK_NUMBER(0, heardByAnother);
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_UNINSTALL));
    CHECK_NUMBER(3, host.updates);
    CHECK_NUMBER(3, heardByAnother);
}

static void setAnotherTracer(const temz_call* call) {
    temz_tracer tracer = tracerOfHost();
    (void)call;
    tracer.user = &heardByAnother;
    tracer.call = countCall;
    CHECK_NUMBER(TEMZ_OK, temz_set_tracer(host.context, &tracer));
}

void runGoesOnWithTheTracerItBeganWith(void) {
    heardByAnother = 0;
    host.inCall = setAnotherTracer;
    trace();
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    const int heard = host.calls;
    CHECK(heard >= 3);
    CHECK_NUMBER(0, heardByAnother);
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_UNINSTALL));
    CHECK_NUMBER(heard, host.calls);
    CHECK(heardByAnother >= 3);
}

static void expectBusy(void) {
    expectOfAll(TEMZ_BUSY, host.context);
    CHECK_NUMBER(TEMZ_BUSY, temz_free(host.context));
    CHECK_NUMBER(TEMZ_OK, temz_free(NULL));
    expectNoCreation(TEMZ_BUSY);
    CHECK_NUMBER(TEMZ_VERSION, temz_version());
    CHECK_NUMBER(TEMZ_OK, temz_check_version(TEMZ_VERSION));
    CHECK_TEXT(L"Done.", temz_status_text(TEMZ_OK));
}

static void askOnAnotherThread(const temz_outcome* now) {
    (void)now;
    CHECK(callOnThread(expectBusy));
}

void otherThreadIsTurnedAway(void) {
    host.inUpdate = askOnAnotherThread;
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(1, host.updates);
}

static void installOnThisThread(void) {
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
}

void otherThreadComesAfterwards(void) {
    CHECK(callOnThread(installOnThisThread));
    CHECK(isThere(APP L"\\3.txt"));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_UNINSTALL));
    CHECK(!isThere(APP L"\\3.txt"));
}
