#include <gmock/gmock.h>
#include <windows.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "pressure/LogText.h"
#include "support/LogFile.h"
#include "support/TestFolder.h"

using testing::IsEmpty;

namespace {

struct CloseProcess {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Process = std::unique_ptr<void, CloseProcess>;

Process startWriter(const std::string& name) {
    const std::wstring program = testProgramDirectory() + L"\\temz_log_lines.exe";
    std::wstring commandLine = L"temz_log_lines " + std::wstring(name.begin(), name.end());
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE,
                               DETACHED_PROCESS, nullptr, nullptr, &startup, &process));
    CloseHandle(process.hThread);
    return Process(process.hProcess);
}

void waitForEnd(const Process& process) {
    DWORD exitCode = 1;
    EXPECT_EQ(WaitForSingleObject(process.get(), 120'000), WAIT_OBJECT_0);
    GetExitCodeProcess(process.get(), &exitCode);
    EXPECT_EQ(exitCode, 0u);
}

class LogPressureTest : public testing::Test {
protected:
    const LogFile log;
};

TEST_F(LogPressureTest, ManyThreadsOfTwoProcessesLoseAndTearNoLine) {
    const std::string names[] = {"one", "two"};
    std::vector<Process> writers;
    std::set<std::string> missing;
    for (const std::string& name : names) {
        writers.push_back(startWriter(name));
        for (int thread = 0; thread < writingThreads; ++thread)
            for (int line = 0; line < linesOfThread; ++line)
                missing.insert("[INFO] " + logText(name, thread, line));
    }
    for (const Process& writer : writers)
        waitForEnd(writer);

    std::vector<std::string> torn;
    for (const std::string& line : log.lines())
        if (missing.erase(line) == 0)
            torn.push_back(line);

    EXPECT_THAT(torn, IsEmpty());
    EXPECT_THAT(missing, IsEmpty());
}

}  // namespace
