#pragma once

#include <cstddef>

/// Whether the elements of an XML text are nested at most `limit` deep, in the parser's eyes and as
/// far as it would come. It recurses with them and has no limit of its own, so a text must pass
/// here first. An element without content counts as a level too. As for the parser, three more NULs
/// must follow the one that ends the text.
bool isNestedWithin(const char* text, size_t limit);
