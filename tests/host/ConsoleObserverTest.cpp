#include "host/ConsoleObserver.h"

#include <gmock/gmock.h>

#include <cwchar>

#include "FakeConsole.h"

namespace {

/// Announces actions and failures as the engine does.
class FakeProduct final : public IterfaceProduct {
public:
    int32_t run(IterfaceContext*) override { return -1; }
    bool getDirectory(std::wstring&, const wchar_t*, IterfaceContext*) override { return false; }

    void announce(ActionCode code, const wchar_t* text1, uint32_t percent,
                  const wchar_t* text2 = L"") {
        actionInfo = {};
        actionInfo.code = code;
        std::wcscpy(actionInfo.text1, text1);
        std::wcscpy(actionInfo.text2, text2);
        progress = percent;
        observer->update(this);
    }

    ObserverAnswer fail(uint32_t code, const wchar_t* text1, const wchar_t* message = L"") {
        errorInfo = {};
        errorInfo.code = code;
        std::wcscpy(errorInfo.text1, text1);
        std::wcscpy(errorInfo.message, message);
        return observer->askOnError(&errorInfo);
    }
};

class ConsoleObserverTest : public testing::Test {
protected:
    void observe(std::optional<ErrorPolicy> policy = {}) {
        observer.emplace(policy);
        product.observer = &*observer;
    }

    void copy(const wchar_t* name, uint32_t percent) {
        product.announce(ACTION_COPY_FILE, name, percent);
    }
    ObserverAnswer failCopy(const wchar_t* name) { return product.fail(ACTION_COPY_FILE, name); }

    FakeConsole console;
    FakeProduct product;
    std::optional<ConsoleObserver> observer;
};

/// The bar with a text, filled up so that it leaves the last of 60 columns free.
std::wstring bar(int hashes, const std::wstring& text) {
    std::wstring line =
        L"\r[" + std::wstring(hashes, L'#') + std::wstring(30 - hashes, L'.') + L"] " + text;
    line.resize(60, L' ');
    return line;
}

TEST_F(ConsoleObserverTest, DrawsABarWithWhatIsBeingDone) {
    observe();

    copy(L"a.txt", 0);
    copy(L"b.txt", 50);
    observer->finish(true);

    EXPECT_EQ(console.shown, bar(0, L"  0% Copying a.txt") + bar(15, L" 50% Copying b.txt") +
                                 bar(30, L"100% Done") + L"\n");
    EXPECT_EQ(console.error, L"");
}

TEST_F(ConsoleObserverTest, WritesPlainLinesWhereThereIsNoTerminal) {
    console.terminal = false;
    observe();

    copy(L"a.txt", 0);
    copy(L"b.txt", 50);
    observer->finish(true);

    EXPECT_EQ(console.shown, L"Copying a.txt\nCopying b.txt\n");
    EXPECT_EQ(console.error, L"");
}

TEST_F(ConsoleObserverTest, LeavesTheBarWhereAFailedRunEnded) {
    observe();

    copy(L"a.txt", 10);
    observer->finish(false);

    EXPECT_EQ(console.shown, bar(3, L" 10% Copying a.txt") + L"\n");
}

TEST_F(ConsoleObserverTest, NeverGoesBack) {
    observe();

    copy(L"a.txt", 80);
    copy(L"b.txt", 20);
    copy(L"c.txt", 90);

    EXPECT_EQ(console.shown, bar(24, L" 80% Copying a.txt") + bar(24, L" 80% Copying b.txt") +
                                 bar(27, L" 90% Copying c.txt"));
}

TEST_F(ConsoleObserverTest, EndsAtAHundredPercent) {
    observe();

    copy(L"a.txt", 101);

    EXPECT_EQ(console.shown, bar(30, L"100% Copying a.txt"));
}

TEST_F(ConsoleObserverTest, KeepsTheBarOnOneLine) {
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
        FakeConsole narrow;
        observe();

        copy(title, 0);

        const std::wstring start = L"\r[" + std::wstring(30, L'.') + L"] " + text;
        EXPECT_TRUE(narrow.shown.starts_with(start)) << title;
        EXPECT_EQ(narrow.shown.find_first_not_of(L' ', start.size()), std::wstring::npos);
    }
}

TEST_F(ConsoleObserverTest, FillsTheLineToOverwriteWhatStoodThere) {
    console.width = 50;
    observe();

    copy(L"\u5B89a", 0);

    // The Asian character takes two columns.
    EXPECT_EQ(console.shown.size(), 1 + (50 - 1) - 1u);
}

TEST_F(ConsoleObserverTest, GivesACautionALineOfItsOwn) {
    observe();

    copy(L"a.txt", 0);
    product.announce(ACTION_CAUTION, L"", 50, L"Read me");
    copy(L"b.txt", 70);

    EXPECT_EQ(console.shown, bar(0, L"  0% Copying a.txt") + L"\nCaution: Read me\n" +
                                 bar(21, L" 70% Copying b.txt"));
    EXPECT_EQ(console.error, L"");
}

TEST_F(ConsoleObserverTest, BeginsWithACautionWhereTheScriptDoes) {
    observe();

    product.announce(ACTION_CAUTION, L"", 0, L"Read me");

    EXPECT_EQ(console.shown, L"Caution: Read me\n");
}

TEST_F(ConsoleObserverTest, TellsAFailureBelowTheBarAndAsks) {
    console.answers = {L"i"};
    observe();

    copy(L"a.txt", 0);
    product.fail(ACTION_COPY_FILE, L"a.txt", L"Access denied.");
    copy(L"b.txt", 50);

    EXPECT_EQ(console.error,
              L"temz: Copying a.txt failed: Access denied.\nRetry, abort or ignore? [r/a/i] ");
    EXPECT_EQ(console.shown, bar(0, L"  0% Copying a.txt") + L"\n" + console.error +
                                 bar(15, L" 50% Copying b.txt"));
}

TEST_F(ConsoleObserverTest, UnderstandsLettersAndWords) {
    const struct {
        const wchar_t* line;
        ObserverAnswer answer;
    } lines[] = {{L"r", ANSWER_RETRY},     {L"retry", ANSWER_RETRY}, {L"a", ANSWER_ABORT},
                 {L"abort", ANSWER_ABORT}, {L"i", ANSWER_IGNORE},    {L"ignore", ANSWER_IGNORE}};
    for (const auto& [line, answer] : lines) {
        console.answers = {line};
        observe();

        EXPECT_EQ(failCopy(L"a.txt"), answer) << line;
        EXPECT_EQ(observer->abortedByUser(), answer == ANSWER_ABORT) << line;
        EXPECT_EQ(observer->failureReported(), answer == ANSWER_ABORT) << line;
    }
}

TEST_F(ConsoleObserverTest, AsksAgainUntilItUnderstands) {
    console.answers = {L"", L"x", L"ri", L"r"};
    observe();

    EXPECT_EQ(failCopy(L"a.txt"), ANSWER_RETRY);

    const std::wstring question = L"Retry, abort or ignore? [r/a/i] ";
    EXPECT_EQ(console.error,
              L"temz: Copying a.txt failed\n" + question + question + question + question);
}

TEST_F(ConsoleObserverTest, TakesTheEndOfTheInputForAnAbort) {
    observe();

    EXPECT_EQ(failCopy(L"a.txt"), ANSWER_ABORT);

    EXPECT_TRUE(observer->abortedByUser());
}

TEST_F(ConsoleObserverTest, AbortsWithoutAQuestionWhereNobodyAnswers) {
    console.someoneAnswers = false;
    observe();

    EXPECT_EQ(failCopy(L"a.txt"), ANSWER_ABORT);

    EXPECT_EQ(console.error, L"temz: Copying a.txt failed\n");
    EXPECT_FALSE(observer->abortedByUser());
    EXPECT_TRUE(observer->failureReported());
}

TEST_F(ConsoleObserverTest, PrefersThePolicyToAQuestion) {
    for (const ObserverAnswer answer : {ANSWER_ABORT, ANSWER_IGNORE}) {
        console.answers = {L"r"};
        console.error.clear();
        observe(ErrorPolicy{answer});

        EXPECT_EQ(failCopy(L"a.txt"), answer);

        EXPECT_EQ(console.error, L"temz: Copying a.txt failed\n");
        EXPECT_FALSE(observer->abortedByUser());
    }
}

TEST_F(ConsoleObserverTest, HasReportedOnlyTheFailureThatEndsTheRun) {
    console.answers = {L"i"};
    observe();

    failCopy(L"a.txt");

    EXPECT_FALSE(observer->failureReported());
}

TEST_F(ConsoleObserverTest, AbortsWhenTheRetriesAreUsedUp) {
    observe(ErrorPolicy{ANSWER_RETRY, 2});

    copy(L"a.txt", 0);
    EXPECT_EQ(failCopy(L"a.txt"), ANSWER_RETRY);
    copy(L"a.txt", 0);
    EXPECT_EQ(failCopy(L"a.txt"), ANSWER_RETRY);
    copy(L"a.txt", 0);
    EXPECT_EQ(failCopy(L"a.txt"), ANSWER_ABORT);

    EXPECT_FALSE(observer->abortedByUser());
    EXPECT_TRUE(observer->failureReported());
}

TEST_F(ConsoleObserverTest, CountsTheRetriesOfEachActionApart) {
    observe(ErrorPolicy{ANSWER_RETRY, 1});

    copy(L"a.txt", 0);
    EXPECT_EQ(failCopy(L"a.txt"), ANSWER_RETRY);
    copy(L"a.txt", 0);
    // Another file, of the same name in another directory.
    copy(L"a.txt", 50);
    EXPECT_EQ(failCopy(L"a.txt"), ANSWER_RETRY);
    copy(L"a.txt", 50);
    EXPECT_EQ(failCopy(L"a.txt"), ANSWER_ABORT);
}

TEST_F(ConsoleObserverTest, CountsTheRetriesOfUnannouncedActionsApart) {
    observe(ErrorPolicy{ANSWER_RETRY, 1});

    copy(L"a.txt", 0);
    EXPECT_EQ(failCopy(L"a.txt"), ANSWER_RETRY);
    copy(L"a.txt", 0);
    EXPECT_EQ(product.fail(ERROR_CODE_MESSAGE, L"", L"No such variable."), ANSWER_RETRY);
    EXPECT_EQ(product.fail(ERROR_CODE_MESSAGE, L"", L"No such variable."), ANSWER_ABORT);
}

}  // namespace
