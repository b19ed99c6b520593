#pragma once

#include "trace/CallFailure.h"

/// Some members of the call tables.
template <auto... members>
struct CallList {
    template <auto member>
    static constexpr bool has = (isCall<members>(member) || ...);
};

/// The calls by which the engine acts on the machine or lets others act on it; all others ask.
using ChangingCalls =
    CallList<&FileCalls::DeleteFileW, &FileCalls::SetFileAttributesW, &FileCalls::CopyFileW,
             &FileCalls::MoveFileExW, &FileCalls::CreateDirectoryW, &FileCalls::RemoveDirectoryW,
             &RegistryCalls::RegCreateKeyExW, &RegistryCalls::RegDeleteKeyW,
             &RegistryCalls::RegSetValueExW, &ServiceCalls::StartServiceW,
             &ServiceCalls::ControlService, &ServiceCalls::DeleteService,
             &ServiceCalls::ChangeServiceConfigW, &ProcessCalls::TerminateProcess,
             &ShellCalls::ShellExecuteExW, &ShellCalls::SHChangeNotify, &LinkCalls::Save,
             &LibraryCalls::LoadLibraryW, &ActionCalls::CallEntry>;
