#include "plan/ShadowProcesses.h"

#include <shlwapi.h>

#include <algorithm>

#include "plan/MachineFile.h"
#include "system/FileOperations.h"
#include "system/SystemLibrary.h"

namespace {

constinit SystemLibrary associations(L"shlwapi.dll");

std::wstring extensionOf(const std::wstring& path) {
    const std::wstring name = nameOf(path);
    const size_t dot = name.rfind(L'.');
    return dot == std::wstring::npos ? L"" : name.substr(dot);
}

bool isOneOf(const std::wstring& extension, std::initializer_list<const wchar_t*> extensions) {
    return std::any_of(extensions.begin(), extensions.end(),
                       [&](const wchar_t* other) { return equalIgnoringCase(extension, other); });
}

/// Whether the kind of file has a program for the verb.
bool hasVerb(const std::wstring& extension, const wchar_t* verb) {
    DWORD size = 0;
    return SUCCEEDED((callSystem<associations, "AssocQueryStringW", HRESULT>(
        ASSOCF{0}, ASSOCSTR_COMMAND, extension.c_str(), verb, static_cast<wchar_t*>(nullptr),
        &size)));
}

std::wstring searchedFor(const std::wstring& name) {
    wchar_t found[pathBufferLength];
    const DWORD length =
        SearchPathW(nullptr, name.c_str(), L".exe", pathBufferLength, found, nullptr);
    return length != 0 && length < pathBufferLength ? std::wstring(found, length) : std::wstring();
}

/// The program that is registered under a name.
std::wstring registeredAs(const std::wstring& name) {
    for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
        for (const wchar_t* extension : {L"", L".exe"}) {
            wchar_t path[pathBufferLength];
            DWORD size = sizeof path;
            const std::wstring key =
                L"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\" + name + extension;
            if (RegGetValueW(root, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, path, &size) ==
                ERROR_SUCCESS)
                return path;
        }
    return {};
}

}  // namespace

BOOL ShadowProcesses::answer(Call<&ProcessCalls::Process32FirstW>, HANDLE snapshot,
                             PROCESSENTRY32W* process) {
    const BOOL found = system.Process32FirstW(snapshot, process);
    return found && ended.contain(process->th32ProcessID)
               ? answer(Call<&ProcessCalls::Process32NextW>(), snapshot, process)
               : found;
}

BOOL ShadowProcesses::answer(Call<&ProcessCalls::Process32NextW>, HANDLE snapshot,
                             PROCESSENTRY32W* process) {
    BOOL found = FALSE;
    do
        found = system.Process32NextW(snapshot, process);
    while (found && ended.contain(process->th32ProcessID));
    return found;
}

HANDLE ShadowProcesses::answer(Call<&ProcessCalls::OpenProcess>, DWORD access, BOOL inherit,
                               DWORD id) {
    if (ended.contain(id)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const HANDLE process = system.OpenProcess(access, inherit, id);
    if (process)
        openProcesses[process] = id;
    return process;
}

BOOL ShadowProcesses::answer(Call<&ProcessCalls::TerminateProcess>, HANDLE process,
                             UINT /*exitCode*/) {
    const auto opened = openProcesses.find(process);
    if (opened == openProcesses.end())
        return answerOf(ERROR_INVALID_HANDLE);
    if (ended.contain(opened->second))
        return answerOf(ERROR_ACCESS_DENIED);
    Change change{};
    change.kind = ChangeKind::processEnded;
    change.object = ended.add(opened->second);
    change.before = L"process " + std::to_wstring(opened->second);
    listener.planned(change);
    return TRUE;
}

DWORD ShadowProcesses::answer(Call<&ProcessCalls::WaitForSingleObject>, HANDLE object,
                              DWORD milliseconds) {
    if (programs.find(object))
        return WAIT_OBJECT_0;
    const auto opened = openProcesses.find(object);
    if (opened == openProcesses.end() || !ended.contain(opened->second))
        return system.WaitForSingleObject(object, milliseconds);
    // A handle without the right to wait is refused as ever.
    const DWORD result = system.WaitForSingleObject(object, 0);
    return result == WAIT_TIMEOUT ? DWORD{WAIT_OBJECT_0} : result;
}

BOOL ShadowProcesses::answer(Call<&ProcessCalls::CloseHandle>, HANDLE object) {
    if (programs.close(object))
        return TRUE;
    openProcesses.erase(object);
    return system.CloseHandle(object);
}

/// The file that the shell would start by a name.
DWORD ShadowProcesses::findProgram(const std::wstring& name, std::wstring& path) const {
    DWORD error = ERROR_SUCCESS;
    for (const wchar_t* extension : {L"", L".exe"}) {
        path = fullPath((name + extension).c_str());
        const SeenFile file = files.look(path);
        if (file.isThere())
            return ERROR_SUCCESS;
        error = error ? error : file.error;
    }
    if (name.find_first_of(L"\\/:") != std::wstring::npos)
        return error;
    path = searchedFor(name);
    if (path.empty())
        path = registeredAs(name);
    return path.empty() ? DWORD{ERROR_FILE_NOT_FOUND} : DWORD{ERROR_SUCCESS};
}

DWORD ShadowProcesses::refusalToStart(const std::wstring& path, const wchar_t* verb) const {
    const SeenFile file = files.look(path);
    const std::wstring extension = extensionOf(path);
    if (file.isDirectory() || isOneOf(extension, {L".bat", L".cmd"}))
        return ERROR_SUCCESS;
    if (isOneOf(extension, {L".exe", L".com"}))
        return isProgramFile(file.content) ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_BAD_EXE_FORMAT};
    return hasVerb(extension, verb) ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_NO_ASSOCIATION};
}

BOOL ShadowProcesses::answer(Call<&ShellCalls::ShellExecuteExW>, SHELLEXECUTEINFOW* start) {
    constexpr INT_PTR anySuccess = 42;
    std::wstring name = start->lpFile;
    std::erase(name, L'"');
    std::wstring path;
    DWORD error = findProgram(name, path);
    if (error == ERROR_SUCCESS)
        error = refusalToStart(path, start->lpVerb);
    if (error != ERROR_SUCCESS)
        return answerOf(error);
    start->hProcess = programs.give({path});
    // NOLINTNEXTLINE(performance-no-int-to-ptr): that is all it is
    start->hInstApp = reinterpret_cast<HINSTANCE>(anySuccess);
    Change change{};
    change.kind = ChangeKind::programStarted;
    change.object = path;
    change.source = start->lpParameters ? start->lpParameters : L"";
    change.unforeseeable = true;
    listener.planned(change);
    return TRUE;
}
