#include "plan/ShadowProcesses.h"

#include "plan/PlanTest.h"
#include "support/FakeCall.h"
#include "support/Sleeper.h"
#include "support/TemporaryKey.h"
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
        {folder.write(L"no-extension", "text"), ERROR_NO_ASSOCIATION},
    };
    for (const Case& row : cases) {
        EXPECT_EQ(runShellCommand(row.file.c_str(), L"", true, false), -1);
        EXPECT_EQ(GetLastError(), row.error) << testing::PrintToString(row.file);
    }
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ShadowProcessesTest, WhatTheShellOpensByItselfCanBeStarted) {
    for (const std::wstring& path :
         {folder.makeDirectory(L"directory"), folder.write(L"a.bat", "")}) {
        EXPECT_EQ(runShellCommand(path.c_str(), nullptr, true, false), 0);
        EXPECT_EQ(lastChange().object, path);
        EXPECT_EQ(lastChange().source, L"");
    }
}

TEST_F(ShadowProcessesTest, ProgramIsFoundByTheNameUnderWhichItIsRegistered) {
    placeSleeper(program);
    const TemporaryKey key(
        HKEY_CURRENT_USER,
        L"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\temz-registered.exe");
    key.set(nullptr, nullptr, program);

    EXPECT_EQ(runShellCommand(L"temz-registered", L"", true, false), 0);

    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::programStarted, program)));
}

TEST_F(ShadowProcessesTest, ProcessThatCannotBeOpenedFailsAsTheSystemsDoes) {
    EXPECT_EQ(errorOf(processCalls.OpenProcess(PROCESS_TERMINATE, FALSE, 0)),
              DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(errorOf(processCalls.TerminateProcess(nullptr, 0)), DWORD{ERROR_INVALID_HANDLE});
}

TEST_F(ShadowProcessesTest, ProcessEndsOnceForWhoeverHasItOpen) {
    const Sleeper sleeper(program);
    const HANDLE one =
        processCalls.OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, sleeper.id());
    const HANDLE other = processCalls.OpenProcess(PROCESS_TERMINATE, FALSE, sleeper.id());
    EXPECT_EQ(processCalls.WaitForSingleObject(one, 0), DWORD{WAIT_TIMEOUT});

    EXPECT_TRUE(processCalls.TerminateProcess(one, 0));

    EXPECT_EQ(errorOf(processCalls.TerminateProcess(other, 0)), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(processCalls.WaitForSingleObject(one, INFINITE), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(processCalls.WaitForSingleObject(other, INFINITE), DWORD{WAIT_FAILED});
    EXPECT_EQ(changes().size(), 1u);
    for (const HANDLE process : {one, other})
        EXPECT_TRUE(processCalls.CloseHandle(process));
}

TEST_F(ShadowProcessesTest, WaitForAnythingElseIsTheSystems) {
    const HANDLE event = CreateEventW(nullptr, TRUE, TRUE, nullptr);
    EXPECT_EQ(processCalls.WaitForSingleObject(event, INFINITE), DWORD{WAIT_OBJECT_0});
    EXPECT_TRUE(processCalls.CloseHandle(event));
}

TEST(ShadowProcesses, FirstProcessIsPassedOverOnceItHasEnded) {
    const DWORD own = GetCurrentProcessId();
    const FakeCall<processCalls, &ProcessCalls::Process32FirstW> first(
        [&](HANDLE, PROCESSENTRY32W* process) {
            process->th32ProcessID = own;
            return TRUE;
        });
    const FakeCall<processCalls, &ProcessCalls::Process32NextW> next(
        [&](HANDLE, PROCESSENTRY32W* process) {
            process->th32ProcessID = own + 1;
            return TRUE;
        });
    PlannedChanges planned;
    Rehearsal rehearsal(planned);
    const CallWrapper<Rehearsal> wrapper(rehearsal);
    PROCESSENTRY32W process{};
    EXPECT_TRUE(processCalls.Process32FirstW(nullptr, &process));
    EXPECT_EQ(process.th32ProcessID, own);

    const HANDLE opened = processCalls.OpenProcess(PROCESS_TERMINATE, FALSE, own);
    EXPECT_TRUE(processCalls.TerminateProcess(opened, 0));

    EXPECT_TRUE(processCalls.Process32FirstW(nullptr, &process));
    EXPECT_EQ(process.th32ProcessID, own + 1);
    EXPECT_TRUE(processCalls.CloseHandle(opened));
}

}  // namespace
