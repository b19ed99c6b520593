#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>

/// Random choices that are the same in each run.
class Random {
public:
    explicit Random(uint32_t seed) : engine(seed) {}

    /// A number from 0 up to, without, the limit.
    size_t below(size_t limit) { return engine() % limit; }

    bool percent(size_t chance) { return below(100) < chance; }

    /// One of the entries of an array, a text or another list.
    template <class List>
    const auto& pick(const List& list) {
        return list[below(std::size(list))];
    }

private:
    std::mt19937 engine;
};
