#pragma once

#include <string>
#include <vector>

/// Whom a folder lets decide about what is written in it.
enum class FolderTrust {
    trusted,   ///< those who may do anything anyhow, or this user; or there is no such folder
    isLink,    ///< whoever has made it a link to another place
    isForeign  ///< another user, to whom it belongs
};

/// Facts of the machine of which a run warns at its start; tests replace them.
struct RunWitnesses {
    bool (*isMarkedAsDownloaded)();  ///< the program itself
    FolderTrust (*trustIn)(const std::wstring& folder);
};
extern const RunWitnesses realRunWitnesses;

std::vector<std::wstring> runWarnings(const RunWitnesses& witnesses);

/// Whether a file came from the Internet, as browsers and what they have unpack it note.
bool isMarkedAsDownloaded(const std::wstring& file);

/// What is asked of the folder of the engine's log.
FolderTrust trustIn(const std::wstring& folder);
