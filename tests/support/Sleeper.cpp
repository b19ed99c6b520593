#include "support/Sleeper.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/TestFolder.h"

namespace fs = std::filesystem;

namespace {

constexpr DWORD patience = 10'000;  // milliseconds

}  // namespace

Sleeper::Sleeper(const std::wstring& executable) {
    if (!exists(executable))
        placeSleeper(executable);
    const std::wstring name = L"temz-sleeper-" + std::to_wstring(GetCurrentProcessId());
    const HANDLE started = CreateEventW(nullptr, FALSE, FALSE, name.c_str());
    std::wstring commandLine = L"sleeper " + name;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    EXPECT_TRUE(CreateProcessW(executable.c_str(), commandLine.data(), nullptr, nullptr, FALSE,
                               DETACHED_PROCESS, nullptr, nullptr, &startup, &process));
    // A program that is still being loaded can't be inspected.
    EXPECT_EQ(WaitForSingleObject(started, patience), WAIT_OBJECT_0);
    CloseHandle(started);
}

Sleeper::~Sleeper() {
    TerminateProcess(process.hProcess, 0);
    waitUntilEnded();
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

bool Sleeper::isRunning() const {
    return WaitForSingleObject(process.hProcess, 0) == WAIT_TIMEOUT;
}

bool Sleeper::waitUntilEnded() const {
    return WaitForSingleObject(process.hProcess, patience) == WAIT_OBJECT_0;
}

uint32_t Sleeper::exitCode() const {
    DWORD code = STILL_ACTIVE;
    waitUntilEnded();
    GetExitCodeProcess(process.hProcess, &code);
    return code;
}

void placeSleeper(const std::wstring& executable) {
    fs::create_directories(fs::path(executable).parent_path());
    EXPECT_TRUE(CopyFileW((testProgramDirectory() + L"\\temz_sleeper.exe").c_str(),
                          executable.c_str(), FALSE));
}
