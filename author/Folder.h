#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A file of a folder.
struct FolderFile {
    std::wstring name;
    bool resists = false;  ///< read-only or hidden, so that Windows refuses to copy onto it
};

/// A folder of files with all that is in it, in the order of the names' code units, which is the
/// same on every machine. Links to folders aren't followed: what they lead to is somewhere else, or
/// holds the link itself.
struct Folder {
    std::wstring name;
    std::vector<FolderFile> files;
    std::vector<Folder> folders;
    std::vector<std::wstring> links;
};

/// What couldn't be read, and the system's reason.
struct UnreadFolder {
    std::wstring path;
    uint32_t error = 0;
};

/// Reads a folder. Nothing when it, or one in it, can't be read.
std::optional<Folder> readFolder(const std::wstring& path, UnreadFolder& unread);
