#pragma once

#include <cstdint>
#include <span>
#include <string>

// The symbols of the expression language. Their texts are exact and case-sensitive; every other
// text is an operand.

enum SymbolClass : int32_t {
    SYMBOL_OPERAND = 1,
    SYMBOL_END = 2,
    SYMBOL_LEFT_PARENTHESIS = 3,
    SYMBOL_RIGHT_PARENTHESIS = 4,
    SYMBOL_UNARY = 5,
    SYMBOL_BINARY = 6,
};

struct Symbol {
    wchar_t text[4];
    SymbolClass symbolClass;
};

/// All symbols. The end symbol is added by the reader; a script can't write it.
std::span<const Symbol> symbols();
inline constexpr wchar_t endSymbol[] = L"#";

/// The symbols that are recognised only as a whole word between blanks.
std::span<const wchar_t* const> wordOperators();

/// The symbols that need no blanks around them.
inline constexpr const wchar_t* delimiters[] = {L"(", L")", L"!", L"="};

SymbolClass getSymbolClass(const wchar_t* symbol);

/// Whether `current` may follow `previous`; if not, `message` tells so.
bool checkGrammar(const wchar_t* previous, const wchar_t* current, std::wstring& message);

/// Whether an operand may have this name; if not, `message` tells so.
bool checkOperandName(const wchar_t* name, std::wstring& message);
