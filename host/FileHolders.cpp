#include "FileHolders.h"

#include <restartmanager.h>

#include <memory>

namespace {

struct LibraryReleaser {
    void operator()(HMODULE library) const { FreeLibrary(library); }
};
using LibraryPtr = std::unique_ptr<std::remove_pointer_t<HMODULE>, LibraryReleaser>;

/// A library of the system's that is found in any folder when only its name is given.
LibraryPtr loadFromSystem(const wchar_t* name) {
    wchar_t directory[MAX_PATH];
    const UINT length = GetSystemDirectoryW(directory, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return nullptr;
    const std::wstring path = std::wstring(directory) + L"\\" + name;
    return LibraryPtr(
        holderCalls.LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
}

template <class Function>
bool bind(const LibraryPtr& library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(
        reinterpret_cast<void*>(holderCalls.GetProcAddress(library.get(), name)));
    return function != nullptr;
}

/// The restart manager, asked for one file.
class RestartManager {
public:
    RestartManager() : library(loadFromSystem(L"rstrtmgr.dll")) {
        wchar_t key[CCH_RM_SESSION_KEY + 1] = {};
        open = library && bind(library, "RmStartSession", startSession) &&
               bind(library, "RmRegisterResources", registerResources) &&
               bind(library, "RmGetList", getList) && bind(library, "RmEndSession", endSession) &&
               startSession(&session, 0, key) == ERROR_SUCCESS;
    }
    RestartManager(const RestartManager&) = delete;
    RestartManager& operator=(const RestartManager&) = delete;
    ~RestartManager() {
        if (open)
            endSession(session);
    }

    std::vector<RM_PROCESS_INFO> holders(const std::wstring& path) const {
        const wchar_t* files[] = {path.c_str()};
        if (!open || registerResources(session, 1, files, 0, nullptr, 0, nullptr) != ERROR_SUCCESS)
            return {};
        // Between two questions others may have opened the file.
        std::vector<RM_PROCESS_INFO> list;
        for (int tries = 0; tries < 3; ++tries) {
            UINT needed = 0;
            UINT count = static_cast<UINT>(list.size());
            DWORD reasons = 0;
            const DWORD answer = getList(session, &needed, &count, list.data(), &reasons);
            if (answer != ERROR_MORE_DATA) {
                list.resize(answer == ERROR_SUCCESS ? count : 0);
                return list;
            }
            list.resize(needed);
        }
        return {};
    }

private:
    LibraryPtr library;
    decltype(&::RmStartSession) startSession = nullptr;
    decltype(&::RmRegisterResources) registerResources = nullptr;
    decltype(&::RmGetList) getList = nullptr;
    decltype(&::RmEndSession) endSession = nullptr;
    DWORD session = 0;
    bool open = false;
};

}  // namespace

std::vector<std::wstring> holdersOf(const std::wstring& path) {
    std::vector<std::wstring> holders;
    for (const RM_PROCESS_INFO& process : RestartManager().holders(path))
        holders.push_back(std::wstring(process.strAppName) + L" (" +
                          std::to_wstring(process.Process.dwProcessId) + L")");
    return holders;
}
