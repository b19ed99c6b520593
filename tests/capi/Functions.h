#pragma once

#include <temz/temz.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Each function of a context, called with arguments that are as they should be, and what it answers
   without a script and inside a callback of a run. */
typedef struct Function {
    const char* name;
    temz_status (*call)(temz_context* context);
    temz_status withoutScript;
    temz_status insideCallback;
} Function;

/* Without temz_free, after which there is no context any more. */
enum { FUNCTION_COUNT = 11 };
extern const Function functions[FUNCTION_COUNT];

/* Expects one answer of all of them. */
void expectOfAll(temz_status answer, temz_context* context);

#ifdef __cplusplus
}
#endif
