#pragma once

#include <string>

std::string toUtf8(const std::wstring& text);

/// The same with the line ends of Windows, which a program that reads lines from a file or a pipe
/// expects there.
std::string toUtf8Lines(const std::wstring& text);
