#pragma once

#include <windows.h>

#include <set>
#include <string>

#include "plan/FilePath.h"

/// The processes that a dry run has ended, or that have ended with a service, and what they let go
/// of.
class EndedProcesses {
public:
    /// Takes a process that still runs for an ended one. Its program; empty where that can't be
    /// told.
    std::wstring add(DWORD id);
    bool contain(DWORD id) const { return ids.contains(id); }

    /// Whether a program or library that is in use on the machine isn't any more: only ended
    /// processes had it loaded. Other files that they hold open aren't known.
    bool haveReleased(const std::wstring& path) const;

private:
    std::set<DWORD> ids;
    std::set<std::wstring, LessIgnoringCase> modules;
};
