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

struct Maker {
    const wchar_t* symbol;
    OperationPtr (*make)();
};

constexpr Maker makers[] = {
    {endSymbol, &makeOwned<OperationPtr, CEndOperation>},
    {L"(", &makeOwned<OperationPtr, CLeftParenthesisOperation>},
    {L")", &makeOwned<OperationPtr, CRigthParenthesisOperation>},
    {L"=", &makeOwned<OperationPtr, CAsignmentOperation>},
    {L"!", &makeOwned<OperationPtr, CNoOperation>},
    {L"AND", &makeOwned<OperationPtr, CAndOperation>},
    {L"OR", &makeOwned<OperationPtr, COrOperation>},
    {L"G", &makeOwned<OperationPtr, CGreaterOperation>},
    {L"L", &makeOwned<OperationPtr, CLessOperation>},
    {L"E", &makeOwned<OperationPtr, CEqualOperation>},
    {L"GE", &makeOwned<OperationPtr, CGEOperation>},
    {L"LE", &makeOwned<OperationPtr, CLEOperation>},
    {L"NE", &makeOwned<OperationPtr, CNEOperation>},
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
    const auto* maker =
        std::find_if(std::begin(makers), std::end(makers),
                     [symbol](const Maker& row) { return wcscmp(row.symbol, symbol) == 0; });
    if (maker == std::end(makers))
        throw std::wstring(L"It can't new ") + symbol + L" operation";
    return maker->make();
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
