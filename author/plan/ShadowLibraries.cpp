#include "plan/ShadowLibraries.h"

#include <vector>

#include "plan/LibraryFile.h"
#include "plan/MachineFile.h"
#include "system/FileOperations.h"
#include "system/PathText.h"
#include "trace/CallText.h"

namespace {

using TellPath = UINT(WINAPI*)(wchar_t* buffer, UINT size);

std::wstring toldBy(TellPath tell) {
    wchar_t path[pathBufferLength];
    const UINT length = tell(path, pathBufferLength);
    return length < pathBufferLength ? std::wstring(path, length) : std::wstring();
}

std::wstring fileOf(HMODULE module) {
    wchar_t path[pathBufferLength];
    const DWORD length = GetModuleFileNameW(module, path, pathBufferLength);
    return length < pathBufferLength ? std::wstring(path, length) : std::wstring();
}

std::vector<std::wstring> foldersOfPath() {
    std::wstring text(GetEnvironmentVariableW(L"PATH", nullptr, 0), L'\0');
    text.resize(GetEnvironmentVariableW(L"PATH", text.data(), static_cast<DWORD>(text.size())));
    std::vector<std::wstring> folders;
    for (size_t from = 0; from < text.size();) {
        const size_t end = std::min(text.find(L';', from), text.size());
        folders.push_back(text.substr(from, end - from));
        from = end + 1;
    }
    return folders;
}

/// Where the system looks for a library that is named without its place, in its order. A host may
/// have told it to leave some out.
std::vector<std::wstring> searchedFolders() {
    std::vector<std::wstring> folders = {parentOf(fileOf(nullptr)), toldBy(GetSystemDirectoryW),
                                         toldBy(GetWindowsDirectoryW), fullPath(L".")};
    for (const std::wstring& folder : foldersOfPath())
        folders.push_back(folder);
    return folders;
}

/// A name without a dot gets the extension of libraries; one at its end stands for none.
std::wstring withExtension(std::wstring name) {
    if (name.ends_with(L'.'))
        name.pop_back();
    else if (nameOf(name).find(L'.') == std::wstring::npos)
        name += L".dll";
    return name;
}

bool isWholePath(const std::wstring& name) {
    return (name.size() > 1 && name[1] == L':') || name.starts_with(L"\\\\");
}

}  // namespace

/// Empty when there is no such library.
std::wstring ShadowLibraries::find(const wchar_t* given) const {
    const std::wstring name = withExtension(given);
    const auto isFile = [this](const std::wstring& path) {
        const SeenFile file = files.look(path);
        return file.isThere() && !file.isDirectory();
    };
    if (isWholePath(name))
        return isFile(fullPath(name.c_str())) ? fullPath(name.c_str()) : L"";
    if (const HMODULE loaded = GetModuleHandleW(name.c_str()))
        return fileOf(loaded);
    for (const std::wstring& folder : searchedFolders()) {
        std::wstring path = fullPath((withSeparator(folder) + name).c_str());
        if (!folder.empty() && isFile(path))
            return path;
    }
    return {};
}

HMODULE ShadowLibraries::answer(Call<&LibraryCalls::LoadLibraryW>, const wchar_t* name) {
    const std::wstring path = find(name);
    const std::wstring content = files.look(path).content;
    DWORD error = path.empty() ? DWORD{ERROR_MOD_NOT_FOUND}
                               : tryToOpen(content, GENERIC_READ | GENERIC_EXECUTE);
    const auto exports = error ? std::nullopt : exportedNames(content);
    if (!error && !exports)
        error = ERROR_BAD_EXE_FORMAT;
    if (!answerOf(error))
        return nullptr;
    Change change{};
    change.kind = ChangeKind::libraryLoaded;
    change.object = path;
    change.unforeseeable = true;
    listener.planned(change);
    return libraries.give({path, *exports});
}

FARPROC ShadowLibraries::answer(Call<&LibraryCalls::GetProcAddress>, HMODULE handle,
                                const char* name) {
    const Library* const library = libraries.find(handle);
    if (library == nullptr || !library->exports.contains(name)) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return reinterpret_cast<FARPROC>(entries.give({library->path + L"!" + textOf(name)}));
}

BOOL ShadowLibraries::answer(Call<&LibraryCalls::FreeLibrary>, HMODULE library) {
    return answerOf(libraries.close(library) ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_INVALID_HANDLE});
}

uint32_t ShadowLibraries::answer(Call<&ActionCalls::CallEntry>, CustomActionEntry entry,
                                 CustomActionParams* /*params*/, wchar_t* /*message*/,
                                 uint32_t /*capacity*/) {
    const Entry* const own = entries.find(reinterpret_cast<void*>(entry));
    Change change{};
    change.kind = ChangeKind::actionCalled;
    change.object = own ? own->name : L"";
    change.unforeseeable = true;
    listener.planned(change);
    return 0;
}
