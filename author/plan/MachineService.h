#pragma once

#include <windows.h>

#include <string>

/// The process that runs a service and nothing else; 0 where there is none, or it can't be told.
DWORD processOfService(const std::wstring& name);

/// Whether it is to be removed as soon as nobody has it open any more.
bool isMarkedForRemoval(const std::wstring& name);

/// Whether services run that need this one.
bool isNeededByRunning(const std::wstring& name);
