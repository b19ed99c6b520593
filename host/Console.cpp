#include "Console.h"

#include <windows.h>

#include <algorithm>
#include <atomic>

#include "ConsoleWindow.h"
#include "Utf8.h"
#include "WriteBytes.h"

namespace {

HANDLE handleOf(Stream stream) {
    return GetStdHandle(stream == Stream::output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

bool isConsole(HANDLE handle) {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}

/// The bytes that a user types for the end of the input.
constexpr wchar_t endOfInput = 0x1A;

/// Of the console's input; 0 when there is nothing to restore.
std::atomic<DWORD> modeBefore = 0;

std::atomic<DWORD> firstOutputError = ERROR_SUCCESS;

}  // namespace

bool isTerminal(Stream stream) {
    return isConsole(handleOf(stream));
}

bool canShowColours() {
    constexpr DWORD sequences = 0x4;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING, from Windows 10 on
    const HANDLE output = handleOf(Stream::output);
    DWORD mode = 0;
    return GetConsoleMode(output, &mode) && SetConsoleMode(output, mode | sequences);
}

bool canAsk() {
    return isConsole(GetStdHandle(STD_INPUT_HANDLE)) && isTerminal(Stream::error) &&
           isConsoleSeen();
}

void write(Stream stream, const std::wstring& text) {
    const HANDLE handle = handleOf(stream);
    if (handle == nullptr)
        return;
    DWORD written = 0;
    if (isConsole(handle)) {
        // What it doesn't show can't be told on it, either.
        WriteConsoleW(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        return;
    }
    const DWORD error = writeBytes(handle, toUtf8Lines(text));
    DWORD none = ERROR_SUCCESS;
    if (stream == Stream::output)
        firstOutputError.compare_exchange_strong(none, error);
}

unsigned long outputError() {
    return firstOutputError;
}

void writeWithoutMemory(Stream stream, const wchar_t* text) {
    for (; *text != L'\0'; ++text) {
        const char character = static_cast<char>(*text);
        writeBytes(handleOf(stream), *text == L'\n' ? "\r\n" : std::string_view(&character, 1));
    }
}

bool readLine(std::wstring& line) {
    line.clear();
    wchar_t character;
    DWORD read = 0;
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    while (ReadConsoleW(input, &character, 1, &read, nullptr) && read == 1) {
        if (character == L'\n')
            return true;
        if (character == endOfInput)
            return false;
        if (character != L'\r')
            line += character;
    }
    return !line.empty();
}

void dropTypedAhead() {
    FlushConsoleInputBuffer(GetStdHandle(STD_INPUT_HANDLE));
}

QuickEditOff::QuickEditOff() {
    constexpr DWORD quickEdit = 0x40;  // ENABLE_QUICK_EDIT_MODE
    constexpr DWORD extended =
        0x80;  // ENABLE_EXTENDED_FLAGS, without which the other isn't looked at
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(input, &mode) && SetConsoleMode(input, (mode & ~quickEdit) | extended))
        modeBefore = mode | extended;
}

QuickEditOff::~QuickEditOff() {
    restoreConsole();
}

void restoreConsole() {
    if (const DWORD mode = modeBefore.exchange(0))
        SetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), mode);
}

size_t terminalWidth() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    info.dwSize.X = 80;  // where the terminal doesn't tell
    GetConsoleScreenBufferInfo(handleOf(Stream::output), &info);
    return static_cast<size_t>(std::max<SHORT>(info.dwSize.X, 1));
}
