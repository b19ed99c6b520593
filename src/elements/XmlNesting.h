#pragma once

#include <cstddef>

/// Whether the elements of an XML text are nested at most `limit` deep, as the parser would nest
/// them. It recurses with them and has no limit of its own, so a text must pass here first. False
/// also for a tag that is malformed in a way that would hide what follows.
bool isNestedWithin(const char* text, size_t limit);
