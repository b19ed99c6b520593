// Runs a program at a terminal of its own, for tests: types what a user would, and writes down what
// is on the screen in the end. The exit code is the program's.
//
//     temz_terminal SCREEN_FILE TYPED PROGRAM [ARGUMENTS]...
//
// TYPED holds a comma for each press of the Enter key, Z for Ctrl+Z. What stands in front of a bar
// is typed before the program starts; of the rest one line as soon as each question stands there.
// Nothing but a C is Ctrl+C, pressed as soon as the program has written a line.
// It has to be started with a console, and fails when the program leaves that without QuickEdit.

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <iterator>
#include <string>
#include <utility>

namespace {

constexpr SHORT columns = 80;

HANDLE openConsole(const wchar_t* name) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                       &inherited, OPEN_EXISTING, 0, nullptr);
}

void type(HANDLE input, const std::wstring& text) {
    for (const wchar_t character : text) {
        INPUT_RECORD key{};
        key.EventType = KEY_EVENT;
        key.Event.KeyEvent.bKeyDown = TRUE;
        key.Event.KeyEvent.wRepeatCount = 1;
        key.Event.KeyEvent.wVirtualKeyCode = character == L',' ? VK_RETURN : 0;
        key.Event.KeyEvent.uChar.UnicodeChar = character == L','   ? L'\r'
                                               : character == L'Z' ? L'\x1A'
                                                                   : character;
        DWORD written = 0;
        WriteConsoleInputW(input, &key, 1, &written);
    }
}

/// Answers each question as soon as the cursor stands behind it.
class Answers {
public:
    Answers(std::wstring lines, HANDLE input, HANDLE output)
        : lines(std::move(lines)), input(input), output(output) {}

    void giveIfAsked() {
        CONSOLE_SCREEN_BUFFER_INFO info{};
        GetConsoleScreenBufferInfo(output, &info);
        const SHORT row = info.dwCursorPosition.Y;
        if (lines == L"C" && row > 0) {
            lines.clear();
            GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
        }
        if (row <= answeredRow || info.dwCursorPosition.X != std::size(question) - 1)
            return;
        wchar_t text[std::size(question)] = {};
        DWORD read = 0;
        ReadConsoleOutputCharacterW(output, text, std::size(question) - 1, {0, row}, &read);
        if (std::wcscmp(text, question) != 0)
            return;
        answeredRow = row;
        const size_t end = lines.find(L',');
        if (end == std::wstring::npos)
            return;
        type(input, lines.substr(0, end + 1));
        lines.erase(0, end + 1);
    }

private:
    static constexpr wchar_t question[] = L"Retry, abort or ignore? [r/a/i] ";

    std::wstring lines;
    HANDLE input;
    HANDLE output;
    SHORT answeredRow = -1;
};

DWORD run(std::wstring command, HANDLE input, HANDLE output, Answers answers) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input;
    startup.hStdOutput = startup.hStdError = output;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &process))
        return GetLastError();
    constexpr DWORD pollInterval = 5;
    constexpr ULONGLONG patience = 30'000;
    const ULONGLONG start = GetTickCount64();
    while (WaitForSingleObject(process.hProcess, pollInterval) == WAIT_TIMEOUT) {
        answers.giveIfAsked();
        if (GetTickCount64() - start > patience)
            TerminateProcess(process.hProcess, WAIT_TIMEOUT);
    }
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

/// Ctrl+C is for the program alone.
BOOL WINAPI outlive(DWORD) {
    return TRUE;
}

// As the user of a console has it, who finds it so again.
constexpr DWORD quickEdit = 0x40;
constexpr DWORD extendedFlags = 0x80;

void setQuickEdit(HANDLE input) {
    DWORD mode = 0;
    GetConsoleMode(input, &mode);
    SetConsoleMode(input, mode | quickEdit | extendedFlags);
}

bool isQuickEdit(HANDLE input) {
    DWORD mode = 0;
    return GetConsoleMode(input, &mode) && (mode & quickEdit) != 0;
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
    SetConsoleCtrlHandler(&outlive, TRUE);
    const std::wstring typed = arguments[2];
    const size_t bar = typed.find(L'|');
    if (bar != std::wstring::npos)
        type(input, typed.substr(0, bar));
    setQuickEdit(input);
    const DWORD exitCode =
        run(joinCommand(arguments + 3, arguments + count), input, output,
            {typed.substr(bar == std::wstring::npos ? 0 : bar + 1), input, output});
    if (!isQuickEdit(input))
        return ERROR_INVALID_STATE;
    if (!writeUtf8(arguments[1], readScreen(output)))
        return ERROR_WRITE_FAULT;
    return static_cast<int>(exitCode);
}
