#pragma once

#include <string>
#include <vector>

/// The programs that hold a file, as the system's restart manager knows them: "sync.exe (4312)".
/// Empty when there are none and when it can't be asked.
std::vector<std::wstring> holdersOf(const std::wstring& path);
