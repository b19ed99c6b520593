#include "ConsoleWindow.h"

#include <iterator>
#include <string_view>

#include "Console.h"

namespace {

/// Whether the windows of this process can come to a screen: not in session 0, where services are.
bool reachesScreen() {
    USEROBJECTFLAGS station{};
    return windowCalls.GetUserObjectInformationW(windowCalls.GetProcessWindowStation(), UOI_FLAGS,
                                                 &station, sizeof station, nullptr) &&
           (station.dwFlags & WSF_VISIBLE) != 0;
}

}  // namespace

bool isConsoleSeen() {
    const HWND window = windowCalls.GetConsoleWindow();
    // A console without a window has none to name here, but Windows 10 1809 gives a number that is
    // no window's, so what counts is whether it has a class.
    wchar_t name[32];
    const int length = windowCalls.GetClassNameW(window, name, static_cast<int>(std::size(name)));
    if (length <= 0)
        return false;
    // A window of any other class, mostly PseudoConsoleWindow, stands for a terminal elsewhere, as
    // a tab, an editor's pane or the far end of a remote shell, and there is somebody for whom it
    // was made. Its own visibility varies with the terminal, and a remote shell's is in session 0.
    if (std::wstring_view(name, static_cast<size_t>(length)) != L"ConsoleWindowClass")
        return true;
    return windowCalls.IsWindowVisible(window) && reachesScreen();
}

void waitForKeyIfAlone() {
    DWORD processes[2];
    if (windowCalls.GetConsoleProcessList(processes, 2) != 1 || !canAsk())
        return;
    write(Stream::error, L"Press Enter to close this window.\n");
    dropTypedAhead();
    std::wstring line;
    readLine(line);
}
