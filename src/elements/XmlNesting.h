#pragma once

#include <cstddef>

/// The first element of an XML text that is nested more than `limit` deep, in the parser's eyes and
/// as far as it would come: where it begins in the text, or null when there is none. The parser
/// recurses with elements and has no limit of its own, so a text must be looked at here first. An
/// element without content counts as a level too. As for the parser, three more NULs must follow
/// the one that ends the text.
const char* findNestedBeyond(const char* text, size_t limit);
