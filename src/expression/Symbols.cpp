#include "expression/Symbols.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

namespace {

constexpr Symbol table[] = {
    {L"#", SYMBOL_END},     {L"(", SYMBOL_LEFT_PARENTHESIS}, {L")", SYMBOL_RIGHT_PARENTHESIS},
    {L"!", SYMBOL_UNARY},   {L"L", SYMBOL_BINARY},           {L"G", SYMBOL_BINARY},
    {L"E", SYMBOL_BINARY},  {L"LE", SYMBOL_BINARY},          {L"GE", SYMBOL_BINARY},
    {L"NE", SYMBOL_BINARY}, {L"AND", SYMBOL_BINARY},         {L"OR", SYMBOL_BINARY},
    {L"=", SYMBOL_BINARY},
};

constexpr const wchar_t* words[] = {L"L", L"G", L"E", L"LE", L"GE", L"NE", L"AND", L"OR"};

/// What may stand in front of a symbol, one bit for each class, and the text of the refusal.
struct GrammarRule {
    SymbolClass current;
    uint32_t allowedInFront;
    const wchar_t* refusal;
};

constexpr uint32_t bit(SymbolClass symbolClass) {
    return 1U << symbolClass;
}
constexpr uint32_t beforeTerm =
    bit(SYMBOL_END) | bit(SYMBOL_LEFT_PARENTHESIS) | bit(SYMBOL_UNARY) | bit(SYMBOL_BINARY);
constexpr uint32_t endOfTerm = bit(SYMBOL_OPERAND) | bit(SYMBOL_RIGHT_PARENTHESIS);

constexpr GrammarRule rules[] = {
    {SYMBOL_OPERAND, beforeTerm, L" can't be in front of operand."},
    {SYMBOL_LEFT_PARENTHESIS, beforeTerm, L" can't be in front of '('."},
    {SYMBOL_UNARY, beforeTerm, L" can't be in front of unary operation."},
    {SYMBOL_RIGHT_PARENTHESIS, endOfTerm, L" can't be in front of ')'."},
    {SYMBOL_END, endOfTerm, L" can't be in front of end."},
    {SYMBOL_BINARY, endOfTerm, L" can't be in front of binary operation."},
};

}  // namespace

std::span<const Symbol> symbols() {
    return table;
}

std::span<const wchar_t* const> wordOperators() {
    return words;
}

SymbolClass getSymbolClass(const wchar_t* symbol) {
    const auto* found =
        std::find_if(std::begin(table), std::end(table),
                     [symbol](const Symbol& row) { return wcscmp(row.text, symbol) == 0; });
    return found == std::end(table) ? SYMBOL_OPERAND : found->symbolClass;
}

bool checkGrammar(const wchar_t* previous, const wchar_t* current, std::wstring& message) {
    const SymbolClass currentClass = getSymbolClass(current);
    const auto* rule = std::find_if(
        std::begin(rules), std::end(rules),
        [currentClass](const GrammarRule& row) { return row.current == currentClass; });
    if (rule->allowedInFront & bit(getSymbolClass(previous)))
        return true;
    message = std::wstring(L"Grammar error:The symbol ") + previous + rule->refusal;
    return false;
}

bool checkOperandName(const wchar_t* name, std::wstring& message) {
    if (getSymbolClass(name) == SYMBOL_OPERAND)
        return true;
    message = std::wstring(name) + L" operand naming is legal.";
    return false;
}
