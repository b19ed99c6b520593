#include "elements/MakingScope.h"

#include <string>

namespace {

size_t depth = 0;
size_t needs = 0;
size_t text = 0;

bool isTooMuch() {
    return needs > maxMakingNeeds || text > maxMakingText;
}

}  // namespace

MakingScope::MakingScope() {
    if (depth++ == 0)
        needs = text = 0;
    ++needs;
    if (depth > maxMakingDepth)
        needs = maxMakingNeeds + 1;
}

MakingScope::~MakingScope() {
    --depth;
}

void MakingScope::check() const {
    if (isTooMuch())
        throw std::wstring(L"Elements refer to each other without end.");
}

// Outside of any making nothing is counted: nothing would begin the count anew.
bool MakingScope::countReference(size_t characters) {
    if (depth == 0)
        return true;
    ++needs;
    text += characters;
    return !isTooMuch();
}

void MakingScope::countTaken(size_t characters) {
    text += characters;
}

void MakingScope::countOwn(size_t characters) {
    if (depth > 1)
        text += characters;
}
