#include "JsonLine.h"

#include "Console.h"

std::wstring quotedForJson(const std::wstring& text) {
    constexpr wchar_t digits[] = L"0123456789abcdef";
    std::wstring json = L"\"";
    for (const wchar_t unit : text) {
        if (unit == L'"' || unit == L'\\') {
            json += L'\\';
            json += unit;
        } else if (unit < L' ') {
            json += L"\\u00";
            json += digits[unit >> 4];
            json += digits[unit & 15];
        } else {
            json += unit;
        }
    }
    return json + L"\"";
}

JsonLine::~JsonLine() {
    write(Stream::output, L"{" + members + L"}\n");
}
