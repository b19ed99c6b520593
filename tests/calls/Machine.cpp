#include "calls/Machine.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

#include "motion/CustomAction.h"
#include "support/ShellLinkFile.h"
#include "support/Text.h"
#include "system/PathText.h"

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

template <class String>
void replaceAll(String& text, const String& from, const String& to) {
    if (from.empty())
        return;
    for (size_t at = text.find(from); at != String::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

/// How a script names what lies beside the program.
std::wstring relativeToProgram(const std::wstring& path) {
    return path.substr(testProgramDirectory().size() + 1);
}

std::wstring systemDirectory() {
    wchar_t path[MAX_PATH] = {};
    GetSystemDirectoryW(path, MAX_PATH);
    return path;
}

std::wstring windowsDirectory() {
    wchar_t path[MAX_PATH] = {};
    GetSystemWindowsDirectoryW(path, MAX_PATH);
    return path;
}

std::wstring contentOf(const std::wstring& path) {
    std::string content = readFile(path);
    if (content.ends_with("\r\n"))
        content.resize(content.size() - 2);
    if (content.starts_with("L\0\0\0"s)) {
        const ShellLinkFile link(path);
        return L"a link to " + link.target + L" in " + link.workingDirectory + L" with " +
               link.icon;
    }
    return content.starts_with("MZ") ? L"a program" : std::wstring(content.begin(), content.end());
}

}  // namespace

std::string Machine::withPaths(std::string text) const {
    replaceAll(text, "{app}"s, narrow(folder.path(L"app")));
    replaceAll(text, "{payload}"s, narrow(relativeToProgram(payload.path())));
    replaceAll(text, "{program}"s, narrow(testProgramDirectory()));
    replaceAll(text, "{key}"s, narrow(key.path()));
    return text;
}

std::string Machine::readable(std::wstring text) const {
    replaceAll(text, folder.path(L"app"), L"{app}"s);
    replaceAll(text, folder.path(), L"{folder}"s);
    replaceAll(text, systemDirectory(), L"{system}"s);
    replaceAll(text, windowsDirectory(), L"{windows}"s);
    replaceAll(text, payload.path(), L"{payload}"s);
    replaceAll(text, relativeToProgram(payload.path()), L"{payload}"s);
    replaceAll(text, testProgramDirectory(), L"{program}"s);
    replaceAll(text, key.path(), L"{key}"s);
    replaceAll(text, std::wstring(nameStamp()), L"<time>"s);
    return narrow(text);
}

std::wstring Machine::write(std::wstring_view name, std::string_view content) const {
    return folder.write(L"app\\" + std::wstring(name), content);
}

void Machine::makeReadOnly(std::wstring_view name) const {
    EXPECT_TRUE(SetFileAttributesW(app(name).c_str(), FILE_ATTRIBUTE_READONLY));
}

std::vector<std::string> Machine::picture() const {
    std::vector<std::string> lines;
    addFiles(lines);
    addReplacements(lines);
    addKeys(lines);
    addServices(lines);
    if (sleeper)
        lines.emplace_back(sleeper->isRunning() ? "the program runs" : "the program has ended");
    if (action.calls > 0)
        lines.push_back("the action has been called, with is64Bit "s +
                        (action.params[offsetof(CustomActionParams, is64Bit)] ? "1" : "0"));
    addLog(lines);
    return lines;
}

void Machine::addFiles(std::vector<std::string>& lines) const {
    std::set<fs::path> paths;
    for (const auto& entry : fs::recursive_directory_iterator(app(L"")))
        paths.insert(entry.path());
    for (const fs::path& path : paths) {
        const std::wstring name = path.wstring();
        const bool readOnly = GetFileAttributesW(name.c_str()) & FILE_ATTRIBUTE_READONLY;
        lines.push_back("there " + readable(name) + (readOnly ? ", read-only" : "") +
                        (fs::is_directory(path) ? "" : ": " + readable(contentOf(name))));
    }
}

void Machine::addReplacements(std::vector<std::string>& lines) const {
    std::wstring pending = pendingReplacements().value_or(L"");
    std::ranges::replace(pending, L'\0', L'\n');
    std::wistringstream moves(pending);
    for (std::wstring from, to; std::getline(moves, from) && std::getline(moves, to);)
        if (from.find(folder.path()) != std::wstring::npos)
            lines.push_back("at restart " + readable(from) + " to " + readable(to));
}

void Machine::addKeys(std::vector<std::string>& lines) const {
    for (const std::wstring& name : key.keys()) {
        const std::wstring path = key.path(name);
        lines.push_back("there " + readable(path));
        if (const StoredValue value = readValue(path, L"text"); value.type == REG_SZ)
            lines.push_back("there " + readable(path) + "[text]: " + value.bytes.substr(0, 1));
    }
}

void Machine::addServices(std::vector<std::string>& lines) const {
    for (const char* const change : {"StartService", "ControlService", "DeleteService"})
        if (services.countCalls(change) > 0)
            lines.push_back("the service has had "s + change);
    for (const std::string& kind : services.held())
        lines.push_back("open " + kind);
}

void Machine::addLog(std::vector<std::string>& lines) const {
    for (const std::string& line : log.lines())
        lines.push_back("log " + readable(std::wstring(line.begin(), line.end())));
}
