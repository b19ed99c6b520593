#include "author/draft/Payload.h"

#include <windows.h>

#include <algorithm>
#include <cwctype>
#include <string_view>

namespace {

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

/// Judges what is in one folder.
class Judge {
public:
    Judge(const Folder& root, Notes& notes, std::wstring& problem)
        : root(root), notes(notes), problem(problem) {}

    /// The path is that of the folder, counted from the root; empty for the root itself.
    bool take(const Folder& folder, const std::wstring& path, Payload& payload) {
        const std::wstring front = path.empty() ? path : path + L"\\";
        for (const std::wstring& link : folder.links)
            notes.push_back(front + link + L" is a link to a folder, and left out.");
        for (const FolderFile& file : folder.files) {
            const std::wstring place = front + file.name;
            if (!isInstallable(file.name, front))
                return false;
            if (file.resists)
                notes.push_back(place +
                                L" is read-only or hidden, and so will its copy be, which Windows "
                                L"then refuses to replace at an upgrade. Clear that: attrib -r -h "
                                L"\"" +
                                wholePlace(place) + L"\"");
            payload.files.push_back(file.name);
        }
        return std::all_of(folder.folders.begin(), folder.folders.end(), [&](const Folder& inner) {
            return isInstallable(inner.name, front) &&
                   takeInner(inner, front + inner.name, payload);
        });
    }

private:
    /// As a Source names it.
    std::wstring wholePlace(const std::wstring& place) const { return root.name + L"\\" + place; }

    bool isInstallable(const std::wstring& name, const std::wstring& front) {
        const std::wstring fault = faultOfName(name);
        if (!fault.empty())
            problem = wholePlace(front + name) + L" can't be installed: " + fault;
        return fault.empty();
    }

    bool takeInner(const Folder& inner, const std::wstring& path, Payload& payload) {
        Payload child{inner.name, {}, {}};
        const size_t noteCount = notes.size();
        if (!take(inner, path, child))
            return false;
        if (child.holdsFiles()) {
            payload.folders.push_back(std::move(child));
            return true;
        }
        notes.resize(noteCount);
        notes.push_back(path +
                        L" holds no files, and is left out: a script makes a directory only for "
                        L"what it puts there.");
        return true;
    }

    const Folder& root;
    Notes& notes;
    std::wstring& problem;
};

}  // namespace

bool Payload::holdsFiles() const {
    return !files.empty() || std::any_of(folders.begin(), folders.end(),
                                         [](const Payload& folder) { return folder.holdsFiles(); });
}

std::optional<Payload> payloadOf(const Folder& folder, Notes& notes, std::wstring& problem) {
    Payload payload{folder.name, {}, {}};
    if (folder.name.empty()) {
        problem = L"A whole drive can't be installed; name a folder in it.";
        return std::nullopt;
    }
    if (!Judge(folder, notes, problem).take(folder, L"", payload))
        return std::nullopt;
    if (!payload.holdsFiles()) {
        problem = folder.name + L" holds no files.";
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
