#include "Cases.h"
#include "Functions.h"
#include "Host.h"

/* A failure of a vital action, of one that isn't, and a condition that is none. */
#define NO_SERVICE(attributes)                                         \
    L"<Fragment><ServiceControl Name='temz-capi-none' Action='start' " \
    L"Wait='no' " attributes L"/></Fragment>"
#define NO_CONDITION L"<Condition Expression='NONE E 1'/>"
#define A_CAUTION L"<Fragment><Caution Title='Mind the gap'/></Fragment>"
#define SEARCH(name)          \
    L"<Fragment><FileSearch " \
    L"Name='" name L"' Path='" FOLDER L"' Expression='NUMBER = 8'/></Fragment>"

static void expectStep(int index, uint32_t kind, uint32_t depth, const temz_char* element,
                       const temz_char* object) {
    CHECK(index < host.steps);
    CHECK_NUMBER(sizeof(temz_step), host.heardSteps[index].step.size);
    CHECK_NUMBER(kind, host.heardSteps[index].step.kind);
    CHECK_NUMBER(depth, host.heardSteps[index].step.depth);
    CHECK_NUMBER(1, host.heardSteps[index].step.line);
    CHECK_TEXT(element, host.heardSteps[index].element);
    CHECK_TEXT(object, host.heardSteps[index].object);
}

static void expectVariable(const temz_char* name, const temz_char* value) {
    temz_char text[32];
    CHECK_NUMBER(TEMZ_OK, temz_get_variable(host.context, name, text, 32, NULL));
    CHECK_TEXT(value, text);
}

void planChangesNothing(void) {
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));

    CHECK_NUMBER(TEMZ_OK, plan(TEMZ_INSTALL));

    CHECK(!isThere(APP));
    CHECK_NUMBER(3, host.updates);
    CHECK_NUMBER(0, host.outcome.result);
    CHECK_TEXT(L"3.txt", host.outcome.action.text1);
    temz_outcome later = usedOutcome();
    CHECK_NUMBER(TEMZ_OK, temz_get_outcome(host.context, &later));
    CHECK(isSameMemory(&host.outcome, &later, sizeof later));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK(isThere(APP L"\\3.txt"));
    CHECK_NUMBER(TEMZ_OK, plan(TEMZ_UNINSTALL));
    CHECK(isThere(APP L"\\3.txt"));
}

void planTellsItsStepsInOrder(void) {
    CHECK_NUMBER(TEMZ_OK, load(SCRIPT(L"<Condition Expression='OS_BIT E 64'>"
                                      L"<Feature Id='Main'><ComponentRef Id='Missing'/></Feature>"
                                      L"</Condition>" A_CAUTION)));

    CHECK_NUMBER(TEMZ_OK, plan(TEMZ_INSTALL));

    expectStep(0, TEMZ_STEP_ACTION, 0, L"Condition", L"OS_BIT E 64");
    expectStep(1, TEMZ_STEP_CONDITION, 0, L"Condition", L"OS_BIT E 64");
    CHECK_TEXT(L"OS_BIT = 64", host.heardSteps[1].detail);
    CHECK_NUMBER(1, host.heardSteps[1].step.holds);
    expectStep(2, TEMZ_STEP_GROUP, 1, L"Feature", L"");
    CHECK_TEXT(L"Main", host.heardSteps[2].id);
    expectStep(3, TEMZ_STEP_GROUP, 2, L"Component", L"");
    expectStep(4, TEMZ_STEP_ELEMENT, 3, L"File", L"");
    const HeardStep* const directory = heardStep(TEMZ_STEP_CHANGE, 0);
    CHECK(directory != NULL && directory->step.code == TEMZ_CHANGE_DIRECTORY_ADDED);
    const HeardStep* const copying = heardStep(TEMZ_STEP_ACTION, 1);
    CHECK(copying != NULL && copying > directory && copying->step.code == TEMZ_ACTION_COPY_FILE);
    expectStep(host.steps - 3, TEMZ_STEP_GROUP, 0, L"Fragment", L"");
    expectStep(host.steps - 2, TEMZ_STEP_ELEMENT, 1, L"Caution", L"");
    expectStep(host.steps - 1, TEMZ_STEP_ACTION, 1, L"Caution", L"");
    CHECK_TEXT(L"Mind the gap", host.heardSteps[host.steps - 1].detail);
}

void planTellsWhatIsLeftOut(void) {
    CHECK_NUMBER(TEMZ_OK,
                 load(SCRIPT(L"<Condition Expression='NUMBER E 8'>"
                             L"<Feature><ComponentRef Id='Files'/></Feature></Condition>"
                             L"<Fragment On='uninstall'><Caution Title='a'/></Fragment>")));

    CHECK_NUMBER(TEMZ_OK, plan(TEMZ_INSTALL));

    CHECK_NUMBER(3, host.steps);
    expectStep(1, TEMZ_STEP_CONDITION, 0, L"Condition", L"NUMBER E 8");
    CHECK_NUMBER(0, host.heardSteps[1].step.holds);
    CHECK_NUMBER(5, host.heardSteps[1].step.elements);
    CHECK_NUMBER(3, host.heardSteps[1].step.files);
    expectStep(2, TEMZ_STEP_LEFT_OUT, 0, L"Fragment", L"uninstall");
    CHECK_NUMBER(2, host.heardSteps[2].step.elements);
    CHECK_NUMBER(0, host.heardSteps[2].step.files);
}

void planTellsSearches(void) {
    CHECK_NUMBER(TEMZ_OK, load(SCRIPT(SEARCH(L"none.txt") SEARCH(L"script.xml"))));

    CHECK_NUMBER(TEMZ_OK, plan(TEMZ_INSTALL));

    CHECK_NUMBER(4, host.steps);
    expectStep(1, TEMZ_STEP_SEARCH, 1, L"FileSearch", FOLDER L"\\none.txt");
    CHECK_NUMBER(0, host.heardSteps[1].step.holds);
    CHECK_TEXT(L"", host.heardSteps[1].detail);
    expectStep(3, TEMZ_STEP_SEARCH, 1, L"FileSearch", FOLDER L"\\script.xml");
    CHECK_NUMBER(1, host.heardSteps[3].step.holds);
    CHECK_TEXT(L"NUMBER = 8", host.heardSteps[3].detail);
}

void planIsTracedAndPermittedLikeARun(void) {
    trace();
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, plan(TEMZ_INSTALL));
    const HeardCall* const copy = heardCall(L"CopyFileW", 2);
    CHECK(copy != NULL);
    if (copy != NULL) {
        CHECK_NUMBER(1, copy->changes);
        CHECK_NUMBER(0, copy->failed);
        CHECK_TEXT(APP L"\\3.txt", copy->arguments[1]);
        CHECK_TEXT(L"1", copy->result);
    }

    guard();
    CHECK_NUMBER(TEMZ_OK, plan(TEMZ_INSTALL));
    CHECK_NUMBER(6, host.permits);
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(12, host.permits);
    host.refuseAt = 14;
    CHECK_NUMBER(TEMZ_STOPPED, plan(TEMZ_UPGRADE));
    CHECK_TEXT(L"1.txt", host.outcome.action.text1);
}

void planGoesOnPastAFailure(void) {
    CHECK_NUMBER(TEMZ_OK, load(SCRIPT(NO_SERVICE(L"") NO_SERVICE(L"Vital='no'") A_CAUTION)));

    CHECK_NUMBER(TEMZ_OK, plan(TEMZ_INSTALL));

    CHECK_NUMBER(0, host.asks);
    CHECK_NUMBER(0, host.outcome.result);
    for (int i = 0; i < 2; ++i) {
        const HeardStep* const failure = heardStep(TEMZ_STEP_FAILURE, i);
        CHECK(failure != NULL);
        if (failure == NULL)
            return;
        CHECK_TEXT(L"ServiceControl", failure->element);
        CHECK_NUMBER(TEMZ_ACTION_START_SERVICE, failure->step.code);
        CHECK_TEXT(L"temz-capi-none", failure->object);
        CHECK_NUMBER(i == 0 ? TEMZ_FAILURE_VITAL : TEMZ_FAILURE_NOT_VITAL, failure->step.fate);
    }
    CHECK(heardStep(TEMZ_STEP_FAILURE, 2) == NULL);
    expectStep(host.steps - 1, TEMZ_STEP_ACTION, 1, L"Caution", L"");
}

void planEndsWhereARunEndsUnasked(void) {
    CHECK_NUMBER(TEMZ_OK, load(SCRIPT(L"<Fragment>" NO_CONDITION L"</Fragment>" A_CAUTION)));

    CHECK_NUMBER(TEMZ_RUN_FAILED, plan(TEMZ_INSTALL));

    CHECK_NUMBER(-1, host.outcome.result);
    CHECK_NUMBER(3, host.steps);
    expectStep(2, TEMZ_STEP_FAILURE, 1, L"Condition", L"");
    CHECK_NUMBER(TEMZ_ERROR_MESSAGE, host.heardSteps[2].step.code);
    CHECK_NUMBER(TEMZ_FAILURE_ENDS_RUN, host.heardSteps[2].step.fate);
    CHECK_TEXT(host.outcome.error.message, host.heardSteps[2].message);
}

void planCanBeStopped(void) {
    host.stopAt = 2;
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_STOPPED, plan(TEMZ_INSTALL));
    CHECK_TEXT(L"2.txt", host.outcome.action.text1);
    CHECK(heardStep(TEMZ_STEP_ACTION, 0) != NULL);
    CHECK(heardStep(TEMZ_STEP_ACTION, 1) == NULL);
}

void planNeedsNeitherPlannerNorOutcome(void) {
    temz_planner planner = plannerOfHost();
    planner.step = NULL;
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, temz_plan(host.context, TEMZ_INSTALL, NULL, NULL));
    CHECK_NUMBER(TEMZ_OK, temz_plan(host.context, TEMZ_INSTALL, &planner, NULL));
    CHECK_NUMBER(6, host.updates);
    CHECK_NUMBER(0, host.steps);
    CHECK_NUMBER(TEMZ_BAD_MODE, plan(3));
}

#define ASSIGNING L"<Condition Expression='TEXT = EMPTY'/><Condition Expression='NUMBER = 9'/>"

void planLeavesVariablesAsTheyWere(void) {
    CHECK_NUMBER(TEMZ_OK, load(SCRIPT(ASSIGNING L"<Condition Expression='NUMBER E 9'/>")));
    for (int i = 0; i < 2; ++i) {
        CHECK_NUMBER(TEMZ_OK, plan(TEMZ_INSTALL));
        CHECK_TEXT(L"TEXT = \"a text\", EMPTY = \"\"", host.heardSteps[1].detail);
        CHECK_TEXT(L"NUMBER = 7", host.heardSteps[3].detail);
        CHECK_TEXT(L"NUMBER = 9", host.heardSteps[5].detail);
        expectVariable(L"TEXT", L"a text");
        host.steps = 0;
    }
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    expectVariable(L"TEXT", L"");
}

void planAssumesOtherValues(void) {
    const temz_assumption assumptions[] = {{L"OS_BIT", L"32"}, {L"TEXT", L"b"}, {L"TEXT", L"c"}};
    CHECK_NUMBER(TEMZ_OK,
                 load(SCRIPT(L"<Condition Expression='OS_BIT E 32 AND ( TEXT E EMPTY )'/>")));

    CHECK_NUMBER(TEMZ_OK, planAssuming(assumptions, 3));
    CHECK_TEXT(L"OS_BIT = 32, TEXT = \"c\", EMPTY = \"\"", host.heardSteps[1].detail);

    host.steps = 0;
    CHECK_NUMBER(TEMZ_OK, plan(TEMZ_INSTALL));
    CHECK_TEXT(L"OS_BIT = 64, TEXT = \"a text\", EMPTY = \"\"", host.heardSteps[1].detail);
    CHECK_NUMBER(TEMZ_OK, planAssuming(NULL, 0));
}

static void expectImpossible(temz_status status, const temz_char* name, const temz_char* value) {
    const temz_assumption assumptions[] = {{L"NUMBER", L"-5"}, {name, value}};
    const temz_outcome before = usedOutcome();
    CHECK_NUMBER(status, planAssuming(assumptions, 2));
    CHECK(isSameMemory(&before, &host.outcome, sizeof before));
    if (name != NULL && value != NULL) {
        temz_char text[32];
        CHECK_NUMBER(TEMZ_OK, temz_last_failure(host.context, text, 32, NULL));
        CHECK_TEXT(name, text);
    }
}

void assumptionsMustBePossible(void) {
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    expectImpossible(TEMZ_NOT_FOUND, L"NONE", L"1");
    expectImpossible(TEMZ_BAD_VALUE, L"NUMBER", L"x");
    expectImpossible(TEMZ_BAD_VALUE, L"OS_BIT", L"");
    expectImpossible(TEMZ_NULL_ARGUMENT, NULL, L"1");
    expectImpossible(TEMZ_NULL_ARGUMENT, L"NUMBER", NULL);
    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, planAssuming(NULL, 1));
    CHECK_NUMBER(0, host.updates);
}

static void askAndSet(const temz_step* step) {
    temz_outcome outcome = usedOutcome();
    (void)step;
    CHECK_NUMBER(TEMZ_OK, temz_get_outcome(host.context, &outcome));
    for (int i = 0; i < FUNCTION_COUNT; ++i)
        if (functions[i].insideCallback == TEMZ_IN_CALLBACK)
            checkNumber(TEMZ_IN_CALLBACK, functions[i].call(host.context), functions[i].name,
                        __FILE__, __LINE__);
}

void stepsMayAskAndSetButNotChange(void) {
    host.inStep = askAndSet;
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, plan(TEMZ_INSTALL));
    CHECK(host.steps > 3);
}

void plannerIsGoodForItsPlanOnly(void) {
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    CHECK_NUMBER(TEMZ_OK, plan(TEMZ_INSTALL));
    const int steps = host.steps;
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(TEMZ_OK, temz_plan(host.context, TEMZ_INSTALL, NULL, NULL));
    CHECK_NUMBER(steps, host.steps);
}
