#include "ScriptFile.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "Diagnosis.h"
#include "Handles.h"

namespace {

/// Whether the text survives the active code page, in which the engine opens files: otherwise it
/// could open another file, whose name merely resembles this one.
bool fitsCodePage(const std::wstring& text) {
    const int units = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_ACP, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, text.data(), units, narrow.data(), size, nullptr, nullptr);
    std::wstring wide(text.size(), L'\0');
    wide.resize(static_cast<size_t>(
        MultiByteToWideChar(CP_ACP, 0, narrow.data(), size, wide.data(), units)));
    return wide == text;
}

/// The bytes of a file, without the mark of UTF-8, which the engine leaves out as well.
std::string readText(const std::wstring& path) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (text.starts_with(mark))
        text.erase(0, mark.size());
    return text;
}

bool isAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](unsigned char byte) { return byte < 0x80; });
}

bool isUtf8(const std::string& text) {
    return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                               static_cast<int>(text.size()), nullptr, 0) != 0;
}

/// The 8.3 name, which is ASCII; empty where the disk keeps none.
std::wstring shortPath(const std::wstring& path) {
    std::wstring text(MAX_PATH, L'\0');
    const DWORD length = GetShortPathNameW(path.c_str(), text.data(), MAX_PATH);
    text.resize(length < MAX_PATH ? length : 0);
    return text;
}

}  // namespace

std::wstring findOpenProblem(const std::wstring& script) {
    const FilePtr file(CreateFileW(script.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                   nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    const DWORD error = GetLastError();
    if (!file)
        return systemTextWithCode(error);
    return L"";
}

std::wstring findLoadablePath(const std::wstring& script) {
    if (fitsCodePage(script))
        return script;
    const size_t nameAt = script.find_last_of(L"\\/:") + 1;
    std::wstring name = script.substr(nameAt);
    if (fitsCodePage(name) && SetCurrentDirectoryW(script.substr(0, nameAt).c_str()))
        return name;
    std::wstring path = shortPath(script);
    return fitsCodePage(path) ? path : L"";
}

std::wstring findReadingProblem(const std::wstring& script) {
    const std::string text = readText(script);
    const UINT codePage = GetACP();
    if (isAscii(text) || (codePage == CP_UTF8 && isUtf8(text)))
        return L"";
    return codePage == CP_UTF8 ? L"It isn't UTF-8, which is the active code page."
                               : L"It isn't all ASCII, and the active code page is " +
                                     std::to_wstring(codePage) + L".";
}
