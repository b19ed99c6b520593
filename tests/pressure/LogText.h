#pragma once

#include <string>

/// How many threads write at once, and how many lines each.
inline constexpr int writingThreads = 8;
inline constexpr int linesOfThread = 1250;

/// What a thread of a program writes as its n-th line: texts of many lengths, so that one that is
/// written over another shows.
inline std::string logText(const std::string& program, int thread, int line) {
    return program + " " + std::to_string(thread) + " " + std::to_string(line) + " " +
           std::string(static_cast<size_t>((thread * 7 + line) % 60), '.') + ";";
}
