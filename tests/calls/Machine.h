#pragma once

#include <optional>
#include <string>
#include <vector>

#include "support/ActionCall.h"
#include "support/FakeServices.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/Restart.h"
#include "support/Sleeper.h"
#include "support/TestFolder.h"
#include "support/TestKey.h"

/// What a scenario's run finds and leaves: folders and a key of its own, services that do as they
/// are told in no time, and the log.
class Machine {
public:
    /// Puts the real paths in place of {app}, {payload}, {program} and {key}.
    std::string withPaths(std::string text) const;
    /// The other way, for what differs from run to run.
    std::string readable(std::wstring text) const;

    std::wstring app(std::wstring_view name) const { return folder.path(L"app\\").append(name); }
    /// Writes a file below {app}.
    std::wstring write(std::wstring_view name, std::string_view content) const;
    void makeReadOnly(std::wstring_view name) const;

    /// All that is there, a line each.
    std::vector<std::string> picture() const;

    const TestFolder folder;
    const TestFolder payload{testProgramDirectory()};
    const TestKey key;
    const LogFile log;
    FakeServices services;
    ActionCall action{};
    std::optional<LockedFile> locked;
    std::optional<Sleeper> sleeper;

private:
    void addFiles(std::vector<std::string>& lines) const;
    void addReplacements(std::vector<std::string>& lines) const;
    void addKeys(std::vector<std::string>& lines) const;
    void addServices(std::vector<std::string>& lines) const;
    void addLog(std::vector<std::string>& lines) const;

    const TakesBackReplacements takesBack;
};
