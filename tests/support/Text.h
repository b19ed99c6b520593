#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The text in the active code page, as the engine writes its log and reads its scripts.
std::string narrow(std::wstring_view text);

/// What the system says to an error code, with the line end that it puts behind it.
std::wstring systemMessage(uint32_t code);
