#include "logging/CLogLine.h"

#include <windows.h>

#include <cstdio>
#include <exception>
#include <iostream>

#include "logging/CLogSyn.h"
#include "logging/LogCalls.h"
#include "system/TextConversion.h"
#include "system/UniqueHandle.h"

namespace {

/// Holds a lock, if there is one, for the length of a scope.
class LockScope {
public:
    explicit LockScope(CLogSyn* lock) : lock(lock) {
        if (lock)
            lock->lock();
    }
    LockScope(const LockScope&) = delete;
    LockScope& operator=(const LockScope&) = delete;
    ~LockScope() {
        if (lock)
            lock->unlock();
    }

private:
    CLogSyn* lock;
};

struct FileTraits {
    using Handle = HANDLE;
    static Handle invalid() { return INVALID_HANDLE_VALUE; }
    static void close(Handle handle) { CloseHandle(handle); }
};

/// The turn of this process to write to a file, among those that ask in the same way, for the
/// length of a scope: a lock on a byte that no file has. Without it a line could be written over
/// another process's. Who can't ask, or has waited in vain, writes all the same, and no longer
/// waits until it has had a turn: no run stands still for its log.
class TurnToWrite {
public:
    explicit TurnToWrite(const char* path)
        : file(CreateFileA(path, GENERIC_READ,
                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                           OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {
        while (!LockFile(file.get(), 0, beyondAnyFile, 1, 0)) {
            if (GetLastError() != ERROR_LOCK_VIOLATION || waits == 0)
                return;
            --waits;
            Sleep(1);
        }
        waits = patience;
    }
    TurnToWrite(const TurnToWrite&) = delete;
    TurnToWrite& operator=(const TurnToWrite&) = delete;
    ~TurnToWrite() { UnlockFile(file.get(), 0, beyondAnyFile, 1, 0); }

private:
    static constexpr DWORD beyondAnyFile = MAXLONG;  ///< the upper half of the byte's place
    static constexpr int patience = 100;

    /// How often the process waits until its next turn. Lines are written by one thread at a time.
    static inline int waits = patience;

    UniqueHandle<FileTraits> file;
};

void emptyFile(const std::string& path) {
    if (std::FILE* opened = std::fopen(path.c_str(), "w+"))
        std::fclose(opened);
}

}  // namespace

CLogLine::~CLogLine() {
    if (threshold > level)
        return;
    const LockScope scope(lock);
    try {
        logCalls.WriteLine(*this);
    } catch (const std::exception&) {
        // The log never reports its own failures: the line is lost.
    }
}

CLogLine& CLogLine::operator<<(const char* narrow) {
    text << (narrow ? narrow : "null");
    return *this;
}

CLogLine& CLogLine::operator<<(const wchar_t* wide) {
    return *this << toNarrowText(wide).get();
}

CLogLine& CLogLine::operator<<(const std::wstring& wide) {
    return *this << wide.c_str();
}

CLogLine& CLogLine::operator<<(wchar_t character) {
    const wchar_t wide[] = {character, L'\0'};
    return *this << wide;
}

CLogLine& CLogLine::operator<<(bool value) {
    return *this << (value ? "true" : "false");
}

void CLogLine::write() {
    if (path.empty())
        std::cout << text.view() << std::endl;
    else
        appendToFile();
}

void CLogLine::appendToFile() {
    const TurnToWrite turn(path.c_str());
    file.open(path, std::ios::app);
    if (!file.is_open())
        return;
    file.seekp(0, std::ios::end);
    if (file.tellp() > maxSize) {
        file.close();
        emptyFile(path);
        file.open(path, std::ios::app);
    }
    file << text.view() << std::endl;
    file.flush();
    file.close();
}
