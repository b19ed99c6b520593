#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "Script.h"

/// Files to install, in at most twenty directories, and the script that installs them.
class Payload {
public:
    /// The paths of one file, as the calls take them.
    struct File {
        std::wstring source;
        std::wstring directory;  // of the target
        std::wstring target;
        std::wstring staging;
    };

    /// Lays the sources out beside this program, in a folder that is named after both numbers, and
    /// the script beside it; what lies there already is taken as it is.
    Payload(int64_t count, int64_t bytesEach);

    /// The name of the folder, and of what else is made of it.
    const std::wstring& name() const { return folderName; }
    std::wstring script() const { return programFolder() / (folderName + L".xml"); }
    const std::vector<File>& files() const { return all; }
    const std::filesystem::path& target() const { return targets; }

    /// Leaves the directory of the targets empty.
    void clear() const;

private:
    void layOut(const std::string& content) const;

    const std::wstring folderName;
    const std::filesystem::path sources;
    const std::filesystem::path targets;
    std::vector<File> all;
};
