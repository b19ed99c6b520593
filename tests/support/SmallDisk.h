#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

/// A file system of its own in an empty directory for the life of the object, so small that a test
/// can fill it. It lies in memory, and takes Wine and a user who may mount: see
/// REQUIRES_SMALL_DISK.
class SmallDisk {
public:
    SmallDisk(const std::wstring& directory, uint64_t bytes);
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk();

    /// How many bytes are free.
    uint64_t room() const;

    /// Leaves so many bytes free, by a file that takes the others.
    void fill(uint64_t leave = 0) const;

    /// Takes that file away.
    void makeRoom() const;

private:
    std::wstring filler() const { return directory + L"\\filler"; }

    const std::wstring directory;
};

/// Whether the user of the tests can have one.
bool mountsSmallDisks();

/// For tests that fill a disk.
#define REQUIRES_SMALL_DISK() \
    if (mountsSmallDisks()) { \
    } else                    \
        GTEST_SKIP() << "Needs Wine, and a user who may mount a file system"
