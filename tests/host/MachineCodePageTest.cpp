// The host program where Windows doesn't give it UTF-8; run under the code pages 1252 and 936.

#include <gmock/gmock.h>
#include <windows.h>

#include "SetupTest.h"

using testing::IsEmpty;

namespace {

class MachineCodePageTest : public SetupTest {
protected:
    MachineCodePageTest() {
        std::filesystem::copy_file(testProgramDirectory() + L"\\temz_without_manifest.exe",
                                   setup(L"temz.exe"),
                                   std::filesystem::copy_options::overwrite_existing);
    }
};

TEST_F(MachineCodePageTest, IsOneOfThoseThatTheTestsAreMadeFor) {
    EXPECT_TRUE(GetACP() == 936 || GetACP() == 1252) << GetACP();
}

TEST_F(MachineCodePageTest, LeadsToNoOtherScriptThanTheOneThatItCannotName) {
    ship(L"a.txt", "a");
    writeScript(file("a.txt"), L"A.xml");
    writeScript(file("a.txt"), L"\u0100.xml");  // which in many code pages becomes an A

    const ProgramRun run = temz(L"install \u0100.xml");

    EXPECT_EQ(run.exitCode, 1619u);
    EXPECT_EQ(run.error,
              "temz: \u0100.xml can't be opened: Its name isn't in the active code page.\n");
    EXPECT_THAT(installedFiles(), IsEmpty());
}

}  // namespace
