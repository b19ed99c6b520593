#pragma once

#include <cstddef>
#include <optional>

#include "elements/raw_installerXML.h"

/// How far a text may go before it costs the parser more than any script is worth: it recurses with
/// elements and seeks each attribute among those before it, and has no limits of its own.
struct XmlBounds {
    size_t depth = maxElementDepth;
    size_t attributes = maxElementAttributes;
};

/// An element that goes beyond a bound.
struct XmlExcess {
    enum Bound { depth, attributes };
    Bound bound;
    const char* element;  ///< where it begins in the text
};

/// The first element of an XML text beyond the bounds, in the parser's eyes and as far as it would
/// come. An element without content counts as a level too. As for the parser, three more NULs must
/// follow the one that ends the text.
std::optional<XmlExcess> findExcess(const char* text, const XmlBounds& bounds = {});
