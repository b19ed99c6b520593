#pragma once

#include <string>

/// Why a script can't be opened; empty when it can. The engine doesn't tell a script that can't be
/// opened from one that is no XML.
std::wstring findOpenProblem(const std::wstring& script);

/// A path under which the engine, which opens files by their names in the active code page, finds
/// the script: its own where that can express it; else its name, with its folder made the current
/// directory; else its short name. Empty when it has none.
std::wstring findLoadablePath(const std::wstring& script);

/// Why the engine, which takes a script's texts in the active code page whatever the script
/// declares, may misread them; empty when they are ASCII, or UTF-8 where that is the code page.
std::wstring findReadingProblem(const std::wstring& script);
