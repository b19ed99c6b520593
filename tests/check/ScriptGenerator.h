#pragma once

#include <string>
#include <utility>
#include <vector>

#include "support/Random.h"

/// What generated scripts may use on the machine.
struct Playground {
    std::string folder;   ///< a directory of their own, with its whole path
    std::string source;   ///< a file, as a script names it
    std::string key;      ///< a key of their own below HKEY_CURRENT_USER
    std::string library;  ///< a library of custom actions, with its whole path
};

/// An element that is being written.
struct DraftElement {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<DraftElement> children;

    /// All elements, this one included, in document order.
    std::vector<DraftElement*> all();
    void write(std::string& text, size_t depth = 0) const;
};

/// Writes random scripts over all elements that run to their end in every mode, and puts one fault
/// into them.
class ScriptGenerator {
public:
    ScriptGenerator(Random& random, const Playground& playground)
        : random(random), playground(playground) {}

    DraftElement makeScript();

    /// Changes one thing somewhere: a name, a word, a letter, an attribute or an element. The
    /// result is mostly, but not always, faulty.
    void spoil(DraftElement& script);

private:
    std::string freshId(const char* prefix) { return prefix + std::to_string(++ids); }
    std::string expression();
    std::string mode();
    DraftElement fragment(size_t depth);
    DraftElement component(size_t depth);
    DraftElement action();
    DraftElement registryKey(size_t depth, bool outermost);
    DraftElement condition(DraftElement inner);
    void spoilName(DraftElement& element);
    void spoilAttribute(DraftElement& element);
    void spoilChildren(DraftElement& element, DraftElement& script);
    bool isSafeToSpoil(const DraftElement& element, const std::string& attribute) const;

    Random& random;
    const Playground& playground;
    size_t ids = 0;
};
