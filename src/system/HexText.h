#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "system/TextConversion.h"

/// Two upper-case hexadecimal digits a byte. Null for null bytes, for none, and when memory is
/// exhausted.
NarrowText bytesToHexText(const uint8_t* bytes, size_t count);

/// Reads pairs of hexadecimal digits of either case. False, with the outputs untouched, for a null
/// text, an odd length, a bad digit and exhausted memory. An empty text gives an empty buffer.
bool hexTextToBytes(const char* text, std::unique_ptr<uint8_t[]>& bytes, size_t& count);

/// Reads numbers of one or two hexadecimal digits, with blanks between them where the caller likes.
/// `bytes` has room for one byte a character. False at the first bad character, without a count.
bool spacedHexToBytes(const char* text, uint8_t* bytes, size_t& count);
