#include "FailingMalloc.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

size_t toSucceed = 0;
size_t toFail = 0;
bool failed = false;

// The thread that is to stand still, and by what it is known that it does.
std::atomic<DWORD> awaited = 0;
HANDLE hasCome = nullptr;
HANDLE mayGo = nullptr;

bool mustFail() {
    if (GetCurrentThreadId() == awaited) {
        awaited = 0;
        SetEvent(hasCome);
        WaitForSingleObject(mayGo, INFINITE);
    }
    if (toSucceed > 0) {
        --toSucceed;
        return false;
    }
    if (toFail == 0)
        return false;
    --toFail;
    return failed = true;
}

void* failingMalloc(size_t size) {
    return mustFail() ? nullptr : std::malloc(size);
}

void* failingCalloc(size_t count, size_t size) {
    return mustFail() ? nullptr : std::calloc(count, size);
}

void* failingRealloc(void* block, size_t size) {
    return mustFail() ? nullptr : std::realloc(block, size);
}

struct Function {
    const char* name;
    void* failing;
    void* real;
};

// The test and the library have one C runtime, which is the system's.
const Function functions[] = {
    {"malloc", reinterpret_cast<void*>(&failingMalloc), reinterpret_cast<void*>(&std::malloc)},
    {"calloc", reinterpret_cast<void*>(&failingCalloc), reinterpret_cast<void*>(&std::calloc)},
    {"realloc", reinterpret_cast<void*>(&failingRealloc), reinterpret_cast<void*>(&std::realloc)},
};

void setAddress(ULONGLONG& place, const void* function) {
    DWORD protection = 0;
    VirtualProtect(&place, sizeof place, PAGE_READWRITE, &protection);
    place = reinterpret_cast<ULONGLONG>(function);
    VirtualProtect(&place, sizeof place, protection, &protection);
}

/// Leads the library's imports of the functions to the failing ones, or back.
void divert(HMODULE library, void* Function::*to) {
    auto* const image = reinterpret_cast<std::byte*>(library);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(image + dos->e_lfanew);
    const auto& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    bool found = false;
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
            for (const Function& function : functions) {
                if (std::strcmp(reinterpret_cast<const char*>(name->Name), function.name) != 0)
                    continue;
                setAddress(addresses->u1.Function, function.*to);
                found = true;
            }
        }
    }
    if (!found)
        throw std::logic_error("The library imports no allocation.");
}

}  // namespace

FailingMalloc::FailingMalloc(size_t succeeding, size_t failing, HMODULE library)
    : library(library) {
    toSucceed = succeeding;
    toFail = failing;
    failed = false;
    divert(library, &Function::failing);
}

FailingMalloc::~FailingMalloc() {
    divert(library, &Function::real);
}

bool FailingMalloc::hasFailed() const {
    return failed;
}

PausedMalloc::PausedMalloc() {
    hasCome = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    mayGo = CreateEventW(nullptr, TRUE, FALSE, nullptr);
}

PausedMalloc::~PausedMalloc() {
    CloseHandle(hasCome);
    CloseHandle(mayGo);
}

void PausedMalloc::holdThisThread() const {
    awaited = GetCurrentThreadId();
}

bool PausedMalloc::waitForThread() const {
    constexpr DWORD patience = 10'000;
    return WaitForSingleObject(hasCome, patience) == WAIT_OBJECT_0;
}

void PausedMalloc::letGo() const {
    SetEvent(mayGo);
}
