#pragma once

#include <string>

#include "system/TextConversion.h"

/// True for a backslash and a forward slash.
constexpr bool isSeparator(wchar_t character) {
    return character == L'\\' || character == L'/';
}

/// Directory and name with one separator between them; none is added to an empty directory or
/// behind a separator. Null when either is null or memory is exhausted.
WideText joinPath(const wchar_t* directory, const wchar_t* name);

/// The path with a separator at its end; an empty one stays empty.
std::wstring withSeparator(std::wstring path);

/// Puts a directory in front of a path, with a separator at its end; an empty one changes nothing.
void putInFront(std::wstring& path, const std::wstring& directory);

/// The text before the last separator, which may be the trailing one. A separator in the very
/// first place doesn't count. Null when there is none, and when memory is exhausted.
WideText parentDirectory(const wchar_t* path);

/// The same, but for exhausted memory, which leaves as std::bad_alloc.
WideText parentDirectoryOrThrow(const wchar_t* path);

/// Puts the time stamp of this process in front of the last "." of the whole path, or behind a path
/// without one. All calls of a process use the stamp of the first. A null path counts as empty.
void makeStampedName(const wchar_t* path, std::wstring& name);

/// That stamp; empty before the first call.
const wchar_t* nameStamp();

/// Whether two texts are the same but for case, by the case table that file names obey.
bool equalIgnoringCase(const wchar_t* left, const wchar_t* right);

/// Whether two paths are the same text but for case, the kind of separator, and trailing
/// separators.
bool samePath(const wchar_t* left, const wchar_t* right);
