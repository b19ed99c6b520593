#pragma once

#include <windows.h>

#include "system/CallTable.h"

/// The Win32 calls of the text conversions.
#define TEMZ_TEXT_CALLS(CALL) \
    CALL(MultiByteToWideChar) \
    CALL(WideCharToMultiByte)
TEMZ_CALL_TABLE(TextCalls, textCalls, "text", TEMZ_TEXT_CALLS, TEMZ_WIN32_CALL)
