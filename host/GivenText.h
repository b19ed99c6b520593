#pragma once

#include <temz/temz.h>

#include <string>

/// Takes a text that the library gives into a buffer: `give` is called with the buffer, how much it
/// holds, and where the text's length goes. The text is as it was unless the status is TEMZ_OK.
template <class Give>
temz_status takeText(const Give& give, std::wstring& text) {
    size_t length = 0;
    temz_status status = give(nullptr, 0, &length);
    if (status != TEMZ_OK)
        return status;
    std::wstring given(length, L'\0');
    status = give(given.data(), given.size(), &length);
    if (status != TEMZ_OK)
        return status;
    given.pop_back();  // the zero at its end counts
    text = std::move(given);
    return TEMZ_OK;
}
