#include "system/SystemFacts.h"

#include "logging/Log.h"
#include "system/SystemCalls.h"

bool isNative64Bit() {
    using GetNativeSystemInfo = decltype(&::GetNativeSystemInfo);
    const HMODULE kernel = systemCalls.GetModuleHandleW(L"kernel32.dll");
    const auto getNativeSystemInfo = reinterpret_cast<GetNativeSystemInfo>(
        reinterpret_cast<void*>(systemCalls.GetProcAddress(kernel, "GetNativeSystemInfo")));
    if (getNativeSystemInfo == nullptr)
        return false;
    SYSTEM_INFO info{};
    getNativeSystemInfo(&info);
    return info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64 ||
           info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_IA64;
}

bool getOsVersion(uint32_t& major, uint32_t& minor, OSVERSIONINFOW& record) {
    record.dwOSVersionInfoSize = sizeof record;
    if (!systemCalls.GetVersionExW(&record)) {
        writeLog(ERROR, "Can't get OS version.");
        return false;
    }
    major = record.dwMajorVersion;
    minor = record.dwMinorVersion;
    return true;
}

std::optional<OsVersion> askOsVersion() {
    OSVERSIONINFOEXW extended{};
    extended.dwOSVersionInfoSize = sizeof extended;
    if (systemCalls.GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&extended)))
        return OsVersion{extended.dwMajorVersion, extended.dwMinorVersion};

    OSVERSIONINFOW plain{};
    OsVersion version{};
    if (getOsVersion(version.major, version.minor, plain))
        return version;
    return std::nullopt;
}
