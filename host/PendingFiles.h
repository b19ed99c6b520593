#pragma once

#include <string>

// The replacements of files that wait for the next restart, of which the engine makes one for a
// file that it couldn't replace. They stand in the registry; what others have registered there is
// never touched.

bool isSamePath(const std::wstring& a, const std::wstring& b);

/// Whether a replacement of the engine's own would put a file at `target`: it is registered, and
/// the file that was staged for it is still there.
bool isReplacementPending(const std::wstring& target);

/// Takes it back, staged file included. True when none is left.
bool dropReplacement(const std::wstring& target);
