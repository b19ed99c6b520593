#pragma once

#include <string>

std::string toUtf8(const std::wstring& text);
std::wstring fromUtf8(const std::string& text);
