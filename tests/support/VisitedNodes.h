#pragma once

#include <cstdint>

/// How many elements of documents have been come to since the program began, from the one above or
/// in front: a measure of work that, unlike time, is the same on every machine. For programs that
/// are linked with temz_visited_nodes.
uint64_t nodesVisited();
