#include "ScriptFile.h"

#include <windows.h>

#include "Messages.h"

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
    return MultiByteToWideChar(CP_ACP, 0, narrow.data(), size, wide.data(), units) == units &&
           wide == text;
}

}  // namespace

std::wstring findOpenProblem(const std::wstring& script) {
    const HANDLE file =
        CreateFileW(script.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return describeSystemError(GetLastError());
    CloseHandle(file);
    return fitsCodePage(script) ? L"" : L"Its name isn't in the active code page.";
}
