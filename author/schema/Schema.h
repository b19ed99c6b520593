#pragma once

#include <string>

/// The XML Schema (1.0) of install scripts, with what each element and attribute is for. It refuses
/// what the engine would find wrong in the structure of a script, whatever the machine, and
/// keywords that mean nothing; it can't see where references lead.
std::wstring scriptSchema();
