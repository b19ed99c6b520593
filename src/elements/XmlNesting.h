#pragma once

#include <cstddef>

/// Whether the elements of an XML text are nested at most `limit` deep, in the parser's eyes and as
/// far as it would come. It recurses with them and has no limit of its own, so a text must pass
/// here first. An element without content counts as a level too. False also when an encoding is
/// named in a way that leaves open how the parser reads what follows.
bool isNestedWithin(const char* text, size_t limit);
