#pragma once

#include <stddef.h>
#include <stdint.h>

/* What a test and its action library tell each other: observerData points at it. Also for C. */
typedef struct ActionCall {
    /* What the function returns, and the characters that it writes: only these, without a
       terminator of its own; none for null. */
    uint32_t result;
    const wchar_t* text;
    size_t textLength;

    /* What the function was called with, and how often. */
    unsigned calls;
    unsigned char params[280];
    wchar_t message[1024];
    uint32_t capacity;
    uint32_t thread;
} ActionCall;
