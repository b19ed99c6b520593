#include "system/ShellCommand.h"

#include "system/ProcessCalls.h"
#include "system/ShellCalls.h"
#include "system/SystemCalls.h"

namespace {

/// The first version of Windows in which programs are elevated by a question to the user.
constexpr DWORD elevatingMajorVersion = 6;

}  // namespace

int32_t runShellCommand(const wchar_t* file, const wchar_t* parameters, bool wait, bool show) {
    if (file == nullptr || *file == L'\0')
        return -1;
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    if (!systemCalls.GetVersionExW(&version))
        return -1;

    SHELLEXECUTEINFOW start{};
    start.cbSize = sizeof start;
    start.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_DDEWAIT | SEE_MASK_FLAG_NO_UI;
    start.lpVerb = version.dwMajorVersion >= elevatingMajorVersion ? L"runas" : L"open";
    start.lpFile = file;
    start.lpParameters = parameters;
    start.nShow = show ? SW_SHOW : SW_HIDE;
    if (!shellCalls.ShellExecuteExW(&start))
        return -1;
    // There may be no process of its own to wait for; both calls then do nothing.
    if (wait)
        processCalls.WaitForSingleObject(start.hProcess, INFINITE);
    processCalls.CloseHandle(start.hProcess);
    return 0;
}
