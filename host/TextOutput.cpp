#include "TextOutput.h"

#include "Console.h"
#include "TextFile.h"

Ending giveText(const std::wstring& text, const std::wstring& file) {
    if (file.empty()) {
        write(Stream::output, text);
        return Ending::done;
    }
    const std::wstring problem = writeTextFile(file, text);
    if (problem.empty())
        return Ending::done;
    write(Stream::error, L"temz: " + problem + L"\n");
    return Ending::outputNotWritten;
}
