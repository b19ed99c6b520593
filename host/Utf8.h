#pragma once

#include <string>

std::string toUtf8(const std::wstring& text);
