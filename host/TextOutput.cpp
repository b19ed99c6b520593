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

Ending endWith(Ending ending, const std::wstring& problem) {
    write(Stream::error, L"temz: " + problem + L"\n");
    return ending;
}

std::wstring writeTextFile(const std::wstring& path, const std::wstring& text) {
    return writeText(path, text, CREATE_ALWAYS);
}

Ending giveText(const std::wstring& text, const std::wstring& file) {
    std::wstring problem;
    if (file.empty())
        write(Stream::output, text);
    else
        problem = writeText(file, text, CREATE_NEW);
    return problem.empty() ? Ending::done : endWith(Ending::notCarriedOut, problem);
}

Ending endOfTelling(Verb verb, Ending ending) {
    const bool hasToldAll = outputError() == ERROR_SUCCESS;
    const bool isResult = ending == Ending::done || ending == Ending::faultsFound;
    if (hasToldAll || !isResult || verb == Verb::run || verb == Verb::verify)
        return ending;
    return endWith(Ending::notCarriedOut,
                   L"The output can't be written: " + systemTextWithCode(outputError()));
}
