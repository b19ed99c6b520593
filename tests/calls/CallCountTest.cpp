// How often each action calls each function of the system, and in which order: the measure of a run
// that is the same on every machine.

#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include "calls/Scenario.h"

namespace {

/// Conversions of texts are the engine's own affair, and how many processes there are is the
/// machine's.
bool counts(const CallUse& use) {
    return !use.call.starts_with("text.") && !use.call.starts_with("clock.") &&
           use.call != "process.Process32NextW";
}

/// "CopyFileW, FindClose 2": the calls of a run, where one behind its like is only counted.
std::string callsOf(const Scenario& scenario, int32_t mode) {
    std::string all, last;
    size_t times = 0;
    const auto finish = [&] {
        if (times > 1)
            all += ' ' + std::to_string(times);
    };
    for (const CallUse& use : runScenario(scenario, mode).uses) {
        if (!counts(use))
            continue;
        if (use.call == last) {
            ++times;
            continue;
        }
        finish();
        last = use.call;
        times = 1;
        all += (all.empty() ? "" : ", ") + last.substr(last.find('.') + 1);
    }
    finish();
    return all;
}

/// What load asks of the system.
const std::string whenLoading = "GetModuleHandleW, GetProcAddress, GetVersionExW, ";

/// What a run calls that installs or upgrades, and one that uninstalls.
struct Row {
    const char* scenario;
    std::string placing;
    std::string removing = placing;
};

const Row rows[] = {
    {"a new file", "CreateDirectoryW 3, FindFirstFileW, CopyFileW",
     "WriteLine, FindFirstFileW, FindClose, DeleteFileW"},
    {"a file that is there", "CreateDirectoryW, FindFirstFileW, FindClose, DeleteFileW, CopyFileW",
     "WriteLine, FindFirstFileW, FindClose, DeleteFileW"},
    {"a read-only file",
     "CreateDirectoryW, FindFirstFileW, FindClose, DeleteFileW, GetFileAttributesW, "
     "SetFileAttributesW, DeleteFileW, CopyFileW",
     "WriteLine, FindFirstFileW, FindClose, DeleteFileW, GetFileAttributesW, SetFileAttributesW, "
     "DeleteFileW"},
    {"a file in use", "CreateDirectoryW, FindFirstFileW, CopyFileW 2, MoveFileExW, WriteLine",
     "WriteLine, FindFirstFileW, FindClose, DeleteFileW"},
    {"a file without its source",
     "CreateDirectoryW, FindFirstFileW, CopyFileW, FormatMessageW, LocalFree, CreateDirectoryW, "
     "FindFirstFileW, CopyFileW, FormatMessageW, LocalFree, WriteLine",
     "WriteLine, FindFirstFileW, WriteLine, FindFirstFileW"},
    {"a program that runs",
     "CreateToolhelp32Snapshot, Process32FirstW, CreateToolhelp32Snapshot, Module32FirstW, "
     "CloseHandle 2, OpenProcess, TerminateProcess, WaitForSingleObject, CloseHandle, WriteLine, "
     "CreateDirectoryW, FindFirstFileW, CopyFileW",
     "CreateToolhelp32Snapshot, Process32FirstW, CreateToolhelp32Snapshot, Module32FirstW, "
     "CloseHandle 2, OpenProcess, TerminateProcess, WaitForSingleObject, CloseHandle, WriteLine 2, "
     "FindFirstFileW, FindClose, DeleteFileW"},
    {"a link",
     "WriteLine 4, CreateDirectoryW, CoInitialize, CoCreateInstance, SetPath, FindFirstFileW, "
     "CopyFileW, SetIconLocation, SetWorkingDirectory, Save",
     "WriteLine, FindFirstFileW, FindClose, DeleteFileW"},
    {"keys",
     "RegCreateKeyExW, RegOpenKeyExW, RegSetValueExW, RegCloseKey, RegOpenKeyExW, "
     "RegQueryInfoKeyW, RegEnumKeyExW 2, RegOpenKeyExW, RegQueryInfoKeyW, RegCloseKey, "
     "RegDeleteKeyW, RegOpenKeyExW, RegQueryInfoKeyW, RegCloseKey, RegDeleteKeyW, RegCloseKey, "
     "RegDeleteKeyW"},
    {"a directory",
     "FindFirstFileW, FindNextFileW 2, FindFirstFileW, FindClose, DeleteFileW, FindNextFileW, "
     "FindFirstFileW, FindNextFileW 2, FindFirstFileW, FindClose, DeleteFileW, FindNextFileW, "
     "FindClose, RemoveDirectoryW, FindNextFileW, FindClose, RemoveDirectoryW"},
    {"a custom action", "WriteLine 2, LoadLibraryW, GetProcAddress, CallEntry, FreeLibrary"},
    {"a program",
     "SHGetSpecialFolderPathW, GetVersionExW, ShellExecuteExW, WaitForSingleObject, CloseHandle"},
    {"a service that is started",
     "OpenSCManagerW, OpenServiceW, QueryServiceStatus, StartServiceW, QueryServiceStatus 2, "
     "CloseServiceHandle 2"},
    {"a service that is stopped",
     "OpenSCManagerW, OpenServiceW, QueryServiceStatus, ControlService, QueryServiceStatus 2, "
     "CloseServiceHandle 2"},
    {"a service that is removed",
     "OpenSCManagerW, OpenServiceW, DeleteService, CloseServiceHandle 2"},
    {"a search",
     "FindFirstFileW, FindClose, GetFileVersionInfoSizeW, GetFileVersionInfoW, VerQueryValueW, "
     "WriteLine 3"},
    {"facts of the system", "WriteLine, SHGetSpecialFolderPathW"},
    {"texts", "WriteLine"},
};

TEST(CallCountTest, EachActionCallsTheSystemNoOftenerThanItIsToldTo) {
    ASSERT_EQ(std::size(rows), scenarios().size());
    // What is asked once in a process is asked here.
    runScenario(scenarios().front(), RUNMODE_INSTALL);
    for (size_t i = 0; i < std::size(rows); ++i) {
        const Scenario& scenario = scenarios()[i];
        SCOPED_TRACE(scenario.name);
        EXPECT_STREQ(rows[i].scenario, scenario.name);
        if (scenario.obstacle())
            continue;
        for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UPGRADE})
            EXPECT_EQ(callsOf(scenario, mode), whenLoading + rows[i].placing) << mode;
        EXPECT_EQ(callsOf(scenario, RUNMODE_UNINSTALL), whenLoading + rows[i].removing);
    }
}

}  // namespace
