#include "Functions.h"

#include "Host.h"

static temz_status callLoad(temz_context* context) {
    return temz_load(context, L"missing.xml");
}

static temz_status callSetObserver(temz_context* context) {
    const temz_observer observer = observerOfHost();
    return temz_set_observer(context, &observer);
}

static temz_status callSetTracer(temz_context* context) {
    return temz_set_tracer(context, NULL);
}

static temz_status callSetActionValue(temz_context* context) {
    return temz_set_action_value(context, (uint64_t)(uintptr_t)&host.action);
}

static temz_status callRun(temz_context* context) {
    return temz_run(context, TEMZ_INSTALL, NULL);
}

static temz_status callPlan(temz_context* context) {
    return temz_plan(context, TEMZ_INSTALL, NULL, NULL);
}

static temz_status callGetOutcome(temz_context* context) {
    temz_outcome outcome = usedOutcome();
    return temz_get_outcome(context, &outcome);
}

static temz_status callLastFailure(temz_context* context) {
    temz_char text[TEMZ_TEXT_LENGTH];
    return temz_last_failure(context, text, TEMZ_TEXT_LENGTH, NULL);
}

static temz_status callGetVariable(temz_context* context) {
    temz_char text[TEMZ_TEXT_LENGTH];
    return temz_get_variable(context, L"TEXT", text, TEMZ_TEXT_LENGTH, NULL);
}

static temz_status callGetDirectory(temz_context* context) {
    temz_char text[TEMZ_TEXT_LENGTH];
    return temz_get_directory(context, L"System32Folder", text, TEMZ_TEXT_LENGTH, NULL);
}

const Function functions[FUNCTION_COUNT] = {
    {"temz_load", callLoad, TEMZ_LOAD_FAILED, TEMZ_IN_CALLBACK},
    {"temz_unload", temz_unload, TEMZ_OK, TEMZ_IN_CALLBACK},
    {"temz_set_observer", callSetObserver, TEMZ_OK, TEMZ_OK},
    {"temz_set_tracer", callSetTracer, TEMZ_OK, TEMZ_OK},
    {"temz_set_action_value", callSetActionValue, TEMZ_OK, TEMZ_OK},
    {"temz_run", callRun, TEMZ_NOT_LOADED, TEMZ_IN_CALLBACK},
    {"temz_plan", callPlan, TEMZ_NOT_LOADED, TEMZ_IN_CALLBACK},
    {"temz_get_outcome", callGetOutcome, TEMZ_NOT_LOADED, TEMZ_OK},
    {"temz_last_failure", callLastFailure, TEMZ_OK, TEMZ_OK},
    {"temz_get_variable", callGetVariable, TEMZ_NOT_LOADED, TEMZ_OK},
    {"temz_get_directory", callGetDirectory, TEMZ_NOT_LOADED, TEMZ_OK},
};

void expectOfAll(temz_status answer, temz_context* context) {
    for (int i = 0; i < FUNCTION_COUNT; ++i)
        checkNumber(answer, functions[i].call(context), functions[i].name, __FILE__, __LINE__);
}
