#pragma once

#include <cstddef>
#include <string>

/// Ends the process at once with exit status 0xC0000417 (STATUS_INVALID_CRUNTIME_PARAMETER).
/// It answers what no caller can go on from: a text that doesn't fit its field.
[[noreturn]] void failInvalidParameter();

/// Copies `text` with its terminator into a field of `capacity` characters. A null text and one
/// that doesn't fit end the process (failInvalidParameter) before anything is written.
void copyBounded(wchar_t* field, size_t capacity, const wchar_t* text);
void copyBounded(char* field, size_t capacity, const char* text);

template <class Character, size_t capacity>
void copyBounded(Character (&field)[capacity], const Character* text) {
    copyBounded(field, capacity, text);
}

/// Copies `text` into a field of `capacity` characters, silently cut to what fits, and terminates.
void copyCut(wchar_t* field, size_t capacity, const wchar_t* text);

template <size_t capacity>
void copyCut(wchar_t (&field)[capacity], const wchar_t* text) {
    copyCut(field, capacity, text);
}

/// Assigns `text`; a null text assigns an empty one.
void assignText(std::wstring& target, const wchar_t* text);

/// Copies at most 511 characters into a field of 512 and terminates. Does nothing when either is
/// null. `size` is ignored: every record field of this kind has 512 characters.
void copyFieldText(wchar_t* target, size_t size, const wchar_t* text);
