#pragma once

#include <span>
#include <string>

/// What an element or one of its attributes is for, in Markdown on one line, as the reference page
/// has it. `{words}` stands for the words that the attribute may be.
struct ElementText {
    const wchar_t* element;
    const wchar_t* attribute;  ///< empty for the element itself
    const wchar_t* text;
};

std::span<const ElementText> elementTexts();

/// The text of an element, or of one of its attributes. An `Id` that nothing refers to has the same
/// one everywhere.
std::wstring textOf(const std::wstring& element, const std::wstring& attribute = {});
