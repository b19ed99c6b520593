#include "host/LogReporter.h"

#include <gmock/gmock.h>

#include <deque>
#include <regex>

#include "host/Diagnosis.h"
#include "host/Utf8.h"
#include "host/WriteBytes.h"
#include "support/FakeCall.h"
#include "support/TestFolder.h"

using testing::HasSubstr;

namespace {

class LogReporterTest : public testing::Test {
protected:
    std::unique_ptr<LogReporter> open(
        LogReporter::Detail detail = LogReporter::Detail::actions) const {
        std::wstring problem;
        auto log = LogReporter::open(path, detail, problem);
        EXPECT_TRUE(log) << problem;
        return log;
    }

    /// What stands in the log, without the times in front of its lines.
    std::string lines() const {
        static const std::regex time(
            "(^|\n)[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} ");
        return std::regex_replace(readFile(path), time, "$1");
    }

    const TestFolder folder;
    const std::wstring path = folder.path(L"run.log");
};

Call copyCall() {
    Call call;
    call.group = L"file";
    call.name = L"CopyFileW";
    call.arguments = {L"C:\\s\\a", L"C:\\t\\a", L"0"};
    call.result = L"0";
    call.failed = true;
    call.systemError = 32;
    call.duration = std::chrono::microseconds(7);
    return call;
}

Action copyAction() {
    Action action;
    action.number = 2;
    action.code = TEMZ_ACTION_COPY_FILE;
    action.text1 = L"a";
    action.calls = {copyCall()};
    return action;
}

TEST_F(LogReporterTest, HasAHeaderWithAllThatMattersLater) {
    RunHeader header;
    header.version = L"1.2.3";
    header.commandLine = L"temz install \u00E4.xml";
    header.windows = L"10.0.19045";
    header.user = L"HOME\\me";
    header.mode = L"install";
    header.script = L"C:\\\u00E4.xml";
    header.scriptHash = L"ab12";
    open()->started(header);

    EXPECT_EQ(lines(),
              "temz 1.2.3: temz install \xC3\xA4.xml\r\n"
              "Windows 10.0.19045, HOME\\me, not as an administrator\r\n"
              "install C:\\\xC3\xA4.xml, SHA-256 ab12\r\n");
}

TEST_F(LogReporterTest, HasALineForEachActionWithItsPlacesAndFate) {
    const struct {
        Fate fate;
        const char* word;
    } fates[] = {{Fate::done, "done"},
                 {Fate::ignored, "failed, ignored"},
                 {Fate::nonVital, "failed, not vital"},
                 {Fate::failed, "failed"},
                 {Fate::stopped, "not carried out"}};
    const auto log = open();
    std::string expected;
    for (const auto& [fate, word] : fates) {
        log->ended(copyAction(), fate);
        expected += std::string("2. Copying a, from C:\\s\\a to C:\\t\\a: ") + word + "\r\n";
    }

    EXPECT_EQ(lines(), expected);
}

TEST_F(LogReporterTest, TellsAFailureWithItsCallAndTheSystemsText) {
    Failure failure;
    failure.what = L"Copying a";
    failure.why = L"in use";
    failure.systemError = 32;
    failure.call = L"CopyFileW(b, c)";
    failure.advice = L"Close it.";
    open()->failed(copyAction(), failure, 3);

    EXPECT_EQ(lines(),
              "    attempt 3: Copying a: in use [error 32]\r\n"
              "    the call that failed: CopyFileW(b, c): " +
                  toUtf8(systemText(32)) + "\r\n    Close it.\r\n");
}

TEST_F(LogReporterTest, TellsAFailureOfWhichTheSystemGivesNoCode) {
    Failure failure;
    failure.what = L"Shortcut a.lnk";
    failure.call = L"Save(a, C:\\a.lnk)";
    open()->failed({}, failure, 1);

    EXPECT_EQ(lines(),
              "    attempt 1: Shortcut a.lnk\r\n"
              "    the call that failed: Save(a, C:\\a.lnk)\r\n");
}

TEST_F(LogReporterTest, TellsTheOnePlaceOfAnActionThatHasNoOther) {
    Action action;
    action.number = 3;
    action.code = TEMZ_ACTION_DELETE_FILE;
    action.text1 = L"a";
    action.calls = {copyCall()};
    action.calls[0].name = L"DeleteFileW";
    open()->ended(action, Fate::done);

    EXPECT_EQ(lines(), "3. Deleting a, at C:\\s\\a: done\r\n");
}

TEST_F(LogReporterTest, TellsAFailureThatIsButAMessage) {
    Failure failure;
    failure.what = L"[X] mismatch.";
    open()->failed({}, failure, 1);

    EXPECT_EQ(lines(), "    attempt 1: [X] mismatch.\r\n");
}

TEST_F(LogReporterTest, ShowsCallsOnDemandAndTheEnginesLogAlways) {
    Call line;
    line.group = L"log";
    line.arguments = {L"delete file a"};

    {
        const auto log = open();
        log->called(copyCall());
        log->called(line);
    }
    EXPECT_EQ(lines(), "    engine: delete file a\r\n");
    open(LogReporter::Detail::calls)->called(copyCall());
    EXPECT_THAT(lines(),
                HasSubstr("    file.CopyFileW(C:\\s\\a, C:\\t\\a, 0) = 0 [error 32] 7 us"));
}

TEST_F(LogReporterTest, EndsWithTheResultAndTheExitCode) {
    RunSummary summary;
    summary.ending = Ending::restartNeeded;
    summary.done = 1;
    summary.leftOut = {L"Copying a (why)"};
    summary.waiting = {L"C:\\c"};
    const auto log = open();
    log->warned(L"Beware.");
    log->finished(summary);

    EXPECT_EQ(lines(),
              "Warning: Beware.\r\n"
              "Done: 1 action. Left out: Copying a (why). Until the machine is restarted (Restart, "
              "not Shut down) these wait: C:\\c.\r\n"
              "Exit code 3010\r\n");
}

TEST_F(LogReporterTest, TellsWhyNothingWasDone) {
    RunSummary summary;
    summary.ending = Ending::scriptNotOpened;
    summary.reason = L"Why.";
    open()->finished(summary);

    EXPECT_EQ(lines(), "Why.\r\nNothing was done (1619).\r\nExit code 1619\r\n");
}

TEST_F(LogReporterTest, AppendsToWhatIsThereAndCanBeReadMeanwhile) {
    folder.write(L"run.log", "before\n");
    const auto log = open();
    log->warned(L"Beware.");

    EXPECT_EQ(lines(), "before\nWarning: Beware.\r\n");
}

TEST_F(LogReporterTest, KnowsWhyTheFirstOfItsMissingLinesIsMissing) {
    const auto log = open();
    log->warned(L"Written.");
    EXPECT_EQ(log->writeError(), 0u);

    std::deque<DWORD> errors{ERROR_DISK_FULL, ERROR_ACCESS_DENIED};
    {
        const FakeCall<writeCalls, &WriteCalls::WriteFile> write{[&errors](auto...) {
            SetLastError(errors.front());
            errors.pop_front();
            return FALSE;
        }};
        log->warned(L"Lost.");
        log->warned(L"Lost.");
    }
    log->warned(L"Written again.");

    EXPECT_EQ(log->writeError(), static_cast<DWORD>(ERROR_DISK_FULL));
    EXPECT_EQ(lines(), "Warning: Written.\r\nWarning: Written again.\r\n");
}

TEST_F(LogReporterTest, MissesWhatIsWrittenInPart) {
    const FakeCall<writeCalls, &WriteCalls::WriteFile> write{
        [](HANDLE, const void*, DWORD size, DWORD* written, OVERLAPPED*) {
            *written = size - 1;
            return TRUE;
        }};
    const auto log = open();
    log->warned(L"Cut.");

    EXPECT_EQ(log->writeError(), static_cast<DWORD>(ERROR_DISK_FULL));
}

TEST_F(LogReporterTest, TellsWhyItCanNotBeOpened) {
    const std::wstring nowhere = folder.path(L"none\\run.log");
    std::wstring problem;

    EXPECT_FALSE(LogReporter::open(nowhere, LogReporter::Detail::actions, problem));

    EXPECT_EQ(problem, nowhere + L" can't be opened: " + systemText(3) + L" [error 3]");
}

}  // namespace
