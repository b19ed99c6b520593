#pragma once

#include <optional>
#include <string>

#include "author/Folder.h"

/// Reads the folder of a payload. Nothing when it, or one in it, can't be read; `problem` then
/// tells which and why.
std::optional<Folder> readPayloadFolder(const std::wstring& path, std::wstring& problem);
