#include "plan/ShadowProcesses.h"

#include "plan/PlanTest.h"
#include "support/Sleeper.h"
#include "system/ProcessOperations.h"
#include "system/ShellCommand.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class ShadowProcessesTest : public PlanTest {
protected:
    const std::wstring program = folder.path(L"tool.exe");
    uint32_t id = 0;
};

TEST_F(ShadowProcessesTest, EndedProcessIsGoneAndLetsGoOfItsProgram) {
    const Sleeper sleeper(program);
    const std::wstring source = folder.write(L"new.exe", "x");
    EXPECT_FALSE(fileCalls.CopyFileW(source.c_str(), program.c_str(), FALSE));
    ASSERT_TRUE(findProcessByPath(id, program.c_str()));

    EXPECT_TRUE(killProcessById(id, 0));

    EXPECT_FALSE(findProcessByPath(id, program.c_str()));
    EXPECT_FALSE(killProcessById(id, 0));
    EXPECT_TRUE(fileCalls.CopyFileW(source.c_str(), program.c_str(), FALSE));
    EXPECT_TRUE(sleeper.isRunning());
    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::processEnded, program),
                                       Pair(ChangeKind::fileReplaced, program)));
}

TEST_F(ShadowProcessesTest, ProgramThatRunsTwiceIsHeldByTheOther) {
    const Sleeper one(program);
    const Sleeper other(program);
    ASSERT_TRUE(findProcessByPath(id, program.c_str()));
    EXPECT_TRUE(killProcessById(id, 0));

    EXPECT_EQ(errorOf(fileCalls.DeleteFileW(program.c_str())), DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(ShadowProcessesTest, ProgramIsNotStarted) {
    placeSleeper(program);

    EXPECT_EQ(runShellCommand(program.c_str(), L"a b", true, false), 0);

    EXPECT_FALSE(findProcessByPath(id, program.c_str()));
    ASSERT_THAT(changes(), ElementsAre(Pair(ChangeKind::programStarted, program)));
    EXPECT_EQ(lastChange().source, L"a b");
    EXPECT_TRUE(lastChange().unforeseeable);
}

TEST_F(ShadowProcessesTest, ProgramThatIsCopiedBeforeCanBeStarted) {
    placeSleeper(program);
    const std::wstring copy = folder.path(L"copy.exe");
    ASSERT_TRUE(fileCalls.CopyFileW(program.c_str(), copy.c_str(), FALSE));

    EXPECT_EQ(runShellCommand(copy.c_str(), L"", true, false), 0);
    EXPECT_EQ(runShellCommand(L"cmd.exe", L"", true, false), 0);
}

TEST_F(ShadowProcessesTest, ProgramThatCannotBeStartedFails) {
    struct Case {
        std::wstring file;
        DWORD error;
    };
    const Case cases[] = {
        {folder.path(L"none.exe"), ERROR_FILE_NOT_FOUND},
        {folder.path(L"none\\none.exe"), ERROR_PATH_NOT_FOUND},
        {L"temz-no-program", ERROR_FILE_NOT_FOUND},
        {folder.write(L"text.exe", "text"), ERROR_BAD_EXE_FORMAT},
        {folder.write(L"a.temz-unknown", "text"), ERROR_NO_ASSOCIATION},
    };
    for (const Case& row : cases) {
        EXPECT_EQ(runShellCommand(row.file.c_str(), L"", true, false), -1);
        EXPECT_EQ(GetLastError(), row.error) << testing::PrintToString(row.file);
    }
    EXPECT_THAT(changes(), IsEmpty());
}

}  // namespace
