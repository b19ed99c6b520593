#include "Cases.h"
#include "Host.h"

/* A load that fails, with the text of the last failure. */
static void expectFailure(const temz_char* text, const temz_char* script) {
    temz_char failure[TEMZ_TEXT_LENGTH] = L"as it was";
    CHECK_NUMBER(TEMZ_LOAD_FAILED, load(script));
    CHECK_NUMBER(TEMZ_OK, temz_last_failure(host.context, failure, TEMZ_TEXT_LENGTH, NULL));
    CHECK_TEXT(text, failure);
    CHECK_NUMBER(TEMZ_NOT_LOADED, run(TEMZ_INSTALL));
}

void missingFileFailsWithoutAWord(void) {
    size_t length = 0;
    CHECK_NUMBER(TEMZ_LOAD_FAILED, load(L"<Script/>"));
    CHECK_NUMBER(TEMZ_LOAD_FAILED, temz_load(host.context, FOLDER L"\\missing.xml"));
    CHECK_NUMBER(TEMZ_LOAD_FAILED, temz_load(host.context, L""));
    CHECK_NUMBER(TEMZ_OK, temz_last_failure(host.context, NULL, 0, &length));
    CHECK_NUMBER(1, length);
}

void fileThatIsNoXmlFailsWithoutAWord(void) {
    expectFailure(L"", L"<Script><Product>");
    expectFailure(L"", L"MZ");
}

void scriptNestedTooDeepFailsWithoutAWord(void) {
    enum { DEPTH = 257, OPENING = 3, CLOSING = 4 };
    static temz_char script[DEPTH * (OPENING + CLOSING) + 1];
    temz_char* end = script;
    for (int i = 0; i < DEPTH; ++i, end += OPENING)
        copyText(end, OPENING + 1, L"<a>");
    for (int i = 0; i < DEPTH; ++i, end += CLOSING)
        copyText(end, CLOSING + 1, L"</a>");
    expectFailure(L"", script);
}

void scriptWithoutProductTellsSo(void) {
    expectFailure(L"There is no Product element.", L"<Script/>");
}

void failedLoadLeavesNothingBehind(void) {
    temz_char text[8];
    expectFailure(L"There is no Product element.",
                  L"<Script><Variable Id='GONE' Type='string' Value='x'/></Script>");
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_variable(host.context, L"GONE", text, 8, NULL));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
}

void relativePathCountsFromCurrentDirectory(void) {
    CHECK_NUMBER(TEMZ_OK, temz_load(host.context, L"install.xml"));
    CHECK_NUMBER(TEMZ_OK, temz_unload(host.context));
    CHECK_NUMBER(TEMZ_OK, temz_load(host.context, L".\\install.xml"));
}

void unloadForgetsScriptAndOutcome(void) {
    temz_outcome outcome = usedOutcome();
    CHECK_NUMBER(TEMZ_OK, load(ONE_ACTION));
    host.action.result = 5;
    CHECK_NUMBER(TEMZ_RUN_FAILED, run(TEMZ_INSTALL));
    CHECK_NUMBER(TEMZ_OK, temz_unload(host.context));
    CHECK_NUMBER(TEMZ_OK, temz_unload(host.context));
    CHECK_NUMBER(TEMZ_NOT_LOADED, temz_get_outcome(host.context, &outcome));

    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    CHECK_NUMBER(TEMZ_OK, temz_get_outcome(host.context, &outcome));
    CHECK_NUMBER(0, outcome.result);
    CHECK_NUMBER(0, outcome.error.code);
}

void unloadKeepsObserverTracerAndActionValue(void) {
    trace();
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    CHECK_NUMBER(TEMZ_OK, temz_unload(host.context));
    CHECK_NUMBER(TEMZ_OK, load(ONE_ACTION));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(1, host.updates);
    CHECK(host.calls > 0);
    CHECK_NUMBER(1, host.action.calls);
}
