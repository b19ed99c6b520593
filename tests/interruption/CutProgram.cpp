#include "interruption/CutProgram.h"

#include <gtest/gtest.h>

#include "support/TestFolder.h"

CutProgram::CutProgram(const std::wstring& name, const std::wstring& arguments)
    : job(CreateJobObjectW(nullptr, nullptr)) {
    const std::wstring program = testProgramDirectory() + L"\\" + name;
    std::wstring commandLine = L"\"" + program + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    EXPECT_TRUE(CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE,
                               CREATE_SUSPENDED | DETACHED_PROCESS, nullptr, nullptr, &startup,
                               &process));
    EXPECT_TRUE(AssignProcessToJobObject(job, process.hProcess));
    ResumeThread(process.hThread);
}

CutProgram::~CutProgram() {
    cut();
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    CloseHandle(job);
}

std::optional<DWORD> CutProgram::waitForEnd(DWORD patience) const {
    DWORD exitCode = 0;
    if (WaitForSingleObject(process.hProcess, patience) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(process.hProcess, &exitCode))
        return {};
    return exitCode;
}

void CutProgram::cut() const {
    EXPECT_TRUE(TerminateJobObject(job, 1));
    WaitForSingleObject(process.hProcess, INFINITE);
}
