#include "Machine.h"

#include <windows.h>

#include <aclapi.h>

#include <array>
#include <cstdio>
#include <memory>
#include <vector>

#include "Handles.h"
#include "MachineCalls.h"

namespace {

HandlePtr openOwnToken() {
    HANDLE token = nullptr;
    OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token);
    return HandlePtr(token);
}

/// The user of the process as a TOKEN_USER; empty when the system doesn't say.
std::vector<BYTE> ownUser() {
    const HandlePtr token = openOwnToken();
    DWORD size = 0;
    machineCalls.GetTokenInformation(token.get(), TokenUser, nullptr, 0, &size);
    std::vector<BYTE> user(size);
    if (!machineCalls.GetTokenInformation(token.get(), TokenUser, user.data(), size, &size))
        user.clear();
    return user;
}

PSID idOf(const std::vector<BYTE>& user) {
    return reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid;
}

std::wstring textOfId(PSID id) {
    wchar_t* raw = nullptr;
    if (!machineCalls.ConvertSidToStringSidW(id, &raw))
        return {};
    const LocalPtr<wchar_t> text(raw);
    return text.get();
}

/// A hash of the system's cryptography.
class Sha256 {
public:
    Sha256() {
        open = machineCalls.CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_AES,
                                                 CRYPT_VERIFYCONTEXT | CRYPT_SILENT) &&
               machineCalls.CryptCreateHash(provider, CALG_SHA_256, 0, 0, &hash);
    }
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;
    ~Sha256() {
        if (hash != 0)
            CryptDestroyHash(hash);
        if (provider != 0)
            CryptReleaseContext(provider, 0);
    }

    bool feed(HANDLE file) {
        std::vector<BYTE> buffer(size_t{64} * 1024);
        DWORD read = 0;
        while (open && machineCalls.ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()),
                                             &read, nullptr)) {
            if (read == 0)
                return true;
            open = machineCalls.CryptHashData(hash, buffer.data(), read, 0);
        }
        return false;
    }

    bool finish(std::array<BYTE, 32>& digest) const {
        DWORD size = digest.size();
        return machineCalls.CryptGetHashParam(hash, HP_HASHVAL, digest.data(), &size, 0);
    }

private:
    HCRYPTPROV provider = 0;
    HCRYPTHASH hash = 0;
    bool open = false;
};

}  // namespace

std::wstring windowsVersion() {
    using RtlGetVersion = LONG(WINAPI*)(OSVERSIONINFOW*);
    const auto getVersion = reinterpret_cast<RtlGetVersion>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion")));
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    getVersion(&version);  // is there in every version, and never fails
    return std::to_wstring(version.dwMajorVersion) + L"." +
           std::to_wstring(version.dwMinorVersion) + L"." + std::to_wstring(version.dwBuildNumber);
}

std::wstring userName() {
    const std::vector<BYTE> user = ownUser();
    if (user.empty())
        return {};
    std::array<wchar_t, 257> name{};
    std::array<wchar_t, 257> domain{};
    DWORD nameLength = name.size();
    DWORD domainLength = domain.size();
    SID_NAME_USE use;
    if (!machineCalls.LookupAccountSidW(nullptr, idOf(user), name.data(), &nameLength,
                                        domain.data(), &domainLength, &use))
        return {};
    return std::wstring(domain.data()) + L"\\" + name.data();
}

std::wstring userId() {
    const std::vector<BYTE> user = ownUser();
    return user.empty() ? L"" : textOfId(idOf(user));
}

std::wstring ownerOf(const std::wstring& path) {
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR raw = nullptr;
    if (GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner,
                              nullptr, nullptr, nullptr, &raw) != ERROR_SUCCESS)
        return {};
    const LocalPtr<void> descriptor(raw);
    return textOfId(owner);
}

bool isElevated() {
    const HandlePtr token = openOwnToken();
    TOKEN_ELEVATION elevation{};
    DWORD size = 0;
    machineCalls.GetTokenInformation(token.get(), TokenElevation, &elevation, sizeof elevation,
                                     &size);
    return elevation.TokenIsElevated != 0;
}

std::wstring timeStamp() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    std::array<wchar_t, 32> text{};
    std::swprintf(text.data(), text.size(), L"%04u-%02u-%02u %02u:%02u:%02u", now.wYear, now.wMonth,
                  now.wDay, now.wHour, now.wMinute, now.wSecond);
    return text.data();
}

std::wstring sha256OfFile(const std::wstring& path) {
    const FilePtr file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                   nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    Sha256 hash;
    std::array<BYTE, 32> digest{};
    if (!file || !hash.feed(file.get()) || !hash.finish(digest))
        return {};
    constexpr wchar_t digits[] = L"0123456789abcdef";
    std::wstring text;
    for (const BYTE byte : digest) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::wstring wholePath(const std::wstring& path) {
    const DWORD size = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring whole(size, L'\0');
    const DWORD length = GetFullPathNameW(path.c_str(), size, whole.data(), nullptr);
    if (length == 0 || length >= size)
        return path;
    whole.resize(length);
    return whole;
}
