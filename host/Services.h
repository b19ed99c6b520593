#pragma once

#include <string>

/// The services that run and depend on this one, by their short names, with commas between them.
std::wstring runningDependantsOf(const std::wstring& service);
