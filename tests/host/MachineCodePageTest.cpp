// The host program where Windows doesn't give it UTF-8; run under the code pages 1252 and 936.

#include <gmock/gmock.h>
#include <windows.h>

#include "SetupTest.h"
#include "host/LoadedScript.h"
#include "host/ScriptFile.h"
#include "support/Requirements.h"
#include "support/Text.h"

using testing::ElementsAre;
using testing::Pair;

namespace {

class MachineCodePageTest : public SetupTest {
protected:
    void SetUp() override { REQUIRES_CODE_PAGE(1252, 936); }

    MachineCodePageTest() {
        std::filesystem::copy_file(testProgramDirectory() + L"\\temz_without_manifest.exe",
                                   setup(L"temz.exe"),
                                   std::filesystem::copy_options::overwrite_existing);
    }
};

TEST_F(MachineCodePageTest, IsWarnedOfWhereItMatters) {
    const std::wstring name = L"M\u00FCsli.txt";
    ship(L"a.txt", "a");
    for (const std::string& bytes : {narrow(name), utf8(name)}) {
        writeScript("<!-- " + bytes + " -->" + file("a.txt"));

        const ProgramRun run = temz(L"install install.xml");

        EXPECT_EQ(run.exitCode, 0u);
        EXPECT_EQ(run.error,
                  "temz: install.xml may be misread: It isn't all ASCII, and the active code page "
                  "is " +
                      std::to_string(GetACP()) + ".\n");
        EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
    }
}

TEST_F(MachineCodePageTest, IsNotWarnedOfWhereItDoesNotMatter) {
    ship(L"a.txt", "a");
    writeScript(file("a.txt"));
    const std::string script = readFile(setup(L"install.xml"));
    for (const std::string mark : {"", "\xEF\xBB\xBF"}) {
        ship(L"install.xml", mark + script);

        const ProgramRun run = temz(L"install install.xml");

        EXPECT_EQ(run.exitCode, 0u);
        EXPECT_EQ(run.error, "");
    }
}

TEST_F(MachineCodePageTest, LeadsToAScriptInAFolderThatItCannotName) {
    ship(L"a.txt", "a");
    writeScript(file("a.txt"));
    folder.makeDirectory(L"setup\\\u0100");
    std::filesystem::rename(setup(L"install.xml"), setup(L"\u0100\\install.xml"));

    // The other files of a command stay where they are.
    for (const wchar_t* command :
         {L"plan \u0100\\install.xml --out a.plan", L"install \u0100\\install.xml --plan a.plan"}) {
        const ProgramRun run = temz(command);
        EXPECT_EQ(run.exitCode, 0u) << run.error;
    }

    EXPECT_TRUE(exists(setup(L"a.plan")));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
}

TEST_F(MachineCodePageTest, LeadsNowhereWhereThereIsNoFolder) {
    EXPECT_EQ(findLoadablePath(folder.path(L"\u0100\\install.xml")), L"");
}

TEST_F(MachineCodePageTest, LeadsNowhereWhereNoNameIsShortEnough) {
    // The system's calls take a path of any length when it begins so.
    std::wstring directory = L"\\\\?\\" + folder.path(L"long");
    std::vector<std::wstring> directories;
    for (; directory.size() < MAX_PATH + 100; directory += L"\\folder")
        directories.push_back(directory);
    for (const std::wstring& one : directories)
        ASSERT_TRUE(CreateDirectoryW(one.c_str(), nullptr));
    const std::wstring script = directories.back() + L"\\\u0100.xml";
    HandlePtr(CreateFileW(script.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));

    LoadProblem problem;
    EXPECT_FALSE(loadScript(script, problem));
    EXPECT_EQ(problem.ending, Ending::scriptNotOpened);
    EXPECT_EQ(problem.text, script + L" can't be opened: its name isn't in the active code page.");

    DeleteFileW(script.c_str());
    for (; !directories.empty(); directories.pop_back())
        RemoveDirectoryW(directories.back().c_str());
}

TEST_F(MachineCodePageTest, LeadsToNoOtherScriptThanTheOneThatItCannotName) {
    REQUIRES_WINE("has a short name for each file");
    ship(L"a.txt", "a");
    ship(L"b.txt", "b");
    writeScript(file("a.txt"), L"A.xml");
    writeScript(file("b.txt"), L"\u0100.xml");  // which in many code pages becomes an A

    EXPECT_EQ(temz(L"install \u0100.xml").exitCode, 0u);

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"b.txt", "b")));
}

}  // namespace
