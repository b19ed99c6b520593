/* A library of custom actions, as their author would write it: in C, with the public header. */

#include <temz/CustomAction.h>

#include <string.h>
#include <windows.h>

#include "support/ActionCall.h"

#define EXPORTED __declspec(dllexport)
#define IS_ENTRY(function) _Generic(&function, CustomActionEntry : 1, default : 0)

/* Notes what it is given, and gives back what the test wants. */
EXPORTED uint32_t answer(CustomActionParams* params, wchar_t* message, uint32_t capacity) {
    ActionCall* const call = (ActionCall*)(uintptr_t)params->observerData;
    ++call->calls;
    memcpy(call->params, params, sizeof call->params);
    memcpy(call->message, message, sizeof call->message);
    call->capacity = capacity;
    call->thread = GetCurrentThreadId();
    if (call->text)
        memcpy(message, call->text, call->textLength * sizeof *message);
    return call->result;
}

/* Tells how often it has been called since the library was loaded. */
EXPORTED uint32_t countCalls(CustomActionParams* params, wchar_t* message, uint32_t capacity) {
    static uint32_t calls = 0;
    (void)params;
    (void)message;
    (void)capacity;
    return ++calls;
}

static_assert(IS_ENTRY(answer), "a custom action's function");
static_assert(IS_ENTRY(countCalls), "a custom action's function");
