/* The program around the cases, with a C runtime or, where TEMZ_BARE is defined, without any. */

#include "Cases.h"
#include "Kernel32.h"
#include "Machine.h"

/* Leaves a file until all is done: a program that ends before can't pass for one that succeeded. */
static int runWatched(void) {
    temz_char unfinished[TEMZ_TEXT_LENGTH] = {0};
    GetEnvironmentVariableW(L"TEST_PREMATURE_EXIT_FILE", unfinished, TEMZ_TEXT_LENGTH);
    const Handle file = CreateFileW(unfinished, WRITE_ACCESS, 0, NULL, CREATE_ANEW, 0, NULL);
    if (file != NO_HANDLE)
        CloseHandle(file);
    enterProgramDirectory();
    const int failed = runCases();
    DeleteFileW(unfinished);
    return failed == 0 ? 0 : 1;
}

#ifdef TEMZ_BARE

/* What the compiler itself calls. */
void* memset(void* target, int byte, size_t size) {
    fillMemory((unsigned char)byte, target, size);
    return target;
}

void* memcpy(void* target, const void* source, size_t size) {
    volatile unsigned char* const bytes = target;
    for (size_t i = 0; i < size; ++i)
        bytes[i] = ((const unsigned char*)source)[i];
    return target;
}

void start(void) {
    ExitProcess((uint32_t)runWatched());
}

#else

int main(void) {
    return runWatched();
}

#endif
