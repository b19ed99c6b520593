#include "SafeStart.h"

namespace {

/// A call that not every version of Windows has; null where it isn't there.
template <class Function>
Function findCall(const char* name) {
    const HMODULE kernel = startCalls.GetModuleHandleW(L"kernel32.dll");
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(startCalls.GetProcAddress(kernel, name)));
}

/// Else the system's own libraries would look for further ones in the program's folder, which for a
/// download is a folder into which anybody's files come. What Windows 7 lacks without an update is
/// replaced by the little that it has: the current directory is left out.
void loadSystemLibrariesOnly() {
    constexpr DWORD searchSystem32 = 0x800;
    const auto setDefaultDllDirectories =
        findCall<BOOL(WINAPI*)(DWORD)>("SetDefaultDllDirectories");
    if (!setDefaultDllDirectories || !setDefaultDllDirectories(searchSystem32))
        startCalls.SetDllDirectoryW(L"");
}

/// Else a junction would lead what an administrator's run writes and removes to where its maker
/// wants. Windows 10 22H2 and 11 have it; there is nothing to put in its place.
void distrustJunctions() {
    constexpr int redirectionTrust = 16;
    DWORD enforced = 1;
    const auto setProcessMitigationPolicy =
        findCall<BOOL(WINAPI*)(int, void*, SIZE_T)>("SetProcessMitigationPolicy");
    if (setProcessMitigationPolicy)
        setProcessMitigationPolicy(redirectionTrust, &enforced, sizeof enforced);
}

}  // namespace

SafeStart::SafeStart() {
    startCalls.SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX |
                            SEM_NOOPENFILEERRORBOX);
    loadSystemLibrariesOnly();
    distrustJunctions();
    // The shell wants it before it starts a program, and the engine's own use of COM joins it.
    comStarted = SUCCEEDED(
        startCalls.CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE));
}

SafeStart::~SafeStart() {
    if (comStarted)
        startCalls.CoUninitialize();
}
