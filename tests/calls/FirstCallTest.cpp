// What the engine asks once in a process fails, the first time that it is asked.

#include <gmock/gmock.h>

#include "calls/FaultTable.h"
#include "support/ChildProcess.h"

using testing::UnorderedElementsAreArray;

namespace {

const Scenario& scenarioNamed(std::string_view name) {
    return *std::ranges::find(scenarios(), name, &Scenario::name);
}

TEST(FirstCallTest, LeadsToWhatTheTableSaysAndIsMadeAgain) {
    for (const FaultRow& row : faultTable()) {
        if (row.uses.made != FaultedUses::once)
            continue;
        SCOPED_TRACE(row.call);
        const Scenario& scenario = scenarioNamed(row.uses.scenario);
        const CallUse use{row.call, row.arguments, row.uses.firstTime};
        inFreshProcess([&] {
            // The sources are beside the program, and not where it happens to be.
            const TestFolder elsewhere;
            SetCurrentDirectoryW(elsewhere.path().c_str());
            const ScenarioRun run = runScenario(scenario, RUNMODE_INSTALL, use);
            const ScenarioRun undisturbed = runScenario(scenario, RUNMODE_INSTALL);
            SetCurrentDirectoryW(testProgramDirectory().c_str());

            EXPECT_TRUE(run.hasFailed);
            EXPECT_THAT(differencesBetween(undisturbed, run),
                        UnorderedElementsAreArray(differencesOf(row, use)));
        });
    }
}

}  // namespace
