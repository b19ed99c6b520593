// The making of a desktop is among the calls for drawing, which the project leaves out.
#undef NOGDI

#include "PrivateDesktop.h"

#include <gtest/gtest.h>

#include <iterator>

namespace {

constexpr wchar_t stationName[] = L"TemzTest";
constexpr wchar_t desktopName[] = L"Default";

struct Search {
    const std::wstring& windowClass;
    HWND found = nullptr;

    static BOOL CALLBACK look(HWND window, LPARAM search) {
        auto& self = *reinterpret_cast<Search*>(search);
        wchar_t name[64];
        GetClassNameW(window, name, static_cast<int>(std::size(name)));
        if (name == self.windowClass)
            self.found = window;
        return self.found == nullptr;
    }
};

}  // namespace

PrivateDesktop::PrivateDesktop()
    : station(CreateWindowStationW(stationName, 0, GENERIC_ALL, nullptr)) {
    EXPECT_TRUE(station) << GetLastError();
    // A desktop is made at the station of the process.
    const HWINSTA before = GetProcessWindowStation();
    EXPECT_TRUE(SetProcessWindowStation(station));
    desktop = CreateDesktopW(desktopName, nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    EXPECT_TRUE(desktop) << GetLastError();
    EXPECT_TRUE(SetProcessWindowStation(before));
}

PrivateDesktop::~PrivateDesktop() {
    CloseDesktop(desktop);
    CloseWindowStation(station);
}

HandlePtr PrivateDesktop::start(const std::wstring& commandLine, const std::wstring& directory,
                                const Streams& streams) const {
    std::wstring place = std::wstring(stationName) + L"\\" + desktopName;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.lpDesktop = place.data();
    return startProgram(commandLine, directory, streams, 0, startup);
}

HWND PrivateDesktop::findWindow(const std::wstring& windowClass) const {
    Search search{windowClass};
    EnumDesktopWindows(desktop, &Search::look, reinterpret_cast<LPARAM>(&search));
    return search.found;
}
