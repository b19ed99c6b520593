#pragma once

#include <cstddef>
#include <string>

/// How many columns a unit of UTF-16 takes on a terminal, roughly: two for most Asian characters,
/// and for a surrogate pair as a whole.
inline size_t columnsOf(wchar_t unit) {
    constexpr wchar_t firstAsian = 0x2E80;
    const bool endsPair = unit >= 0xDC00 && unit <= 0xDFFF;
    return endsPair ? 0 : unit < firstAsian ? 1 : 2;
}

/// What of a text fits into so many columns of one line, with blanks in place of control
/// characters.
inline std::wstring cutToColumns(const std::wstring& text, size_t columns) {
    std::wstring line;
    for (const wchar_t unit : text) {
        if (columnsOf(unit) > columns)
            break;
        columns -= columnsOf(unit);
        line += unit < L' ' ? L' ' : unit;
    }
    return line;
}

inline size_t columnsOf(const std::wstring& text) {
    size_t columns = 0;
    for (const wchar_t unit : text)
        columns += columnsOf(unit);
    return columns;
}
