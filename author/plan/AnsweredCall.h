#pragma once

#include <windows.h>

/// Names a call of a call table. A shadow answers it by an overload:
///
///     BOOL answer(Call<&FileCalls::DeleteFileW>, const wchar_t* path);
template <auto member>
struct Call {};

/// The answer of a call that tells by true or false how it went, and by the last error why.
inline BOOL answerOf(DWORD error) {
    if (error != ERROR_SUCCESS)
        SetLastError(error);
    return error == ERROR_SUCCESS;
}
