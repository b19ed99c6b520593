#pragma once

#include <cstddef>
#include <set>
#include <span>
#include <string>

/// One mistake of an author: `find` stands in mistakes.xml, and the author wrote `instead`.
struct Mistake {
    std::string what;
    std::string find;
    std::string instead;  ///< with { } around what must be marked
    const char* code;
    std::string help = {};  ///< a part of the help that must be given
    /// What must be marked when it isn't in `instead`: a part of the script that stands there once,
    /// with { } in it. Without both the finding is about the file as a whole.
    std::string at = {};
    std::set<std::string> alsoErrors = {};  ///< codes of the errors that come of it
    size_t times = 1;                       ///< how often `find` stands there, and all are changed
};

/// The mistakes by what they are about, a table each.
std::span<const Mistake> mistakesInStructure();
std::span<const Mistake> mistakesInAttributes();
std::span<const Mistake> mistakesInTexts();
std::span<const Mistake> mistakesInFiles();
std::span<const Mistake> mistakesInOrder();
