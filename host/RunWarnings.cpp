#include "RunWarnings.h"

#include <windows.h>

#include <algorithm>
#include <iterator>

#include "Machine.h"

namespace {

constexpr wchar_t engineLogFolder[] = L"C:\\InstallLog";

/// Administrators, the system itself, and its own installer.
constexpr const wchar_t* trustedOwners[] = {
    L"S-1-5-32-544",
    L"S-1-5-18",
    L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464",
};

std::wstring programPath() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

/// What is wrong with the folder of the engine's log, by the trust in it; null for nothing.
constexpr const wchar_t* trustProblems[] = {
    nullptr,
    L"is a link, so it goes where the link's maker wants",
    L"belongs to another user, who may lead it elsewhere",
};

}  // namespace

const RunWitnesses realRunWitnesses = {
    [] { return isMarkedAsDownloaded(programPath()); },
    trustIn,
};

std::vector<std::wstring> runWarnings(const RunWitnesses& witnesses) {
    std::vector<std::wstring> warnings;
    if (witnesses.isMarkedAsDownloaded())
        warnings.emplace_back(
            L"This program is marked as downloaded, and files that were unpacked with it pass the "
            L"mark on to what is installed. Unblock the archive and unpack it anew.");
    const FolderTrust trust = witnesses.trustIn(engineLogFolder);
    if (const wchar_t* problem = trustProblems[static_cast<size_t>(trust)])
        warnings.push_back(std::wstring(L"The engine's log is written to ") + engineLogFolder +
                           L", which " + problem + L". Take the folder away.");
    return warnings;
}

bool isMarkedAsDownloaded(const std::wstring& file) {
    return GetFileAttributesW((file + L":Zone.Identifier").c_str()) != INVALID_FILE_ATTRIBUTES;
}

FolderTrust trustIn(const std::wstring& folder) {
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return FolderTrust::trusted;
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        return FolderTrust::isLink;
    const std::wstring owner = ownerOf(folder);
    const bool isTrusted =
        owner == userId() || std::find(std::begin(trustedOwners), std::end(trustedOwners), owner) !=
                                 std::end(trustedOwners);
    return isTrusted ? FolderTrust::trusted : FolderTrust::isForeign;
}
