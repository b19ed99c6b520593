#pragma once

#include <optional>
#include <string>
#include <vector>

#include "author/Folder.h"

/// A folder of files to install.
struct Payload {
    std::wstring name;
    std::vector<std::wstring> files;
    std::vector<Payload> folders;

    bool holdsFiles() const;  ///< itself, or a folder below it
};

/// What was found that an author should know.
using Notes = std::vector<std::wstring>;

/// What a script can install of a folder. Links to folders and folders without files are left out,
/// and stand in `notes`. Nothing when the folder holds no file, or something in it has a name that
/// no script can install; `problem` tells what.
std::optional<Payload> payloadOf(const Folder& folder, Notes& notes, std::wstring& problem);

/// Why Windows wouldn't make a file or directory of just this name; empty when it would.
std::wstring faultOfName(const std::wstring& name);
