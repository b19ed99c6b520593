#include "host/StopRequest.h"

#include <gmock/gmock.h>

#include <optional>
#include <vector>

#include "FakeConsole.h"
#include "support/FakeCall.h"

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The system's side of a request, played by the test.
class StopRequestTest : public testing::Test {
protected:
    StopRequestTest() { request.emplace(); }

    const FakeCall<stopCalls, &StopCalls::SetConsoleCtrlHandler> setHandler{
        [this](PHANDLER_ROUTINE routine, BOOL add) {
            handler = add ? routine : nullptr;
            return TRUE;
        }};
    const FakeCall<stopCalls, &StopCalls::Sleep> sleep{
        [this](DWORD time) { sleeps.push_back(time); }};
    const FakeCall<stopCalls, &StopCalls::TerminateProcess> terminate{
        [this](HANDLE process, UINT code) {
            EXPECT_EQ(process, GetCurrentProcess());
            codes.push_back(code);
            return TRUE;
        }};
    FakeConsole console;
    PHANDLER_ROUTINE handler = nullptr;
    std::vector<DWORD> sleeps;
    std::vector<UINT> codes;
    std::optional<StopRequest> request;
};

TEST_F(StopRequestTest, IsNotWantedByItself) {
    EXPECT_FALSE(request->wanted());
    request->wait(0ms);
    EXPECT_FALSE(request->wanted());
}

TEST_F(StopRequestTest, IsWantedAfterAKeyWhichNamesTheActionUnderWay) {
    for (const DWORD key : {CTRL_C_EVENT, CTRL_BREAK_EVENT}) {
        request.emplace();
        console.error.clear();
        request->setAction(L"Copying a.txt");

        EXPECT_TRUE(handler(key));

        EXPECT_TRUE(request->wanted());
        EXPECT_EQ(console.error,
                  L"\ntemz: The run ends behind this action: Copying a.txt. Press Ctrl+C once more "
                  L"to end it at once.\n");
        request->wait(24h);  // is over at once
    }
    EXPECT_THAT(codes, IsEmpty());
    EXPECT_THAT(sleeps, IsEmpty());
}

TEST_F(StopRequestTest, EndsTheProcessAtTheSecondKey) {
    request->setAction(L"Copying a.txt");
    handler(CTRL_C_EVENT);
    console.error.clear();

    handler(CTRL_C_EVENT);

    EXPECT_THAT(codes, ElementsAre(1602u));
    EXPECT_EQ(console.error,
              L"\ntemz: Ended in the middle of this action: Copying a.txt (1602).\n");
}

// Whoever comes back from these events has his process ended.
TEST_F(StopRequestTest, GivesTheRunTheTimeThatIsLeftWhenTheWindowOrTheSessionEnds) {
    for (const DWORD event : {CTRL_CLOSE_EVENT, CTRL_LOGOFF_EVENT, CTRL_SHUTDOWN_EVENT}) {
        request.emplace();
        sleeps.clear();

        handler(event);

        EXPECT_TRUE(request->wanted());
        EXPECT_THAT(sleeps, ElementsAre(INFINITE));
    }
    EXPECT_THAT(codes, IsEmpty());
    EXPECT_EQ(console.error, L"");
}

TEST_F(StopRequestTest, TellsOfNoActionBeforeTheFirst) {
    handler(CTRL_C_EVENT);
    request->setSessionEnding(true);

    EXPECT_TRUE(request->wanted());
    EXPECT_EQ(console.error, L"");
}

TEST_F(StopRequestTest, IsWantedWhileTheSessionIsAboutToEnd) {
    request->setAction(L"Copying a.txt");

    request->setSessionEnding(true);
    request->setSessionEnding(true);
    EXPECT_TRUE(request->wanted() && request->isSessionEnding());
    request->setSessionEnding(false);

    EXPECT_FALSE(request->wanted() || request->isSessionEnding());
    EXPECT_EQ(console.error,
              L"\ntemz: The session ends, and the run behind this action: Copying a.txt.\n");
}

TEST_F(StopRequestTest, IsNotTouchedByASessionThatGoesOnAsItDid) {
    request->setAction(L"Copying a.txt");
    request->setSessionEnding(false);
    EXPECT_FALSE(request->wanted());
    EXPECT_EQ(console.error, L"");
}

TEST_F(StopRequestTest, RemainsTheUsersWhenTheSessionGoesOn) {
    request->setSessionEnding(true);
    handler(CTRL_C_EVENT);
    EXPECT_THAT(codes, IsEmpty());  // it is the first key all the same

    request->setSessionEnding(false);

    EXPECT_TRUE(request->wanted());
    EXPECT_FALSE(request->isSessionEnding());
}

TEST_F(StopRequestTest, IsAskedForNoLongerThanItLives) {
    const PHANDLER_ROUTINE last = handler;
    request.reset();
    EXPECT_EQ(handler, nullptr);
    EXPECT_FALSE(last(CTRL_C_EVENT));
}

}  // namespace
