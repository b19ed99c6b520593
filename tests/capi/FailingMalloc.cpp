#include "FailingMalloc.h"

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

using Malloc = void* (*)(size_t);

size_t toSucceed = 0;
size_t toFail = 0;
bool failed = false;
Malloc realMalloc = nullptr;

void* failingMalloc(size_t size) {
    if (toSucceed > 0) {
        --toSucceed;
        return realMalloc(size);
    }
    if (toFail == 0)
        return realMalloc(size);
    --toFail;
    failed = true;
    return nullptr;
}

HANDLE hasCome = nullptr;
HANDLE mayGo = nullptr;
std::atomic<bool> isFirst = false;

void* pausedMalloc(size_t size) {
    if (isFirst.exchange(false)) {
        SetEvent(hasCome);
        WaitForSingleObject(mayGo, INFINITE);
    }
    return realMalloc(size);
}

/// The place in the loaded library that holds the address of malloc.
Malloc& importedMalloc() {
    auto* const image = reinterpret_cast<std::byte*>(GetModuleHandleW(L"TEMZC.dll"));
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(image + dos->e_lfanew);
    const auto& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (const auto* import =
             reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(image + imports.VirtualAddress);
         import->Name != 0; ++import) {
        const auto* names =
            reinterpret_cast<const IMAGE_THUNK_DATA64*>(image + import->OriginalFirstThunk);
        auto* addresses = reinterpret_cast<IMAGE_THUNK_DATA64*>(image + import->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
            if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal))
                continue;
            const auto* name =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(image + names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(name->Name), "malloc") == 0)
                return reinterpret_cast<Malloc&>(addresses->u1.Function);
        }
    }
    throw std::logic_error("TEMZC.dll doesn't import malloc.");
}

void setImportedMalloc(Malloc function) {
    Malloc& place = importedMalloc();
    DWORD protection = 0;
    VirtualProtect(&place, sizeof place, PAGE_READWRITE, &protection);
    place = function;
    VirtualProtect(&place, sizeof place, protection, &protection);
}

}  // namespace

FailingMalloc::FailingMalloc(size_t succeeding, size_t failing) {
    toSucceed = succeeding;
    toFail = failing;
    failed = false;
    realMalloc = importedMalloc();
    setImportedMalloc(&failingMalloc);
}

FailingMalloc::~FailingMalloc() {
    setImportedMalloc(realMalloc);
}

bool FailingMalloc::hasFailed() const {
    return failed;
}

PausedMalloc::PausedMalloc() {
    hasCome = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    mayGo = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    isFirst = true;
    realMalloc = importedMalloc();
    setImportedMalloc(&pausedMalloc);
}

PausedMalloc::~PausedMalloc() {
    setImportedMalloc(realMalloc);
    CloseHandle(hasCome);
    CloseHandle(mayGo);
}

bool PausedMalloc::waitForThread() const {
    constexpr DWORD patience = 10'000;
    return WaitForSingleObject(hasCome, patience) == WAIT_OBJECT_0;
}

void PausedMalloc::letGo() const {
    SetEvent(mayGo);
}
