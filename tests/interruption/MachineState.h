#pragma once

#include <set>
#include <string>
#include <vector>

/// What an install has made of the machine, a line each.
using MachineState = std::set<std::wstring>;

// Two runs are compared by all that the lines hold, which is everything but:
//
// | left out                                  | because                                          |
// |-------------------------------------------|--------------------------------------------------|
// | the times of files and keys               | they are those of the runs                       |
// | the time in the name of an icon's copy,   | each host process puts its own there; a run that |
// | in the directory and in shortcuts         | was interrupted leaves a copy more               |
// | that a shortcut's file is of certain      | they hold the time; what the shell reads from    |
// | bytes                                     | them is compared                                 |
// | that a replacement is registered twice    | the second finds nothing to move                 |
// | the engine's log                          | it tells of one run more                         |

/// All below a folder: attributes and content.
void addFiles(const std::wstring& folder, MachineState& state);

/// The replacements that wait for a restart.
void addReplacements(MachineState& state);

/// The lines that one of them has and the other lacks.
std::vector<std::wstring> differences(const MachineState& one, const MachineState& other);
