#include "TextOutput.h"

#include "Console.h"
#include "Diagnosis.h"
#include "Handles.h"
#include "Utf8.h"

std::wstring writeTextFile(const std::wstring& path, const std::wstring& text) {
    const FilePtr file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
    const std::string bytes = toUtf8Lines(text);
    DWORD written = 0;
    if (file &&
        WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
        return {};
    const DWORD error = GetLastError();
    return path + L" can't be written: " + systemTextWithCode(error);
}

Ending giveText(const std::wstring& text, const std::wstring& file) {
    if (file.empty()) {
        write(Stream::output, text);
        return Ending::done;
    }
    const std::wstring problem = writeTextFile(file, text);
    if (problem.empty())
        return Ending::done;
    write(Stream::error, L"temz: " + problem + L"\n");
    return Ending::notCarriedOut;
}
