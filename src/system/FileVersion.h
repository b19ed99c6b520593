#pragma once

#include <cstdint>

// File versions are unsigned numbers of four 16-bit fields, the first one uppermost, so that they
// compare as plain numbers.

/// Reads the fixed version of a file; the log tells the version, or what failed. On failure
/// `version` is untouched and the result is false.
bool getFileVersion(const wchar_t* path, uint64_t& version);

/// The same, but for exhausted memory, which leaves as std::bad_alloc. There it makes the version
/// one that can't be read.
bool getFileVersionOrThrow(const wchar_t* path, uint64_t& version);

/// The version that a text like "1.2.3.4" means. Missing fields are 0, and reading stops at the
/// first piece that is no integer. A piece isn't confined to its 16 bits.
uint64_t parseVersionText(const wchar_t* text);
