#pragma once

#include <map>
#include <string>
#include <unordered_set>
#include <vector>

#include "author/check/Targets.h"

/// What the actions of a script leave on a machine and take away from it, by mode. Only what is
/// exactly known counts. Paths and keys stand in one form, in lower case.
class Effects {
public:
    explicit Effects(const Checked& checked);

    /// One file, shortcut or key, and what is done with it.
    struct Thing {
        const Visit* visit;  ///< the first that concerns it
        std::wstring name;   ///< as the script spells it
        Modes made = 0;      ///< in these modes it is put in place
        Modes removed = 0;   ///< and in these it is taken away by its own element
    };
    using Things = std::map<std::wstring, Thing>;

    const Things& files() const { return fileTargets; }
    const Things& shortcuts() const { return linkTargets; }
    const Things& keys() const { return registryKeys; }

    /// A service by its name, and what is done with it in which modes.
    struct Service {
        const Visit* visit;
        std::wstring name;
        Modes started = 0;
        Modes stopped = 0;
        Modes removed = 0;
    };
    const std::map<std::wstring, Service>& services() const { return servicesByName; }

    /// Whether a directory is the product's own: something is put into it, or it is the innermost
    /// around such a one that is called like the product.
    bool isOwn(std::wstring_view directory) const;

    /// Whether a file goes with a directory that is removed, or that a command is about, in all of
    /// these modes.
    bool goesWithDirectory(const std::wstring& path, Modes modes) const;

    /// Whether a key above, or the key itself, is removed in these modes; whether one in it is.
    bool goesWithKey(const std::wstring& key, Modes modes) const;
    bool holdsRemovedKey(const std::wstring& key) const { return aboveRemoved.contains(key); }

private:
    void addFile(const Action& action, Things& things);
    void addKey(const Action& action);
    void addService(const Action& action);
    void addDirectory(const Action& action);
    void addCommand(const Action& action, const wchar_t* attribute);
    void addOwn(const std::wstring& directory, const std::wstring& product);

    Things fileTargets;
    Things linkTargets;
    Things registryKeys;
    std::map<std::wstring, Service> servicesByName;
    std::map<std::wstring, Modes> emptied;  // directories, by the modes in which they are
    std::unordered_set<std::wstring> aboveRemoved;
    std::unordered_set<std::wstring> ownDirectories;  // in them stand the words of folders
};
