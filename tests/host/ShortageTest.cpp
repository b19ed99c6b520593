// Where memory ends: in the library, and in the program itself.

#include "host/Shortage.h"

#include <gmock/gmock.h>

#include "FakeConsole.h"
#include "SetupTest.h"
#include "capi/FailingMalloc.h"
#include "host/CheckCommand.h"
#include "host/DeepStack.h"
#include "host/GivenText.h"
#include "host/LoadedScript.h"
#include "host/PlanCommand.h"
#include "host/SchemaCommand.h"
#include "support/FakeCall.h"

using testing::EndsWith;
using testing::HasSubstr;

namespace {

constexpr wchar_t noMemory[] = L"temz: There isn't enough memory.\n";

/// A library that has no memory left.
class ShortageTest : public testing::Test {
protected:
    const TestFolder folder;
    const std::wstring script =
        folder.write(L"a.xml", "<Script><Product><InstallExecuteSequence/></Product></Script>");
    FakeConsole console;
};

TEST_F(ShortageTest, EndsACommandThatRunsNothingAndSaysSo) {
    const struct {
        Ending (*command)(const CommandLine&);
        std::wstring payload;
    } commands[] = {
        {giveSchema, L""},
        {checkScriptFile, L""},
        {checkScriptFile, folder.path()},
    };
    for (const auto& [command, payload] : commands) {
        CommandLine line;
        line.script = script;
        line.payload = payload;
        console.error.clear();
        const FailingMalloc failing(0, SIZE_MAX);
        EXPECT_EQ(command(line), Ending::notCarriedOut);
        EXPECT_EQ(console.error, noMemory);
        EXPECT_EQ(console.output, L"");
    }
}

TEST_F(ShortageTest, EndsAPlanWhereverItComes) {
    // What a thread needs to throw at all is made from memory when it begins.
    const FakeCall<deepStackCalls, &DeepStackCalls::CreateThread> noThread(
        [](auto...) { return nullptr; });
    CommandLine line;
    line.script = script;
    bool failed = true;
    for (size_t succeeding = 0; failed; ++succeeding) {
        console.error.clear();
        const FailingMalloc failing(succeeding);
        const Ending ending = showPlan(line);
        failed = failing.hasFailed();
        EXPECT_EQ(ending, failed ? Ending::failed : Ending::done) << succeeding;
        EXPECT_THAT(console.error, EndsWith(failed ? L"There isn't enough memory.\n" : L""));
    }
}

TEST_F(ShortageTest, IsToldAsWhatKeepsAScriptFromBeingLoaded) {
    LoadProblem problem;
    const FailingMalloc failing(0, SIZE_MAX);

    EXPECT_FALSE(loadScript(script, problem));

    EXPECT_EQ(problem.ending, Ending::failed);
    EXPECT_EQ(problem.text, script + L" can't be loaded: There isn't enough memory.");
}

TEST_F(ShortageTest, IsNoFaultOfTheScript) {
    const FailingMalloc failing(0, SIZE_MAX);

    const LoadProblem problem = findFatalProblem(script, L" isn't started.");

    EXPECT_EQ(problem.ending, Ending::failed);
    EXPECT_EQ(problem.text, script + L" can't be checked: There isn't enough memory.");
}

TEST_F(ShortageTest, OfTheProgramEndsACommandAsOneOfTheLibraryDoes) {
    const struct {
        Verb verb;
        Ending ending;
    } verbs[] = {
        {Verb::run, Ending::failed},           {Verb::plan, Ending::failed},
        {Verb::verify, Ending::failed},        {Verb::check, Ending::notCarriedOut},
        {Verb::schema, Ending::notCarriedOut}, {Verb::help, Ending::notCarriedOut},
    };
    for (const auto& [verb, ending] : verbs) {
        console.error.clear();
        EXPECT_EQ(endForLackOfMemory(verb), ending);
        EXPECT_EQ(console.error, noMemory);
    }
}

TEST(TakeTextTest, LeavesTheTextAsItWasWhereverTheLibraryFails) {
    const auto takenWhere = [](int failingCall, temz_status expected) {
        int calls = 0;
        const auto give = [&](wchar_t* buffer, size_t capacity, size_t* length) -> temz_status {
            if (++calls == failingCall)
                return TEMZ_NO_MEMORY;
            *length = sizeof L"new" / sizeof(wchar_t);
            if (capacity > 0)
                std::wcscpy(buffer, L"new");
            return TEMZ_OK;
        };
        std::wstring text = L"old";
        EXPECT_EQ(takeText(give, text), expected);
        return text;
    };
    EXPECT_EQ(takenWhere(0, TEMZ_OK), L"new");
    EXPECT_EQ(takenWhere(1, TEMZ_NO_MEMORY), L"old");
    EXPECT_EQ(takenWhere(2, TEMZ_NO_MEMORY), L"old");
}

using ShortageOfTemzTest = SetupTest;

TEST_F(ShortageOfTemzTest, EndsARunWithALineAndItsExitCodeWhereverItComes) {
    ship(L"install.xml", actionScript("failOneAllocation", ""));
    for (const std::wstring arguments : {L"install install.xml", L"install install.xml --json"}) {
        unsigned long exitCode = 1603;
        for (int succeeding = 0; exitCode != 0 && !HasFailure(); ++succeeding) {
            SetEnvironmentVariableW(L"TEMZ_TESTS_ALLOCATION", std::to_wstring(succeeding).c_str());
            const ProgramRun run = temz(arguments);
            exitCode = run.exitCode;
            if (exitCode != 0) {
                EXPECT_EQ(exitCode, 1603u) << succeeding;
                EXPECT_THAT(run.output + run.error, HasSubstr("There isn't enough memory."))
                    << succeeding;
            }
        }
    }
    SetEnvironmentVariableW(L"TEMZ_TESTS_ALLOCATION", nullptr);
}

}  // namespace
