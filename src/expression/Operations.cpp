#include "expression/Operations.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

#include "expression/CIntOperand.h"
#include "expression/Symbols.h"

namespace {

OperandPtr result(int32_t value) {
    return makeOwned<OperandPtr, CIntOperand>(value);
}

/// The one object of a class. Operations have no state, so it serves every expression.
template <class Operation>
constinit Operation only;

struct Row {
    const wchar_t* symbol;
    COperation* operation;
};

constexpr Row rows[] = {
    {endSymbol, &only<CEndOperation>},
    {L"(", &only<CLeftParenthesisOperation>},
    {L")", &only<CRigthParenthesisOperation>},
    {L"=", &only<CAsignmentOperation>},
    {L"!", &only<CNoOperation>},
    {L"AND", &only<CAndOperation>},
    {L"OR", &only<COrOperation>},
    {L"G", &only<CGreaterOperation>},
    {L"L", &only<CLessOperation>},
    {L"E", &only<CEqualOperation>},
    {L"GE", &only<CGEOperation>},
    {L"LE", &only<CLEOperation>},
    {L"NE", &only<CNEOperation>},
};

}  // namespace

void CMarkOperation::execute(OperandStack&) {
    throw std::wstring(L" '(' didn't math ')'.");
}

void CAsignmentOperation::execute(OperandStack& operands) {
    const OperandPtr b = popOperand(operands);
    operands.top()->assign(b.get());
}

OperandPtr CNoOperation::compute(COperand& a) {
    return result(a.getBoolean() == 0);
}

OperandPtr CGreaterOperation::compute(COperand& a, COperand& b) {
    return result(a.GreaterThan(&b));
}

OperandPtr CLessOperation::compute(COperand& a, COperand& b) {
    return result(a.LessThan(&b));
}

OperandPtr CGEOperation::compute(COperand& a, COperand& b) {
    return result(a.GreaterThan(&b) || a.Equal(&b));
}

OperandPtr CLEOperation::compute(COperand& a, COperand& b) {
    return result(a.LessThan(&b) || a.Equal(&b));
}

OperandPtr CEqualOperation::compute(COperand& a, COperand& b) {
    return result(a.Equal(&b));
}

OperandPtr CNEOperation::compute(COperand& a, COperand& b) {
    return result(a.Equal(&b) == 0);
}

OperandPtr CAndOperation::compute(COperand& a, COperand& b) {
    return result(a.getBoolean() && b.getBoolean());
}

OperandPtr COrOperation::compute(COperand& a, COperand& b) {
    return result(a.getBoolean() || b.getBoolean());
}

OperationPtr createOperation(const wchar_t* symbol) {
    const auto* row = std::find_if(std::begin(rows), std::end(rows), [symbol](const Row& row) {
        return wcscmp(row.symbol, symbol) == 0;
    });
    if (row == std::end(rows))
        throw std::wstring(L"It can't new ") + symbol + L" operation";
    return OperationPtr(row->operation, {[](COperation*) {}});
}

Decision decide(int32_t top, int32_t current) {
    // Behind an opened parenthesis everything but its counterpart is pushed.
    if (top == PRIORITY_LEFT_PARENTHESIS)
        top = PRIORITY_RIGHT_PARENTHESIS;
    else if (top == PRIORITY_RIGHT_PARENTHESIS)
        throw std::wstring(L" '(' didn't math ')' int precede.");

    if (top != current)
        return top < current ? Decision::reduce : Decision::push;
    if (top == PRIORITY_NOT || top == PRIORITY_ASSIGNMENT)
        return Decision::push;
    return top < PRIORITY_ASSIGNMENT ? Decision::reduce : Decision::match;
}
