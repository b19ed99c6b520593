#pragma once

#include <string>

/// What a shell link file says, read back by the shell's own link object.
struct ShellLinkFile {
    explicit ShellLinkFile(const std::wstring& path);

    std::wstring target;
    std::wstring arguments;
    std::wstring description;
    std::wstring workingDirectory;
    std::wstring icon;
    int iconIndex = -1;
};
