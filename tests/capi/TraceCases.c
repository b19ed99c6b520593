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
