#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "support/FakeCall.h"
#include "system/FileCalls.h"

using FakeFind = FakeCall<fileCalls, &FileCalls::FindFirstFileW>;
using FakeFindNext = FakeCall<fileCalls, &FileCalls::FindNextFileW>;
using FakeFindClose = FakeCall<fileCalls, &FileCalls::FindClose>;
using FakeDelete = FakeCall<fileCalls, &FileCalls::DeleteFileW>;
using FakeGetAttributes = FakeCall<fileCalls, &FileCalls::GetFileAttributesW>;
using FakeSetAttributes = FakeCall<fileCalls, &FileCalls::SetFileAttributesW>;
using FakeCopy = FakeCall<fileCalls, &FileCalls::CopyFileW>;
using FakeMove = FakeCall<fileCalls, &FileCalls::MoveFileExW>;
using FakeCreateDirectory = FakeCall<fileCalls, &FileCalls::CreateDirectoryW>;
using FakeRemoveDirectory = FakeCall<fileCalls, &FileCalls::RemoveDirectoryW>;
using FakeModuleFileName = FakeCall<fileCalls, &FileCalls::GetModuleFileNameW>;

using Paths = std::vector<std::wstring>;

/// What a faked call answers with this error: failure, or, without an error, success that leaves a
/// misleading one.
inline BOOL answer(DWORD error) {
    SetLastError(error == ERROR_SUCCESS ? ERROR_INVALID_DATA : error);
    return error == ERROR_SUCCESS;
}

/// A failure whose error the system doesn't tell.
inline BOOL failWithoutError() {
    SetLastError(ERROR_SUCCESS);
    return FALSE;
}
