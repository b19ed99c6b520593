#include "PayloadFolder.h"

#include "Diagnosis.h"

std::optional<Folder> readPayloadFolder(const std::wstring& path, std::wstring& problem) {
    UnreadFolder unread;
    std::optional<Folder> folder = readFolder(path, unread);
    if (!folder)
        problem = unread.path + L" can't be read: " + systemTextWithCode(unread.error);
    return folder;
}
