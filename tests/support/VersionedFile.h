#pragma once

#include <string>

/// Copies a library with this file version to a path of the test's choice. The build makes those of
/// 1.2.0.0, 1.10.0.0 and 32768.3.32769.4.
void placeVersionedFile(const std::wstring& path, const std::wstring& version);
