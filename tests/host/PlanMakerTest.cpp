#include "host/PlanMaker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "FakeConsole.h"
#include "host/DeepStack.h"
#include "host/LoadedScript.h"
#include "host/PlanCommand.h"
#include "host/StopRequest.h"
#include "support/FakeCall.h"
#include "support/LockedFile.h"
#include "support/PayloadFolder.h"
#include "support/TestFolder.h"
#include "support/Text.h"

namespace {

class PlanMakerTest : public testing::Test {
protected:
    PlanMakerTest() {
        LoadProblem problem;
        const std::wstring script =
            folder.write(L"a.xml",
                         "<Script><Product><InstallExecuteSequence><Fragment><Caution Title='a'/>"
                         "<ServiceControl Name='temz-none' Action='start' Wait='no'/></Fragment>"
                         "</InstallExecuteSequence></Product></Script>");
        context = loadScript(script, problem);
    }

    temz_status plan(const std::function<bool()>& stopWanted) {
        Plan plan;
        makePlan(context.get(), TEMZ_INSTALL, {}, stopWanted, realWitnesses, plan);
        return plan.status;
    }

    const TestFolder folder;
    ContextPtr context;
};

TEST_F(PlanMakerTest, EndsWhenTheUserWantsNoMoreOfIt) {
    EXPECT_EQ(plan([] { return false; }), TEMZ_OK);
    EXPECT_EQ(plan([] { return true; }), TEMZ_STOPPED);
    EXPECT_EQ(countActions(context.get(), TEMZ_INSTALL, [] { return false; }), 2u);
    EXPECT_EQ(countActions(context.get(), TEMZ_INSTALL, [] { return true; }), 0u);
}

TEST_F(PlanMakerTest, IsMadeOnTheThreadThatThereIsWhereThereCanBeNoOther) {
    const FakeCall<deepStackCalls, &DeepStackCalls::CreateThread> create(
        [](auto...) { return nullptr; });
    EXPECT_EQ(plan([] { return false; }), TEMZ_OK);
    EXPECT_EQ(create.count, 1);
}

TEST_F(PlanMakerTest, NamesThoseForWhomAFileWaits) {
    const PayloadFolder payload;
    const LockedFile held(folder.write(L"held.txt", "old"));
    const std::wstring script = folder.write(
        L"b.xml",
        "<Script><Product><Directory Path='" + narrow(folder.path()) +
            "'><Component Id='C'><File Name='held.txt' SupportDelayInstall='yes' "
            "Source='" +
            narrow(payload.write(L"a.txt", "new")) +
            "'/></Component></Directory><InstallExecuteSequence><Feature>"
            "<ComponentRef Id='C'/></Feature></InstallExecuteSequence></Product></Script>");
    LoadProblem problem;
    context = loadScript(script, problem);
    Witnesses witnesses = realWitnesses;
    witnesses.holdersOf = [](const std::wstring& file) -> std::vector<std::wstring> {
        return {L"sync.exe has " + file};
    };
    Plan plan;

    makePlan(
        context.get(), TEMZ_INSTALL, {}, [] { return false; }, witnesses, plan);

    const auto waiting = std::find_if(plan.steps.begin(), plan.steps.end(), [](const Step& step) {
        return step.kind == TEMZ_STEP_CHANGE && step.code == TEMZ_CHANGE_FILE_AT_RESTART;
    });
    ASSERT_NE(waiting, plan.steps.end());
    EXPECT_EQ(waiting->holders,
              std::vector<std::wstring>{L"sync.exe has " + folder.path(L"held.txt")});
}

// Exceptions can't pass the library, which is called by way of C.
TEST_F(PlanMakerTest, EndsWhereItCannotBeFollowed) {
    int asked = 0;
    const auto throwing = [&asked]() -> bool {
        ++asked;
        throw std::bad_alloc();
    };
    EXPECT_EQ(plan(throwing), TEMZ_NO_MEMORY);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(plan([]() -> bool { throw std::runtime_error("no such thing"); }), TEMZ_INTERNAL);
    EXPECT_EQ(countActions(context.get(), TEMZ_INSTALL, throwing), 0u);
}

TEST(PlanCommandTest, EndsByCtrlC) {
    const TestFolder folder;
    FakeConsole console;
    const FakeCall<stopCalls, &StopCalls::SetConsoleCtrlHandler> pressed(
        [](PHANDLER_ROUTINE handle, BOOL add) {
            if (add)
                handle(CTRL_C_EVENT);
            return TRUE;
        });
    CommandLine command;
    command.script =
        folder.write(L"a.xml",
                     "<Script><Product><InstallExecuteSequence><Fragment>"
                     "<Caution Title='a'/></Fragment></InstallExecuteSequence></Product>"
                     "</Script>");

    EXPECT_EQ(showPlan(command), Ending::stoppedByUser);

    EXPECT_EQ(console.error, L"temz: The plan was ended by the user.\n");
    EXPECT_EQ(console.output, L"");
}

TEST(LastFailureTest, IsEmptyWhereItCannotBeHad) {
    EXPECT_EQ(lastFailure(nullptr), L"");
}

}  // namespace
