#include "trace/CallText.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <string_view>

#include "elements/Vocabulary.h"
#include "system/HexText.h"
#include "system/PathText.h"
#include "system/TextConversion.h"

namespace {

constexpr wchar_t absent[] = L"null";

std::wstring numbered(const wchar_t* text, DWORD number) {
    return std::wstring(text) + L" " + std::to_wstring(number);
}

}  // namespace

std::wstring HandleNames::find(const void* handle) const {
    if (handle == nullptr)
        return absent;
    if (handle == INVALID_HANDLE_VALUE)
        return L"-1";
    if (const auto found = names.find(handle); found != names.end())
        return found->second;
    const auto number = reinterpret_cast<uintptr_t>(handle);
    for (const RegistryKeyword& root : registryRootKeywords())
        if (static_cast<uintptr_t>(static_cast<intptr_t>(static_cast<int32_t>(root.number))) ==
            number)
            return root.word;
    return textOfObject(handle);
}

std::wstring textOf(const wchar_t* text) {
    return text ? text : absent;
}

std::wstring textOfObject(const void* object) {
    return object ? L"(object)" : absent;
}

std::wstring textOf(const char* text) {
    const WideText wide = toWideText(text);
    return wide ? wide.get() : absent;
}

std::wstring textOf(const WIN32_FIND_DATAW& found) {
    return found.cFileName;
}

std::wstring textOf(const PROCESSENTRY32W& process) {
    return numbered(process.szExeFile, process.th32ProcessID);
}

std::wstring textOf(const MODULEENTRY32W& module) {
    return module.szExePath;
}

std::wstring textOf(const SHELLEXECUTEINFOW& start) {
    return textOf(start.lpVerb) + L" " + textOf(start.lpFile) + L" " + textOf(start.lpParameters);
}

std::wstring textOf(const SERVICE_STATUS& status) {
    return numbered(L"state", status.dwCurrentState);
}

std::wstring textOf(const QUERY_SERVICE_CONFIGW& config) {
    return numbered(L"start", config.dwStartType);
}

std::wstring textOf(const OSVERSIONINFOW& version) {
    return std::to_wstring(version.dwMajorVersion) + L"." + std::to_wstring(version.dwMinorVersion);
}

std::wstring textOf(const GUID& id) {
    wchar_t text[39];
    const auto& last = id.Data4;
    std::swprintf(text, std::size(text),
                  L"{%08lX-%04hX-%04hX-%02hX%02hX-%02hX%02hX%02hX%02hX%02hX%02hX}", id.Data1,
                  id.Data2, id.Data3, last[0], last[1], last[2], last[3], last[4], last[5], last[6],
                  last[7]);
    return text;
}

std::wstring textOfChanged(UINT flags, const void* item) {
    if ((flags & SHCNF_TYPE) == SHCNF_PATHW)
        return textOf(static_cast<const wchar_t*>(item));
    if ((flags & SHCNF_TYPE) == SHCNF_PATHA)
        return textOf(static_cast<const char*>(item));
    return HandleNames().find(item);
}

std::wstring textOfRegistryData(DWORD type, const BYTE* data, DWORD size) {
    if (data == nullptr)
        return absent;
    if (type == REG_DWORD && size == sizeof(DWORD)) {
        DWORD number = 0;
        std::copy_n(data, sizeof number, reinterpret_cast<BYTE*>(&number));
        return std::to_wstring(number);
    }
    if (type == REG_SZ || type == REG_MULTI_SZ) {
        std::wstring text(size / sizeof(wchar_t), L'\0');
        std::copy_n(data, text.size() * sizeof(wchar_t), reinterpret_cast<BYTE*>(text.data()));
        if (type == REG_SZ)
            return text.substr(0, text.find(L'\0'));
        // Each text of several, with a mark for the end of each.
        std::wstring marked;
        for (const wchar_t unit : text)
            marked += unit ? std::wstring(1, unit) : L"\\0";
        return marked;
    }
    return textOf(bytesToHexText(data, size).get());
}

std::wstring filledText(const wchar_t* buffer, size_t capacity) {
    return buffer ? std::wstring(buffer, wcsnlen(buffer, capacity)) : absent;
}

void hideNameStamp(std::wstring& text) {
    constexpr std::wstring_view word = L"<time>";
    const std::wstring_view stamp = nameStamp();
    if (stamp.empty())
        return;
    for (size_t at = text.find(stamp); at != std::wstring::npos; at = text.find(stamp, at))
        text.replace(at, stamp.size(), word);
}
