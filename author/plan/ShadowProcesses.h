#pragma once

#include <map>
#include <string>

#include "plan/AnsweredCall.h"
#include "plan/Change.h"
#include "plan/EndedProcesses.h"
#include "plan/OwnHandles.h"
#include "plan/ShadowFiles.h"
#include "system/ProcessCalls.h"
#include "system/ShellCalls.h"

/// The processes as a run would leave them. A program that is started has ended at once, and
/// nothing is known of what it does.
class ShadowProcesses {
public:
    ShadowProcesses(const ShadowFiles& files, EndedProcesses& ended, ChangeListener& listener)
        : files(files), ended(ended), listener(listener) {}

    BOOL answer(Call<&ProcessCalls::Process32FirstW>, HANDLE snapshot, PROCESSENTRY32W* process);
    BOOL answer(Call<&ProcessCalls::Process32NextW>, HANDLE snapshot, PROCESSENTRY32W* process);
    HANDLE answer(Call<&ProcessCalls::OpenProcess>, DWORD access, BOOL inherit, DWORD id);
    BOOL answer(Call<&ProcessCalls::TerminateProcess>, HANDLE process, UINT exitCode);
    DWORD answer(Call<&ProcessCalls::WaitForSingleObject>, HANDLE object, DWORD milliseconds);
    BOOL answer(Call<&ProcessCalls::CloseHandle>, HANDLE object);
    BOOL answer(Call<&ShellCalls::ShellExecuteExW>, SHELLEXECUTEINFOW* start);
    void answer(Call<&ShellCalls::SHChangeNotify>, LONG /*event*/, UINT /*flags*/,
                const void* /*one*/, const void* /*other*/) {}

private:
    struct Program {
        std::wstring path;
    };

    DWORD findProgram(const std::wstring& name, std::wstring& path) const;
    DWORD refusalToStart(const std::wstring& path, const wchar_t* verb) const;

    const ProcessCalls system = processCalls;
    const ShadowFiles& files;
    EndedProcesses& ended;
    ChangeListener& listener;
    std::map<HANDLE, DWORD> openProcesses;  ///< real handles, and the ids behind them
    OwnHandles<HANDLE, Program> programs;
};
