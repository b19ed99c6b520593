#include "Cases.h"
#include "Host.h"

static void expectCopy(int index, const temz_char* source, const temz_char* target) {
    const HeardCall* const copy = heardCall(L"CopyFileW", index);
    CHECK(copy != NULL);
    if (copy == NULL)
        return;
    CHECK_TEXT(L"file", copy->group);
    CHECK_NUMBER(3, copy->argumentCount);
    CHECK(endsIn(copy->arguments[0], source));
    CHECK_TEXT(target, copy->arguments[1]);
    CHECK_TEXT(L"0", copy->arguments[2]);
    CHECK_TEXT(L"1", copy->result);
    CHECK_NUMBER(0, copy->failed);
    CHECK_NUMBER(0, copy->systemError);
}

static void recordIsThatOfTheHeader(const temz_call* call) {
    CHECK_NUMBER(sizeof *call, call->size);
}

void traceShowsCallsInOrder(void) {
    host.inCall = recordIsThatOfTheHeader;
    trace();
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(0, host.calls);

    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));

    CHECK(host.calls < MOST_CALLS);
    expectCopy(0, L"payload\\greeter.txt", APP L"\\1.txt");
    expectCopy(1, L"payload\\manual.txt", APP L"\\2.txt");
    expectCopy(2, L"payload\\changes.txt", APP L"\\3.txt");
    CHECK(heardCall(L"CopyFileW", 3) == NULL);
}

void traceShowsLinesOfTheLog(void) {
    trace();
    CHECK_NUMBER(TEMZ_OK, load(ONE_ACTION));

    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));

    const HeardCall* const line = heardCall(L"INFO", 0);
    CHECK(line != NULL);
    if (line == NULL)
        return;
    CHECK_TEXT(L"log", line->group);
    CHECK_NUMBER(1, line->argumentCount);
    CHECK(endsIn(line->arguments[0], L"callDllEntry:temz_test_actions.dll;answer"));
    CHECK_NUMBER(0, line->failed);
    CHECK(heardCall(L"INFO", 1) != NULL);
    CHECK(heardCall(L"CallEntry", 0) > line);
}

#define KEY L"Software\\temz-capi"

void traceShowsTheRegistryByNames(void) {
    trace();
    CHECK_NUMBER(
        TEMZ_OK,
        load(SCRIPT(
            L"<Feature><Component On='install'><RegistryKey Action='create' "
            L"Root='HKEY_CURRENT_USER'"
            L" Key="
            L"'" KEY L"'><RegistryValue Name='Number' Type='REG_DWORD' Value='42'/></RegistryKey>"
            L"</Component><Component On='uninstall'><RegistryKey Action='remove'"
            L" Root='HKEY_CURRENT_USER' Key='" KEY L"'/></Component></Feature>")));

    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));

    const HeardCall* const value = heardCall(L"RegSetValueExW", 0);
    CHECK(value != NULL);
    if (value != NULL) {
        CHECK_TEXT(L"registry", value->group);
        CHECK_NUMBER(6, value->argumentCount);
        CHECK_TEXT(L"HKEY_CURRENT_USER\\" KEY, value->arguments[0]);
        CHECK_TEXT(L"Number", value->arguments[1]);
        CHECK_TEXT(L"42", value->arguments[4]);
        CHECK_TEXT(L"0", value->result);
        CHECK_NUMBER(0, value->failed);
    }
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_UNINSTALL));
    CHECK(heardCall(L"RegDeleteKeyW", 0) != NULL);
}

void traceShowsFailures(void) {
    trace();
    CHECK_NUMBER(TEMZ_OK, load(SCRIPT(L"<Feature><ComponentRef Id='Missing'/></Feature>")));

    CHECK_NUMBER(TEMZ_RUN_FAILED, run(TEMZ_INSTALL));

    const HeardCall* const copy = heardCall(L"CopyFileW", 0);
    CHECK(copy != NULL);
    if (copy == NULL)
        return;
    CHECK_NUMBER(1, copy->failed);
    CHECK_NUMBER(2, copy->systemError);
    CHECK_TEXT(L"0", copy->result);
}

void tracedRunEqualsAnUntracedOne(void) {
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    const temz_outcome untraced = host.outcome;
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_UNINSTALL));
    CHECK_NUMBER(0, host.calls);

    trace();
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));

    CHECK(host.calls > 0);
    CHECK(isSameMemory(&untraced, &host.outcome, sizeof untraced));
    CHECK_NUMBER(9, host.updates);
    CHECK(isThere(APP L"\\3.txt"));
}

static void askForTheOutcome(const temz_call* call) {
    temz_outcome outcome = usedOutcome();
    CHECK_NUMBER(TEMZ_OK, temz_get_outcome(host.context, &outcome));
    CHECK(outcome.progress <= 100);
    if (isSameText(call->name, L"CopyFileW"))
        CHECK(endsIn(call->arguments[1], outcome.action.text1));
}

void tracerMayAskForTheOutcome(void) {
    host.inCall = askForTheOutcome;
    trace();
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK(host.calls >= 3);
}

static void askForADirectory(const temz_call* call) {
    (void)call;
    if (host.calls < MOST_CALLS)
        CHECK_NUMBER(TEMZ_OK, temz_get_directory(host.context, L"System32Folder", NULL, 0, NULL));
}

void whatATracerAsksIsNotTraced(void) {
    trace();
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    const int calls = host.calls;
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_UNINSTALL));

    host.calls = 0;
    host.inCall = askForADirectory;
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(calls, host.calls);
}

void traceEndsWithItsTracer(void) {
    host.stopAt = 2;
    trace();
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_STOPPED, run(TEMZ_INSTALL));
    const int calls = host.calls;
    CHECK(calls > 0);

    CHECK_NUMBER(TEMZ_OK, temz_set_tracer(host.context, NULL));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(calls, host.calls);
}

void traceMarksWhatChangesSomething(void) {
    trace();
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_UNINSTALL));

    static const temz_char* const changing[] = {L"CreateDirectoryW", L"CopyFileW", L"DeleteFileW"};
    for (size_t i = 0; i < sizeof changing / sizeof *changing; ++i) {
        const HeardCall* const call = heardCall(changing[i], 0);
        CHECK(call != NULL && call->changes == 1);
    }
    const HeardCall* const question = heardCall(L"FindFirstFileW", 0);
    CHECK(question != NULL && question->changes == 0);
}

static void copyIsStillToCome(const temz_call* call) {
    CHECK_NUMBER(sizeof *call, call->size);
    CHECK_NUMBER(1, call->changes);
    CHECK_NUMBER(0, call->failed);
    CHECK_NUMBER(0, call->duration);
    CHECK_TEXT(L"", call->result);
    if (isSameText(call->name, L"CopyFileW"))
        CHECK(!isThere(call->arguments[1]));
}

void permitIsAskedBeforeEachChange(void) {
    host.inPermit = copyIsStillToCome;
    guard();
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(0, host.permits);

    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));

    CHECK_NUMBER(6, host.permits); /* the directory and the copy of each file */
    CHECK_NUMBER(0, host.calls);
    CHECK_TEXT(L"file", host.asked.group);
    CHECK_TEXT(L"CopyFileW", host.asked.name);
    CHECK_NUMBER(3, host.asked.argumentCount);
    CHECK_TEXT(APP L"\\3.txt", host.asked.arguments[1]);
    CHECK(isThere(APP L"\\3.txt"));
}

void refusedChangeEndsTheRun(void) {
    host.refuseAt = 4;
    guard();
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));

    CHECK_NUMBER(TEMZ_STOPPED, run(TEMZ_INSTALL));

    CHECK_NUMBER(4, host.permits);
    CHECK_NUMBER(0, host.asks);
    CHECK_NUMBER(0, host.outcome.result);
    CHECK_NUMBER(TEMZ_ACTION_COPY_FILE, host.outcome.action.code);
    CHECK_TEXT(L"2.txt", host.outcome.action.text1);
    CHECK(isThere(APP L"\\1.txt"));
    CHECK(!isThere(APP L"\\2.txt"));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK(isThere(APP L"\\3.txt"));
}

void anyOtherPermitIsARefusal(void) {
    host.refuseAt = 1;
    host.refusal = 7;
    guard();
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_STOPPED, run(TEMZ_INSTALL));
    CHECK(!isThere(APP));
}

static void askForOutcomeAndDirectory(const temz_call* call) {
    const int permits = host.permits;
    temz_outcome outcome = usedOutcome();
    (void)call;
    CHECK_NUMBER(TEMZ_OK, temz_get_outcome(host.context, &outcome));
    CHECK_NUMBER(TEMZ_OK, temz_get_directory(host.context, L"System32Folder", NULL, 0, NULL));
    CHECK_NUMBER(TEMZ_IN_CALLBACK, temz_unload(host.context));
    CHECK_NUMBER(permits, host.permits);
}

void permitMayAsk(void) {
    host.inPermit = askForOutcomeAndDirectory;
    guard();
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(6, host.permits);
    CHECK(isThere(APP L"\\3.txt"));
}

void tracerWithNeitherFunctionIsRefused(void) {
    temz_tracer tracer = tracerOfHost();
    tracer.call = NULL;
    guard();
    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, temz_set_tracer(host.context, &tracer));
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(6, host.permits); /* by the tracer that was set before */
}
