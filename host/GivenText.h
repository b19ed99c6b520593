#pragma once

#include <temz/temz.h>

#include <functional>
#include <string>

/// Takes a text that the library gives into a buffer: `give` is called with the buffer, how much it
/// holds, and where the text's length goes. The text is as it was unless the status is TEMZ_OK.
temz_status takeText(
    const std::function<temz_status(temz_char* buffer, size_t capacity, size_t* length)>& give,
    std::wstring& text);
