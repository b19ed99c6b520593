#include "Cases.h"
#include "Host.h"

#define CHECKED_FILE FOLDER L"\\checked.xml"
#define WITHOUT_FAULTS SCRIPT(L"<Fragment><Caution Title='Mind the gap'/></Fragment>")
/* An element that the engine doesn't know, on the second line. */
#define WITH_A_FAULT                                         \
    L"<Script><Product><InstallExecuteSequence><Fragment>\n" \
    L"<Cautoin Title='Mind the gap'/></Fragment></InstallExecuteSequence></Product></Script>"

/* What a check has told: how many findings, and the first that is called so. */
typedef struct Told {
    const temz_char* wanted;
    int count;
    int wantedCount;
    uint32_t line;
    uint32_t column;
    uint32_t length;
    uint32_t endsRun;
    temz_severity severity;
    temz_char file[64];
    temz_char text[200];
    temz_char help[200];
    temz_char sourceLine[100];
    temz_status answerInside;
} Told;

static void hearFinding(void* user, const temz_finding* finding) {
    Told* const told = (Told*)user;
    temz_context* context = NULL;
    CHECK_NUMBER(sizeof *finding, finding->size);
    ++told->count;
    told->answerInside = temz_create(&context);
    if (!isSameText(finding->code, told->wanted) || told->wantedCount++ > 0)
        return;
    told->line = finding->line;
    told->column = finding->column;
    told->length = finding->length;
    told->endsRun = finding->ends_run;
    told->severity = finding->severity;
    copyText(told->file, 64, finding->file);
    copyText(told->text, 200, finding->text);
    copyText(told->help, 200, finding->help);
    copyText(told->sourceLine, 100, finding->source_line);
}

static temz_check_request requestFor(Told* told) {
    temz_check_request request;
    fillMemory(0, told, sizeof *told);
    fillMemory(0, &request, sizeof request);
    told->wanted = L"TZ203";
    request.size = sizeof request;
    request.script = CHECKED_FILE;
    request.user = told;
    request.finding = hearFinding;
    return request;
}

void checkTellsWhatIsWrongAndWhere(void) {
    Told told;
    const temz_check_request request = requestFor(&told);
    CHECK(writeText(CHECKED_FILE, WITH_A_FAULT));

    CHECK_NUMBER(TEMZ_OK, temz_check(&request));

    CHECK_NUMBER(1, told.wantedCount);
    CHECK_NUMBER(TEMZ_SEVERITY_ERROR, told.severity);
    CHECK_NUMBER(1, told.endsRun);
    CHECK_NUMBER(2, told.line);
    CHECK_NUMBER(1, told.column);
    CHECK_NUMBER(8, told.length);
    CHECK_TEXT(CHECKED_FILE, told.file);
    CHECK(endsIn(told.text, L"`Fragment`."));
    CHECK(endsIn(told.help, L"`Caution`?"));
    CHECK(endsIn(told.sourceLine, L"</Script>"));
    CHECK_NUMBER(TEMZ_IN_CALLBACK, told.answerInside);
}

void checkOfAScriptWithoutFaultsTellsNone(void) {
    Told told;
    const temz_check_request request = requestFor(&told);
    CHECK(writeText(CHECKED_FILE, WITHOUT_FAULTS));

    CHECK_NUMBER(TEMZ_OK, temz_check(&request));

    CHECK_NUMBER(0, told.wantedCount);
}

void checkRunsNothing(void) {
    Told told;
    const temz_check_request request = requestFor(&told);
    CHECK(writeText(CHECKED_FILE, THREE_FILES));

    CHECK_NUMBER(TEMZ_OK, temz_check(&request));

    CHECK(!isThere(APP));
    CHECK_NUMBER(TEMZ_OK, load(THREE_FILES));
    CHECK_NUMBER(TEMZ_OK, temz_check(&request));
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
}

void checkNeedsAFileThatCanBeRead(void) {
    Told told;
    temz_check_request request = requestFor(&told);
    request.script = FOLDER L"\\missing.xml";
    CHECK_NUMBER(TEMZ_NOT_READABLE, temz_check(&request));
    CHECK(writeText(CHECKED_FILE, WITHOUT_FAULTS));
    request.script = CHECKED_FILE;
    request.previous = FOLDER L"\\missing.xml";
    CHECK_NUMBER(TEMZ_NOT_READABLE, temz_check(&request));
    request.previous = NULL;
    request.payload = FOLDER L"\\missing";
    CHECK_NUMBER(TEMZ_NOT_READABLE, temz_check(&request));
    CHECK_NUMBER(0, told.count);
}

void misusedChecksAreTold(void) {
    Told told;
    temz_check_request request = requestFor(&told);
    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, temz_check(NULL));
    request.script = NULL;
    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, temz_check(&request));
    request = requestFor(&told);
    request.finding = NULL;
    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, temz_check(&request));
    request = requestFor(&told);
    request.size = sizeof request - 1;
    CHECK_NUMBER(TEMZ_BAD_SIZE, temz_check(&request));
    CHECK_NUMBER(0, told.count);
}

static void checkInside(const temz_outcome* now) {
    Told told;
    const temz_check_request request = requestFor(&told);
    (void)now;
    CHECK_NUMBER(TEMZ_IN_CALLBACK, temz_check(&request));
}

void checkInsideARunIsRefused(void) {
    CHECK_NUMBER(TEMZ_OK, load(ONE_CAUTION));
    host.inUpdate = checkInside;
    CHECK_NUMBER(TEMZ_OK, run(TEMZ_INSTALL));
    CHECK_NUMBER(1, host.updates);
}

void eachKindOfFindingCanBeAsked(void) {
    temz_finding_kind kind;
    temz_char before[8] = L"";
    uint32_t count = 0;
    fillMemory(0, &kind, sizeof kind);
    kind.size = sizeof kind;
    for (; temz_get_finding_kind(count, &kind) == TEMZ_OK; ++count) {
        CHECK(kind.severity >= TEMZ_SEVERITY_ERROR && kind.severity <= TEMZ_SEVERITY_NOTE);
        CHECK(kind.code[0] == 'T' && kind.code[1] == 'Z' && kind.code[5] == 0);
        CHECK(!isSameText(before, kind.code));
        CHECK(endsIn(kind.meaning, L"."));
        CHECK(endsIn(kind.remedy, L"."));
        copyText(before, 8, kind.code);
    }
    CHECK(count > 20);
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_finding_kind(count, &kind));
    CHECK_NUMBER(TEMZ_NOT_FOUND, temz_get_finding_kind(UINT32_MAX, &kind));
    CHECK_NUMBER(TEMZ_NULL_ARGUMENT, temz_get_finding_kind(0, NULL));
    kind.size = sizeof kind - 1;
    CHECK_NUMBER(TEMZ_BAD_SIZE, temz_get_finding_kind(0, &kind));
}
