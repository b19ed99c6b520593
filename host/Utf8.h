#pragma once

#include <string>

std::string toUtf8(const std::wstring& text);
std::wstring fromUtf8(const std::string& text);

/// The same with the line ends of Windows, which programs expect that read lines from a file or a
/// pipe.
std::string toUtf8Lines(const std::wstring& text);
