#pragma once

#include <windows.h>

#include <set>
#include <string>

/// Something of the machine as it is, a line each.
using Picture = std::set<std::wstring>;

/// All below a folder: attributes, size, times and content.
void addFolder(const std::wstring& folder, Picture& picture);

/// A key and all below it.
void addKey(HKEY root, const std::wstring& key, Picture& picture);

/// A service with its state and how it is started.
void addService(const std::wstring& name, Picture& picture);

/// What waits for a restart, and the log.
void addTraces(Picture& picture);
