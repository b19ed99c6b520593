#pragma once

#include <windows.h>

/// The Win32 calls of the text conversions; see FileCalls for the use of such a table.
struct TextCalls {
    decltype(&::MultiByteToWideChar) MultiByteToWideChar = ::MultiByteToWideChar;
    decltype(&::WideCharToMultiByte) WideCharToMultiByte = ::WideCharToMultiByte;
};

inline TextCalls textCalls;
