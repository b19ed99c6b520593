#include "Cases.h"
#include "Host.h"

static void expectFiles(bool first, bool second, bool third) {
    CHECK_NUMBER(first, isThere(APP L"\\1.txt"));
    CHECK_NUMBER(second, isThere(APP L"\\2.txt"));
    CHECK_NUMBER(third, isThere(APP L"\\3.txt"));
}

static void expectEmptyText(const temz_char* text) {
    CHECK_TEXT(L"", text);
}

static void secondFileIsNotThereYet(const temz_outcome* now) {
    if (host.updates != 2)
        return;
    CHECK_NUMBER(sizeof *now, now->size);
    CHECK_NUMBER(TEMZ_ACTION_COPY_FILE, now->action.code);
    CHECK_TEXT(L"2.txt", now->action.text1);
    expectEmptyText(now->action.text2);
    CHECK_NUMBER(33, now->progress);
    CHECK_NUMBER(0, now->result);
    CHECK_NUMBER(TEMZ_ERROR_MESSAGE, now->error.code);
    expectFiles(true, false, false);
}

void runTellsEachActionBeforeItIsDone(void) {
    host.inUpdate = secondFileIsNotThereYet;
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));

    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));

    CHECK_NUMBER(3, host.updates);
    CHECK_NUMBER(0, host.asks);
    CHECK_NUMBER(0, host.outcome.result);
    CHECK_NUMBER(0, host.outcome.restart);
    CHECK_NUMBER(66, host.outcome.progress);
    CHECK_TEXT(L"3.txt", host.outcome.action.text1);
    expectFiles(true, true, true);

    host.inUpdate = NULL;
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_UNINSTALL));
    CHECK_NUMBER(TEMZ_ACTION_DELETE_FILE, host.outcome.action.code);
    expectFiles(false, false, false);
}

void runWithoutObserverIsDoneUnseen(void) {
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, temz_set_observer(host.context, NULL));
    CHECK_NUMBER(TEMZ_OK, temz_run(host.context, TEMZ_INSTALL, NULL));
    CHECK_NUMBER(0, host.updates);
    expectFiles(true, true, true);
}

void observerMayLackItsFunctions(void) {
    temz_observer observer = observerOfHost();
    host.action.result = 5;
    CHECK_NUMBER(TEMZ_OK, load(ONE_ACTION));

    observer.ask = NULL;
    CHECK_NUMBER(TEMZ_OK, temz_set_observer(host.context, &observer));
    CHECK_NUMBER(TEMZ_RUN_FAILED, run(TEMZ_INSTALL));
    CHECK_NUMBER(1, host.updates);
    CHECK_NUMBER(0, host.asks);

    observer = observerOfHost();
    observer.update = NULL;
    CHECK_NUMBER(TEMZ_OK, temz_set_observer(host.context, &observer));
    CHECK_NUMBER(TEMZ_RUN_FAILED, run(TEMZ_INSTALL));
    CHECK_NUMBER(1, host.updates);
    CHECK_NUMBER(1, host.asks);
}

static void expectFailureOfAction(const temz_error* error) {
    CHECK_NUMBER(TEMZ_ACTION_CUSTOM_ACTION, error->code);
    CHECK_NUMBER(1234, error->system_error);
    CHECK_TEXT(L"answer", error->text1);
    CHECK_TEXT(L"A title", error->text2);
    CHECK_TEXT(L"It went wrong.", error->message);
}

static void letActionFail(void) {
    host.action.result = 1234;
    host.action.text = L"It went wrong.";
    host.action.textLength = 14;
    CHECK_NUMBER(TEMZ_OK, load(ONE_ACTION));
}

static void letActionSucceed(const temz_outcome* now) {
    (void)now;
    host.action.result = 0;
    host.action.textLength = 0;
}

void failureIsAskedAndAborted(void) {
    letActionFail();

    CHECK_NUMBER(TEMZ_RUN_FAILED, run(TEMZ_INSTALL));

    CHECK_NUMBER(1, host.asks);
    CHECK_NUMBER(sizeof host.lastAsk, host.lastAsk.size);
    CHECK_NUMBER(0, host.lastAsk.result);
    CHECK_NUMBER(TEMZ_ACTION_CUSTOM_ACTION, host.lastAsk.action.code);
    CHECK_TEXT(L"A title", host.lastAsk.action.text2);
    expectFailureOfAction(&host.lastAsk.error);
    CHECK_NUMBER(1234, host.outcome.result);
    expectFailureOfAction(&host.outcome.error);
}

void retryCarriesTheActionOutOnceMore(void) {
    host.answerCount = 1;
    host.answers[0] = TEMZ_RETRY;
    host.inAsk = letActionSucceed;
    letActionFail();

    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));

    CHECK_NUMBER(2, host.action.calls);
    CHECK_NUMBER(2, host.updates);
    CHECK_NUMBER(1, host.asks);
    CHECK_NUMBER(0, host.outcome.result);
    CHECK_NUMBER(TEMZ_ERROR_MESSAGE, host.outcome.error.code);
    expectEmptyText(host.outcome.error.message);
}

void ignoredFailureIsASuccess(void) {
    host.answerCount = 1;
    host.answers[0] = TEMZ_IGNORE;
    letActionFail();

    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));

    CHECK_NUMBER(1, host.action.calls);
    CHECK_NUMBER(0, host.outcome.result);
    expectFailureOfAction(&host.outcome.error);
}

void anyOtherAnswerEndsTheRun(void) {
    letActionFail();
    host.answerCount = 2;
    host.answers[0] = TEMZ_RETRY;
    host.answers[1] = 3;
    CHECK_NUMBER(TEMZ_RUN_FAILED, run(TEMZ_INSTALL));
    CHECK_NUMBER(2, host.asks);
    host.answerCount = 3;
    host.answers[2] = -1;
    CHECK_NUMBER(TEMZ_RUN_FAILED, run(TEMZ_INSTALL));
    CHECK_NUMBER(3, host.asks);

    host.stopAt = host.updates + 1;
    host.stop = 2;
    CHECK_NUMBER(TEMZ_STOPPED, run(TEMZ_INSTALL));
    host.stopAt = host.updates + 1;
    host.stop = -1;
    CHECK_NUMBER(TEMZ_STOPPED, run(TEMZ_INSTALL));
}

void stopBeforeTheFirstDoesNothing(void) {
    host.stopAt = 1;
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));

    CHECK_NUMBER(TEMZ_STOPPED, run(TEMZ_INSTALL));

    CHECK_NUMBER(1, host.updates);
    expectFiles(false, false, false);
}

void stopInTheMiddleKeepsWhatWasDone(void) {
    host.stopAt = 2;
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));

    CHECK_NUMBER(TEMZ_STOPPED, run(TEMZ_INSTALL));

    CHECK_NUMBER(2, host.updates);
    CHECK_NUMBER(0, host.asks);
    CHECK_NUMBER(0, host.outcome.result);
    CHECK_NUMBER(33, host.outcome.progress);
    CHECK_TEXT(L"2.txt", host.outcome.action.text1);
    expectFiles(true, false, false);
}

void stoppedRunCanBeRepeated(void) {
    host.stopAt = 2;
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_STOPPED, run(TEMZ_INSTALL));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(5, host.updates);
    expectFiles(true, true, true);
}

void namesOutsideAsciiStayWhole(void) {
    temz_char directory[TEMZ_TEXT_LENGTH];
    CHECK(writeText(FOLDER L"\\caf\u00E9.xml",
                    L"<Script><Product><Directory Id='D\u00E9' Path='" APP L"\\\u00E9t\u00E9'>"
                    L"<Component Id='C'><File Name='th\u00E9.txt' Source='payload\\greeter.txt'/>"
                    L"</Component></Directory><InstallExecuteSequence><Feature>"
                    L"<ComponentRef Id='C'/></Feature></InstallExecuteSequence></Product>"
                    L"</Script>"));
    CHECK_NUMBER(TEMZ_OK, temz_load(host.context, FOLDER L"\\caf\u00E9.xml"));
    CHECK_NUMBER(TEMZ_OK,
                 temz_get_directory(host.context, L"D\u00E9", directory, TEMZ_TEXT_LENGTH, NULL));
    CHECK_TEXT(APP L"\\\u00E9t\u00E9\\", directory);

    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));

    CHECK_TEXT(L"th\u00E9.txt", host.lastUpdate.action.text1);
    CHECK(isThere(APP L"\\\u00E9t\u00E9\\th\u00E9.txt"));
}

void customActionReadsTheActionValue(void) {
    const uint64_t value = (uint64_t)(uintptr_t)&host.action;
    const size_t placeInParameters = 272;
    CHECK_NUMBER(TEMZ_OK, load(ONE_ACTION));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(1, host.action.calls);
    CHECK(isSameMemory(&value, host.action.params + placeInParameters, sizeof value));
}

void outcomeIsEmptyBeforeTheFirstRun(void) {
    temz_outcome outcome = usedOutcome();
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    CHECK_NUMBER(TEMZ_OK, temz_get_outcome(host.context, &outcome));
    CHECK_NUMBER(sizeof outcome, outcome.size);
    CHECK(isFilledWith(0, &outcome.result, sizeof outcome - sizeof outcome.size));
}

void outcomeCanBeAskedLater(void) {
    temz_outcome outcome = usedOutcome();
    letActionFail();
    CHECK_NUMBER(TEMZ_RUN_FAILED, run(TEMZ_INSTALL));
    CHECK_NUMBER(TEMZ_OK, temz_get_outcome(host.context, &outcome));
    CHECK(isSameMemory(&host.outcome, &outcome, sizeof outcome));

    letActionSucceed(NULL);
    CHECK_NUMBER(TEMZ_OK, temz_run(host.context, TEMZ_INSTALL, NULL));
    CHECK_NUMBER(TEMZ_OK, temz_get_outcome(host.context, &outcome));
    CHECK_NUMBER(0, outcome.result);
    CHECK_NUMBER(0, host.lastUpdate.result);
}

void questionsLeaveTheOutcomeAlone(void) {
    temz_outcome outcome = usedOutcome();
    letActionFail();
    CHECK_NUMBER(TEMZ_RUN_FAILED, run(TEMZ_INSTALL));
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_directory(host.context, L"absent", NULL, 0, NULL));
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_variable(host.context, L"absent", NULL, 0, NULL));
    CHECK_NUMBER(TEMZ_OK, temz_get_outcome(host.context, &outcome));
    CHECK(isSameMemory(&host.outcome, &outcome, sizeof outcome));
}

void contextsRunOneAfterTheOther(void) {
    temz_context* const first = host.context;
    temz_context* second = NULL;
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, temz_create(&second));
    host.context = second;
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));

    CHECK_NUMBER(TEMZ_OK, temz_run(second, TEMZ_INSTALL, NULL));
    expectFiles(false, false, false);
    CHECK_NUMBER(TEMZ_OK, temz_run(first, TEMZ_INSTALL, NULL));
    expectFiles(true, true, true);
    CHECK_NUMBER(3, host.updates);
    CHECK_NUMBER(TEMZ_OK, temz_run(second, TEMZ_UPGRADE, NULL));

    CHECK_NUMBER(TEMZ_OK, temz_free(second));
    host.context = first;
}
