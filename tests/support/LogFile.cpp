#include "support/LogFile.h"

#include <windows.h>

#include <filesystem>
#include <regex>
#include <sstream>

#include "support/TestFolder.h"

LogFile::LogFile() : madeFolder(CreateDirectoryW(logFolder, nullptr)) {
    DeleteFileW(logPath);
}

LogFile::~LogFile() {
    DeleteFileW(logPath);
    if (madeFolder)
        RemoveDirectoryW(logFolder);
}

std::vector<std::string> LogFile::lines() const {
    static const std::regex time(R"(^(\[[A-Z]+\])\[\d+-\d+-\d+ \d+:\d+:\d+\] )");
    std::vector<std::string> lines;
    if (!exists(logPath))
        return lines;
    std::istringstream content(readFile(logPath));
    for (std::string line; std::getline(content, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(std::regex_replace(line, time, "$1 "));
    }
    return lines;
}
