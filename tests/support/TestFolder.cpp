#include "support/TestFolder.h"

#include <windows.h>

#include <fstream>
#include <sstream>
#include <system_error>

#include "support/CommonPlaces.h"

namespace fs = std::filesystem;

TestFolder::TestFolder() : TestFolder(commonFolder) {}

TestFolder::TestFolder(const fs::path& parent) {
    // The parent may be on a drive that several Wine prefixes share, where programs that run at
    // once can have the same process id: the folder is whosever makes it.
    static int made = 0;
    fs::create_directories(parent);
    do
        root = parent /
               (L"test-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(made++));
    while (!fs::create_directory(root));
}

TestFolder::~TestFolder() {
    std::error_code ignored;
    for (fs::recursive_directory_iterator entry(root, ignored), end; !ignored && entry != end;
         entry.increment(ignored))
        SetFileAttributesW(entry->path().c_str(), FILE_ATTRIBUTE_NORMAL);
    fs::remove_all(root, ignored);
}

std::wstring TestFolder::path(std::wstring_view name) const {
    return name.empty() ? root.wstring() : (root / name).make_preferred().wstring();
}

std::wstring TestFolder::write(std::wstring_view name, std::string_view content) const {
    const std::wstring file = path(name);
    fs::create_directories(fs::path(file).parent_path());
    writeFile(file, content);
    return file;
}

std::wstring TestFolder::makeDirectory(std::wstring_view name) const {
    const std::wstring directory = path(name);
    fs::create_directories(directory);
    return directory;
}

std::wstring testProgramDirectory() {
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    return fs::path(program).parent_path().wstring();
}

std::string readFile(const std::wstring& path) {
    std::ifstream file(fs::path(path), std::ios::binary);
    if (!file)
        return "<missing>";
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

void writeFile(const std::wstring& path, std::string_view content) {
    std::ofstream(fs::path(path), std::ios::binary) << content;
}

bool exists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}
