#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// What scripts may hold at the most.

/// What a script is run, planned or checked on, as the build says.
constexpr size_t stackSize = STACK_SIZE;

/// Directories that may need one another, each the next and the first the product.
constexpr int longestChain = 511;
constexpr char lastOfChain[] = "D511";
constexpr char oneTooMany[] = "D512";

/// What all of a deep script leads to.
constexpr char caution[] = "<Caution Title='deep'/>";

template <class Text>
Text repeated(const Text& text, int count) {
    Text all;
    while (count-- > 0)
        all += text;
    return all;
}

inline std::string nested(int count, const std::string& start, const std::string& end,
                          const std::string& middle) {
    return repeated(start, count) + middle + repeated(end, count);
}

/// `text` for each number of a range, with "$" as the number and "^" as the one before.
inline std::string numbered(int first, int last, std::string_view text) {
    std::string all;
    for (int number = first; number <= last; ++number)
        for (const char character : text)
            if (character == '$' || character == '^')
                all += std::to_string(character == '$' ? number : number - 1);
            else
                all += character;
    return all;
}

/// Directories "D1" to "D<count>", each of which needs the one before it, as `text` has it.
inline std::string directories(int count, std::string_view text) {
    return "<Directory Id='D1' Path='p'/>" + numbered(2, count, text);
}

constexpr char byText[] = "<Directory Id='D$' Path='[D^]'/>";
constexpr char byReference[] = "<DirectoryRef Id='D^'><Directory Id='D$'/></DirectoryRef>";
