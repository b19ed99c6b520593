#include "host/ConsoleReporter.h"

#include <gmock/gmock.h>

#include "FakeConsole.h"

namespace {

/// The bar with a text, filled up so that it leaves the last of 60 columns free.
std::wstring bar(size_t hashes, const std::wstring& text) {
    std::wstring line =
        L"\r[" + std::wstring(hashes, L'#') + std::wstring(30 - hashes, L'.') + L"] " + text;
    line.resize(60, L' ');
    return line;
}

class ConsoleReporterTest : public testing::Test {
protected:
    void report(ConsoleReporter::Detail detail = ConsoleReporter::Detail::all) {
        reporter.emplace(detail, L"");
    }

    void begin(uint32_t code, const std::wstring& text1, unsigned percent,
               const std::wstring& text2 = L"") {
        Action action;
        action.code = code;
        action.percent = percent;
        action.text1 = text1;
        action.text2 = text2;
        reporter->began(action);
    }
    void copy(const std::wstring& name, unsigned percent) {
        begin(TEMZ_ACTION_COPY_FILE, name, percent);
    }
    void fail(const wchar_t* what) {
        Failure failure;
        failure.code = TEMZ_ACTION_COPY_FILE;
        failure.what = what;
        reporter->failed({}, failure, 1);
    }
    void finish(Ending ending, unsigned nonVital = 0, unsigned ignored = 0) {
        RunSummary summary;
        summary.ending = ending;
        summary.done = 2;
        summary.nonVital = nonVital;
        summary.ignored = ignored;
        reporter->finished(summary);
    }

    FakeConsole console;
    std::optional<ConsoleReporter> reporter;
};

constexpr auto quiet = ConsoleReporter::Detail::failuresOnly;
constexpr wchar_t failed[] = L"Failed after 2 actions (1603). What was done before stays.\n";

TEST_F(ConsoleReporterTest, DrawsABarWithWhatIsBeingDone) {
    report();

    copy(L"a.txt", 0);
    copy(L"b.txt", 50);
    finish(Ending::done);

    EXPECT_EQ(console.shown, bar(0, L"  0% Copying a.txt") + bar(15, L" 50% Copying b.txt") +
                                 bar(30, L"100% Done") + L"\nDone: 2 actions.\n");
    EXPECT_EQ(console.error, L"");
}

TEST_F(ConsoleReporterTest, WritesPlainLinesWhereThereIsNoTerminal) {
    console.terminal = false;
    report();

    copy(L"a.txt", 0);
    copy(L"b.txt", 50);
    finish(Ending::done);

    EXPECT_EQ(console.shown, L"Copying a.txt\nCopying b.txt\nDone: 2 actions.\n");
    EXPECT_EQ(console.error, L"");
}

TEST_F(ConsoleReporterTest, TellsTheEndOfAFailedRunOnTheErrorStream) {
    report();

    copy(L"a.txt", 10);
    finish(Ending::failed);

    EXPECT_EQ(console.shown, bar(3, L" 10% Copying a.txt") + L"\n" + failed);
    EXPECT_EQ(console.error, failed);
}

TEST_F(ConsoleReporterTest, KeepsTheBarOnOneLine) {
    const struct {
        const wchar_t* title;
        const wchar_t* text;
    } titles[] = {
        {L"12345678901234", L"  0% Copying 1234567890123"},
        {L"two\nlines", L"  0% Copying two lines"},
        {L"12345678901\u5B89", L"  0% Copying 12345678901\u5B89"},
        {L"123456789012\u5B89", L"  0% Copying 123456789012"},
        {L"12345678901\U0001F4BE2", L"  0% Copying 12345678901\U0001F4BE"},
        {L"123456789012\U0001F4BE", L"  0% Copying 123456789012"},
    };
    for (const auto& [title, text] : titles) {
        console.shown.clear();
        report();

        copy(title, 0);

        const std::wstring start = L"\r[" + std::wstring(30, L'.') + L"] " + text;
        EXPECT_TRUE(console.shown.starts_with(start)) << title;
        EXPECT_EQ(console.shown.find_first_not_of(L' ', start.size()), std::wstring::npos);
    }
}

TEST_F(ConsoleReporterTest, FillsTheLineToOverwriteWhatStoodThere) {
    console.width = 50;
    report();

    copy(L"\u5B89a", 0);

    // The Asian character takes two columns.
    EXPECT_EQ(console.shown.size(), 1 + (50 - 1) - 1u);
}

TEST_F(ConsoleReporterTest, GivesACautionALineOfItsOwn) {
    report();

    begin(TEMZ_ACTION_CAUTION, L"", 0, L"First");
    copy(L"a.txt", 0);
    begin(TEMZ_ACTION_CAUTION, L"", 50, L"Read me");
    copy(L"b.txt", 70);

    EXPECT_EQ(console.shown, L"Caution: First\n" + bar(0, L"  0% Copying a.txt") +
                                 L"\nCaution: Read me\n" + bar(21, L" 70% Copying b.txt"));
    EXPECT_EQ(console.error, L"");
}

TEST_F(ConsoleReporterTest, TellsFailuresAndWarningsBelowTheBar) {
    report();

    copy(L"a.txt", 0);
    fail(L"Copying a.txt");
    copy(L"b.txt", 50);
    reporter->warned(L"Beware.");

    EXPECT_EQ(console.error, L"temz: Copying a.txt failed.\ntemz: Beware.\n");
    EXPECT_EQ(console.shown, bar(0, L"  0% Copying a.txt") + L"\ntemz: Copying a.txt failed.\n" +
                                 bar(15, L" 50% Copying b.txt") + L"\ntemz: Beware.\n");
}

TEST_F(ConsoleReporterTest, IsSilentWhereOnlyFailuresMatter) {
    report(quiet);

    copy(L"a.txt", 0);
    begin(TEMZ_ACTION_CAUTION, L"", 50, L"Read me");
    finish(Ending::done);
    finish(Ending::restartNeeded);

    EXPECT_EQ(console.shown, L"");
}

TEST_F(ConsoleReporterTest, TellsFailuresAlsoWhereOnlyTheyMatter) {
    report(quiet);

    fail(L"Copying a.txt");
    finish(Ending::failed);

    EXPECT_EQ(console.shown, std::wstring(L"temz: Copying a.txt failed.\n") + failed);
}

TEST_F(ConsoleReporterTest, TellsWhyNothingWasDoneButNoWarningWhereOnlyFailuresMatter) {
    report(quiet);
    RunSummary summary;
    summary.ending = Ending::otherRunGoesOn;
    summary.reason = L"Why.";

    reporter->warned(L"Beware.");
    reporter->finished(summary);

    EXPECT_EQ(console.error, L"temz: Why.\nNothing was done (1618).\n");
}

TEST_F(ConsoleReporterTest, EndsWithWhatWasLeftOutThoughOnlyFailuresMatter) {
    report(quiet);

    finish(Ending::done, 1, 0);
    finish(Ending::done, 0, 1);

    EXPECT_EQ(console.shown, L"Done: 2 actions.\nDone: 2 actions.\n");
}

}  // namespace
