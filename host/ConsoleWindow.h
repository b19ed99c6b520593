#pragma once

#include <windows.h>

/// The Win32 calls by which the window of the console is looked at; tests replace them.
struct WindowCalls {
    decltype(&::GetConsoleWindow) GetConsoleWindow = ::GetConsoleWindow;
    decltype(&::GetClassNameW) GetClassNameW = ::GetClassNameW;
    decltype(&::IsWindowVisible) IsWindowVisible = ::IsWindowVisible;
    decltype(&::GetProcessWindowStation) GetProcessWindowStation = ::GetProcessWindowStation;
    decltype(&::GetUserObjectInformationW) GetUserObjectInformationW = ::GetUserObjectInformationW;
};

inline WindowCalls windowCalls;

/// Whether somebody may see what the console shows. Management agents, schedulers and services give
/// a program a console as well, one that nobody sees: who asks there waits for ever.
bool isConsoleSeen();
