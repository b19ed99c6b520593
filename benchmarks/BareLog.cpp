#include "BareLog.h"

#include <filesystem>
#include <fstream>

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
    std::ofstream file(logPath, std::ios::app);
    if (!file.is_open())
        return;
    file.seekp(0, std::ios::end);
    file.write(line.data(), static_cast<std::streamsize>(line.size()));
    file.flush();
    file.close();
}
