#pragma once

#include <optional>
#include <set>
#include <string>

/// The names that a library exports, read from its file; nothing when it is none that a 64-bit
/// process could load.
std::optional<std::set<std::string>> exportedNames(const std::wstring& path);
