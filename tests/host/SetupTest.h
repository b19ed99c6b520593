#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "HostProgram.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

/// What a program has left when it ended.
struct ProgramRun {
    unsigned long exitCode;
    std::string output;
    std::string error;
};

/// A test with a setup as it is shipped: the host program, the engine, and the files of a script in
/// one folder.
class SetupTest : public testing::Test {
protected:
    SetupTest();

    /// Runs temz.exe in the setup's folder, with its streams in files and an empty input.
    ProgramRun temz(const std::wstring& arguments) const;

    /// The same where the user isn't an administrator.
    ProgramRun temzNotElevated(const std::wstring& arguments) const;

    /// Starts temz.exe in the setup's folder, without streams.
    HandlePtr startTemz(const std::wstring& arguments, DWORD flags = 0) const;

    /// Runs temz.exe at a terminal of 80 columns on which these lines are typed. What is on the
    /// screen in the end is the output. A shell may be put in place of the program.
    ProgramRun temzAtTerminal(const std::wstring& arguments, const std::wstring& typed = {}) const;
    ProgramRun atTerminal(const std::wstring& commandLine, const std::wstring& typed = {}) const;

    /// Runs temz.exe at a console that nobody sees, since it has no window.
    ProgramRun temzWithoutWindow(const std::wstring& arguments, const std::wstring& typed) const;

    /// Writes install.xml with one component, which holds the elements and installs into app().
    void writeScript(const std::string& elements, const std::wstring& name = L"install.xml") const;

    /// Writes install.xml with these elements as all that it does.
    void writeSequence(const std::string& elements) const;

    /// A script that calls a function of the start probe, with the setup's folder as the
    /// application's, and then has the elements.
    std::string actionScript(const std::string& function, const std::string& elements) const;

    /// The line that tells from where to where a file goes.
    std::string places(const std::string& name) const;

    /// What temz.exe tells about a file that it couldn't copy, and about one that isn't there.
    std::string copyFailed(const std::string& name, const std::string& why, unsigned long error,
                           const std::string& advice) const;
    std::string missing(const std::string& name) const;

    /// Something in the folder of the setup, or in the directory into which the scripts install.
    std::wstring setup(const std::wstring& name) const { return folder.path(L"setup\\" + name); }
    std::wstring app(const std::wstring& name) const { return folder.path(L"app\\" + name); }

    /// Writes a file of the setup that the scripts can install.
    void ship(const std::wstring& name, std::string_view content) const;

    /// The files in the installed directory, with their contents.
    std::map<std::wstring, std::string> installedFiles() const;

    const TestFolder folder;

private:
    ProgramRun temzAs(HANDLE user, const std::wstring& arguments) const;

    using Start = std::function<HandlePtr(const std::wstring& commandLine)>;

    /// Has a terminal run a program; `start` starts the terminal at its console.
    ProgramRun runTerminal(const std::wstring& commandLine, const std::wstring& typed,
                           const Start& start) const;
    std::wstring temzCommand(const std::wstring& arguments) const;
};

/// An element `File` that installs the file of the setup with this name.
std::string file(const std::string& name, const std::string& attributes = {});

/// The system's message for an error code, without a line end.
std::wstring systemMessage(unsigned long code);

/// What is written to a file or a pipe, whose lines end as those of Windows, with plain line ends.
std::string withoutReturns(const std::string& text);

/// The message and the code as temz.exe tells them: "Access denied. [error 5]".
std::string systemError(unsigned long code);

std::wstring wide(const std::string& text);
std::string utf8(const std::wstring& text);
