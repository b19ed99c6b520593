#pragma once

#include <string>

#include "ExitCodes.h"

/// Writes a text to a file, which is made or replaced, as UTF-8 with the line ends of Windows.
/// Gives why it can't be written; empty when it is.
std::wstring writeTextFile(const std::wstring& path, const std::wstring& text);

/// Gives out what the program was asked for: into a file, or without one to the standard output.
/// That a file can't be written is told.
Ending giveText(const std::wstring& text, const std::wstring& file);
