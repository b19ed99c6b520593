#pragma once

#include <optional>
#include <string>
#include <vector>

#include "author/check/ScriptText.h"

/// Where the parts of one start tag stand.
struct TagPlaces {
    struct AttributePlaces {
        Span name;
        Span value;  ///< without its quotation marks
    };
    Span name;
    std::vector<AttributePlaces> attributes;
};

/// The start tags of a text that the parser has accepted, in document order: the parser tells
/// neither where values stand nor columns as editors count them.
std::vector<TagPlaces> scanTags(const std::string& text);

/// The name of the innermost element that is still open at an offset, as far as the parser came.
std::optional<Span> openElementAt(const std::string& text, size_t offset);
