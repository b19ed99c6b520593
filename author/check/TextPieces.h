#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "author/check/FindingKinds.h"

/// A piece of an attribute's text: what stands between two marks, and what it means.
struct TextPiece {
    enum Meaning {
        literal,
        directory,  ///< [text]
        variable,   ///< #text
        fault,      ///< can't be read
    };
    Meaning meaning;
    std::wstring text;
    size_t from;
    size_t length;
    Fault reason = Fault::count;  ///< of a piece that can't be read
};

/// The pieces of a text, up to the first that can't be read.
std::vector<TextPiece> piecesOf(std::wstring_view text);

/// Whether a text has anything but literal pieces.
bool hasReferences(std::wstring_view text);
