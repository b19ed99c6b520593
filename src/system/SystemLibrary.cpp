#include "system/SystemLibrary.h"

#include <string>

namespace {

HMODULE loadFromSystemDirectory(const wchar_t* name) {
    wchar_t directory[MAX_PATH];
    const UINT length = GetSystemDirectoryW(directory, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return nullptr;
    return LoadLibraryW((std::wstring(directory, length) + L'\\' + name).c_str());
}

}  // namespace

void* SystemLibrary::find(const char* function) {
    if (module == nullptr)
        module = loadFromSystemDirectory(name);
    return module ? reinterpret_cast<void*>(GetProcAddress(module, function)) : nullptr;
}
