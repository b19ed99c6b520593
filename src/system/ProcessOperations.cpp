#include "system/ProcessOperations.h"

#include <cwchar>
#include <memory>

#include "logging/Log.h"
#include "system/FileOperations.h"
#include "system/PathText.h"
#include "system/ProcessCalls.h"
#include "system/TextFields.h"
#include "system/UniqueHandle.h"

namespace {

struct SnapshotTraits {
    using Handle = HANDLE;
    static Handle invalid() { return INVALID_HANDLE_VALUE; }
    static void close(Handle handle) { processCalls.CloseHandle(handle); }
};
using Snapshot = UniqueHandle<SnapshotTraits>;

struct ProcessHandleTraits {
    using Handle = HANDLE;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { processCalls.CloseHandle(handle); }
};
using ProcessHandle = UniqueHandle<ProcessHandleTraits>;

constexpr DWORD messageFlags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM;
constexpr DWORD userDefaultLanguage = MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT);

Snapshot takeSnapshot(DWORD kind, DWORD processId) {
    Snapshot snapshot(processCalls.CreateToolhelp32Snapshot(kind, processId));
    if (!snapshot) {
        const DWORD error = GetLastError();
        writeLog(ERROR, "CreateToolhelp32Snapshot error:", error);
    }
    return snapshot;
}

/// What stands behind the last separator; nothing in a path without one, so that no process
/// matches.
const wchar_t* baseName(const wchar_t* path) {
    const wchar_t* end = path + wcslen(path);
    for (const wchar_t* position = end; position != path; --position)
        if (isSeparator(position[-1]))
            return position;
    return end;
}

struct LocalMemory {
    void operator()(void* memory) const { processCalls.LocalFree(memory); }
};

/// The system allocates the text and stores its address where it was told to write text.
template <class Character, class Format>
void formatMessage(Format format, uint32_t code, std::basic_string<Character>& message) {
    Character* raw = nullptr;
    const DWORD length = format(messageFlags, nullptr, code, userDefaultLanguage,
                                reinterpret_cast<Character*>(&raw), 0, nullptr);
    const std::unique_ptr<Character, LocalMemory> text(raw);
    if (length != 0 && text)
        message = text.get();
}

}  // namespace

bool findProcessByPath(uint32_t& processId, const wchar_t* path) {
    if (path == nullptr)
        return false;
    wchar_t name[pathBufferLength];
    copyBounded(name, baseName(path));

    const Snapshot snapshot = takeSnapshot(TH32CS_SNAPPROCESS, 0);
    if (!snapshot)
        return false;
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = processCalls.Process32FirstW(snapshot.get(), &entry); more;
         more = processCalls.Process32NextW(snapshot.get(), &entry)) {
        wchar_t image[pathBufferLength];
        if (equalIgnoringCase(entry.szExeFile, name) &&
            getProcessImagePath(image, pathBufferLength, entry.th32ProcessID) &&
            equalIgnoringCase(image, path)) {
            processId = entry.th32ProcessID;
            return true;
        }
    }
    return false;
}

bool getProcessImagePath(wchar_t* buffer, uint32_t /*capacity*/, uint32_t processId) {
    const Snapshot snapshot = takeSnapshot(TH32CS_SNAPMODULE, processId);
    if (!snapshot)
        return false;
    MODULEENTRY32W executable{};
    executable.dwSize = sizeof executable;
    if (!processCalls.Module32FirstW(snapshot.get(), &executable))
        return false;
    copyBounded(buffer, pathBufferLength, executable.szExePath);
    return true;
}

bool killProcessById(uint32_t processId, uint32_t /*ignored*/) {
    if (processId == 0)
        return false;
    const ProcessHandle process(processCalls.OpenProcess(PROCESS_TERMINATE, FALSE, processId));
    if (!process || !processCalls.TerminateProcess(process.get(), 0))
        return false;
    // The handle has no right to synchronise, so the system may answer at once.
    processCalls.WaitForSingleObject(process.get(), INFINITE);
    return true;
}

void getSystemMessage(uint32_t code, std::wstring& message) {
    formatMessage(processCalls.FormatMessageW, code, message);
}

void getSystemMessageNarrow(uint32_t code, std::string& message) {
    formatMessage(processCalls.FormatMessageA, code, message);
}
