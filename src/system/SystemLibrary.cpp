#include "system/SystemLibrary.h"

#include <cwchar>
#include <iterator>

namespace {

// Without memory: a call that can't be bound is one that has failed, and no more.
HMODULE loadFromSystemDirectory(const wchar_t* name) {
    wchar_t directory[MAX_PATH];
    const UINT length = GetSystemDirectoryW(directory, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return nullptr;
    wchar_t path[MAX_PATH + 32];
    if (std::swprintf(path, std::size(path), L"%ls\\%ls", directory, name) < 0)
        return nullptr;
    return LoadLibraryW(path);
}

}  // namespace

void* SystemLibrary::find(const char* function) {
    if (module == nullptr)
        module = loadFromSystemDirectory(name);
    return module ? reinterpret_cast<void*>(GetProcAddress(module, function)) : nullptr;
}
