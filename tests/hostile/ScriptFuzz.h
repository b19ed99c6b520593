#pragma once

#include <string>
#include <vector>

#include "support/Random.h"

/// Makes scripts that are wrong in any way: out of the vocabulary, with texts and expressions out
/// of their parts, and out of other scripts by changes of bytes.
class ScriptFuzz {
public:
    /// `seeds` are scripts to begin with.
    explicit ScriptFuzz(std::vector<std::string> seeds) : seeds(std::move(seeds)) {}

    /// The script of a case; the same for the same number.
    std::string make(uint32_t number) const;

private:
    std::string changed(std::string script, Random& random) const;

    std::vector<std::string> seeds;
};
