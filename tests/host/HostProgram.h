#pragma once

#include <windows.h>

#include <string>

#include "host/Handles.h"

/// What the standard streams of a program are; null for none.
struct Streams {
    HANDLE input = nullptr;
    HANDLE output = nullptr;
    HANDLE error = nullptr;
};

/// Opens a file as a stream that a program can be started with.
HandlePtr openInput(const std::wstring& path);
HandlePtr openOutput(const std::wstring& path);

/// What a program writes into the one end can be read from the other.
struct Pipe {
    Pipe();

    HandlePtr reader;
    HandlePtr writer;
};

/// Starts a program in a directory. Null, with a failed expectation, when it can't be started.
HandlePtr startProgram(std::wstring commandLine, const std::wstring& directory,
                       const Streams& streams, DWORD flags = 0);
/// With more said of how it starts, where the streams are filled in, and for whom; null for the
/// user of the tests.
HandlePtr startProgram(std::wstring commandLine, const std::wstring& directory,
                       const Streams& streams, DWORD flags, STARTUPINFOW& startup,
                       HANDLE user = nullptr);

/// The user of the tests without an administrator's rights: the token with which the desktop's
/// programs run that weren't started elevated.
HandlePtr userWithoutElevation();

/// Waits for the end of a program and gives its exit code. One that hangs is ended.
DWORD waitForProgram(HANDLE process);
