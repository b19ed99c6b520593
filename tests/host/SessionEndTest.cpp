#include "host/SessionEnd.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "FakeConsole.h"
#include "PrivateDesktop.h"
#include "SetupTest.h"
#include "support/FakeCall.h"
#include "support/Requirements.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

namespace {

constexpr wchar_t windowClass[] = L"TemzRun";

/// A listener in the test's own process, whose window needs no screen.
class SessionEndTest : public testing::Test {
protected:
    const FakeConsole console;
    StopRequest stop;
    std::vector<std::wstring> reasons;
    int destroyed = 0;

private:
    const FakeCall<sessionCalls, &SessionCalls::CreateWindowExW> create{
        [this](DWORD extended, const wchar_t* kind, const wchar_t* title, DWORD style, int x, int y,
               int width, int height, HWND parent, HMENU menu, HINSTANCE program, void* data) {
            EXPECT_EQ(parent, nullptr);
            EXPECT_EQ(style & WS_VISIBLE, 0u);
            return create.real(extended, kind, title, style, x, y, width, height, HWND_MESSAGE,
                               menu, program, data);
        }};
    const FakeCall<sessionCalls, &SessionCalls::ShutdownBlockReasonCreate> giveReason{
        [this](HWND window, const wchar_t* text) {
            EXPECT_TRUE(IsWindow(window));
            reasons.emplace_back(text);
            return TRUE;
        }};
    const FakeCall<sessionCalls, &SessionCalls::ShutdownBlockReasonDestroy> takeReasonBack{
        [this](HWND window) {
            EXPECT_TRUE(IsWindow(window));
            ++destroyed;
            return TRUE;
        }};
};

HWND findListener() {
    return FindWindowExW(HWND_MESSAGE, nullptr, windowClass, nullptr);
}

TEST_F(SessionEndTest, TellsTheUserWhyTheSessionTakesTimeToEndAsLongAsTheRunGoesOn) {
    {
        const SessionEnd sessionEnd(stop);
        EXPECT_TRUE(waitUntil([] { return findListener() != nullptr; }));
        EXPECT_EQ(SendMessageW(findListener(), WM_NULL, 0, 0), 0);
        EXPECT_THAT(reasons, ElementsAre(L"A setup ends behind the action that is under way."));
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1);
    // The class can be taken back only when the window is.
    WNDCLASSEXW left{};
    EXPECT_FALSE(GetClassInfoExW(GetModuleHandleW(nullptr), windowClass, &left));
}

TEST_F(SessionEndTest, CanListenOnceMore) {
    for (int i = 0; i < 2; ++i) {
        const SessionEnd sessionEnd(stop);
        ASSERT_TRUE(waitUntil([] { return findListener() != nullptr; }));
        EXPECT_EQ(SendMessageW(findListener(), WM_QUERYENDSESSION, 0, 0), TRUE);
        EXPECT_TRUE(stop.wanted());
        EXPECT_EQ(SendMessageW(findListener(), WM_ENDSESSION, FALSE, 0), 0);
        EXPECT_FALSE(stop.wanted());
    }
}

TEST_F(SessionEndTest, IsAlsoHeardOfWhereNobodyWaitsForTheAnswer) {
    const SessionEnd sessionEnd(stop);
    ASSERT_TRUE(waitUntil([] { return findListener() != nullptr; }));
    PostMessageW(findListener(), WM_QUERYENDSESSION, 0, 0);
    EXPECT_TRUE(waitUntil([this] { return stop.wanted(); }));
}

TEST_F(SessionEndTest, IsNotHeardOfWhereNoWindowCanBeMade) {
    const FakeCall<sessionCalls, &SessionCalls::CreateWindowExW> create{
        [](auto...) { return nullptr; }};
    { const SessionEnd sessionEnd(stop); }
    EXPECT_EQ(create.count, 1);
    EXPECT_FALSE(stop.wanted());
    EXPECT_THAT(reasons, IsEmpty());
}

/// temz.exe in an action that goes on until it is let, where it can be told of the session's end.
class SessionEndOfTemzTest : public SetupTest {
protected:
    void SetUp() override {
        REQUIRES_WINE("sends messages to another desktop");
        ship(L"hold.xml", actionScript("hold", file("a.txt")));
        ship(L"a.txt", "a");
        const HandlePtr error = openOutput(setup(L"error.txt"));
        program = desktop.start(L"\"" + setup(L"temz.exe") + L"\" install hold.xml --log run.log",
                                folder.path(L"setup"), {nullptr, nullptr, error.get()});
        ASSERT_TRUE(waitUntil([this] { return exists(setup(L"held")); }));
        ASSERT_TRUE(waitUntil([this] { return desktop.findWindow(windowClass) != nullptr; }));
        window = desktop.findWindow(windowClass);
    }

    DWORD letGo() const {
        DeleteFileW(setup(L"held").c_str());
        return waitForProgram(program.get());
    }

    std::string error() const { return withoutReturns(readFile(setup(L"error.txt"))); }
    std::string log() const { return withoutReturns(readFile(setup(L"run.log"))); }

    const PrivateDesktop desktop;
    HandlePtr program;
    HWND window = nullptr;
};

TEST_F(SessionEndOfTemzTest, HasTheActionUnderWayEndAndNoOtherBegin) {
    EXPECT_EQ(SendMessageW(window, WM_QUERYENDSESSION, 0, 0), TRUE);
    const std::string told =
        "\ntemz: The session ends, and the run behind this action: Custom action hold.\n";
    EXPECT_EQ(error(), told);
    constexpr UINT longEnoughToAnswer = 300;  // for one that doesn't wait for the run
    DWORD_PTR answer = 0;
    EXPECT_EQ(SendMessageTimeoutW(window, WM_ENDSESSION, TRUE, 0, SMTO_NORMAL, longEnoughToAnswer,
                                  &answer),
              0);

    EXPECT_EQ(letGo(), 1602u);

    EXPECT_THAT(installedFiles(), IsEmpty());
    EXPECT_THAT(error(),
                testing::StartsWith(told + "temz: Windows ends the session.\n"
                                           "Stopped before Copying a.txt, after 1 of 2 actions "
                                           "(1602). What was done before stays."));
    EXPECT_THAT(log(), HasSubstr(" 1. Custom action hold: done\n"));
    EXPECT_THAT(log(), HasSubstr(" Warning: Windows ends the session.\n"));
    EXPECT_THAT(log(), EndsWith(" Exit code 1602\n"));
}

TEST_F(SessionEndOfTemzTest, IsForgottenWhenTheSessionGoesOn) {
    EXPECT_EQ(SendMessageW(window, WM_QUERYENDSESSION, 0, 0), TRUE);
    EXPECT_EQ(SendMessageW(window, WM_ENDSESSION, FALSE, 0), 0);

    EXPECT_EQ(letGo(), 0u);

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
    EXPECT_THAT(log(), Not(HasSubstr("session")));
}

}  // namespace
