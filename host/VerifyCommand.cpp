#include "VerifyCommand.h"

#include <windows.h>

#include <filesystem>
#include <string_view>
#include <system_error>

#include "Console.h"
#include "Handles.h"
#include "Machine.h"
#include "ScriptFile.h"
#include "VerifyReport.h"
#include "author/verify/Difference.h"

namespace {

/// The files that the program itself writes to while it looks at the machine.
std::vector<std::wstring> ownOutputs() {
    std::vector<std::wstring> paths;
    for (const DWORD stream : {STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
        constexpr std::wstring_view mark = L"\\\\?\\";
        wchar_t path[MAX_PATH];
        const DWORD length = GetFinalPathNameByHandleW(GetStdHandle(stream), path, MAX_PATH, 0);
        if (length > mark.size() && length < MAX_PATH)
            paths.emplace_back(path + mark.size());
    }
    return paths;
}

/// The program that a script is shipped with, from whose folder its sources count; without one,
/// this program.
std::wstring programFor(const std::wstring& script) {
    const auto beside = std::filesystem::path(script).replace_filename(L"temz.exe");
    std::error_code ignored;
    if (std::filesystem::exists(beside, ignored))
        return beside.wstring();
    wchar_t own[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    return own;
}

/// Runs a script as anybody would, in a process of its own: what a run leaves open, and the
/// services that go with it, are closed when the run has ended. The exit code.
int runAlone(const std::wstring& mode, const std::wstring& script, bool json) {
    std::wstring command = L"\"" + programFor(script) + L"\" " + mode + L" \"" + script +
                           L"\" --on-error=abort " + (json ? L"--quiet" : L"--passive");
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = GetStdHandle(json ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &started))
        return static_cast<int>(GetLastError());
    const HandlePtr process(started.hProcess);
    const HandlePtr thread(started.hThread);
    WaitForSingleObject(process.get(), INFINITE);
    DWORD exitCode = 0;
    GetExitCodeProcess(process.get(), &exitCode);
    return static_cast<int>(exitCode);
}

/// Why the scripts of a command can't be opened; empty when they can.
std::wstring findUnopened(const CommandLine& command) {
    for (const std::wstring& script : {command.upgradeFrom, command.script})
        if (const std::wstring problem = script.empty() ? L"" : findOpenProblem(script);
            !problem.empty())
            return std::wstring(script).append(L" can't be opened: ").append(problem);
    return {};
}

/// One product on this machine.
class Verification {
public:
    explicit Verification(const CommandLine& command)
        : command(command), report(makeVerifyReport(command.json)) {}

    Ending carryOut() {
        const std::wstring script = wholePath(command.script);
        report->started(script);
        if (const std::wstring reason = findUnopened(command); !reason.empty()) {
            report->refused(reason, Ending::scriptNotOpened);
            write(Stream::error, L"temz: " + reason + L"\n");
            return Ending::scriptNotOpened;
        }
        const std::vector<std::wstring> besides = ownOutputs();
        const Picture before = takePicture(besides);
        if (command.upgradeFrom.empty()) {
            run(L"install", script);
        } else {
            run(L"install", wholePath(command.upgradeFrom));
            run(L"upgrade", script);
        }
        const Picture installed = takePicture(besides);
        report->installed(before, installed);
        run(L"uninstall", script);
        const auto differences = compare(before, installed, takePicture(besides));
        const Ending ending = failed                ? Ending::failed
                              : differences.empty() ? Ending::done
                                                    : Ending::faultsFound;
        report->finished(differences, ending);
        return ending;
    }

private:
    /// What has failed is removed and looked at all the same.
    void run(const std::wstring& mode, const std::wstring& script) {
        report->runBegins(mode, script);
        const int exitCode = runAlone(mode, script, command.json);
        report->runEnded(mode, script, exitCode);
        failed = failed || (exitCode != exitCodeOf(Ending::done) &&
                            exitCode != exitCodeOf(Ending::restartNeeded));
    }

    const CommandLine& command;
    const std::unique_ptr<VerifyReport> report;
    bool failed = false;
};

}  // namespace

Ending verifyScript(const CommandLine& command) {
    return Verification(command).carryOut();
}

void tellNoVerification(const std::wstring& problem) {
    const auto report = makeVerifyReport(true);
    report->started({});
    report->refused(problem, Ending::badCommandLine);
}
