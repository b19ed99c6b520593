#include "logging/CLogLine.h"

#include <windows.h>

#include <exception>
#include <iostream>
#include <new>

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
    static void close(Handle file) { CloseHandle(file); }
};
using FileHandle = UniqueHandle<FileTraits>;

/// The log's file for appending: the system puts what is written behind what others have written
/// in the meantime. None when it can't be had.
FileHandle openForAppending(const char* path) {
    return FileHandle(CreateFileA(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

void emptyFile(const char* path) {
    FileHandle(CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

int64_t endOf(const FileHandle& file) {
    LARGE_INTEGER end = {};
    SetFilePointerEx(file.get(), {}, &end, FILE_END);
    return end.QuadPart;
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

void CLogLine::makeRoom(size_t length) try {
    text.reserve(length);
} catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): the pieces make their own room
}

CLogLine& CLogLine::append(std::string_view piece) try {
    text += piece;
    return *this;
} catch (const std::bad_alloc&) {
    return *this;
}

CLogLine& CLogLine::operator<<(const char* narrow) {
    return append(narrow ? narrow : "null");
}

CLogLine& CLogLine::operator<<(const wchar_t* wide) {
    return appendNarrow(text, wide) ? *this : append("null");
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
    if (*path == '\0')
        std::cout << text << std::endl;
    else
        appendToFile();
}

void CLogLine::appendToFile() {
    FileHandle file = openForAppending(path);
    if (!file)
        return;
    if (endOf(file) > maxSize) {
        file.reset();
        emptyFile(path);
        file = openForAppending(path);
        if (!file)
            return;
    }
    text += '\n';
    for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 2))
        text.insert(end, 1, '\r');
    DWORD written = 0;
    WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}
