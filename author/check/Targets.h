#pragma once

#include <string>
#include <string_view>

#include "author/check/Checks.h"

/// The path that a File or a Shortcut makes.
KnownText targetOf(const Action& action);

/// Root and key of a RegistryKey, as a path.
KnownText keyPathOf(const Action& action);

/// Whether the text of an attribute begins with, or holds, the whole path of a directory.
bool holdsWholePath(const Action& action, const wchar_t* attribute, const KnownText& text);

/// A path in one form: backslashes, one between two parts and none at the end.
std::wstring normalized(std::wstring_view path);
std::wstring lowered(std::wstring_view text);

/// The path without its last part; empty when it has but one.
std::wstring_view above(std::wstring_view path);

/// How many parts a normalized path has.
size_t partsOf(std::wstring_view path);
