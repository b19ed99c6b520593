#include "Machine.h"

#include "Kernel32.h"

bool isThere(const temz_char* path) {
    return GetFileAttributesW(path) != NO_ATTRIBUTES;
}

bool removeFile(const temz_char* path) {
    return DeleteFileW(path) != 0;
}

static size_t lengthOf(const temz_char* text) {
    size_t length = 0;
    while (text[length] != 0)
        ++length;
    return length;
}

bool isSameText(const temz_char* one, const temz_char* other) {
    while (*one != 0 && *one == *other) {
        ++one;
        ++other;
    }
    return *one == *other;
}

bool endsIn(const temz_char* text, const temz_char* end) {
    const size_t length = lengthOf(text);
    const size_t ending = lengthOf(end);
    return length >= ending && isSameText(text + length - ending, end);
}

void copyText(temz_char* target, size_t capacity, const temz_char* text) {
    size_t length = 0;
    for (; length + 1 < capacity && text[length] != 0; ++length)
        target[length] = text[length];
    target[length] = 0;
}

bool isSameMemory(const void* one, const void* other, size_t size) {
    const unsigned char* const bytes = (const unsigned char*)one;
    const unsigned char* const others = (const unsigned char*)other;
    for (size_t i = 0; i < size; ++i)
        if (bytes[i] != others[i])
            return false;
    return true;
}

bool isFilledWith(unsigned char byte, const void* memory, size_t size) {
    for (size_t i = 0; i < size; ++i)
        if (((const unsigned char*)memory)[i] != byte)
            return false;
    return true;
}

void fillMemory(unsigned char byte, void* memory, size_t size) {
    volatile unsigned char* const bytes = (volatile unsigned char*)memory;
    for (size_t i = 0; i < size; ++i)
        bytes[i] = byte;
}

bool writeText(const temz_char* path, const temz_char* text) {
    static char bytes[8192];
    const int32_t size = WideCharToMultiByte(ACTIVE_CODE_PAGE, 0, text, (int32_t)lengthOf(text),
                                             bytes, sizeof bytes, NULL, NULL);
    const Handle file = CreateFileW(path, WRITE_ACCESS, 0, NULL, CREATE_ANEW, 0, NULL);
    if (size == 0 || file == NO_HANDLE)
        return false;
    uint32_t written = 0;
    const bool done = WriteFile(file, bytes, (uint32_t)size, &written, NULL) != 0;
    return CloseHandle(file) != 0 && done;
}

void enterProgramDirectory(void) {
    temz_char path[TEMZ_TEXT_LENGTH];
    uint32_t end = GetModuleFileNameW(NULL, path, TEMZ_TEXT_LENGTH);
    while (end > 0 && path[end] != L'\\')
        --end;
    path[end] = 0;
    SetCurrentDirectoryW(path);
}

static uint32_t callFunction(void* function) {
    (*(void (**)(void))function)();
    return 0;
}

bool callOnThread(void (*function)(void)) {
    const uint32_t patience = 60000; /* milliseconds */
    const Handle thread = CreateThread(NULL, 0, callFunction, &function, 0, NULL);
    if (thread == NULL)
        return false;
    const bool returned = WaitForSingleObject(thread, patience) == 0;
    CloseHandle(thread);
    return returned;
}
