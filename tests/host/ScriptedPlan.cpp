#include "ScriptedPlan.h"

Step stepOf(uint32_t kind, uint32_t depth, const wchar_t* element, const wchar_t* object,
            const wchar_t* detail) {
    Step step;
    step.kind = kind;
    step.depth = depth;
    step.line = 7;
    step.element = element;
    step.object = object;
    step.detail = detail;
    return step;
}

Step changeOf(uint32_t code, uint32_t depth, const wchar_t* object, const wchar_t* before,
              const wchar_t* after) {
    Step step = stepOf(TEMZ_STEP_CHANGE, depth, L"File", object);
    step.code = code;
    step.before = before;
    step.after = after;
    return step;
}

Plan scriptedPlan() {
    Plan plan;
    plan.header = {L"1.2.3", L"10.0.19045", L"upgrade", L"C:\\setup\\install.xml", L"0a1b", {}};

    Step feature = stepOf(TEMZ_STEP_GROUP, 0, L"Feature");
    feature.id = L"Main";
    Step isTrue = stepOf(TEMZ_STEP_CONDITION, 1, L"Condition", L"OS_BIT E 64", L"OS_BIT = 64");
    isTrue.holds = true;
    Step replaced = changeOf(TEMZ_CHANGE_FILE_REPLACED, 2, L"C:\\app\\a.exe", L"1.3.0, 800 KB",
                             L"1.4.0, 812 KB");
    replaced.bytes = 812 * 1024;
    replaced.bytesBefore = 800 * 1024;
    Step waiting = changeOf(TEMZ_CHANGE_FILE_AT_RESTART, 2, L"C:\\app\\sync.dll", L"1 KB", L"2 KB");
    waiting.bytes = 2048;
    waiting.holders = {L"sync.exe (4312)"};
    Step isFalse = stepOf(TEMZ_STEP_CONDITION, 1, L"Condition", L"SETTINGS E 0", L"SETTINGS = 1");
    isFalse.elements = 2;
    isFalse.files = 1;
    Step search = stepOf(TEMZ_STEP_SEARCH, 0, L"FileSearch", L"C:\\b.dll", L"B = 1");
    search.after = L"2.0";
    search.holds = true;
    Step announced = stepOf(TEMZ_STEP_ACTION, 1, L"File", L"gone.txt");
    announced.code = TEMZ_ACTION_DELETE_FILE;
    Step program = changeOf(TEMZ_CHANGE_PROGRAM_STARTED, 1, L"C:\\sc.exe");
    program.detail = L"create <x>";
    program.unforeseeable = true;
    Step failure = stepOf(TEMZ_STEP_FAILURE, 1, L"ServiceControl");
    failure.failure.code = TEMZ_ACTION_START_SERVICE;
    failure.failure.what = L"Starting service X";
    failure.failure.why = L"there is no such service";
    failure.failure.systemError = 1060;
    failure.fate = TEMZ_FAILURE_VITAL;
    Step leftOut = stepOf(TEMZ_STEP_LEFT_OUT, 0, L"Fragment", L"uninstall");
    leftOut.elements = 3;

    plan.steps = {feature,
                  isTrue,
                  stepOf(TEMZ_STEP_ELEMENT, 2, L"File"),
                  replaced,
                  stepOf(TEMZ_STEP_ELEMENT, 2, L"File"),
                  waiting,
                  isFalse,
                  search,
                  stepOf(TEMZ_STEP_ELEMENT, 1, L"File"),
                  announced,
                  stepOf(TEMZ_STEP_ELEMENT, 1, L"ShellExcute"),
                  program,
                  stepOf(TEMZ_STEP_ELEMENT, 1, L"ServiceControl"),
                  failure,
                  leftOut};
    return plan;
}
