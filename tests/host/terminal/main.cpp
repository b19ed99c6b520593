// Runs a program at a terminal of its own, for tests: types what a user would, and writes down what
// is on the screen in the end. The exit code is the program's.
//
//     temz_terminal SCREEN_FILE TYPED PROGRAM [ARGUMENTS]...
//
// TYPED holds a comma for each press of the Enter key. It has to be started with a console.

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>

namespace {

constexpr SHORT columns = 80;

HANDLE openConsole(const wchar_t* name) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                       &inherited, OPEN_EXISTING, 0, nullptr);
}

void type(HANDLE input, const wchar_t* text) {
    for (; *text; ++text) {
        INPUT_RECORD key{};
        key.EventType = KEY_EVENT;
        key.Event.KeyEvent.bKeyDown = TRUE;
        key.Event.KeyEvent.wRepeatCount = 1;
        key.Event.KeyEvent.wVirtualKeyCode = *text == L',' ? VK_RETURN : 0;
        key.Event.KeyEvent.uChar.UnicodeChar = *text == L',' ? L'\r' : *text;
        DWORD written = 0;
        WriteConsoleInputW(input, &key, 1, &written);
    }
}

DWORD run(std::wstring command, HANDLE input, HANDLE output) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input;
    startup.hStdOutput = startup.hStdError = output;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &process))
        return GetLastError();
    constexpr DWORD patience = 30'000;
    if (WaitForSingleObject(process.hProcess, patience) != WAIT_OBJECT_0)
        TerminateProcess(process.hProcess, WAIT_TIMEOUT);
    DWORD exitCode = 0;
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &exitCode);
    return exitCode;
}

/// The lines up to the cursor, without the blanks at their ends.
std::wstring readScreen(HANDLE output) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    GetConsoleScreenBufferInfo(output, &info);
    std::wstring screen;
    for (SHORT row = 0; row <= info.dwCursorPosition.Y; ++row) {
        wchar_t line[columns];
        DWORD read = 0;
        ReadConsoleOutputCharacterW(output, line, columns, {0, row}, &read);
        screen.append(line, read);
        screen.erase(screen.find_last_not_of(L' ') + 1);
        screen += L'\n';
    }
    screen.pop_back();
    return screen;
}

std::wstring joinCommand(wchar_t** begin, wchar_t** end) {
    std::wstring command;
    for (wchar_t** argument = begin; argument != end; ++argument) {
        const std::wstring quote = std::wcschr(*argument, L' ') ? L"\"" : L"";
        command += quote + *argument + quote + L" ";
    }
    return command;
}

bool writeUtf8(const wchar_t* path, const std::wstring& text) {
    const int units = static_cast<int>(text.size());
    std::string bytes(text.size() * 3, '\0');
    bytes.resize(
        static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), units, bytes.data(),
                                                static_cast<int>(bytes.size()), nullptr, nullptr)));
    std::FILE* file = _wfopen(path, L"wb");
    return file && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() &&
           std::fclose(file) == 0;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    if (count < 4)
        return ERROR_INVALID_PARAMETER;
    const HANDLE input = openConsole(L"CONIN$");
    const HANDLE output = openConsole(L"CONOUT$");
    type(input, arguments[2]);
    const DWORD exitCode = run(joinCommand(arguments + 3, arguments + count), input, output);
    if (!writeUtf8(arguments[1], readScreen(output)))
        return ERROR_WRITE_FAULT;
    return static_cast<int>(exitCode);
}
