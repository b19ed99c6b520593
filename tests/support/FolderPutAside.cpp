#include "support/FolderPutAside.h"

namespace fs = std::filesystem;

FolderPutAside::FolderPutAside(const fs::path& folder)
    : folder(folder), aside(folder.wstring() + L".put-aside-by-temz-tests") {
    // One that is aside already was put there by a program that didn't come to its end.
    if (fs::exists(folder) && !fs::exists(aside))
        fs::rename(folder, aside);
}

FolderPutAside::~FolderPutAside() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
    fs::rename(aside, folder, ignored);
}
