#pragma once

#include <optional>
#include <string>
#include <vector>

/// A folder of files to install, in the order of the names' code units, which is the same on every
/// machine.
struct Payload {
    std::wstring name;
    std::vector<std::wstring> files;
    std::vector<Payload> folders;

    bool holdsFiles() const;  ///< itself, or a folder below it
};

/// What was found that an author should know.
using Notes = std::vector<std::wstring>;

/// Reads a folder with all below it. Links to folders and folders without files are left out, and
/// stand in `notes`. Nothing when the folder holds no file, something in it can't be read, or has a
/// name that no script can install; `problem` tells what.
std::optional<Payload> readPayload(const std::wstring& path, Notes& notes, std::wstring& problem);

/// Why Windows wouldn't make a file or directory of just this name; empty when it would.
std::wstring faultOfName(const std::wstring& name);
