#pragma once

#include <temz/temz.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

// The records of the interface as hosts of any age know them. A record of the host's must have at
// least the size that the first version gave it; what a newer host has behind ours is left alone.

template <class Record>
constexpr uint32_t firstSize = sizeof(Record);

template <class Record>
bool hasSizeOfRecord(const Record& record) {
    return record.size >= firstSize<Record>;
}

/// Takes over a record of the host's. What an older host doesn't know stays zero.
template <class Record>
Record readRecord(const Record& record) {
    Record read{};
    std::memcpy(&read, &record, std::min<size_t>(record.size, sizeof read));
    return read;
}

/// Gives a record to the host, as much of it as the host knows; `size` stays the host's.
template <class Record>
void writeRecord(Record& target, const Record& record) {
    constexpr size_t behindSize = sizeof record.size;
    std::memcpy(reinterpret_cast<std::byte*>(&target) + behindSize,
                reinterpret_cast<const std::byte*>(&record) + behindSize,
                std::min<size_t>(target.size, sizeof record) - behindSize);
}
