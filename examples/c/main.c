/* A host in C, with the header alone: installs what install.xml describes, tells of each action and
   of each call to the system, and removes it again. */

#include <locale.h>
#include <stdio.h>
#include <temz/temz.h>
#include <wchar.h>

/* An action is about to be carried out. */
static temz_answer update(void* user, const temz_outcome* now) {
    (void)user;
    printf("%3u%% %ls %ls\n", now->progress, now->action.text1, now->action.text2);
    return TEMZ_CONTINUE;
}

/* A vital action has failed. A host with a user asks him here: retry, abort or ignore? */
static temz_answer ask(void* user, const temz_outcome* now) {
    (void)user;
    printf("Action %u has failed (%u): %ls %ls\n", now->error.code, now->error.system_error,
           now->error.text1, now->error.message);
    return TEMZ_ABORT;
}

/* A call to the system has returned, or a line goes to the log. */
static void show(void* user, const temz_call* call) {
    (void)user;
    if (wcscmp(call->group, L"log") == 0) {
        printf("       %ls\n", call->arguments[0]);
        return;
    }
    printf("       %ls: %ls(", call->group, call->name);
    for (uint32_t i = 0; i < call->argument_count; ++i)
        printf(i == 0 ? "%ls" : ", %ls", call->arguments[i]);
    printf(") = %ls", call->result);
    if (call->failed)
        printf(", error %u", call->system_error);
    printf("\n");
}

/* Passes a status on, and tells of one that isn't success. */
static temz_status told(const char* step, temz_status status) {
    if (status != TEMZ_OK)
        printf("%s: %ls\n", step, temz_status_text(status));
    return status;
}

static temz_status load(temz_context* context, const temz_char* script) {
    const temz_status status = told("Load", temz_load(context, script));
    temz_char reason[TEMZ_TEXT_LENGTH];
    if (status == TEMZ_LOAD_FAILED &&
        temz_last_failure(context, reason, TEMZ_TEXT_LENGTH, NULL) == TEMZ_OK)
        printf("%ls\n", reason);
    return status;
}

static temz_status run(temz_context* context, temz_mode mode, const char* step) {
    temz_outcome outcome = {.size = sizeof outcome};
    const temz_status status = told(step, temz_run(context, mode, &outcome));
    if (status == TEMZ_RUN_FAILED)
        printf("%ls\n", outcome.error.message);
    if (status == TEMZ_OK && outcome.restart)
        printf("Restart the machine to complete this.\n");
    return status;
}

static temz_status installAndRemove(temz_context* context) {
    const temz_observer observer = {.size = sizeof observer, .update = update, .ask = ask};
    const temz_tracer tracer = {.size = sizeof tracer, .call = show};
    temz_status status = told("Observer", temz_set_observer(context, &observer));
    if (status == TEMZ_OK)
        status = told("Tracer", temz_set_tracer(context, &tracer));
    if (status == TEMZ_OK)
        status = load(context, L"install.xml");
    if (status == TEMZ_OK)
        status = run(context, TEMZ_INSTALL, "Install");
    if (status == TEMZ_OK)
        status = run(context, TEMZ_UNINSTALL, "Uninstall");
    return status;
}

int main(void) {
    temz_context* context = NULL;
    setlocale(LC_ALL, "");
    temz_status status = told("Version", temz_check_version(TEMZ_VERSION));
    if (status == TEMZ_OK)
        status = told("Create", temz_create(&context));
    if (status == TEMZ_OK)
        status = installAndRemove(context);
    temz_free(context);
    if (status != TEMZ_OK)
        return 1;
    printf("Installed and removed.\n");
    return 0;
}
