#include "Utf8.h"

#include <windows.h>

std::string toUtf8(const std::wstring& text) {
    const int units = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), units, utf8.data(), size, nullptr, nullptr);
    return utf8;
}

std::string toUtf8Lines(const std::wstring& text) {
    std::wstring lines;
    for (const wchar_t character : text)
        lines += character == L'\n' ? std::wstring(L"\r\n") : std::wstring(1, character);
    return toUtf8(lines);
}

std::wstring fromUtf8(const std::string& text) {
    const int bytes = static_cast<int>(text.size());
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, nullptr, 0);
    std::wstring wide(static_cast<size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, wide.data(), size);
    return wide;
}
