/* The custom actions of the example product, and the model of one: a small library in plain C. */

#include <stdio.h>
#include <temz/CustomAction.h>
#include <wchar.h>

/* Codes of our own; a script that says Return="check" makes them failures. */
enum { WELCOMED = 0, CANT_WRITE = 1, CANT_DELETE = 2 };

static void pathOfWelcome(const CustomActionParams* params, char* path, size_t size) {
    snprintf(path, size, "%swelcome.txt", params->applicationRootDirectory);
}

static uint32_t fail(uint32_t code, const wchar_t* reason, wchar_t* message, uint32_t capacity) {
    wcsncpy(message, reason, capacity - 1);
    return code;
}

/* Leaves a file beside the product that tells what it was installed on. */
__declspec(dllexport) uint32_t
    Welcome(CustomActionParams* params, wchar_t* message, uint32_t capacity) {
    char path[512];
    pathOfWelcome(params, path, sizeof path);
    FILE* file = fopen(path, "w");
    if (!file)
        return fail(CANT_WRITE, L"welcome.txt can't be written.", message, capacity);
    fprintf(file, "Welcome to Windows %u.%u, %s-bit.\n", params->osMajorVersion,
            params->osMinorVersion, params->is64Bit ? "64" : "32");
    return fclose(file) == 0
               ? WELCOMED
               : fail(CANT_WRITE, L"welcome.txt can't be written.", message, capacity);
}

/* Takes the file away again. */
__declspec(dllexport) uint32_t
    Farewell(CustomActionParams* params, wchar_t* message, uint32_t capacity) {
    char path[512];
    pathOfWelcome(params, path, sizeof path);
    return remove(path) == 0
               ? WELCOMED
               : fail(CANT_DELETE, L"welcome.txt can't be deleted.", message, capacity);
}
