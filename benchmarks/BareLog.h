#pragma once

#include <string>

inline constexpr wchar_t logFolder[] = L"C:\\InstallLog";

/// Makes the folder of the log, or sees that it isn't there, and clears it away in the end.
class LogFolder {
public:
    explicit LogFolder(bool present);
    LogFolder(const LogFolder&) = delete;
    LogFolder& operator=(const LogFolder&) = delete;
    ~LogFolder();

    /// Begins with an empty log again.
    void empty() const;

    /// Whether it is as it should be: a folder that somebody else has made is left alone.
    bool isReady() const { return ready; }

private:
    const bool present;
    bool ready = false;
};

/// Writes a line that is ready to the log, if its folder is there, by the bare calls of the system:
/// open, seek, write and close.
void writeBareLine(const std::string& line);
