#pragma once

#include <cstdint>
#include <map>
#include <string>

/// What the process holds in the eyes of the system: the blocks in all its heaps, their bytes, and
/// the handles, by name. It tells so block by block under Wine; elsewhere a heap keeps some for
/// itself.
class ProcessSize {
public:
    ProcessSize();

    /// By how much it has grown; only what has.
    std::map<std::string, int64_t> operator-(const ProcessSize& earlier) const;

private:
    int64_t handles;
    int64_t blocks = 0;
    int64_t bytes = 0;
};
