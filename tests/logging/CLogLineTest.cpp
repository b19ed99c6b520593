#include "logging/CLogLine.h"

#include <gmock/gmock.h>

#include <atomic>
#include <fstream>
#include <iostream>
#include <limits>
#include <optional>
#include <sstream>
#include <thread>

#include "logging/Log.h"
#include "support/ClassLayout.h"
#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/TestFolder.h"
#include "system/ClockCalls.h"
#include "system/TextCalls.h"

using testing::ElementsAre;
using testing::EndsWith;

namespace {

constexpr size_t largestSize = 3145728;

/// The text of a line that is made of the pieces.
template <class... Pieces>
std::string written(const Pieces&... pieces) {
    const LogFile log;
    writeLog(INFO, pieces...);
    const std::vector<std::string> lines = log.lines();
    return lines.empty() ? "<nothing>" : lines.front().substr(strlen("[INFO] "));
}

/// Takes the standard output for the life of the object.
class StandardOutput final : public std::stringbuf {
public:
    StandardOutput() : screen(std::cout.rdbuf(this)) {}
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;
    ~StandardOutput() override { std::cout.rdbuf(screen); }

    /// All that has been flushed.
    std::string flushed;

private:
    int sync() override {
        flushed = str();
        return 0;
    }

    std::streambuf* const screen;
};

TEST(CLogLineTest, AppendsEachKindOfPiece) {
    EXPECT_EQ(written("narrow"), "narrow");
    EXPECT_EQ(written(L"wide"), "wide");
    EXPECT_EQ(written(std::wstring(L"string")), "string");
    EXPECT_EQ(written(L'w'), "w");
    EXPECT_EQ(written(true), "true");
    EXPECT_EQ(written(false), "false");
    EXPECT_EQ(written(""), "");
    EXPECT_EQ(written(L"a ", 1, " b ", true, L'.'), "a 1 b true.");
}

TEST(CLogLineTest, AppendsIntegersInDecimal) {
    EXPECT_EQ(written(0), "0");
    EXPECT_EQ(written(std::numeric_limits<int16_t>::min()), "-32768");
    EXPECT_EQ(written(std::numeric_limits<uint16_t>::max()), "65535");
    EXPECT_EQ(written(std::numeric_limits<int32_t>::min()), "-2147483648");
    EXPECT_EQ(written(std::numeric_limits<uint32_t>::max()), "4294967295");
    EXPECT_EQ(written(DWORD{0xFFFFFFFF}), "4294967295");
    EXPECT_EQ(written(std::numeric_limits<int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(written(std::numeric_limits<uint64_t>::max()), "18446744073709551615");
}

TEST(CLogLineTest, ConvertsWideTextToTheActiveCodePage) {
    const wchar_t text[] = L"caf\u00E9 \u4E2D";
    char narrow[32];
    WideCharToMultiByte(CP_ACP, 0, text, -1, narrow, sizeof narrow, nullptr, nullptr);

    EXPECT_EQ(written(text), narrow);
    EXPECT_EQ(written(std::wstring(text)), narrow);
}

TEST(CLogLineTest, ShowsNullTextAsNull) {
    EXPECT_EQ(written(static_cast<const char*>(nullptr)), "null");
    EXPECT_EQ(written(static_cast<const wchar_t*>(nullptr)), "null");
}

TEST(CLogLineTest, ShowsWideTextThatCannotBeConvertedAsNull) {
    const FakeCall<textCalls, &TextCalls::WideCharToMultiByte> convert([](auto...) { return 0; });

    EXPECT_EQ(written("(", L"wide", ")"), "(null)");
    EXPECT_EQ(written(std::wstring(L"string")), "null");
    EXPECT_EQ(written(L'w'), "null");
}

TEST(CLogLineTest, InsertionGivesTheVeryLine) {
    CLogLine line;

    EXPECT_EQ(&(line << "a" << L"b" << std::wstring(L"c") << L'd' << true << 1), &line);
}

TEST(CLogLineTest, LeavesNoTraceWithoutALog) {
    const LogFile log;
    const StandardOutput output;
    { CLogLine() << "text"; }

    EXPECT_FALSE(exists(logPath));
    EXPECT_EQ(output.str(), "");
}

TEST(CLogLineTest, IsWrittenAtItsEnd) {
    const LogFile log;
    {
        CLogLine line;
        logWriter.open(INFO, line) << "text";
        EXPECT_FALSE(exists(logPath));
    }
    EXPECT_THAT(log.lines(), ElementsAre("[INFO] text"));
}

TEST(CLogLineTest, IsWrittenAsFarAsItWasComposedBeforeAnException) {
    const LogFile log;
    try {
        CLogLine line;
        logWriter.open(ERROR, line) << "composed";
        throw std::wstring(L"message");
    } catch (const std::wstring&) {
    }
    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] composed"));
}

TEST(CLogLineTest, StandsBehindWhatTheFileHolds) {
    const LogFile log;
    writeFile(logPath, "earlier\r\n");

    writeLog(INFO, "one");
    writeLog(INFO, "two");

    EXPECT_THAT(log.lines(), ElementsAre("earlier", "[INFO] one", "[INFO] two"));
}

TEST(CLogLineTest, IsWrittenToAFileOfExactlyTheLargestSize) {
    const LogFile log;
    const std::string earlier(largestSize, 'x');
    writeFile(logPath, earlier);

    writeLog(INFO, "text");

    const std::string content = readFile(logPath);
    EXPECT_EQ(content.substr(0, content.find('[')), earlier);
    EXPECT_THAT(content, EndsWith("] text\r\n"));
}

TEST(CLogLineTest, IsTheFirstInAFileThatHadGrownPastTheLargestSize) {
    const LogFile log;
    writeFile(logPath, std::string(largestSize + 1, 'x'));

    writeLog(INFO, "text");

    EXPECT_THAT(log.lines(), ElementsAre("[INFO] text"));
}

TEST(CLogLineTest, EmptiesAFileThatSomebodyReads) {
    const LogFile log;
    writeFile(logPath, std::string(largestSize + 1, 'x'));
    const std::ifstream reader(logPath);
    ASSERT_TRUE(reader);

    writeLog(INFO, "text");

    EXPECT_THAT(log.lines(), ElementsAre("[INFO] text"));
}

TEST(CLogLineTest, HoldsNoFileWhileItIsComposed) {
    const LogFile log;
    writeLog(INFO, "deleted");
    {
        CLogLine line;
        logWriter.open(INFO, line) << "text";
        EXPECT_TRUE(DeleteFileW(logPath));
    }
    EXPECT_THAT(log.lines(), ElementsAre("[INFO] text"));
}

TEST(CLogLineTest, HasTheLineEndsOfTheSystemWithinToo) {
    const LogFile log;

    writeLog(INFO, "\none\n\r\ntwo", L"\n");

    EXPECT_THAT(readFile(logPath), EndsWith("] \r\none\r\n\r\r\ntwo\r\n\r\n"));
}

TEST(CLogLineTest, StandsBehindWhatOthersWriteAfterItsFileIsOpen) {
    const LogFile log;
    writeFile(logPath, "earlier\r\n");
    const HANDLE other = CreateFileW(logPath, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                     nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);

    writeLog(INFO, "one");
    DWORD count = 0;
    WriteFile(other, "other\r\n", 7, &count, nullptr);
    writeLog(INFO, "two");
    CloseHandle(other);

    EXPECT_THAT(log.lines(), ElementsAre("earlier", "[INFO] one", "other", "[INFO] two"));
}

TEST(CLogLineTest, IsLostWhileTheFileIsHeldExclusively) {
    const LogFile log;
    const HANDLE file = CreateFileW(logPath, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);

    writeLog(ERROR, "lost");
    CloseHandle(file);
    writeLog(ERROR, "kept");

    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] kept"));
}

TEST(CLogLineTest, GoesToTheStandardOutputWhereThereIsNoPath) {
    const LogFile log;
    StandardOutput output;
    const FakeCall<clockCalls, &ClockCalls::GetLocalTime> noTime([](SYSTEMTIME*) {});
    CLogWriter writer;
    memberAt<std::string>(writer, 0) = "";

    for (const int32_t level : {WARNNING, DEBUG, ERROR}) {
        CLogLine line;
        writer.open(level, line) << " text " << level;
    }

    EXPECT_EQ(output.flushed, "[WARNNING] text 3\n[ERROR] text 4\n");
    EXPECT_FALSE(exists(logPath));
}

/// A second thread that holds the lock of the log until somebody waits for it, or nobody will.
class LockHolder {
public:
    LockHolder() {
        while (!holding)
            std::this_thread::yield();
    }

    /// Whether `step` waits for the lock.
    template <class Step>
    bool isWaitedForIn(Step step) {
        step();
        done = true;
        thread.join();
        return waitedFor;
    }

private:
    void hold() {
        lock.lock();
        const LONG alone = waiting();
        holding = true;
        while (waiting() == alone && !done)
            std::this_thread::yield();
        waitedFor = waiting() != alone;
        lock.unlock();
    }

    LONG waiting() const {
        return static_cast<const volatile CRITICAL_SECTION&>(section).LockCount;
    }

    CLogFileSyn& lock = memberAt<CLogFileSyn>(logWriter, 40);
    const CRITICAL_SECTION& section = memberAt<CRITICAL_SECTION>(lock, 8);
    std::atomic<bool> holding = false;
    std::atomic<bool> done = false;
    bool waitedFor = false;
    std::thread thread{[this] { hold(); }};
};

TEST(CLogLineTest, IsComposedWhileAnotherThreadWrites) {
    const LogFile log;
    CLogLine line;

    EXPECT_FALSE(LockHolder().isWaitedForIn(
        [&] { logWriter.open(INFO, line) << "text" << L"wide" << L'w' << true << 1; }));
}

TEST(CLogLineTest, WaitsForItsTurnToBeWritten) {
    const LogFile log;
    std::optional<CLogLine> line(std::in_place);
    logWriter.open(INFO, *line) << "text";

    EXPECT_TRUE(LockHolder().isWaitedForIn([&] { line.reset(); }));

    EXPECT_THAT(log.lines(), ElementsAre("[INFO] text"));
}

TEST(CLogLineTest, WaitsForNothingWhenItIsDropped) {
    std::optional<CLogLine> line(std::in_place);
    logWriter.open(DEBUG, *line) << "text";

    EXPECT_FALSE(LockHolder().isWaitedForIn([&] { line.reset(); }));
}

TEST(CLogLineTest, LeavesTheLockAsItFoundIt) {
    auto& lock = memberAt<CLogFileSyn>(logWriter, 40);
    const auto& section = memberAt<CRITICAL_SECTION>(lock, 8);
    const LogFile log;

    writeLog(INFO, "text");

    EXPECT_EQ(section.RecursionCount, 0);
}

// Each of the lines could be the one that empties the file; only the first may.
TEST(CLogLineTest, IsWrittenByOneThreadAtATime) {
    constexpr int threadCount = 8;
    for (int round = 0; round < 10; ++round) {
        const LogFile log;
        writeFile(logPath, std::string(largestSize + 1, 'x'));
        {
            std::atomic<int> missing = threadCount;
            std::vector<std::jthread> threads;
            for (int thread = 0; thread < threadCount; ++thread)
                threads.emplace_back([&] {
                    for (--missing; missing > 0;)
                        std::this_thread::yield();
                    writeLog(INFO, "text");
                });
        }
        EXPECT_EQ(log.lines(), std::vector<std::string>(threadCount, "[INFO] text"));
    }
}

}  // namespace
