#pragma once

#include <cstdint>

/// Starts a file through the system's shell, from Windows Vista on with elevation, and waits for
/// the end of what it started if told so, without a limit. `show` tells whether its window is seen.
/// 0 when it was started, whatever becomes of it; -1 when not, and for no file or an empty one.
int32_t runShellCommand(const wchar_t* file, const wchar_t* parameters, bool wait, bool show);
