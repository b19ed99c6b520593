#pragma once

#include <string>

#include "expression/COperand.h"
#include "expression/COperation.h"
#include "expression/Symbols.h"

class CContext;

/// Evaluates expressions over the variables of a script. An expression is read once, from left to
/// right, and worked out while it is read:
///
///     expression = term { ("L" | "G" | "E" | "LE" | "GE" | "NE" | "AND" | "OR" | "=") term }
///     term       = integer | name | "(" expression ")" | "!" term
///
/// Word operators stand between blanks. Nothing is undone when an expression fails: assignments
/// made until then stay.
class CExpression {
public:
    /// Throws a message, as evaluate does, when memory is exhausted.
    CExpression();
    CExpression(const CExpression&) = delete;
    CExpression& operator=(const CExpression&) = delete;
    ~CExpression();

    /// The truth of the expression. Throws a message, which quotes the expression, when it fails.
    /// One object can evaluate any number of expressions.
    bool evaluate(const wchar_t* expression, CContext& context);

    /// The two ways of a symbol into the machine; evaluate takes them. Both throw messages.
    void readOperand(const wchar_t* piece, CContext& context);
    void readOperation(const wchar_t* symbol);

private:
    void clear();
    void read(const wchar_t* expression, CContext& context);
    void readWord(const wchar_t* word, CContext& context);

    OperationStack operations;
    OperandStack operands;
    std::wstring previousSymbol = endSymbol;
};
