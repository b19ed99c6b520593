#include "support/Text.h"

#include <windows.h>

#include <iterator>

std::string narrow(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    std::string bytes(text.size() * 4, '\0');
    bytes.resize(WideCharToMultiByte(CP_ACP, 0, text.data(), length, bytes.data(),
                                     static_cast<int>(bytes.size()), nullptr, nullptr));
    return bytes;
}

std::wstring systemMessage(uint32_t code) {
    wchar_t text[512];
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, text,
                                        static_cast<DWORD>(std::size(text)), nullptr);
    return {text, length};
}
