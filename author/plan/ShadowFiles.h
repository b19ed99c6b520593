#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "plan/AnsweredCall.h"
#include "plan/Change.h"
#include "plan/EndedProcesses.h"
#include "plan/FilePath.h"
#include "plan/OwnHandles.h"
#include "system/FileCalls.h"
#include "system/VersionCalls.h"

/// What a run finds under a path; where nothing is, all but the error is empty.
struct SeenFile {
    bool isThere() const { return error == ERROR_SUCCESS; }
    bool isDirectory() const { return isThere() && (attributes & FILE_ATTRIBUTE_DIRECTORY); }

    DWORD error = ERROR_SUCCESS;  ///< that of the system where nothing is
    DWORD attributes = 0;
    std::wstring name;     ///< without its directory, as it is spelt there
    std::wstring content;  ///< the file or directory of the machine that it is or is a copy of;
                           ///< empty for what a run makes itself
    uint64_t size = 0;
    FILETIME written{};
};

/// The files as a run would leave them: those of the machine, and over them what the run has made
/// and removed. A path is known by its spelling alone: what is reached through a link between
/// directories or by a short name isn't seen as the same.
class ShadowFiles {
public:
    ShadowFiles(const EndedProcesses& ended, ChangeListener& listener)
        : ended(ended), listener(listener) {}

    HANDLE answer(Call<&FileCalls::FindFirstFileW>, const wchar_t* pattern,
                  WIN32_FIND_DATAW* found);
    BOOL answer(Call<&FileCalls::FindNextFileW>, HANDLE handle, WIN32_FIND_DATAW* found);
    BOOL answer(Call<&FileCalls::FindClose>, HANDLE handle);
    DWORD answer(Call<&FileCalls::GetFileAttributesW>, const wchar_t* path);
    BOOL answer(Call<&FileCalls::SetFileAttributesW>, const wchar_t* path, DWORD attributes);
    BOOL answer(Call<&FileCalls::CopyFileW>, const wchar_t* source, const wchar_t* target,
                BOOL keep);
    BOOL answer(Call<&FileCalls::DeleteFileW>, const wchar_t* path);
    BOOL answer(Call<&FileCalls::MoveFileExW>, const wchar_t* source, const wchar_t* target,
                DWORD flags);
    BOOL answer(Call<&FileCalls::CreateDirectoryW>, const wchar_t* path,
                SECURITY_ATTRIBUTES* security);
    BOOL answer(Call<&FileCalls::RemoveDirectoryW>, const wchar_t* path);
    DWORD answer(Call<&VersionCalls::GetFileVersionInfoSizeW>, const wchar_t* path, DWORD* unused);
    BOOL answer(Call<&VersionCalls::GetFileVersionInfoW>, const wchar_t* path, DWORD unused,
                DWORD size, void* block);

    SeenFile look(const std::wstring& path) const;

    /// Version, size and time of a file, for people; empty for all else.
    std::wstring textOf(const SeenFile& file) const;

    /// The error with which the system would refuse to write a file that the run makes itself.
    DWORD refusalToWrite(const wchar_t* target, DWORD newAttributes) const;
    /// The file has been written: a copy of another, or without content.
    void write(const std::wstring& path, const SeenFile& file);

private:
    /// What is found one by one.
    struct Search {
        std::vector<WIN32_FIND_DATAW> found;
        size_t next = 0;
    };

    std::optional<SeenFile> planned(const std::wstring& path) const;
    SeenFile onMachine(const std::wstring& path) const;
    bool isOnMachine(const std::wstring& path) const;
    bool isTouched(const std::wstring& directory) const;
    template <class Visitor>
    void visitPlannedIn(const std::wstring& directory, Visitor&& visit) const;

    DWORD search(const wchar_t* pattern, std::vector<WIN32_FIND_DATAW>& found) const;
    DWORD searchOnMachine(const wchar_t* pattern, std::vector<WIN32_FIND_DATAW>& found) const;
    bool isEmpty(const std::wstring& directory) const;

    DWORD copy(const wchar_t* source, const wchar_t* target, bool keep);
    DWORD remove(const wchar_t* name);
    DWORD replaceAtRestart(const wchar_t* source, const wchar_t* target);
    DWORD makeDirectory(const wchar_t* name);
    DWORD removeDirectory(const wchar_t* name);
    DWORD setAttributes(const wchar_t* name, DWORD attributes);

    DWORD refusalToAdd(const std::wstring& path, DWORD right) const;
    DWORD refusalOfRoom(const std::wstring& path, uint64_t bytes, uint64_t bytesFreed) const;
    std::wstring directoryOnMachine(std::wstring path) const;

    std::optional<uint64_t> versionOf(const std::wstring& path) const;
    Change describe(ChangeKind kind, const std::wstring& path, const SeenFile& before,
                    const SeenFile& after) const;
    void put(const std::wstring& path, const SeenFile& file);

    const FileCalls system = fileCalls;
    const VersionCalls versions = versionCalls;
    const EndedProcesses& ended;
    ChangeListener& listener;
    std::map<std::wstring, SeenFile, LessIgnoringCase> files;
    std::map<std::wstring, int64_t, LessIgnoringCase> bytesTaken;  ///< of each drive
    OwnHandles<HANDLE, Search> searches;
};
