#pragma once

#include <string>
#include <vector>

inline constexpr wchar_t logFolder[] = L"C:\\InstallLog";
inline constexpr wchar_t logPath[] = L"C:\\InstallLog\\temz.log";

/// Begins with an empty log for the life of the object, and removes it afterwards, with its folder
/// if that is new. One that was there before the tests is out of the way.
class LogFile {
public:
    LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;
    ~LogFile();

    /// The lines written so far, without the time: "[LEVEL] text".
    std::vector<std::string> lines() const;

private:
    const bool madeFolder;
};
