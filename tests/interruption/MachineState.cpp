#include "interruption/MachineState.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <regex>

#include "support/Restart.h"
#include "support/ShellLinkFile.h"
#include "support/TestFolder.h"

namespace fs = std::filesystem;

namespace {

/// A path in which the time that is put into the name of an icon's copy is left out.
std::wstring withoutStamp(const std::wstring& path) {
    static const std::wregex stamp(L"\\d{8,14}(\\.ico)$");
    return std::regex_replace(path, stamp, L"<time>$1");
}

std::wstring contentOf(const fs::path& path) {
    if (fs::is_directory(path))
        return L"directory";
    if (path.extension() == L".lnk") {
        const ShellLinkFile link(path.wstring());
        return link.target + L" in " + link.workingDirectory + L" as " + withoutStamp(link.icon) +
               L", " + std::to_wstring(link.iconIndex);
    }
    const std::string content = readFile(path.wstring());
    return std::wstring(content.begin(), content.end());
}

}  // namespace

void addFiles(const std::wstring& folder, MachineState& state) {
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        state.insert(withoutStamp(entry.path().wstring()) + L": " +
                     std::to_wstring(GetFileAttributesW(entry.path().c_str())) + L" " +
                     contentOf(entry.path()));
}

void addReplacements(MachineState& state) {
    const std::wstring texts = pendingReplacements().value_or(L"");
    std::vector<std::wstring> paths;
    for (size_t begin = 0; begin + 1 < texts.size();) {
        const size_t end = std::min(texts.find(L'\0', begin), texts.size());
        paths.push_back(texts.substr(begin, end - begin));
        begin = end + 1;
    }
    for (size_t i = 0; i + 1 < paths.size(); i += 2)
        state.insert(L"at restart: " + paths[i] + L" to " + paths[i + 1]);
}

std::vector<std::wstring> differences(const MachineState& one, const MachineState& other) {
    std::vector<std::wstring> lines;
    std::set_symmetric_difference(one.begin(), one.end(), other.begin(), other.end(),
                                  std::back_inserter(lines));
    return lines;
}
