#include "TextOutput.h"

#include "Console.h"
#include "Diagnosis.h"
#include "Handles.h"
#include "Utf8.h"

namespace {

/// The system's error code; 0 when all was written.
DWORD writeFile(const std::wstring& path, const std::string& bytes) {
    const FilePtr file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    if (file &&
        WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
        return ERROR_SUCCESS;
    return GetLastError();
}

}  // namespace

Ending giveText(const std::wstring& text, const std::wstring& file) {
    if (file.empty()) {
        write(Stream::output, text);
        return Ending::done;
    }
    const DWORD error = writeFile(file, toUtf8Lines(text));
    if (error == ERROR_SUCCESS)
        return Ending::done;
    write(Stream::error, L"temz: " + file + L" can't be written: " + systemText(error) +
                             L" [error " + std::to_wstring(error) + L"]\n");
    return Ending::outputNotWritten;
}
