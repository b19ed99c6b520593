#include "HostProgram.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

HandlePtr openStream(const std::wstring& path, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const HANDLE handle = CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      &inherited, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    EXPECT_NE(handle, INVALID_HANDLE_VALUE) << GetLastError();
    return HandlePtr(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

}  // namespace

HandlePtr openInput(const std::wstring& path) {
    return openStream(path, GENERIC_READ, OPEN_EXISTING);
}

HandlePtr openOutput(const std::wstring& path) {
    return openStream(path, GENERIC_WRITE, CREATE_ALWAYS);
}

Pipe::Pipe() {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    EXPECT_TRUE(CreatePipe(&readEnd, &writeEnd, &inherited, 0));
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    reader.reset(readEnd);
    writer.reset(writeEnd);
}

HandlePtr startProgram(std::wstring commandLine, const std::wstring& directory,
                       const Streams& streams, DWORD flags) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    return startProgram(std::move(commandLine), directory, streams, flags, startup);
}

HandlePtr startProgram(std::wstring commandLine, const std::wstring& directory,
                       const Streams& streams, DWORD flags, STARTUPINFOW& startup, HANDLE user) {
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = streams.input;
    startup.hStdOutput = streams.output;
    startup.hStdError = streams.error;
    PROCESS_INFORMATION process{};
    const auto start = [&](auto function, auto... whom) {
        return function(whom..., nullptr, commandLine.data(), nullptr, nullptr, TRUE, flags,
                        nullptr, directory.c_str(), &startup, &process);
    };
    if (!(user ? start(&CreateProcessAsUserW, user) : start(&CreateProcessW))) {
        ADD_FAILURE() << "can't start the program: " << GetLastError();
        return nullptr;
    }
    CloseHandle(process.hThread);
    return HandlePtr(process.hProcess);
}

HandlePtr userWithoutElevation() {
    HANDLE raw = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &raw));
    const HandlePtr elevated(raw);
    TOKEN_LINKED_TOKEN linked{};
    DWORD size = 0;
    EXPECT_TRUE(
        GetTokenInformation(elevated.get(), TokenLinkedToken, &linked, sizeof linked, &size));
    const HandlePtr limited(linked.LinkedToken);
    EXPECT_TRUE(DuplicateTokenEx(limited.get(), TOKEN_ALL_ACCESS, nullptr, SecurityImpersonation,
                                 TokenPrimary, &raw));
    return HandlePtr(raw);
}

DWORD waitForProgram(HANDLE process) {
    constexpr DWORD patience = 240'000;
    if (WaitForSingleObject(process, patience) != WAIT_OBJECT_0) {
        ADD_FAILURE() << "the program hangs";
        TerminateProcess(process, 1);
        WaitForSingleObject(process, INFINITE);
    }
    DWORD exitCode = 0;
    GetExitCodeProcess(process, &exitCode);
    return exitCode;
}
