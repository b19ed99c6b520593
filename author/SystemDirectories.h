#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// How long the path of a folder word can be: that of the start menu's programs.
inline constexpr size_t longestFolder = 52;

/// A path in lower case, with backslashes alone and none at its end, in which the folders of the
/// system that have a word stand as that: c:\windows\system32\x is [system32folder]\x.
std::wstring withFolderWords(std::wstring path);

/// Whether such a path is a whole drive, or a directory that Windows makes and no product has to
/// itself, or is above one.
bool isSystemDirectory(std::wstring_view path);
