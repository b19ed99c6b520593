// Each call of the engine fails, at each of its uses, and what comes of it is what the table says.

#include <gmock/gmock.h>

#include <algorithm>
#include <regex>
#include <set>

#include "calls/FaultTable.h"
#include "elements/Vocabulary.h"
#include "support/Text.h"

using testing::Contains;
using testing::IsEmpty;
using testing::Truly;
using testing::UnorderedElementsAreArray;

namespace {

constexpr int32_t modes[] = {RUNMODE_INSTALL, RUNMODE_UPGRADE, RUNMODE_UNINSTALL};

std::string describe(const CallUse& use, const Fault& fault) {
    return use.call + "(" + use.arguments + ") for the time " + std::to_string(use.time) +
           " with the error " + std::to_string(fault.error) + (fault.lasting ? " and on" : "");
}

bool isForUsualFault(const FaultRow* row) {
    const Fault& fault = row->uses.fault;
    return fault.error == Fault::usualError && !fault.lasting;
}

/// A scenario, in all modes.
class CallFaultTest : public testing::TestWithParam<Scenario> {
protected:
    void SetUp() override {
        if (const char* const obstacle = GetParam().obstacle())
            GTEST_SKIP() << obstacle;
        // What is asked once in a process is behind it.
        for (const int32_t mode : modes)
            runScenario(GetParam(), mode);
    }
};

TEST_P(CallFaultTest, LeadsToWhatTheTableSays) {
    const Scenario& scenario = GetParam();
    size_t faults = 0;
    for (const int32_t mode : modes) {
        SCOPED_TRACE("in the mode " + std::to_string(mode));
        const ScenarioRun undisturbed = runScenario(scenario, mode);
        for (const CallUse& use : undisturbed.uses) {
            const std::vector<const FaultRow*> rows = rowsOf(scenario, mode, use);
            EXPECT_THAT(rows, Contains(Truly(isForUsualFault))) << "for " << describe(use, {});
            for (const FaultRow* const row : rows) {
                EXPECT_NE(row->uses.made, FaultedUses::never) << describe(use, {});
                if (row->reason)
                    continue;
                ++faults;
                const Fault& fault = row->uses.fault;
                const ScenarioRun run = runScenario(scenario, mode, use, fault);
                EXPECT_TRUE(run.hasFailed) << describe(use, fault);
                EXPECT_THAT(differencesBetween(undisturbed, run),
                            UnorderedElementsAreArray(differencesOf(*row, use)))
                    << describe(use, fault);
            }
        }
    }
    RecordProperty("faults", static_cast<int>(faults));
}

INSTANTIATE_TEST_SUITE_P(Each, CallFaultTest, testing::ValuesIn(scenarios()), [](const auto& info) {
    std::string name = info.param.name;
    std::ranges::replace(name, ' ', '_');
    std::ranges::replace(name, '-', '_');
    return name;
});

TEST(ScenariosTest, HaveAllKindsOfElements) {
    std::set<std::string> elements;
    static const std::regex tag("<([A-Za-z]+)");
    for (const Scenario& scenario : scenarios()) {
        const std::string script = scriptOf(scenario);
        for (std::sregex_iterator found(script.begin(), script.end(), tag), end; found != end;
             ++found)
            elements.insert(found->str(1));
    }
    for (const auto& kinds : {motionKinds(), lookedUpKinds()})
        for (const ElementKind* const kind : kinds)
            EXPECT_TRUE(elements.contains(narrow(kind->name))) << narrow(kind->name);
    for (const ReferenceKind& reference : motionReferences())
        EXPECT_TRUE(elements.contains(narrow(reference.name))) << narrow(reference.name);
    EXPECT_TRUE(elements.contains(narrow(directoryReference.name)));
}

TEST(FaultTableTest, HasARowForEachCallOfEachTable) {
    std::set<std::string> calls;
    for (const FaultRow& row : faultTable())
        calls.insert(row.call);
    visitCallTables([&]<auto & table>() {
        using Table = std::remove_reference_t<decltype(table)>;
        if constexpr (!std::is_same_v<Table, WalkCalls>)
            table.visitCalls([&]<auto member>(const char* name) {
                EXPECT_EQ(calls.erase(std::string(table.group) + "." + name), 1u) << name;
            });
    });
    EXPECT_THAT(calls, IsEmpty()) << "which no table has";
}

TEST(FaultTableTest, HasOnlyRowsThatHold) {
    std::set<const FaultRow*> idle;
    for (const FaultRow& row : faultTable())
        if (!row.reason && row.uses.made == FaultedUses::often)
            idle.insert(&row);
    for (const Scenario& scenario : scenarios()) {
        if (const char* const obstacle = scenario.obstacle())
            GTEST_SKIP() << scenario.name << ": " << obstacle;
        for (const int32_t mode : modes)
            for (const CallUse& use : runScenario(scenario, mode).uses)
                for (const FaultRow* const row : rowsOf(scenario, mode, use))
                    idle.erase(row);
    }
    for (const FaultRow* const row : idle)
        ADD_FAILURE() << row->call << "(" << row->arguments
                      << ") is never made so, in the scenario " << row->uses.scenario;
}

}  // namespace
