#pragma once

#include <cstddef>

#include "elements/raw_installerXML.h"

/// From the deepest element through all that are around it, of which each may take both factories.
inline constexpr size_t maxMakingDepth = 2 * maxElementDepth;
/// Elements that one needs, itself included, and references in their texts.
inline constexpr size_t maxMakingNeeds = 10'000;
/// Characters that these take from each other, and from variables.
inline constexpr size_t maxMakingText = 4 * 1024 * 1024;

/// Making an element can need others: a parent, or a directory that a text refers to. A script in
/// which they need each other without end, or many times over at each of many levels, must fail and
/// exhaust neither the stack nor the memory nor the day. So one element may need only so many, so
/// deep, and with so much text; when it needs more, it fails, and with it all that were being made
/// for its sake.
class MakingScope {
public:
    MakingScope();
    MakingScope(const MakingScope&) = delete;
    MakingScope& operator=(const MakingScope&) = delete;
    ~MakingScope();

    /// Throws the message when more has been needed than one element may.
    void check() const;

    /// Counts a reference that was resolved, and the characters that it stands for. False when that
    /// is more than may be.
    static bool countReference(size_t characters);

    /// Counts characters that an element takes from another one, or that it has itself when it is
    /// made for another's sake.
    static void countTaken(size_t characters);
    static void countOwn(size_t characters);
};
