#pragma once

#include <string>
#include <vector>

#include "author/verify/Picture.h"

/// What a life of a product on a machine, from before its install to after its uninstall, did to a
/// thing.
enum class Aftermath {
    left,     ///< wasn't there before, and is there now
    changed,  ///< was there before, and isn't the same now
    lost,     ///< was there before, and isn't there any more
};

struct Difference {
    Aftermath aftermath;
    ThingKind kind;
    std::wstring name;
    std::wstring detail;  ///< what has changed, or when a thing came or went
};

/// What isn't as it was `before`, in order of aftermath, kind and name. `installed` is the picture
/// from between the runs.
std::vector<Difference> compare(const Picture& before, const Picture& installed,
                                const Picture& after);

/// How many things of a kind the second picture has that the first hasn't.
size_t countNew(ThingKind kind, const Picture& before, const Picture& after);

/// "file", "directory", ...; and for several of them.
const wchar_t* wordOf(ThingKind kind);
const wchar_t* wordOf(Aftermath aftermath);
