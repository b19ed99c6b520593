#pragma once

#include <cstdint>
#include <span>
#include <string>

/// One word by which a script names a folder of the system, and that folder's CSIDL value.
struct FolderWord {
    wchar_t word[64];
    int32_t folder;
};

/// All folder words, in the order in which they are compared: exactly and case-sensitively.
std::span<const FolderWord> folderWords();

/// The path of the folder that a folder word names. False for an unknown word, and, with a line in
/// the log, when the system doesn't have the folder; `path` then stays as it is.
bool getSpecialFolder(const wchar_t* word, std::wstring& path);

/// Fills a buffer of 260 characters with the path of a special folder, without a separator at its
/// end. False when the system doesn't have it; the buffer then stays as it is.
bool getFolderPath(int32_t folder, wchar_t* buffer);

bool getLocalAppDataFolder(wchar_t* buffer);
bool getCommonAppDataFolder(wchar_t* buffer);
bool getCommonDocumentsFolder(wchar_t* buffer);
bool getCommonTemplatesFolder(wchar_t* buffer);
bool getTemplatesFolder(wchar_t* buffer);
