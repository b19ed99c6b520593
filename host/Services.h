#pragma once

#include <windows.h>

#include <string>

/// The Win32 call by which dependants are asked for; tests replace it, since Wine's knows none.
struct DependantCalls {
    decltype(&::EnumDependentServicesW) EnumDependentServicesW = ::EnumDependentServicesW;
};

inline DependantCalls dependantCalls;

/// The services that run and depend on this one, by their short names, with commas between them.
std::wstring runningDependantsOf(const std::wstring& service);
