#include "expression/COperation.h"

#include <utility>

OperandPtr popOperand(OperandStack& operands) {
    OperandPtr top = std::move(operands.top());
    operands.pop();
    return top;
}

void CUnaryOperation::execute(OperandStack& operands) {
    const OperandPtr a = popOperand(operands);
    operands.push(compute(*a));
}

void CBinaryOperation::execute(OperandStack& operands) {
    const OperandPtr b = popOperand(operands);
    const OperandPtr a = popOperand(operands);
    operands.push(compute(*a, *b));
}
