#pragma once

#include <cstddef>
#include <cstdint>

#include "system/TextConversion.h"

/// The strict test of a decimal integer: digits, or a minus sign and digits. Blanks, a plus sign
/// and hexadecimal are refused. On success `value` holds the number, saturated at the limits of
/// 32 bits; on refusal it is untouched and the result is false.
bool parseIntText(const wchar_t* text, int32_t& value);

/// Cuts the next piece from `text`, or from `rest` when `text` is null. A delimiter is a piece of
/// its own and sets `index` to its number; the text before one sets `index` to -1. It matches also
/// where the text ends inside it. `rest` becomes what follows, null after the last piece. Null
/// when there is nothing left. `count` is ignored: there are always four delimiters.
WideText nextPiece(const wchar_t* text, const wchar_t* const* delimiters, size_t count,
                   const wchar_t*& rest, int32_t& index);
