#pragma once

#include <cstdint>
#include <string>

/// Appended to a whole target path, extension included, to name its staging file.
inline constexpr wchar_t stagingSuffix[] = L"!@#$%";

/// Characters, terminator included, of every fixed path buffer (MAX_PATH).
inline constexpr int pathBufferLength = 260;

/// Results of copyFileWithDelay that are no system error code.
enum CopyResult : int32_t {
    COPY_DONE = 0,      ///< the target holds the source's content
    COPY_FAILED = -1,   ///< a leftover staging file is stuck, or a call failed without a code
    COPY_DELAYED = -2,  ///< the source is staged and replaces the target at the next restart
};

/// Replaces `target` by a copy of `source`. When that fails, whatever the reason, and a delay is
/// allowed, the source is copied beside the target and registered to replace it at the next
/// restart. Clears a staging file left by an earlier attempt in every case. The result is one of
/// CopyResult or the system error code of the call that failed.
int32_t copyFileWithDelay(const wchar_t* source, const wchar_t* target, bool delayAllowed);

/// Deletes a file, also a read-only one. 0 when it is gone, or was never there; else -1.
int32_t deleteFile(const wchar_t* path);

/// Makes a directory with all its missing parents. True when it exists at the end.
bool createDirectories(const wchar_t* path);

/// Removes a directory with all that it holds. What can be removed is removed even when something
/// can't be; true only when the directory itself is gone, or was never there. Links to directories
/// are entered like directories. What the buffer can't hold ends the process: with a separator and
/// "*" behind it a directory's path, and as it stands a file's, has at most 259 characters.
bool removeDirectoryTree(const wchar_t* path);

/// Whether the system finds something by this path: a file, a directory, or any match of a pattern.
bool fileExists(const wchar_t* path);

/// The text before the last backslash, or, in a path without one, before the last forward slash.
/// False, with `directory` untouched, when the path has neither.
bool directoryOfPath(const wchar_t* path, std::wstring& directory);

/// The directory of the program that loaded the library, without a separator at its end; empty
/// when the system can't tell it. Asked of the system until the first success, then kept.
std::wstring hostProgramDirectory();
