#include "Cases.h"
#include "Functions.h"
#include "Host.h"

void nullContextIsTold(void) {
    expectOfAll(TEMZ_NULL_ARGUMENT, NULL);
    CHECK_NUMBER(TEMZ_OK, temz_free(NULL));
}

void freedContextIsTold(void) {
    temz_context* freed = NULL;
    CHECK_NUMBER(TEMZ_OK, temz_create(&freed));
    CHECK_NUMBER(TEMZ_OK, temz_free(freed));
    expectOfAll(TEMZ_BAD_CONTEXT, freed);
    CHECK_NUMBER(TEMZ_BAD_CONTEXT, temz_free(freed));
}

void garbageIsNoContext(void) {
    int number = 5;
    void* const garbage[] = {&number, (void*)(uintptr_t)1, (void*)UINTPTR_MAX,
                             (unsigned char*)host.context + 1, &host.context};
    for (size_t i = 0; i < sizeof garbage / sizeof *garbage; ++i) {
        expectOfAll(TEMZ_BAD_CONTEXT, (temz_context*)garbage[i]);
        CHECK_NUMBER(TEMZ_BAD_CONTEXT, temz_free((temz_context*)garbage[i]));
    }
}

void nullArgumentsAreTold(void) {
    temz_tracer tracer;
    temz_char text[8];
    fillMemory(0, &tracer, sizeof tracer);
    tracer.size = sizeof tracer;

    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, temz_create(NULL));
    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, temz_load(host.context, NULL));
    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, temz_set_tracer(host.context, &tracer));
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, temz_get_outcome(host.context, NULL));
    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, temz_get_variable(host.context, NULL, text, 8, NULL));
    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, temz_get_directory(host.context, NULL, text, 8, NULL));
}

void scriptMustBeLoaded(void) {
    for (int i = 0; i < FUNCTION_COUNT; ++i)
        checkNumber(functions[i].withoutScript, functions[i].call(host.context), functions[i].name,
                    __FILE__, __LINE__);
    CHECK_NUMBER(TEMZ_NOT_LOADED, temz_get_outcome(host.context, NULL));
    CHECK_NUMBER(TEMZ_NOT_LOADED, temz_run(host.context, -1, NULL));
    CHECK_NUMBER(TEMZ_NOT_LOADED, temz_plan(host.context, -1, NULL, NULL));
}

void scriptIsLoadedOnce(void) {
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_ALREADY_LOADED, load(ONE_CAUTION));
    CHECK_NUMBER(TEMZ_ALREADY_LOADED, temz_load(host.context, L"missing.xml"));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK(isThere(APP L"\\3.txt"));
}

void modesAreThree(void) {
    static const temz_mode modes[] = {-1, 3, INT32_MAX, INT32_MIN};
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    for (size_t i = 0; i < sizeof modes / sizeof *modes; ++i)
        CHECK_NUMBER(TEMZ_BAD_MODE, run(modes[i]));
    CHECK_NUMBER(0, host.updates);
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_UPGRADE));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_UNINSTALL));
    CHECK_NUMBER(9, host.updates);
}

/* Records of sizes that no library has known: refused, and nothing is changed by them. */
static void expectRefused(uint32_t sizeOfObserver, uint32_t sizeOfTracer, uint32_t sizeOfOutcome,
                          uint32_t sizeOfPlanner) {
    temz_observer observer = observerOfHost();
    temz_tracer tracer = tracerOfHost();
    temz_outcome outcome = usedOutcome();
    temz_outcome before = usedOutcome();
    temz_planner planner = plannerOfHost();
    planner.size = sizeOfPlanner;
    observer.size = sizeOfObserver;
    observer.update = NULL;
    tracer.size = sizeOfTracer;
    outcome.size = sizeOfOutcome;
    before.size = sizeOfOutcome;

    CHECK_NUMBER(TEMZ_BAD_SIZE, temz_set_observer(host.context, &observer));
    CHECK_NUMBER(TEMZ_BAD_SIZE, temz_set_tracer(host.context, &tracer));
    CHECK_NUMBER(TEMZ_BAD_SIZE, temz_run(host.context, TEMZ_INSTALL, &outcome));
    CHECK_NUMBER(TEMZ_BAD_SIZE, temz_plan(host.context, TEMZ_INSTALL, NULL, &outcome));
    CHECK_NUMBER(TEMZ_BAD_SIZE, temz_plan(host.context, TEMZ_INSTALL, &planner, NULL));
    CHECK_NUMBER(TEMZ_BAD_SIZE, temz_get_outcome(host.context, &outcome));
    CHECK(isSameMemory(&before, &outcome, sizeof outcome));
}

void smallerRecordsAreRefused(void) {
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    expectRefused(0, 0, 0, 0);
    expectRefused(4, 4, 4, 4);
    expectRefused(sizeof(temz_observer) - 1, sizeof(temz_tracer) - 1, sizeof(temz_outcome) - 1,
                  sizeof(temz_planner) - 1);
    CHECK_NUMBER(0, host.updates);
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(1, host.updates);
    CHECK_NUMBER(0, host.calls);
}

/* Records of a newer host, which end in what the library doesn't know. */
enum { MORE = 24, USED = 0x5A };

typedef struct LargerOutcome {
    temz_outcome outcome;
    unsigned char more[MORE];
} LargerOutcome;

typedef struct LargerObserver {
    temz_observer observer;
    unsigned char more[MORE];
} LargerObserver;

typedef struct LargerTracer {
    temz_tracer tracer;
    unsigned char more[MORE];
} LargerTracer;

typedef struct LargerPlanner {
    temz_planner planner;
    unsigned char more[MORE];
} LargerPlanner;

static void expectServed(const LargerOutcome* larger) {
    CHECK_NUMBER(sizeof *larger, larger->outcome.size);
    CHECK_NUMBER(TEMZ_ACTION_CUSTOM_ACTION, larger->outcome.action.code);
    CHECK(isFilledWith(USED, larger->more, MORE));
}

void largerRecordsAreServed(void) {
    LargerOutcome outcome;
    LargerObserver observer;
    LargerTracer tracer;
    LargerPlanner planner;
    fillMemory(USED, &planner, sizeof planner);
    planner.planner = plannerOfHost();
    planner.planner.size = sizeof planner;
    fillMemory(USED, &outcome, sizeof outcome);
    fillMemory(USED, &observer, sizeof observer);
    fillMemory(USED, &tracer, sizeof tracer);
    observer.observer = observerOfHost();
    tracer.tracer = tracerOfHost();
    outcome.outcome.size = sizeof outcome;
    observer.observer.size = sizeof observer;
    tracer.tracer.size = sizeof tracer;
    CHECK_NUMBER(TEMZ_OK, load(ONE_ACTION));

    CHECK_NUMBER(TEMZ_OK, temz_set_observer(host.context, &observer.observer));
    CHECK_NUMBER(TEMZ_OK, temz_set_tracer(host.context, &tracer.tracer));
    CHECK_NUMBER(TEMZ_OK, temz_run(host.context, TEMZ_INSTALL, &outcome.outcome));

    expectServed(&outcome);
    CHECK_NUMBER(1, host.updates);
    CHECK(host.calls > 0);
    fillMemory(USED, &outcome.outcome.result, sizeof outcome - sizeof outcome.outcome.size);
    CHECK_NUMBER(TEMZ_OK, temz_get_outcome(host.context, &outcome.outcome));
    expectServed(&outcome);
    fillMemory(USED, &outcome.outcome.result, sizeof outcome - sizeof outcome.outcome.size);
    CHECK_NUMBER(TEMZ_OK,
                 temz_plan(host.context, TEMZ_INSTALL, &planner.planner, &outcome.outcome));
    expectServed(&outcome);
    CHECK(host.steps > 0);
}
