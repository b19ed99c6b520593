#pragma once

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
