// A call that an action needs fails, and the host decides what comes of that: once for each kind of
// action. Which call fails, and how the action tells it, is the business of the table.

#include <gmock/gmock.h>

#include <algorithm>

#include "calls/Scenario.h"
#include "logging/IterfaceObserver.h"

namespace {

using Lines = std::vector<std::string>;

struct FailingAction {
    const char* element;
    const char* scenario;
    int32_t mode;
    CallUse use;
    std::string result;  ///< of a run that it ends
    bool heedsVital = true;
};

const FailingAction failingActions[] = {
    {"File",
     "a new file",
     RUNMODE_INSTALL,
     {"file.CopyFileW", "{payload}\\new.txt, {app}\\new\\deep\\new.txt"},
     "result 1117"},
    {"File",
     "a new file",
     RUNMODE_UPGRADE,
     {"file.CopyFileW", "{payload}\\new.txt, {app}\\new\\deep\\new.txt"},
     "result 1117"},
    {"File",
     "a new file",
     RUNMODE_UNINSTALL,
     {"file.DeleteFileW", "{app}\\new\\deep\\new.txt"},
     "result -1"},
    {"Shortcut", "a link", RUNMODE_INSTALL, {"shell.CoCreateInstance", ""}, "result -1", false},
    {"Shortcut",
     "a link",
     RUNMODE_UNINSTALL,
     {"file.DeleteFileW", "{app}\\links\\Tool.lnk"},
     "result -1",
     false},
    {"RegistryValue", "keys", RUNMODE_INSTALL, {"registry.RegSetValueExW", "text"}, "result -1"},
    {"RemoveDirectory",
     "a directory",
     RUNMODE_INSTALL,
     {"file.RemoveDirectoryW", "{app}\\tree"},
     "result -1"},
    {"CustomAction",
     "a custom action",
     RUNMODE_INSTALL,
     {"library.GetProcAddress", "answer"},
     "result -1",
     false},
    {"CustomAction",
     "a custom action",
     RUNMODE_INSTALL,
     {"action.CallEntry", ""},
     "result 1117",
     false},
    {"ShellExcute", "a program", RUNMODE_INSTALL, {"shell.ShellExecuteExW", ""}, "result -1"},
    {"ServiceControl",
     "a service that is started",
     RUNMODE_INSTALL,
     {"service.StartServiceW", ""},
     "result -1"},
    {"ServiceControl",
     "a service that is stopped",
     RUNMODE_INSTALL,
     {"service.ControlService", ""},
     "result -1"},
    {"ServiceControl",
     "a service that is removed",
     RUNMODE_INSTALL,
     {"service.DeleteService", ""},
     "result -1"},
};
constexpr Fault forGood{.lasting = true};
constexpr int32_t noAnswer = 7;  // a number that is none

size_t countLines(const ScenarioRun& run, const std::string& beginning) {
    return std::ranges::count_if(
        run.lines, [&](const std::string& line) { return line.starts_with(beginning); });
}

/// The lines about the machine.
Lines machineOf(const ScenarioRun& run) {
    Lines machine;
    std::ranges::copy_if(run.lines, std::back_inserter(machine), [](const std::string& line) {
        return line.starts_with("there ") || line.starts_with("the ");
    });
    return machine;
}

class AnswerTest : public testing::TestWithParam<FailingAction> {
protected:
    void SetUp() override {
        if (const char* const obstacle = scenario.obstacle())
            GTEST_SKIP() << obstacle;
    }

    ScenarioRun run(const Fault& fault, const std::deque<int32_t>& answers) const {
        ScenarioRun done = runScenario(scenario, GetParam().mode, GetParam().use, fault, answers);
        EXPECT_TRUE(done.hasFailed);
        return done;
    }

    /// How many actions were begun, of those that can fail.
    static size_t begun(const ScenarioRun& run) {
        return countLines(run, "heard ") - countLines(run, "heard 16 ");
    }

    const Scenario& scenario =
        *std::ranges::find(scenarios(), std::string_view(GetParam().scenario), &Scenario::name);
    /// Of these, how many come before the one that fails.
    const size_t others = GetParam().element == std::string("RegistryValue") ? 1 : 0;
};

TEST_P(AnswerTest, AbortEndsTheRunWithTheActionsResult) {
    for (const int32_t answer : {int32_t{ANSWER_ABORT}, noAnswer, -1}) {
        SCOPED_TRACE(answer);
        const ScenarioRun ended = run({}, {answer});

        EXPECT_EQ(countLines(ended, GetParam().result), 1u);
        EXPECT_EQ(countLines(ended, "asked "), 1u);
        EXPECT_EQ(countLines(ended, "heard 16 end"), 0u);
        EXPECT_EQ(begun(ended), 1 + others);
    }
}

TEST_P(AnswerTest, RetryCarriesTheActionOutOnceMore) {
    const ScenarioRun undisturbed = runScenario(scenario, GetParam().mode);
    const ScenarioRun retried = run({}, {ANSWER_RETRY});

    EXPECT_EQ(countLines(retried, "result 0"), 1u);
    EXPECT_EQ(countLines(retried, "asked "), 1u);
    EXPECT_EQ(begun(retried), begun(undisturbed) + 1);
    EXPECT_EQ(machineOf(retried), machineOf(undisturbed));
}

TEST_P(AnswerTest, RetryIsGivenAsOftenAsTheHostLikes) {
    const ScenarioRun ended = run(forGood, {ANSWER_RETRY, noAnswer, ANSWER_RETRY, ANSWER_ABORT});

    EXPECT_EQ(countLines(ended, GetParam().result), 1u);
    EXPECT_EQ(countLines(ended, "asked "), 4u);
    EXPECT_EQ(begun(ended), 4 + others);
}

TEST_P(AnswerTest, IgnoreGoesOnBehindTheAction) {
    const ScenarioRun ignored = run(forGood, {ANSWER_IGNORE});

    EXPECT_EQ(countLines(ignored, "result 0"), 1u);
    EXPECT_EQ(countLines(ignored, "asked "), 1u);
    EXPECT_EQ(countLines(ignored, "heard 16 end"), 1u);
}

TEST_P(AnswerTest, NobodyIsAskedAboutWhatIsNotVital) {
    Scenario notVital = scenario;
    std::string elements = scenario.elements;
    const std::string element = "<" + std::string(GetParam().element) + " ";
    elements.replace(elements.find(element), element.size(), element + "Vital='no' ");
    notVital.elements = elements.c_str();

    const ScenarioRun done =
        runScenario(notVital, GetParam().mode, GetParam().use, {}, {ANSWER_ABORT});

    const size_t asked = GetParam().heedsVital ? 0 : 1;
    EXPECT_EQ(countLines(done, "asked "), asked);
    EXPECT_EQ(countLines(done, "log [WARNNING] The last error isn't vital - ignore."), 1 - asked);
    EXPECT_EQ(countLines(done, asked ? GetParam().result : "result 0"), 1u);
}

INSTANTIATE_TEST_SUITE_P(Each, AnswerTest, testing::ValuesIn(failingActions), [](const auto& info) {
    return std::string(info.param.element) + std::to_string(info.index);
});

}  // namespace
