#include "TextOutput.h"

#include "Console.h"
#include "Diagnosis.h"
#include "Handles.h"
#include "Utf8.h"
#include "WriteBytes.h"

namespace {

/// As writeTextFile; the disposition says what comes of a file that is there.
std::wstring writeText(const std::wstring& path, const std::wstring& text, DWORD disposition) {
    const FilePtr file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, disposition,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD error = GetLastError();
    if (file)
        error = writeBytes(file.get(), toUtf8Lines(text));
    if (error == ERROR_SUCCESS)
        return {};
    if (error == ERROR_FILE_EXISTS)
        return path + L" is there already, and isn't replaced. Remove it, or name another file.";
    return path + L" can't be written: " + systemTextWithCode(error);
}

}  // namespace

std::wstring writeTextFile(const std::wstring& path, const std::wstring& text) {
    return writeText(path, text, CREATE_ALWAYS);
}

Ending giveText(const std::wstring& text, const std::wstring& file) {
    std::wstring problem;
    if (!file.empty())
        problem = writeText(file, text, CREATE_NEW);
    else if (const unsigned long error = write(Stream::output, text); error != ERROR_SUCCESS)
        problem = L"The output can't be written: " + systemTextWithCode(error);
    if (problem.empty())
        return Ending::done;
    write(Stream::error, L"temz: " + problem + L"\n");
    return Ending::notCarriedOut;
}
