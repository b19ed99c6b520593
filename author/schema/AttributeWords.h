#pragma once

#include <string>
#include <vector>

/// A list of words that an attribute may be.
struct WordList {
    const wchar_t* name;                     ///< of its type in the schema
    std::vector<const wchar_t*> (*words)();  ///< from the engine's tables
};

/// The words that an attribute of an element may be; null where any text will do. Where one word
/// has a meaning and any other text stands for its absence, `no` is that text.
const WordList* wordsOf(const std::wstring& element, const std::wstring& attribute);

/// All of these lists.
std::vector<const WordList*> wordLists();
