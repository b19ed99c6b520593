#pragma once

#include <windows.h>

/// The Win32 calls by which the window of the console is looked at; tests replace them.
struct WindowCalls {
    decltype(&::GetConsoleWindow) GetConsoleWindow = ::GetConsoleWindow;
    decltype(&::GetClassNameW) GetClassNameW = ::GetClassNameW;
    decltype(&::IsWindowVisible) IsWindowVisible = ::IsWindowVisible;
    decltype(&::GetProcessWindowStation) GetProcessWindowStation = ::GetProcessWindowStation;
    decltype(&::GetUserObjectInformationW) GetUserObjectInformationW = ::GetUserObjectInformationW;
    decltype(&::GetConsoleProcessList) GetConsoleProcessList = ::GetConsoleProcessList;
};

inline WindowCalls windowCalls;

/// Whether somebody may see what the console shows. Management agents, schedulers and services give
/// a program a console as well, one that nobody sees: who asks there waits for ever.
bool isConsoleSeen();

/// A window that was made for this program alone, by a double click, would be gone with the last
/// line before anybody has read it: waits there for the Enter key.
void waitForKeyIfAlone();
