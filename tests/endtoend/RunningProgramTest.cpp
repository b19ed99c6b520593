#include <gmock/gmock.h>

#include "support/HostTest.h"
#include "support/LogFile.h"
#include "support/Sleeper.h"

using testing::Contains;
using testing::ElementsAre;
using testing::Pair;

namespace {

/// A product whose program runs.
class RunningProgramTest : public HostTest {
protected:
    RunningProgramTest() { placeSleeper(program); }

    bool loadProgram(const std::string& attributes = {}) {
        return load(componentScript(file(L"program.exe", "new", attributes)));
    }

    const std::wstring program = app(L"program.exe");
};

TEST_F(RunningProgramTest, IsEndedAndReplaced) {
    const LogFile log;
    const Sleeper sleeper(program);
    ASSERT_TRUE(loadProgram("KillProcess='yes'"));

    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);

    EXPECT_FALSE(sleeper.isRunning());
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"program.exe", "new")));
    EXPECT_THAT(log.lines(), Contains("[INFO] Kill process (" + narrow(program) + ") success."));
}

TEST_F(RunningProgramTest, IsEndedAndRemoved) {
    const Sleeper sleeper(program);
    ASSERT_TRUE(loadProgram("KillProcess='yes'"));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_FALSE(sleeper.isRunning());
    EXPECT_FALSE(exists(program));
}

TEST_F(RunningProgramTest, IsInTheWayUnlessTheScriptAllowsToEndIt) {
    const Sleeper sleeper(program);
    ASSERT_TRUE(loadProgram());

    EXPECT_EQ(run(RUNMODE_UPGRADE), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(run(RUNMODE_UNINSTALL), -1);

    EXPECT_TRUE(sleeper.isRunning());
    EXPECT_TRUE(exists(program));
}

}  // namespace
