#pragma once

#include <windows.h>

#include <cstring>
#include <cwchar>
#include <string>
#include <type_traits>
#include <vector>

#include "endurance/Ledger.h"
#include "support/FakeCall.h"
#include "support/FakeShellLink.h"

/// Says yes in the place of the machine, which stays as it is, to all that changes or opens
/// something. What only asks goes through.
class YesSayer {
public:
    template <auto& table, auto member, class Result, class... Parameters, class... Arguments>
    Result around(const char*, Result (*real)(Parameters...), Arguments&&... arguments) {
        using Table = std::remove_reference_t<decltype(table)>;
        if constexpr (asks<Table, member>())
            return real(arguments...);
        else if constexpr (!std::is_void_v<Result>)
            return yes<failureOf<table, member, Result>(), Result>();
    }

private:
    template <class Table, auto member>
    static constexpr bool asks() {
        return std::is_same_v<Table, TextCalls> || std::is_same_v<Table, SystemCalls> ||
               std::is_same_v<Table, WalkCalls> || std::is_same_v<Table, ActionCalls> ||
               (std::is_same_v<Table, ClockCalls> && !isCall<member>(&ClockCalls::Sleep)) ||
               CallList<&FileCalls::GetModuleFileNameW, &ShellCalls::SHGetSpecialFolderPathW,
                        &ProcessCalls::FormatMessageW, &ProcessCalls::FormatMessageA,
                        &ProcessCalls::LocalFree>::has<member>;
    }

    template <Failure rule, class Result>
    static Result yes() {
        constexpr bool zeroIsYes = rule != Failure::zero && rule != Failure::invalid;
        if constexpr (zeroIsYes)
            return Result{};
        else if constexpr (std::is_pointer_v<Result>)
            return reinterpret_cast<Result>(uintptr_t{0x1000});
        else
            return Result{1};
    }
};

/// What is about a thing is told by a word in its name:
///
///     "denied"      a file that can't be copied
///     "killed"      a program that runs
///     "torn"        a file whose version can't be read; "mute", one whose version says nothing
///     "stopped"     a service that has stopped already; all others run
///     "unwritable"  the target of a link that has no way to write a file
///     "missing"     a function that a library hasn't got
class AnsweringMachine {
public:
    explicit AnsweringMachine(Ledger& ledger) : ledger(ledger) {}

    /// Books what has become of the last link object.
    void settleLink() {
        for (const std::wstring& call : linkCallsMade)
            if (call == L"QueryInterface")
                ledger.bookLink(SUCCEEDED(link.queried));
            else if (call.starts_with(L"Release"))
                ledger.bookLink(-1);
        linkCallsMade.clear();
    }

private:
    static bool tells(const wchar_t* text, const wchar_t* word) { return std::wcsstr(text, word); }
    static BOOL refuse(DWORD error) {
        SetLastError(error);
        return FALSE;
    }
    static uint32_t act(CustomActionParams*, wchar_t* message, uint32_t) {
        message[0] = L'm';
        return 1;
    }

    const HKEY outerKey = reinterpret_cast<HKEY>(0x2000);
    const HKEY innerKey = reinterpret_cast<HKEY>(0x3000);

    YesSayer yesSayer;
    const CallWrapper<YesSayer> wrapper{yesSayer};
    Ledger& ledger;
    bool programRuns = true;
    DWORD serviceState = SERVICE_RUNNING;
    VS_FIXEDFILEINFO version{};
    std::vector<std::wstring> linkCallsMade;
    FakeShellLink link{linkCallsMade};

    // A directory holds one file.
    const FakeCall<fileCalls, &FileCalls::FindFirstFileW> findFirst{
        [](auto, WIN32_FIND_DATAW* found) {
            *found = {};
            found->cFileName[0] = L'f';
            return reinterpret_cast<HANDLE>(0x1000);
        }};
    const FakeCall<fileCalls, &FileCalls::FindNextFileW> findNext{
        [](auto...) { return refuse(ERROR_NO_MORE_FILES); }};
    const FakeCall<fileCalls, &FileCalls::CopyFileW> copy{[](const wchar_t* source, auto...) {
        return tells(source, L"denied") ? refuse(ERROR_ACCESS_DENIED) : TRUE;
    }};

    // A key holds one other.
    const FakeCall<registryCalls, &RegistryCalls::RegCreateKeyExW> createKey{
        [this](auto, auto, auto, auto, auto, auto, auto, HKEY* key, auto) {
            *key = outerKey;
            return ERROR_SUCCESS;
        }};
    const FakeCall<registryCalls, &RegistryCalls::RegOpenKeyExW> openKey{
        [this](HKEY parent, auto, auto, auto, HKEY* key) {
            *key = parent == outerKey ? innerKey : outerKey;
            return ERROR_SUCCESS;
        }};
    const FakeCall<registryCalls, &RegistryCalls::RegQueryInfoKeyW> queryKey{
        [this](HKEY key, auto, auto, auto, DWORD* subkeys, auto...) {
            *subkeys = key == outerKey;
            return ERROR_SUCCESS;
        }};
    const FakeCall<registryCalls, &RegistryCalls::RegEnumKeyExW> enumerateKey{
        [](auto, auto, wchar_t* name, DWORD* length, auto...) {
            name[0] = L'k';
            *length = 1;
            return ERROR_SUCCESS;
        }};

    const FakeCall<serviceCalls, &ServiceCalls::OpenServiceW> openService{
        [this](SC_HANDLE manager, const wchar_t* name, auto) {
            serviceState = tells(name, L"stopped") ? SERVICE_STOPPED : SERVICE_RUNNING;
            return manager;
        }};
    const FakeCall<serviceCalls, &ServiceCalls::QueryServiceStatus> queryService{
        [this](auto, SERVICE_STATUS* status) {
            status->dwCurrentState = serviceState;
            return TRUE;
        }};
    const FakeCall<serviceCalls, &ServiceCalls::ControlService> stopService{[this](auto...) {
        serviceState = SERVICE_STOPPED;
        return TRUE;
    }};
    const FakeCall<serviceCalls, &ServiceCalls::StartServiceW> startService{[this](auto...) {
        serviceState = SERVICE_RUNNING;
        return TRUE;
    }};

    // The program is there at every other look.
    const FakeCall<processCalls, &ProcessCalls::Process32FirstW> firstProcess{
        [this](auto, PROCESSENTRY32W* process) -> BOOL {
            std::wcscpy(process->szExeFile, L"killed.exe");
            return programRuns = !programRuns;
        }};
    const FakeCall<processCalls, &ProcessCalls::Module32FirstW> firstModule{
        [](auto, MODULEENTRY32W* module) {
            std::wcscpy(module->szExePath, L"C:\\temz none\\killed.exe");
            return TRUE;
        }};
    const FakeCall<shellCalls, &ShellCalls::ShellExecuteExW> start{[](SHELLEXECUTEINFOW* info) {
        info->hProcess = reinterpret_cast<HANDLE>(0x1000);
        return TRUE;
    }};

    const FakeCall<shellCalls, &ShellCalls::CoCreateInstance> createLink{
        [this](auto, auto, auto, auto, void** object) {
            settleLink();
            ledger.bookLink(1);
            *object = &link;
            return S_OK;
        }};
    const FakeCall<linkCalls, &LinkCalls::SetPath> setTarget{[this](auto, const wchar_t* target) {
        link.queried = tells(target, L"unwritable") ? E_NOINTERFACE : S_OK;
        return S_OK;
    }};

    const FakeCall<libraryCalls, &LibraryCalls::GetProcAddress> findFunction{
        [](auto, const char* name) {
            return std::strcmp(name, "missing") == 0
                       ? nullptr
                       : reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&act));
        }};

    const FakeCall<versionCalls, &VersionCalls::GetFileVersionInfoSizeW> versionSize{
        [](auto...) { return versionBlock; }};
    const FakeCall<versionCalls, &VersionCalls::GetFileVersionInfoW> readVersion{
        [](const wchar_t* path, auto, auto, void* block) -> BOOL {
            *static_cast<bool*>(block) = tells(path, L"mute");
            return !tells(path, L"torn");
        }};
    const FakeCall<versionCalls, &VersionCalls::VerQueryValueW> queryVersion{
        [this](const void* block, auto, void** root, UINT*) -> BOOL {
            *root = &version;
            return !*static_cast<const bool*>(block);
        }};

public:
    /// The bytes that a file's version takes.
    static constexpr DWORD versionBlock = 1000;
};
