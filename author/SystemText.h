#pragma once

#include <cstdint>
#include <string>

/// The system's text for an error code, without a line end; empty when it has none.
std::wstring systemText(uint32_t code);

/// The same with the code behind it: "Access denied. [error 5]".
std::wstring systemTextWithCode(uint32_t code);
