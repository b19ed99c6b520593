#include "system/FileOperations.h"

#include <algorithm>
#include <cwchar>
#include <memory>
#include <utility>
#include <vector>

#include "logging/Log.h"
#include "system/FileCalls.h"
#include "system/PathText.h"
#include "system/TextFields.h"
#include "system/UniqueHandle.h"

namespace {

struct FindHandleTraits {
    using Handle = HANDLE;
    static Handle invalid() { return INVALID_HANDLE_VALUE; }
    static void close(Handle handle) { fileCalls.FindClose(handle); }
};
using FindHandle = UniqueHandle<FindHandleTraits>;

/// The error of the call that just failed, as a result: never 0, which would mean success.
int32_t failureCode(DWORD error) {
    return error == ERROR_SUCCESS ? COPY_FAILED : static_cast<int32_t>(error);
}

bool isDotEntry(const wchar_t* name) {
    return wcscmp(name, L".") == 0 || wcscmp(name, L"..") == 0;
}

bool createDirectory(const wchar_t* path) {
    return fileCalls.CreateDirectoryW(path, nullptr) || GetLastError() == ERROR_ALREADY_EXISTS;
}

/// The path, if it fits a path buffer; otherwise it ends the process.
std::wstring boundedPath(std::wstring path) {
    if (path.size() >= pathBufferLength)
        failInvalidParameter();
    return path;
}

void removeEntry(const std::wstring& directory, const WIN32_FIND_DATAW& entry) {
    if (isDotEntry(entry.cFileName))
        return;
    const std::wstring path = boundedPath(directory + entry.cFileName);
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
        removeDirectoryTree(path.c_str());
    else
        deleteFile(path.c_str());
}

}  // namespace

bool fileExists(const wchar_t* path) {
    WIN32_FIND_DATAW found;
    return static_cast<bool>(FindHandle(fileCalls.FindFirstFileW(path, &found)));
}

int32_t deleteFile(const wchar_t* path) {
    if (!fileExists(path) || fileCalls.DeleteFileW(path))
        return 0;
    if (GetLastError() != ERROR_ACCESS_DENIED)
        return -1;
    const DWORD attributes = fileCalls.GetFileAttributesW(path);
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_READONLY))
        return -1;
    if (!fileCalls.SetFileAttributesW(path, attributes ^ FILE_ATTRIBUTE_READONLY))
        return -1;
    return fileCalls.DeleteFileW(path) ? 0 : -1;
}

int32_t copyFileWithDelay(const wchar_t* source, const wchar_t* target, bool delayAllowed) {
    const std::wstring staging = std::wstring(target) + stagingSuffix;
    if (deleteFile(staging.c_str()) != 0) {
        writeLog(ERROR, "Failed to delete File ", staging);
        return COPY_FAILED;
    }
    if (fileCalls.CopyFileW(source, target, FALSE))
        return COPY_DONE;
    if (!delayAllowed)
        return failureCode(GetLastError());

    if (!fileCalls.CopyFileW(source, staging.c_str(), FALSE))
        return failureCode(GetLastError());
    if (!fileCalls.MoveFileExW(staging.c_str(), target,
                               MOVEFILE_REPLACE_EXISTING | MOVEFILE_DELAY_UNTIL_REBOOT)) {
        const DWORD error = GetLastError();
        writeLog(ERROR, "MoveFileEx error code=", error);
        return failureCode(error);
    }
    writeLog(WARNNING, "Succeed to MoveFileEx, file=", source);
    return COPY_DELAYED;
}

// A loop and not a recursion: the depth of the path comes from the script.
bool createDirectories(const wchar_t* path) {
    if (path == nullptr || *path == L'\0')
        return false;
    std::vector<std::wstring> missing;
    std::wstring directory = path;
    while (!createDirectory(directory.c_str())) {
        const WideText parent = parentDirectoryOrThrow(directory.c_str());
        if (!parent)
            return false;
        missing.push_back(std::exchange(directory, parent.get()));
    }
    return std::all_of(missing.rbegin(), missing.rend(),
                       [](const std::wstring& child) { return createDirectory(child.c_str()); });
}

bool removeDirectoryTree(const wchar_t* path) {
    if (path == nullptr || *path == L'\0')
        return false;
    std::wstring directory = path;
    if (directory.back() != L'\\')
        directory += L'\\';
    const std::wstring pattern = boundedPath(directory + L"*");

    // Not on the stack: this recurses as deep as the tree is.
    const auto entry = std::make_unique<WIN32_FIND_DATAW>();
    FindHandle search(fileCalls.FindFirstFileW(pattern.c_str(), entry.get()));
    if (!search)
        return GetLastError() == ERROR_PATH_NOT_FOUND;
    do {
        removeEntry(directory, *entry);
    } while (fileCalls.FindNextFileW(search.get(), entry.get()));
    search.reset();
    return fileCalls.RemoveDirectoryW(path);
}

bool directoryOfPath(const wchar_t* path, std::wstring& directory) {
    const wchar_t* separator = wcsrchr(path, L'\\');
    if (separator == nullptr)
        separator = wcsrchr(path, L'/');
    if (separator == nullptr)
        return false;
    directory.assign(path, separator);
    return true;
}

std::wstring hostProgramDirectory() {
    static std::wstring cached;
    if (!cached.empty())
        return cached;
    wchar_t program[pathBufferLength];
    const DWORD length = fileCalls.GetModuleFileNameW(nullptr, program, pathBufferLength);
    // A path that doesn't fit comes cut to the buffer, and not always terminated.
    if (length == 0 || length >= pathBufferLength)
        return {};
    directoryOfPath(program, cached);
    return cached;
}
