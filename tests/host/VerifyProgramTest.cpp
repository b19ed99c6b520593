// By which program the scripts are run that a verification is about.

#include <gmock/gmock.h>

#include "SetupTest.h"
#include "support/Requirements.h"

using testing::HasSubstr;

namespace {

using VerifyProgramTest = SetupTest;

TEST_F(VerifyProgramTest, IsTheOneBesideTheScriptOrElseThisOne) {
    REQUIRES_WINE("installs a product, and compares the machine");
    ship(L"a.txt", "a");
    for (const wchar_t* folderName : {L"setup\\before", L"setup\\own"}) {
        folder.makeDirectory(folderName);
        writeScript(file("a.txt"));
        std::filesystem::rename(setup(L"install.xml"), folder.path(folderName) + L"\\install.xml");
    }
    ship(L"before\\temz.exe", "no program");

    const ProgramRun run =
        temz(L"verify own\\install.xml --on-this-machine --upgrade-from before\\install.xml");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_THAT(run.output, HasSubstr("--- install " + utf8(setup(L"before\\install.xml")) +
                                      "\nExit code " + std::to_string(ERROR_BAD_EXE_FORMAT) +
                                      "\n--- upgrade " + utf8(setup(L"own\\install.xml")) + "\n"));
    EXPECT_THAT(run.output, HasSubstr("Deleting a.txt\nDone: 1 action.\nExit code 0\n"));
    EXPECT_THAT(run.error, testing::EndsWith("temz: A run has failed.\n"));
}

}  // namespace
