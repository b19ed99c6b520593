#pragma once

#include <string>
#include <vector>

#include "support/Random.h"

/// What a generated script may name.
struct ScriptPlaces {
    std::string folder;  ///< that it installs into
    std::string key;     ///< below HKEY_CURRENT_USER
    std::vector<std::string> sources;
    std::vector<std::string> services;
};

/// Makes scripts of all elements at random. They name few things, so that what one element does is
/// what the next one finds.
class ScriptMaker {
public:
    ScriptMaker(Random& random, const ScriptPlaces& places) : random(random), places(places) {}

    std::string make();

private:
    std::string components();
    std::string action(bool inComponent, int depth);
    std::string actions(bool inComponent, int depth);
    std::string condition(bool inComponent, int depth);
    std::string file();
    std::string shortcut();
    std::string key(int depth);
    std::string value();
    std::string search();
    std::string program();
    std::string customAction();
    std::string service();
    std::string on();
    std::string yesOrNo(const char* attribute);
    std::string path();

    Random& random;
    const ScriptPlaces& places;
};
