#pragma once

#include <string>

/// Why the engine can't open a script; empty when it can. IterfaceContext::load doesn't tell a
/// script that can't be opened from one that is no XML.
std::wstring findOpenProblem(const std::wstring& script);

/// Why the engine, which takes a script's texts in the active code page whatever the script
/// declares, may misread them; empty when they are ASCII, or UTF-8 where that is the code page.
std::wstring findReadingProblem(const std::wstring& script);
