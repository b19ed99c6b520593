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
    /// Has programs of these names write at once, and looks at what comes of it.
    void write(const std::vector<std::string>& names) {
        std::vector<Process> writers;
        for (const std::string& name : names) {
            writers.push_back(startWriter(name));
            for (int thread = 0; thread < writingThreads; ++thread)
                for (int line = 0; line < linesOfThread; ++line)
                    missing.insert("[INFO] " + logText(name, thread, line));
        }
        for (const Process& writer : writers)
            waitForEnd(writer);
        for (const std::string& line : log.lines())
            if (missing.erase(line) == 0)
                torn.push_back(line);
    }

    const LogFile log;
    std::set<std::string> missing;
    std::vector<std::string> torn;
};

TEST_F(LogPressureTest, ManyThreadsOfAProcessLoseAndTearNoLine) {
    write({"alone"});

    EXPECT_THAT(torn, IsEmpty());
    EXPECT_THAT(missing, IsEmpty());
}

// Two processes share the file without a word to each other: lines that both write at the same
// moment can be lost or torn. All others aren't.
TEST_F(LogPressureTest, TwoProcessesHarmNoMoreThanTheLinesThatTheyWriteAtOnce) {
    write({"one", "two"});

    const size_t all = size_t{2} * writingThreads * linesOfThread;
    RecordProperty("torn", static_cast<int>(torn.size()));
    RecordProperty("missing", static_cast<int>(missing.size()));
    EXPECT_LT(torn.size(), all / 10);
    EXPECT_LT(missing.size(), all / 10);
}

}  // namespace
