#include "author/Folder.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <memory>

namespace {

struct FindCloser {
    void operator()(HANDLE find) const { FindClose(find); }
};

void add(const WIN32_FIND_DATAW& entry, Folder& folder) {
    const std::wstring name = entry.cFileName;
    if (name == L"." || name == L"..")
        return;
    const DWORD attributes = entry.dwFileAttributes;
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY))
        folder.files.push_back(
            {name, (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN)) != 0});
    else if (attributes & FILE_ATTRIBUTE_REPARSE_POINT)
        folder.links.push_back(name);
    else
        folder.folders.push_back({name, {}, {}, {}});
}

/// The error that ended the listing, or 0 at its end.
DWORD list(const std::wstring& path, Folder& folder) {
    WIN32_FIND_DATAW entry;
    const HANDLE raw = FindFirstFileExW((path + L"\\*").c_str(), FindExInfoBasic, &entry,
                                        FindExSearchNameMatch, nullptr, 0);
    if (raw == INVALID_HANDLE_VALUE)
        return GetLastError();
    const std::unique_ptr<void, FindCloser> find(raw);
    do
        add(entry, folder);
    while (FindNextFileW(raw, &entry));
    const DWORD error = GetLastError();
    return error == ERROR_NO_MORE_FILES ? 0 : error;
}

bool read(const std::wstring& path, Folder& folder, UnreadFolder& unread) {
    if (const DWORD error = list(path, folder)) {
        unread = {path, error};
        return false;
    }
    const auto byName = [](const auto& a, const auto& b) { return a.name < b.name; };
    std::sort(folder.files.begin(), folder.files.end(), byName);
    std::sort(folder.folders.begin(), folder.folders.end(), byName);
    std::sort(folder.links.begin(), folder.links.end());
    return std::all_of(folder.folders.begin(), folder.folders.end(), [&](Folder& inner) {
        return read(path + L"\\" + inner.name, inner, unread);
    });
}

}  // namespace

std::optional<Folder> readFolder(const std::wstring& path, UnreadFolder& unread) {
    const std::filesystem::path whole = std::filesystem::absolute(path).lexically_normal();
    const std::filesystem::path place = whole.has_filename() ? whole : whole.parent_path();
    Folder folder{place.filename().wstring(), {}, {}, {}};
    std::wstring start = place.wstring();
    if (start.ends_with(L'\\'))  // a drive's root
        start.pop_back();
    if (!read(start, folder, unread))
        return std::nullopt;
    return folder;
}
