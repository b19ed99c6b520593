#include "expression/CExpression.h"

#include <cwchar>
#include <iterator>
#include <new>
#include <utility>
#include <vector>

#include "engine/CContext.h"
#include "expression/CIntOperand.h"
#include "expression/CStringOperand.h"
#include "expression/Operations.h"
#include "system/Exhaustion.h"
#include "system/TextParsing.h"

namespace {

constexpr wchar_t blank[] = L" ";

/// What the stack of a usual expression stands on.
template <class Item>
std::vector<Item> withRoom() {
    std::vector<Item> items;
    items.reserve(8);
    return items;
}

OperandPtr createOperand(const wchar_t* piece, const CContext& context) {
    int32_t number = 0;
    if (parseIntText(piece, number))
        return makeOwned<OperandPtr, CIntOperand>(number);
    CVariable* variable = context.findVariable(piece);
    if (variable == nullptr)
        throw std::wstring(L"Reference undefined variable:") + piece;
    switch (variable->type) {
        case VARIABLE_STRING:
            return makeOwned<OperandPtr, CStringOperand>(variable);
        case VARIABLE_INT:
            return makeOwned<OperandPtr, CIntOperand>(variable);
        default:
            throw std::wstring(L"Didn't recognize ") + piece + L" variable type";
    }
}

/// The operator that a whole word is; null when it is none.
const wchar_t* findWordOperator(const wchar_t* word) {
    for (const wchar_t* wordOperator : wordOperators())
        if (wcscmp(wordOperator, word) == 0)
            return wordOperator;
    return nullptr;
}

}  // namespace

CExpression::CExpression() try
    : operations(withRoom<OperationPtr>()), operands(withRoom<OperandPtr>()) {
} catch (const std::bad_alloc&) {
    throw InsufficientMemory();
}

CExpression::~CExpression() {
    clear();
}

bool CExpression::evaluate(const wchar_t* expression, CContext& context) {
    try {
        try {
            read(expression, context);
        } catch (const std::wstring& message) {
            throw std::wstring(L"\"") + expression + L"\" expression error:" + message;
        }
        return popOperand(operands)->getBoolean() != 0;
    } catch (const std::bad_alloc&) {
        throw InsufficientMemory();
    }
}

void CExpression::read(const wchar_t* expression, CContext& context) {
    clear();
    operations.push(createOperation(endSymbol));
    previousSymbol = endSymbol;

    std::wstring words = expression;
    wchar_t* rest = nullptr;
    for (const wchar_t* word = wcstok_s(words.data(), blank, &rest); word;
         word = wcstok_s(nullptr, blank, &rest))
        readWord(word, context);
    readOperation(endSymbol);
}

void CExpression::readWord(const wchar_t* word, CContext& context) {
    if (const wchar_t* wordOperator = findWordOperator(word)) {
        readOperation(wordOperator);
        previousSymbol = wordOperator;
        return;
    }
    int32_t delimiter = -1;
    for (const wchar_t* rest = word; rest && *rest;) {
        const WideText piece = nextPiece(rest, delimiters, std::size(delimiters), rest, delimiter);
        if (!piece)
            throw std::bad_alloc();
        if (delimiter >= 0)
            readOperation(piece.get());
        else
            readOperand(piece.get(), context);
        previousSymbol = piece.get();
    }
}

void CExpression::readOperand(const wchar_t* piece, CContext& context) {
    std::wstring message;
    if (!checkOperandName(piece, message) || !checkGrammar(previousSymbol.c_str(), piece, message))
        throw std::wstring(std::move(message));
    operands.push(createOperand(piece, context));
}

void CExpression::readOperation(const wchar_t* symbol) {
    std::wstring message;
    if (!checkGrammar(previousSymbol.c_str(), symbol, message))
        throw std::wstring(std::move(message));
    OperationPtr current = createOperation(symbol);
    while (true) {
        if (operations.empty())
            throw std::wstring(L"Operations stack is empty!");
        const Decision decision = decide(operations.top()->getPriority(), current->getPriority());
        if (decision == Decision::push) {
            operations.push(std::move(current));
            return;
        }
        const OperationPtr top = std::move(operations.top());
        operations.pop();
        if (decision == Decision::match)
            return;
        top->execute(operands);
    }
}

void CExpression::clear() {
    while (!operations.empty())
        operations.pop();
    while (!operands.empty())
        operands.pop();
}
