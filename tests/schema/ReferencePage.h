#pragma once

#include <string>

/// The reference page with what it takes from the engine's tables put in anew: which element may
/// hold which, and below the heading of each element its first paragraph and its attributes. All
/// else stays as it is.
std::string renewedPage(const std::string& page);
