#pragma once

#include <string>

/// Why the engine can't open a script; empty when it can. IterfaceContext::load doesn't tell a
/// script that can't be opened from one that is no XML.
std::wstring findOpenProblem(const std::wstring& script);
