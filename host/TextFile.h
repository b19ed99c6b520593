#pragma once

#include <string>

/// Writes a text to a file, which is made or replaced, as UTF-8 with the line ends that it has.
/// Gives why it can't be written; empty when it is.
std::wstring writeTextFile(const std::wstring& path, const std::wstring& text);
