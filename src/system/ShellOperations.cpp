#include "system/ShellOperations.h"

#include <cwchar>

#include "logging/Log.h"
#include "system/FileOperations.h"
#include "system/ShellCalls.h"
#include "system/TextFields.h"

namespace {

// Start menu, program menu and desktop are those of all users.
constexpr FolderWord words[] = {
    {L"ProgramFilesFolder", CSIDL_PROGRAM_FILES},
    {L"WindowsFolder", CSIDL_WINDOWS},
    {L"System32Folder", CSIDL_SYSTEM},
    {L"SysWOW64Folder", CSIDL_SYSTEMX86},
    {L"StartMenuFolder", CSIDL_COMMON_STARTMENU},
    {L"ProgramMenuFolder", CSIDL_COMMON_PROGRAMS},
    {L"DesktopFolder", CSIDL_COMMON_DESKTOPDIRECTORY},
};

}  // namespace

std::span<const FolderWord> folderWords() {
    return words;
}

bool getSpecialFolder(const wchar_t* word, std::wstring& path) {
    for (const FolderWord& row : words) {
        if (wcscmp(row.word, word) != 0)
            continue;
        wchar_t buffer[pathBufferLength];
        if (!getFolderPath(row.folder, buffer)) {
            writeLog(ERROR, "Failed to get the ", word);
            return false;
        }
        path = buffer;
        return true;
    }
    return false;
}

bool getFolderPath(int32_t folder, wchar_t* buffer) {
    wchar_t path[pathBufferLength];
    if (!shellCalls.SHGetSpecialFolderPathW(nullptr, path, folder, FALSE))
        return false;
    copyBounded(buffer, pathBufferLength, path);
    return true;
}

bool getLocalAppDataFolder(wchar_t* buffer) {
    return getFolderPath(CSIDL_LOCAL_APPDATA, buffer);
}

bool getCommonAppDataFolder(wchar_t* buffer) {
    return getFolderPath(CSIDL_COMMON_APPDATA, buffer);
}

bool getCommonDocumentsFolder(wchar_t* buffer) {
    return getFolderPath(CSIDL_COMMON_DOCUMENTS, buffer);
}

bool getCommonTemplatesFolder(wchar_t* buffer) {
    return getFolderPath(CSIDL_COMMON_TEMPLATES, buffer);
}

bool getTemplatesFolder(wchar_t* buffer) {
    return getFolderPath(CSIDL_TEMPLATES, buffer);
}
