#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// A folder of its own for one test, gone with the object together with all that it holds.
class TestFolder {
public:
    TestFolder();
    /// A folder inside `parent`, for a test that needs it in a certain place.
    explicit TestFolder(const std::filesystem::path& parent);
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder();

    /// The full path of something in the folder, with backslashes; of the folder itself for "".
    std::wstring path(std::wstring_view name = {}) const;

    /// Writes a file, with its missing directories, and gives its full path.
    std::wstring write(std::wstring_view name, std::string_view content) const;

    /// Makes a directory and gives its full path.
    std::wstring makeDirectory(std::wstring_view name) const;

private:
    std::filesystem::path root;
};

/// The directory of the running test program, which is the host program in the engine's eyes.
std::wstring testProgramDirectory();

/// The content of a file; "<missing>" when it can't be opened.
std::string readFile(const std::wstring& path);

void writeFile(const std::wstring& path, std::string_view content);

bool exists(const std::wstring& path);
