#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// What a machine is made of, as far as install scripts can change it.
enum class ThingKind { file, directory, link, key, value, service, restart };

/// One thing, and all by which a change of it shows:
/// - a file (a link is a shortcut, or leads to another place of the disk): size, time of writing,
///   time of any change, attributes;
/// - a directory: its attributes alone, as its times change with what is in it;
/// - a value of the registry: type and data;
/// - a service: whether it runs;
/// - a file that waits for the next restart: nothing.
struct Thing {
    ThingKind kind;
    std::wstring name;
    std::array<uint64_t, 4> state = {};

    bool operator==(const Thing&) const = default;
    /// By kind and name, under which a thing is found again.
    bool isBefore(const Thing& other) const;
};

/// The things of a machine, in order.
using Picture = std::vector<Thing>;

/// Takes a picture of the system drive, of the registry of the machine and of this user, of
/// services and of what waits for a restart; without what is the system's own, and without these
/// files. What is in files isn't read: the disk keeps a time of the last change that nobody can set
/// back.
Picture takePicture(const std::vector<std::wstring>& besides = {});

/// What systems write by themselves while programs run.
struct SystemsOwn {
    const wchar_t* name;  ///< in lower case; `?` stands for any character, and all below it counts
    const wchar_t* reason;
};
/// The row for a thing of this name; null when the thing isn't the system's own.
const SystemsOwn* findSystemsOwn(const std::wstring& name);
