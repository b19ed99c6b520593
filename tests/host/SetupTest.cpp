#include "SetupTest.h"

#include <windows.h>

#include "PseudoConsole.h"
#include "support/Requirements.h"

namespace fs = std::filesystem;

SetupTest::SetupTest() {
    // The first program that asks for it has Wine start one that shows it, which inherits the
    // streams and so would keep their files.
    GetDesktopWindow();
    folder.makeDirectory(L"setup");
    for (const wchar_t* program : {L"temz.exe", L"TEMZC.dll"})
        fs::copy_file(fs::path(testProgramDirectory()) / program, setup(program));
}

ProgramRun SetupTest::temz(const std::wstring& arguments) const {
    return temzAs(nullptr, arguments);
}

ProgramRun SetupTest::temzNotElevated(const std::wstring& arguments) const {
    EXPECT_TRUE(runsUnderWine());
    return temzAs(userWithoutElevation().get(), arguments);
}

ProgramRun SetupTest::temzAs(HANDLE user, const std::wstring& arguments) const {
    const std::wstring outputPath = folder.path(L"output.txt");
    const std::wstring errorPath = folder.path(L"error.txt");
    DWORD exitCode;
    {
        const HandlePtr input = openInput(L"NUL");
        const HandlePtr output = openOutput(outputPath);
        const HandlePtr error = openOutput(errorPath);
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        const HandlePtr process =
            startProgram(temzCommand(arguments), folder.path(L"setup"),
                         {input.get(), output.get(), error.get()}, 0, startup, user);
        exitCode = waitForProgram(process.get());
    }
    return {exitCode, withoutReturns(readFile(outputPath)), withoutReturns(readFile(errorPath))};
}

HandlePtr SetupTest::startTemz(const std::wstring& arguments, DWORD flags) const {
    return startProgram(temzCommand(arguments), folder.path(L"setup"), {}, flags);
}

ProgramRun SetupTest::temzAtTerminal(const std::wstring& arguments,
                                     const std::wstring& typed) const {
    return atTerminal(temzCommand(arguments), typed);
}

ProgramRun SetupTest::atTerminal(const std::wstring& commandLine, const std::wstring& typed) const {
    const PseudoConsole console;
    return runTerminal(commandLine, typed, [&](const std::wstring& terminal) {
        return console.start(terminal, folder.path(L"setup"));
    });
}

ProgramRun SetupTest::temzWithoutWindow(const std::wstring& arguments,
                                        const std::wstring& typed) const {
    return runTerminal(temzCommand(arguments), typed, [&](const std::wstring& terminal) {
        return startProgram(terminal, folder.path(L"setup"), {}, CREATE_NO_WINDOW);
    });
}

ProgramRun SetupTest::runTerminal(const std::wstring& commandLine, const std::wstring& typed,
                                  const Start& start) const {
    EXPECT_TRUE(runsUnderWine());
    const std::wstring screen = folder.write(L"screen.txt", "");
    const std::wstring terminal = testProgramDirectory() + L"\\temz_terminal.exe";
    const HandlePtr process =
        start(L"\"" + terminal + L"\" \"" + screen + L"\" \"" + typed + L"\" " + commandLine);
    const DWORD exitCode = waitForProgram(process.get());
    return {exitCode, readFile(screen), ""};
}

std::wstring SetupTest::temzCommand(const std::wstring& arguments) const {
    return L"\"" + setup(L"temz.exe") + L"\" " + arguments;
}

void SetupTest::writeScript(const std::string& elements, const std::wstring& name) const {
    folder.write(L"setup\\" + name,
                 "<Script><Product><Directory Path='" + utf8(folder.path(L"app")) +
                     "'><Component Id='All'>" + elements +
                     "</Component></Directory><InstallExecuteSequence><Feature>"
                     "<ComponentRef Id='All'/></Feature></InstallExecuteSequence></Product>"
                     "</Script>");
}

void SetupTest::ship(const std::wstring& name, std::string_view content) const {
    folder.write(L"setup\\" + name, content);
}

std::map<std::wstring, std::string> SetupTest::installedFiles() const {
    std::map<std::wstring, std::string> files;
    if (exists(folder.path(L"app")))
        for (const auto& entry : fs::directory_iterator(folder.path(L"app")))
            files[entry.path().filename().wstring()] = readFile(entry.path().wstring());
    return files;
}

void SetupTest::writeSequence(const std::string& elements) const {
    ship(L"install.xml", "<Script><Product><InstallExecuteSequence><Fragment>" + elements +
                             "</Fragment></InstallExecuteSequence></Product></Script>");
}

std::string SetupTest::actionScript(const std::string& function,
                                    const std::string& elements) const {
    return "<Script><Product><Directory Id='APPLICATIONROOTDIRECTORY' Path='" +
           utf8(folder.path(L"setup")) + "'/><Directory Path='" + utf8(folder.path(L"app")) +
           "'><Component Id='All'>" + elements +
           "</Component></Directory><InstallExecuteSequence><Fragment><CustomAction DllFile='" +
           utf8(testProgramDirectory()) + "\\temz_start_probe.dll' DllEntry='" + function +
           "' Return='check'/></Fragment><Feature><ComponentRef Id='All'/></Feature>"
           "</InstallExecuteSequence></Product></Script>";
}

std::string SetupTest::places(const std::string& name) const {
    return "      from " + utf8(setup(wide(name))) + " to " + utf8(app(wide(name))) + "\n";
}

std::string SetupTest::copyFailed(const std::string& name, const std::string& why,
                                  unsigned long error, const std::string& advice) const {
    return "temz: Copying " + name + " failed: " + why + ". [error " + std::to_string(error) +
           "]\n" + places(name) + "      " + advice + "\n";
}

std::string SetupTest::missing(const std::string& name) const {
    return copyFailed(
        name, "the file to copy isn't there", ERROR_FILE_NOT_FOUND,
        "Put it where the script's Source says, counted from the folder of temz.exe.");
}

std::string withoutReturns(const std::string& text) {
    std::string lines;
    for (const char character : text) {
        const bool afterReturn = lines.ends_with('\r');
        EXPECT_EQ(character == '\n', afterReturn) << text;
        if (afterReturn)
            lines.pop_back();
        lines += character;
    }
    return lines;
}

std::string file(const std::string& name, const std::string& attributes) {
    return "<File Name='" + name + "' Source='" + name + "' " + attributes + "/>";
}

std::wstring systemMessage(unsigned long code) {
    wchar_t text[512];
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                        nullptr, code, 0, text, 512, nullptr);
    const std::wstring message(text, length);
    return message.substr(0, message.find_last_not_of(L"\r\n ") + 1);
}

std::string systemError(unsigned long code) {
    return utf8(systemMessage(code)) + " [error " + std::to_string(code) + "]";
}

std::wstring wide(const std::string& text) {
    return fs::path(std::u8string(text.begin(), text.end())).wstring();
}

std::string utf8(const std::wstring& text) {
    const std::u8string converted = fs::path(text).u8string();
    return {converted.begin(), converted.end()};
}
