#pragma once

#include <filesystem>

/// Puts a folder, if it is there, out of the way for the life of the object. Then it comes back, in
/// place of whatever has come there meanwhile.
class FolderPutAside {
public:
    explicit FolderPutAside(const std::filesystem::path& folder);
    FolderPutAside(const FolderPutAside&) = delete;
    FolderPutAside& operator=(const FolderPutAside&) = delete;
    ~FolderPutAside();

private:
    const std::filesystem::path folder;
    const std::filesystem::path aside;
};
