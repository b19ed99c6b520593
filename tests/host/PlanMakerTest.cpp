#include "host/PlanMaker.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "host/DeepStack.h"
#include "host/LoadedScript.h"
#include "support/FakeCall.h"
#include "support/TestFolder.h"

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
        context = loadScript(script, script, problem);
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

TEST(LastFailureTest, IsEmptyWhereItCannotBeHad) {
    EXPECT_EQ(lastFailure(nullptr), L"");
}

}  // namespace
