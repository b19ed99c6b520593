#include "plan/FilePath.h"

#include <windows.h>

#include "system/PathText.h"

namespace {

int compare(std::wstring_view left, std::wstring_view right) {
    return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                static_cast<int>(right.size()), TRUE);
}

/// "C:\" has three characters, and so has no root fewer.
constexpr size_t driveRootLength = 3;

}  // namespace

bool LessIgnoringCase::operator()(std::wstring_view left, std::wstring_view right) const {
    return compare(left, right) == CSTR_LESS_THAN;
}

bool equalIgnoringCase(std::wstring_view left, std::wstring_view right) {
    return compare(left, right) == CSTR_EQUAL;
}

std::wstring fullPath(const wchar_t* path) {
    const DWORD size = GetFullPathNameW(path, 0, nullptr, nullptr);
    std::wstring full(size, L'\0');
    full.resize(GetFullPathNameW(path, size, full.data(), nullptr));
    if (full.empty())
        return path;
    while (full.size() > driveRootLength && isSeparator(full.back()))
        full.pop_back();
    return full;
}

std::wstring parentOf(const std::wstring& path) {
    const size_t separator = path.find_last_of(L'\\');
    if (separator == std::wstring::npos || path.size() <= driveRootLength)
        return {};
    return path.substr(0, separator < driveRootLength ? driveRootLength : separator);
}

std::wstring nameOf(const std::wstring& path) {
    return path.substr(path.find_last_of(L"\\/") + 1);
}

bool endsInSeparator(std::wstring_view path) {
    return path.ends_with(L'\\') || path.ends_with(L'/');
}

bool isPattern(std::wstring_view name) {
    return name.find_first_of(L"*?") != std::wstring_view::npos;
}

// Where the rest doesn't match, the last star takes one more character.
bool matchesPattern(std::wstring_view pattern, std::wstring_view name) {
    if (pattern == L"*.*")
        return true;
    size_t at = 0;
    size_t star = std::wstring_view::npos;
    size_t taken = 0;
    for (size_t i = 0; i < name.size();) {
        if (at < pattern.size() && pattern[at] == L'*') {
            star = at++;
            taken = i;
        } else if (at < pattern.size() &&
                   (pattern[at] == L'?' ||
                    equalIgnoringCase(pattern.substr(at, 1), name.substr(i, 1)))) {
            ++at;
            ++i;
        } else if (star != std::wstring_view::npos) {
            at = star + 1;
            i = ++taken;
        } else {
            return false;
        }
    }
    while (at < pattern.size() && pattern[at] == L'*')
        ++at;
    return at == pattern.size();
}
