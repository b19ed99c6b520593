#include "system/Exhaustion.h"

#include <utility>

namespace {

std::wstring putAside = insufficientMemory;

}  // namespace

InsufficientMemory::InsufficientMemory() : std::wstring(std::move(putAside)) {
    // Another one is on its way.
    if (empty())
        assign(insufficientMemory);
}

InsufficientMemory::~InsufficientMemory() {
    putAside = std::move(*this);
}
