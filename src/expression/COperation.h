#pragma once

#include <cstdint>
#include <stack>
#include <vector>

#include "expression/COperand.h"

/// How tightly operations bind; the smaller, the tighter. Those of one priority group from the
/// left, but for PRIORITY_NOT and PRIORITY_ASSIGNMENT, which group from the right.
enum Priority : int32_t {
    PRIORITY_LEFT_PARENTHESIS = 1,
    PRIORITY_NOT = 2,
    PRIORITY_RELATION = 3,
    PRIORITY_EQUALITY = 4,
    PRIORITY_AND = 5,
    PRIORITY_OR = 6,
    PRIORITY_ASSIGNMENT = 7,
    PRIORITY_RIGHT_PARENTHESIS = 8,
    PRIORITY_END = 9,
};

/// Something that is done to the operands of an expression. Failures are thrown as messages.
class COperation {
public:
    /// Takes its operands from the stack and puts its result there.
    virtual void execute(OperandStack& operands) = 0;
    virtual int32_t getPriority() const = 0;

protected:
    ~COperation() = default;
};

using OperationPtr = BaseOwner<COperation>;
using OperationStack = std::stack<OperationPtr, std::vector<OperationPtr>>;

class CUnaryOperation : public COperation {
public:
    void execute(OperandStack& operands) override;
    virtual OperandPtr compute(COperand& a) = 0;

protected:
    ~CUnaryOperation() = default;
};

class CBinaryOperation : public COperation {
public:
    void execute(OperandStack& operands) override;
    /// `a` is the left operand.
    virtual OperandPtr compute(COperand& a, COperand& b) = 0;

protected:
    ~CBinaryOperation() = default;
};

/// Takes the top operand off the stack.
OperandPtr popOperand(OperandStack& operands);
