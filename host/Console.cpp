#include "Console.h"

#include <windows.h>

#include "ConsoleWindow.h"

namespace {

HANDLE handleOf(Stream stream) {
    return GetStdHandle(stream == Stream::output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

bool isConsole(HANDLE handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}

std::string toUtf8(const std::wstring& text) {
    const int units = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), units, utf8.data(), size, nullptr, nullptr);
    return utf8;
}

}  // namespace

bool isTerminal(Stream stream) {
    return isConsole(handleOf(stream));
}

bool canAsk() {
    return isConsole(GetStdHandle(STD_INPUT_HANDLE)) && isTerminal(Stream::error) &&
           isConsoleSeen();
}

void write(Stream stream, const std::wstring& text) {
    const HANDLE handle = handleOf(stream);
    DWORD written = 0;
    if (isConsole(handle)) {
        WriteConsoleW(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        return;
    }
    const std::string utf8 = toUtf8(text);
    WriteFile(handle, utf8.data(), static_cast<DWORD>(utf8.size()), &written, nullptr);
}

bool readLine(std::wstring& line) {
    line.clear();
    wchar_t character;
    DWORD read = 0;
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    while (ReadConsoleW(input, &character, 1, &read, nullptr) && read == 1) {
        if (character == L'\n')
            return true;
        if (character != L'\r')
            line += character;
    }
    return !line.empty();
}

size_t terminalWidth() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    constexpr size_t usual = 80;
    if (!GetConsoleScreenBufferInfo(handleOf(Stream::output), &info) || info.dwSize.X < 1)
        return usual;
    return static_cast<size_t>(info.dwSize.X);
}
