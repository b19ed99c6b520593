#include <gmock/gmock.h>

#include <functional>

#include "support/FakeCall.h"
#include "support/FileElementTest.h"
#include "support/LogFile.h"
#include "support/Sleeper.h"
#include "support/Text.h"
#include "system/ClockCalls.h"
#include "system/ProcessCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Values;

namespace {

/// A run with `KillProcess` in any mode, where the wait behind the end takes no time.
class FileKillTest : public FileElementTest, public testing::WithParamInterface<int32_t> {
protected:
    int32_t runInMode() { return run(GetParam()); }

    /// The result of a run in which nothing goes wrong.
    static int32_t usualResult() { return GetParam() == unknownMode ? -1 : 0; }

    /// What the log holds but for the deletion's own line.
    std::vector<std::string> linesOfSearch() const {
        std::vector<std::string> lines = log.lines();
        std::erase(lines, "[WARNNING] delete file " + narrow(target));
        return lines;
    }

    const std::string killFile = file("KillProcess='yes'");
    const LogFile log;
    std::vector<DWORD> waits;
    std::function<void()> onWait = [] {};
    const FakeCall<clockCalls, &ClockCalls::Sleep> sleep{[this](DWORD milliseconds) {
        waits.push_back(milliseconds);
        onWait();
    }};
};

INSTANTIATE_TEST_SUITE_P(AnyMode, FileKillTest,
                         Values(RUNMODE_INSTALL, RUNMODE_UNINSTALL, RUNMODE_UPGRADE, unknownMode),
                         [](const auto& mode) { return "Mode" + std::to_string(mode.param); });

TEST_P(FileKillTest, EndsTheProgramAndWaitsBeforeAnythingElse) {
    const Sleeper sleeper(target);
    ASSERT_TRUE(loadComponent(killFile));
    onWait = [&] {
        EXPECT_TRUE(sleeper.waitUntilEnded());
        EXPECT_THAT(log.lines(), IsEmpty());
        EXPECT_THAT(observer.updates, IsEmpty());
    };

    EXPECT_EQ(runInMode(), usualResult());

    EXPECT_THAT(waits, ElementsAre(1000u));
    EXPECT_THAT(linesOfSearch(),
                ElementsAre("[INFO] Kill process (" + narrow(target) + ") success."));
    expectNoError();
}

TEST_P(FileKillTest, DoesNotWaitWhenNoSuchProgramRuns) {
    folder.write(L"app\\a.txt", "old");
    ASSERT_TRUE(loadComponent(killFile));

    EXPECT_EQ(runInMode(), usualResult());

    EXPECT_THAT(waits, IsEmpty());
    EXPECT_THAT(linesOfSearch(), IsEmpty());
}

TEST_P(FileKillTest, SparesAProgramOfTheSameNameElsewhere) {
    const std::wstring elsewhere = folder.path(L"elsewhere\\a.txt");
    const Sleeper sleeper(elsewhere);
    ASSERT_TRUE(loadComponent(killFile));

    EXPECT_EQ(runInMode(), usualResult());

    EXPECT_TRUE(sleeper.isRunning());
    EXPECT_THAT(linesOfSearch(), IsEmpty());
}

TEST_P(FileKillTest, GoesOnWhenTheProgramCannotBeEnded) {
    const Sleeper sleeper(target);
    ASSERT_TRUE(loadComponent(killFile));
    FakeCall<processCalls, &ProcessCalls::TerminateProcess> end([](auto...) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    });

    const int32_t result = runInMode();

    const bool copies = GetParam() == RUNMODE_INSTALL || GetParam() == RUNMODE_UPGRADE;
    EXPECT_EQ(result, copies ? ERROR_SHARING_VIOLATION : -1);
    EXPECT_THAT(linesOfSearch(),
                ElementsAre("[WARNNING] Failed to kill process(" + narrow(target) + ")"));
    EXPECT_THAT(waits, IsEmpty());
    EXPECT_EQ(observer.updates.size(), GetParam() == unknownMode ? 0u : 1u);
}

TEST_P(FileKillTest, GoesOnWhenTheSearchFails) {
    ASSERT_TRUE(loadComponent(killFile));
    FakeCall<processCalls, &ProcessCalls::CreateToolhelp32Snapshot> search([](auto...) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return INVALID_HANDLE_VALUE;
    });

    EXPECT_EQ(runInMode(), usualResult());

    EXPECT_THAT(linesOfSearch(), ElementsAre("[ERROR] CreateToolhelp32Snapshot error:8"));
    EXPECT_THAT(waits, IsEmpty());
}

TEST_P(FileKillTest, SearchesForTheExactWordOfTheFileAlone) {
    struct Row {
        std::string onFile;
        std::string onComponent;
        int searches;
    };
    const Row rows[] = {
        {"", "", 0},
        {"KillProcess='no'", "", 0},
        {"KillProcess='Yes'", "", 0},
        {"KillProcess='YES'", "", 0},
        {"KillProcess='yes '", "", 0},
        {"KillProcess='ye'", "", 0},
        {"KillProcess='true'", "", 0},
        {"KillProcess='1'", "", 0},
        {"KillProcess=''", "", 0},
        {"", "KillProcess='yes'", 0},
        {"KillProcess='yes'", "", 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("file: " + row.onFile + ", component: " + row.onComponent);
        context.unload();
        ASSERT_TRUE(loadComponent(file(row.onFile), row.onComponent));
        FakeCall<processCalls, &ProcessCalls::CreateToolhelp32Snapshot> search(
            [](auto...) { return INVALID_HANDLE_VALUE; });

        runInMode();

        EXPECT_EQ(search.count, row.searches);
    }
}

TEST_P(FileKillTest, EndsOneOfTwoProgramsAtEachAttempt) {
    const Sleeper first(target);
    const Sleeper second(target);
    ASSERT_TRUE(loadComponent(killFile));
    std::vector<bool> secondRuns;
    onWait = [&] {
        EXPECT_TRUE((waits.size() == 1 ? first : second).waitUntilEnded());
        secondRuns.push_back(second.isRunning());
    };
    observer.answers = {ANSWER_RETRY};

    EXPECT_EQ(runInMode(), usualResult());

    EXPECT_THAT(secondRuns, ElementsAre(true, false));
    EXPECT_THAT(waits, ElementsAre(1000u, 1000u));
}

}  // namespace
