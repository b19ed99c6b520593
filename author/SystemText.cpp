#include "author/SystemText.h"

#include <windows.h>

#include <iterator>

std::wstring systemText(uint32_t code) {
    wchar_t buffer[512];
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                       buffer, static_cast<DWORD>(std::size(buffer)), nullptr);
    std::wstring text(buffer, length);
    text.erase(text.find_last_not_of(L"\r\n ") + 1);
    return text;
}

std::wstring systemTextWithCode(uint32_t code) {
    const std::wstring text = systemText(code);
    return (text.empty() ? text : text + L" ") + L"[error " + std::to_wstring(code) + L"]";
}
