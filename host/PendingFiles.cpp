#include "PendingFiles.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <string_view>
#include <vector>

namespace {

constexpr wchar_t sessionManager[] = L"System\\CurrentControlSet\\Control\\Session Manager";
constexpr wchar_t valueName[] = L"PendingFileRenameOperations";

/// What the engine puts behind the name of a file that waits.
constexpr std::wstring_view stagingSuffix = L"!@#$%";

/// The value as its texts; an empty one stands for a deletion, so this is no usual list.
std::vector<std::wstring> readValue() {
    DWORD size = 0;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, sessionManager, valueName, RRF_RT_REG_MULTI_SZ, nullptr,
                     nullptr, &size) != ERROR_SUCCESS)
        return {};
    std::wstring texts(size / sizeof(wchar_t), L'\0');
    if (RegGetValueW(HKEY_LOCAL_MACHINE, sessionManager, valueName, RRF_RT_REG_MULTI_SZ, nullptr,
                     texts.data(), &size) != ERROR_SUCCESS)
        return {};
    texts.resize(size / sizeof(wchar_t));
    std::vector<std::wstring> values;
    for (size_t begin = 0; begin + 1 < texts.size();) {
        const size_t end = std::min(texts.find(L'\0', begin), texts.size());
        values.push_back(texts.substr(begin, end - begin));
        begin = end + 1;
    }
    return values;
}

/// "!" says that a file there is replaced, and "\??\" is the system's own name for what follows.
std::wstring plainPath(std::wstring_view path) {
    for (const std::wstring_view prefix : {L"!", L"\\??\\"})
        if (path.starts_with(prefix))
            path.remove_prefix(prefix.size());
    return std::wstring(path);
}

std::wstring stagedFor(const std::wstring& target) {
    return target + std::wstring(stagingSuffix);
}

/// The engine's own entry, of which the value holds two texts: the staged file and its target.
bool replaces(const std::wstring& source, const std::wstring& destination,
              const std::wstring& target) {
    return isSamePath(plainPath(destination), target) &&
           isSamePath(plainPath(source), stagedFor(target));
}

/// The place of the engine's own entry for a target; the texts' number when there is none.
size_t findEntry(const std::vector<std::wstring>& texts, const std::wstring& target) {
    for (size_t i = 0; i + 1 < texts.size(); i += 2)
        if (replaces(texts[i], texts[i + 1], target))
            return i;
    return texts.size();
}

bool writeValue(const std::vector<std::wstring>& texts) {
    if (texts.empty())
        return RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, sessionManager, valueName) == ERROR_SUCCESS;
    std::wstring value;
    for (const std::wstring& text : texts)
        value += text + L'\0';
    value += L'\0';
    return RegSetKeyValueW(HKEY_LOCAL_MACHINE, sessionManager, valueName, REG_MULTI_SZ,
                           value.data(),
                           static_cast<DWORD>(value.size() * sizeof(wchar_t))) == ERROR_SUCCESS;
}

}  // namespace

bool isSamePath(const std::wstring& a, const std::wstring& b) {
    return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(),
                                static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

bool isReplacementPending(const std::wstring& target) {
    const std::vector<std::wstring> texts = readValue();
    return findEntry(texts, target) < texts.size() &&
           GetFileAttributesW(stagedFor(target).c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool dropReplacement(const std::wstring& target) {
    std::vector<std::wstring> texts = readValue();
    const size_t entry = findEntry(texts, target);
    if (entry == texts.size())
        return true;
    const auto first = texts.begin() + static_cast<std::ptrdiff_t>(entry);
    texts.erase(first, first + 2);
    if (!writeValue(texts))
        return false;
    DeleteFileW(stagedFor(target).c_str());
    return true;
}
