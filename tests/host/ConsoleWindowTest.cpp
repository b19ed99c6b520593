#include "host/ConsoleWindow.h"

#include <gmock/gmock.h>

#include <cwchar>
#include <string>

#include "FakeConsole.h"
#include "support/FakeCall.h"

namespace {

/// A console with a window as the test describes it.
class ConsoleWindowTest : public testing::Test {
protected:
    const HWND window = reinterpret_cast<HWND>(0x1234);
    const HWINSTA station = reinterpret_cast<HWINSTA>(0x56);

    std::wstring windowClass = L"ConsoleWindowClass";
    bool visible = true;
    bool stationAnswers = true;
    DWORD stationFlags = WSF_VISIBLE;

private:
    const FakeCall<windowCalls, &WindowCalls::GetConsoleWindow> find{[this] { return window; }};
    const FakeCall<windowCalls, &WindowCalls::GetClassNameW> name{
        [this](HWND asked, wchar_t* text, int capacity) {
            EXPECT_EQ(asked, window);
            EXPECT_LT(windowClass.size(), static_cast<size_t>(capacity));
            std::wcscpy(text, windowClass.c_str());
            return static_cast<int>(windowClass.size());
        }};
    const FakeCall<windowCalls, &WindowCalls::IsWindowVisible> look{[this](HWND asked) {
        EXPECT_EQ(asked, window);
        return static_cast<BOOL>(visible);
    }};
    const FakeCall<windowCalls, &WindowCalls::GetProcessWindowStation> findStation{
        [this] { return station; }};
    const FakeCall<windowCalls, &WindowCalls::GetUserObjectInformationW> askStation{
        [this](HANDLE asked, int index, void* information, DWORD size, DWORD* needed) -> BOOL {
            EXPECT_EQ(asked, station);
            EXPECT_EQ(index, UOI_FLAGS);
            EXPECT_EQ(size, sizeof(USEROBJECTFLAGS));
            EXPECT_EQ(needed, nullptr);
            static_cast<USEROBJECTFLAGS*>(information)->dwFlags = stationFlags;
            return stationAnswers;
        }};
};

TEST_F(ConsoleWindowTest, IsSeenWhereItIsVisible) {
    EXPECT_TRUE(isConsoleSeen());
}

TEST_F(ConsoleWindowTest, IsNotSeenWhereItIsHidden) {
    visible = false;

    EXPECT_FALSE(isConsoleSeen());
}

TEST_F(ConsoleWindowTest, IsNotSeenWhereServicesAre) {
    stationFlags = 0;

    EXPECT_FALSE(isConsoleSeen());
}

TEST_F(ConsoleWindowTest, IsNotSeenWhereTheStationDoesNotAnswer) {
    stationAnswers = false;

    EXPECT_FALSE(isConsoleSeen());
}

TEST_F(ConsoleWindowTest, IsNotSeenWhereTheHandleIsNoWindow) {
    windowClass.clear();

    EXPECT_FALSE(isConsoleSeen());
}

TEST_F(ConsoleWindowTest, StandsForATerminalThatIsElsewhere) {
    visible = false;
    stationFlags = 0;
    for (const wchar_t* terminal :
         {L"PseudoConsoleWindow", L"VirtualConsoleClass", L"WineConsoleClass"}) {
        windowClass = terminal;

        EXPECT_TRUE(isConsoleSeen()) << terminal;
    }
}

/// Wine's console doesn't tell its processes.
TEST(WaitForKeyTest, WaitsOnlyAtAConsoleThatIsTheProgramsOwn) {
    const struct {
        DWORD processes;
        bool someoneAnswers;
        bool waits;
    } consoles[] = {{1, true, true}, {2, true, false}, {1, false, false}, {0, true, false}};
    for (const auto& [processes, someoneAnswers, waits] : consoles) {
        FakeConsole console;
        console.someoneAnswers = someoneAnswers;
        console.answers = {L""};
        const DWORD count = processes;
        const FakeCall<windowCalls, &WindowCalls::GetConsoleProcessList> list(
            [count](DWORD*, DWORD capacity) {
                EXPECT_GE(capacity, 1u);
                return count;
            });

        waitForKeyIfAlone();

        EXPECT_EQ(console.error, waits ? L"Press Enter to close this window.\n" : L"");
        EXPECT_EQ(console.droppings, waits ? 1 : 0);
        EXPECT_EQ(console.answers.empty(), waits);
    }
}

}  // namespace
