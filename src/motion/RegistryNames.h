#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

/// The predefined key that a `Root` names, and the number of the type that a `Type` names. False,
/// with the result untouched, for an unknown name.
bool rootFromName(const std::wstring& name, HKEY& root);
bool typeFromName(const std::wstring& name, uint32_t& type);
