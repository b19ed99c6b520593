#pragma once

#include <cstdint>

/// Writes a shell link file; an existing one is overwritten. Without a working directory (null or
/// empty) the link gets the target's. Its icon is that of a copy of the icon file, made beside it
/// under a name with this process's time stamp, or of the icon file itself where the copy fails, or
/// of the target without an icon file (null or empty).
///
/// 0, also when the file can't be written; -1 when the shell's link object can't be had, or, left
/// unreleased, has no way to write a file. A link path of 260 characters or more ends the process.
/// COM is initialised and uninitialised around the work, even where the thread refuses it because
/// it has COM in another form.
int32_t createShellLink(const wchar_t* linkPath, const wchar_t* target,
                        const wchar_t* workingDirectory, const wchar_t* iconFile);

/// Tells the shell that a link file has come or changed.
void notifyLinkChanged(const wchar_t* linkPath);
