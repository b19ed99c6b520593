#pragma once

#include <string>

#include "ExitCodes.h"

/// Gives out what the program was asked for: into a file, as UTF-8, or without one to the standard
/// output. That a file can't be written is told.
Ending giveText(const std::wstring& text, const std::wstring& file);
