#pragma once

#include <windows.h>

#include <memory>

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
/// A handle of the system whose absence is null.
using HandlePtr = std::unique_ptr<void, HandleCloser>;

/// A file; what CreateFileW gives. Absent when that failed.
class FilePtr {
public:
    explicit FilePtr(HANDLE file) : file(file == INVALID_HANDLE_VALUE ? nullptr : file) {}
    explicit operator bool() const { return file != nullptr; }
    HANDLE get() const { return file.get(); }

private:
    HandlePtr file;
};

struct LocalMemory {
    void operator()(void* memory) const { LocalFree(memory); }
};
/// Memory that the system has allocated for the program.
template <class Type>
using LocalPtr = std::unique_ptr<Type, LocalMemory>;
