#include "system/TextFields.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>

static_assert(sizeof(wchar_t) == 2, "wide text is UTF-16");

namespace {

constexpr size_t recordTextLength = 512;
constexpr UINT invalidParameterStatus = 0xC0000417;

/// The length of a text, or `limit` if it has no end before. Nothing behind the end is read.
size_t lengthWithin(size_t limit, const wchar_t* text) {
    return wcsnlen(text, limit);
}
size_t lengthWithin(size_t limit, const char* text) {
    return strnlen(text, limit);
}

template <class Character>
void copyWhole(Character* field, size_t capacity, const Character* text) {
    if (field == nullptr || text == nullptr)
        failInvalidParameter();
    const size_t length = lengthWithin(capacity, text);
    if (length == capacity)
        failInvalidParameter();
    std::copy_n(text, length + 1, field);
}

}  // namespace

// Not the runtime's own handler: some runtimes only return an error where others end the process.
void failInvalidParameter() {
    TerminateProcess(GetCurrentProcess(), invalidParameterStatus);
    std::abort();
}

void copyBounded(wchar_t* field, size_t capacity, const wchar_t* text) {
    copyWhole(field, capacity, text);
}

void copyBounded(char* field, size_t capacity, const char* text) {
    copyWhole(field, capacity, text);
}

void copyCut(wchar_t* field, size_t capacity, const wchar_t* text) {
    const size_t length = wcsnlen(text, capacity - 1);
    wmemcpy(field, text, length);
    field[length] = L'\0';
}

void assignText(std::wstring& target, const wchar_t* text) {
    target = text ? text : L"";
}

void copyFieldText(wchar_t* target, size_t /*size*/, const wchar_t* text) {
    if (target && text)
        copyCut(target, recordTextLength, text);
}
