#include "author/draft/Payload.h"

#include <windows.h>

#include <algorithm>
#include <cwctype>
#include <filesystem>
#include <memory>
#include <string_view>

#include "author/SystemText.h"

namespace {

struct FindCloser {
    void operator()(HANDLE find) const { FindClose(find); }
};

std::wstring unreadable(DWORD error) {
    return L"can't be read: " + systemTextWithCode(error);
}

bool isDevice(const std::wstring& name) {
    std::wstring stem = name.substr(0, name.find(L'.'));
    std::transform(stem.begin(), stem.end(), stem.begin(), std::towlower);
    for (const wchar_t* device : {L"con", L"prn", L"aux", L"nul"})
        if (stem == device)
            return true;
    return stem.size() == 4 && (stem.starts_with(L"com") || stem.starts_with(L"lpt")) &&
           stem[3] >= L'1' && stem[3] <= L'9';
}

/// Whether a name has a form in UTF-8, which scripts are written in.
bool isWholeText(const std::wstring& name) {
    return WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, name.data(),
                               static_cast<int>(name.size()), nullptr, 0, nullptr, nullptr) != 0;
}

/// Reads one payload.
class Reader {
public:
    Reader(std::wstring root, Notes& notes, std::wstring& problem)
        : root(std::move(root)), notes(notes), problem(problem) {}

    /// The path is that of the folder, counted from the root; empty for the root itself.
    bool read(Payload& folder, const std::wstring& path) {
        WIN32_FIND_DATAW entry;
        const std::wstring pattern = root + L"\\" + (path.empty() ? L"" : path + L"\\") + L"*";
        const HANDLE raw = FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &entry,
                                            FindExSearchNameMatch, nullptr, 0);
        if (raw == INVALID_HANDLE_VALUE)
            return refuse(path, unreadable(GetLastError()));
        const std::unique_ptr<void, FindCloser> find(raw);
        do
            if (!take(entry, folder, path))
                return false;
        while (FindNextFileW(raw, &entry));
        if (const DWORD error = GetLastError(); error != ERROR_NO_MORE_FILES)
            return refuse(path, unreadable(error));
        std::sort(folder.files.begin(), folder.files.end());
        std::sort(folder.folders.begin(), folder.folders.end(),
                  [](const auto& a, const auto& b) { return a.name < b.name; });
        return true;
    }

private:
    bool refuse(const std::wstring& path, const std::wstring& reason) {
        problem = (path.empty() ? root : root + L"\\" + path) + L" " + reason;
        return false;
    }

    bool take(const WIN32_FIND_DATAW& entry, Payload& folder, const std::wstring& path) {
        const std::wstring name = entry.cFileName;
        if (name == L"." || name == L"..")
            return true;
        const std::wstring place = path.empty() ? name : path + L"\\" + name;
        if (const std::wstring fault = faultOfName(name); !fault.empty())
            return refuse(place, L"can't be installed: " + fault);
        if (!(entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
            if (entry.dwFileAttributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN))
                notes.push_back(place +
                                L" is read-only or hidden, and so will its copy be, which "
                                L"Windows then refuses to replace at an upgrade.");
            folder.files.push_back(name);
            return true;
        }
        if (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) {
            notes.push_back(place + L" is a link to a folder, and left out.");
            return true;
        }
        Payload child{name, {}, {}};
        const size_t noteCount = notes.size();
        if (!read(child, place))
            return false;
        if (child.holdsFiles()) {
            folder.folders.push_back(std::move(child));
            return true;
        }
        notes.resize(noteCount);
        notes.push_back(place +
                        L" holds no files, and is left out: a script makes a "
                        L"directory only for what it puts there.");
        return true;
    }

    const std::wstring root;
    Notes& notes;
    std::wstring& problem;
};

}  // namespace

bool Payload::holdsFiles() const {
    return !files.empty() || std::any_of(folders.begin(), folders.end(),
                                         [](const Payload& folder) { return folder.holdsFiles(); });
}

std::optional<Payload> readPayload(const std::wstring& path, Notes& notes, std::wstring& problem) {
    const std::filesystem::path whole = std::filesystem::absolute(path).lexically_normal();
    const std::filesystem::path folder = whole.has_filename() ? whole : whole.parent_path();
    Payload payload{folder.filename().wstring(), {}, {}};
    if (payload.name.empty()) {
        problem = path + L" is a whole drive; name a folder.";
        return std::nullopt;
    }
    if (!Reader(folder.wstring(), notes, problem).read(payload, L""))
        return std::nullopt;
    if (!payload.holdsFiles()) {
        problem = path + L" holds no files.";
        return std::nullopt;
    }
    return payload;
}

std::wstring faultOfName(const std::wstring& name) {
    if (name.empty())
        return L"the name is empty.";
    if (std::any_of(name.begin(), name.end(), [](wchar_t character) {
            return character < L' ' ||
                   std::wstring_view(L"<>:\"/\\|?*").find(character) != std::wstring_view::npos;
        }))
        return L"Windows allows no control character and none of <>:\"/\\|?* in a name.";
    if (name.back() == L'.' || name.back() == L' ')
        return L"Windows drops dots and blanks at the end of a name.";
    if (isDevice(name))
        return L"the name is that of a device.";
    if (!isWholeText(name))
        return L"the name holds half a character, which no text can.";
    return L"";
}
