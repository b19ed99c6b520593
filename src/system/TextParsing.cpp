#include "system/TextParsing.h"

#include <algorithm>
#include <cwchar>
#include <limits>
#include <new>

namespace {

constexpr int32_t delimiterCount = 4;

bool isDigit(wchar_t character) {
    return character >= L'0' && character <= L'9';
}

WideText copyText(const wchar_t* begin, const wchar_t* end) {
    const auto length = static_cast<size_t>(end - begin);
    WideText copy(new (std::nothrow) wchar_t[length + 1]);
    if (copy) {
        wmemcpy(copy.get(), begin, length);
        copy[length] = L'\0';
    }
    return copy;
}

/// Whether text and delimiter are the same as far as the shorter one goes.
bool matches(const wchar_t* text, const wchar_t* delimiter) {
    while (*text && *delimiter)
        if (*text++ != *delimiter++)
            return false;
    return true;
}

/// The number of the first delimiter that stands at `text`, or -1.
int32_t delimiterAt(const wchar_t* text, const wchar_t* const* delimiters) {
    for (int32_t number = 0; number < delimiterCount; ++number)
        if (matches(text, delimiters[number]))
            return number;
    return -1;
}

}  // namespace

bool parseIntText(const wchar_t* text, int32_t& value) {
    if (text == nullptr)
        return false;
    const bool negative = *text == L'-';
    const wchar_t* digits = negative ? text + 1 : text;
    if (*digits == L'\0' || !std::all_of(digits, digits + wcslen(digits), isDigit))
        return false;

    using Limits = std::numeric_limits<int32_t>;
    const int64_t limit = negative ? -int64_t{Limits::min()} : int64_t{Limits::max()};
    int64_t magnitude = 0;
    for (; *digits; ++digits)
        magnitude = std::min(magnitude * 10 + (*digits - L'0'), limit);
    value = static_cast<int32_t>(negative ? -magnitude : magnitude);
    return true;
}

WideText nextPiece(const wchar_t* text, const wchar_t* const* delimiters, size_t /*count*/,
                   const wchar_t*& rest, int32_t& index) {
    const wchar_t* source = text ? text : rest;
    if (source == nullptr || *source == L'\0')
        return nullptr;

    // No further than to the end of the piece: a long text is cut in one pass over all its pieces.
    const wchar_t* end = source;
    int32_t found = -1;
    while (*end && (found = delimiterAt(end, delimiters)) < 0)
        ++end;

    if (end == source) {
        index = found;
        rest = source + wcsnlen(source, wcslen(delimiters[found]));
        return copyText(source, rest);
    }
    index = -1;
    rest = *end ? end : nullptr;
    return copyText(source, end);
}
