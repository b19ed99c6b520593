#include "GivenText.h"

#include <utility>

temz_status takeText(
    const std::function<temz_status(temz_char* buffer, size_t capacity, size_t* length)>& give,
    std::wstring& text) {
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
