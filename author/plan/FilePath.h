#pragma once

#include <string>
#include <string_view>

/// The order of names that differ by more than case.
struct LessIgnoringCase {
    bool operator()(std::wstring_view left, std::wstring_view right) const;
};

bool equalIgnoringCase(std::wstring_view left, std::wstring_view right);

/// The path from its drive on, without "." and "..", with backslashes and without one at its end
/// that isn't a drive's; as it stands when the system can't tell.
std::wstring fullPath(const wchar_t* path);

/// What a full path stands in; empty for a drive's root.
std::wstring parentOf(const std::wstring& path);

/// What stands behind the last separator of a path.
std::wstring nameOf(const std::wstring& path);

bool endsInSeparator(std::wstring_view path);

/// Whether it holds one of the characters that stand for others in a search.
bool isPattern(std::wstring_view name);

/// Whether a search by the pattern finds the name. Short names are left aside.
bool matchesPattern(std::wstring_view pattern, std::wstring_view name);
