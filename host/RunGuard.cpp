#include "RunGuard.h"

#include <sddl.h>

#include <algorithm>

namespace {

constexpr wchar_t name[] = L"Global\\TemzRun";
constexpr DWORD access = SYNCHRONIZE | MUTEX_MODIFY_STATE;

// Everybody may wait for it and let it go: the run of an administrator's and that of a user's meet.
constexpr wchar_t everybody[] = L"D:(A;;0x100001;;;WD)(A;;GA;;;BA)(A;;GA;;;SY)";

HandlePtr openMutex() {
    PSECURITY_DESCRIPTOR raw = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorW(everybody, SDDL_REVISION_1, &raw, nullptr);
    const LocalPtr<void> descriptor(raw);
    SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor.get(), FALSE};
    return HandlePtr(CreateMutexExW(descriptor ? &attributes : nullptr, name, 0, access));
}

}  // namespace

RunGuard::RunGuard() : mutex(openMutex()) {
    const DWORD answer = WaitForSingleObject(mutex.get(), 0);
    held = answer == WAIT_OBJECT_0 || answer == WAIT_ABANDONED;
}

void RunGuard::wait(std::chrono::seconds patience, HANDLE unless) {
    // More than the system can count is for ever.
    const std::chrono::milliseconds limit =
        std::min(patience, std::chrono::seconds(INFINITE / 1000));
    const HANDLE both[] = {unless, mutex.get()};  // of the two the event counts first
    const DWORD answer = WaitForMultipleObjects(2, both, FALSE, static_cast<DWORD>(limit.count()));
    held = answer == WAIT_OBJECT_0 + 1 || answer == WAIT_ABANDONED_0 + 1;
}

RunGuard::~RunGuard() {
    if (held)
        ReleaseMutex(mutex.get());
}
