#include "logging/CLogWriter.h"

#include <gmock/gmock.h>

#include "logging/CLogLine.h"
#include "logging/Log.h"
#include "support/ClassLayout.h"
#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/ScriptTest.h"
#include "system/ClockCalls.h"

using testing::ElementsAre;

namespace {

/// A clock that stands still at `local`.
class FakeClock {
public:
    explicit FakeClock(const SYSTEMTIME& local) : local(local) {}

    SYSTEMTIME local;

private:
    FakeCall<clockCalls, &ClockCalls::GetLocalTime> getTime{
        [this](SYSTEMTIME* now) { *now = local; }};
};

constexpr SYSTEMTIME november{2026, 11, 6, 14, 7, 5, 9, 123};
constexpr SYSTEMTIME february{2026, 2, 2, 3, 12, 30, 45, 999};

TEST(CLogWriterTest, HoldsPathLargestSizeLockAndThreshold) {
    CLogWriter writer;

    EXPECT_EQ(memberAt<std::string>(writer, 0), "C:\\InstallLog\\temz.log");
    EXPECT_EQ(memberAt<int32_t>(writer, 32), 3145728);
    EXPECT_EQ(memberAt<int32_t>(writer, 40 + sizeof(CLogFileSyn)), 2);
    EXPECT_EQ(sizeof(CLogWriter), 40 + sizeof(CLogFileSyn) + 8);
}

TEST(CLogWriterTest, OpenedLineHoldsItsFieldsTheLockAndTheLevel) {
    constexpr size_t path = sizeof(std::string);
    constexpr size_t lock = path + sizeof(const char*) + 8;
    CLogLine line;
    EXPECT_STREQ(memberAt<const char*>(line, path), "");
    EXPECT_EQ(memberAt<CLogSyn*>(line, lock), nullptr);
    EXPECT_EQ(memberAt<int32_t>(line, lock + 8), 1);
    EXPECT_EQ(memberAt<int32_t>(line, lock + 12), 0);

    CLogWriter writer;
    writer.open(DEBUG, line);

    EXPECT_STREQ(memberAt<const char*>(line, path), "C:\\InstallLog\\temz.log");
    EXPECT_EQ(memberAt<int32_t>(line, path + sizeof(const char*)), 3145728);
    EXPECT_EQ(memberAt<CLogSyn*>(line, lock), &memberAt<CLogFileSyn>(writer, 40));
    EXPECT_EQ(memberAt<int32_t>(line, lock + 8), 2);
    EXPECT_EQ(memberAt<int32_t>(line, lock + 12), 1);
}

TEST(CLogWriterTest, LineBeginsWithLevelAndUnpaddedTime) {
    const LogFile log;
    FakeClock clock(november);
    writeLog(INFO, L"OS_BIT E 64 expression value:", true);
    clock.local = february;
    writeLog(WARNNING, "Observer is NULL in subject.");

    EXPECT_EQ(readFile(logPath),
              "[INFO][2026-11-14 7:5:9] OS_BIT E 64 expression value:true\r\n"
              "[WARNNING][2026-2-3 12:30:45] Observer is NULL in subject.\r\n");
}

TEST(CLogWriterTest, TimeIsThatOfTheOpening) {
    const LogFile log;
    FakeClock clock(november);
    {
        CLogLine line;
        logWriter.open(INFO, line);
        clock.local = february;
        line << "text";
    }
    EXPECT_EQ(readFile(logPath), "[INFO][2026-11-14 7:5:9] text\r\n");
}

TEST(CLogWriterTest, TimeIsLeftOutWhereItCannotBeHad) {
    const LogFile log;
    const FakeCall<clockCalls, &ClockCalls::GetLocalTime> silent([](SYSTEMTIME*) {});

    writeLog(ERROR, "text");

    EXPECT_EQ(readFile(logPath), "[ERROR]text\r\n");
}

TEST(CLogWriterTest, LineWithoutTextIsThePrefixAlone) {
    const LogFile log;
    const FakeClock clock(november);
    {
        CLogLine line;
        logWriter.open(INFO, line);
    }
    EXPECT_EQ(readFile(logPath), "[INFO][2026-11-14 7:5:9] \r\n");
}

TEST(CLogWriterTest, NamesTheLevel) {
    const LogFile log;
    for (const int32_t level : {2, 3, 4, 5, 2147483647})
        writeLog(level, level);

    EXPECT_THAT(log.lines(), ElementsAre("[INFO] 2", "[WARNNING] 3", "[ERROR] 4", "[UNKNOWN] 5",
                                         "[UNKNOWN] 2147483647"));
}

TEST(CLogWriterTest, DropsLinesBelowTheThreshold) {
    const LogFile log;
    for (const int32_t level : {int32_t{DEBUG}, 0, -1, -2147483647})
        writeLog(level, level);

    EXPECT_FALSE(exists(logPath));
}

TEST(CLogWriterTest, OpensTheVeryLine) {
    const LogFile log;
    CLogLine line;

    EXPECT_EQ(&logWriter.open(DEBUG, line), &line);
}

class LogFolderTest : public ScriptTest {
protected:
    const LogFile log;
};

TEST_F(LogFolderTest, EngineWorksWithoutItAndDoesNotMakeIt) {
    ASSERT_TRUE(RemoveDirectoryW(logFolder));
    ASSERT_TRUE(
        loadProduct("<InstallExecuteSequence><Fragment><Caution Title='t'/></Fragment>"
                    "</InstallExecuteSequence>"));
    context.runMode = RUNMODE_INSTALL;

    EXPECT_EQ(context.getProduct()->run(&context), 0);

    EXPECT_FALSE(exists(logFolder));
}

}  // namespace
