// The host program where Windows doesn't give it UTF-8; run under the code pages 1252 and 936.

#include <gmock/gmock.h>
#include <windows.h>

#include "SetupTest.h"
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
