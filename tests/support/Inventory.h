#pragma once

#include <set>
#include <string>

/// What tests mustn't change on the machine that runs them, a line each: what lies in C:\, the keys
/// of programs, of kinds of files and of services, and the replacements that wait for a restart.
using Inventory = std::set<std::wstring>;

Inventory takeInventory();
