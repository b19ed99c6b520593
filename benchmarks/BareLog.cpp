#include "BareLog.h"

#include <windows.h>

#include <filesystem>

namespace {

constexpr char logPath[] = "C:\\InstallLog\\temz.log";

}  // namespace

LogFolder::LogFolder(bool present) : present(present) {
    const bool absent = !std::filesystem::exists(logFolder);
    ready = absent && (!present || std::filesystem::create_directory(logFolder));
}

LogFolder::~LogFolder() {
    if (present && ready)
        std::filesystem::remove_all(logFolder);
}

void LogFolder::empty() const {
    if (present && ready)
        std::filesystem::remove(logPath);
}

void writeBareLine(const std::string& line) {
    const HANDLE file = CreateFileA(logPath, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return;
    LARGE_INTEGER end = {};
    SetFilePointerEx(file, {}, &end, FILE_END);
    DWORD written = 0;
    WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    CloseHandle(file);
}
