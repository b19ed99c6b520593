#include "TextFile.h"

#include "Diagnosis.h"
#include "Handles.h"
#include "Utf8.h"

std::wstring writeTextFile(const std::wstring& path, const std::wstring& text) {
    const FilePtr file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
    const std::string bytes = toUtf8(text);
    DWORD written = 0;
    if (file &&
        WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
        return {};
    const DWORD error = GetLastError();
    return path + L" can't be written: " + systemTextWithCode(error);
}
