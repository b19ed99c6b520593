#pragma once

#include "expression/COperation.h"

// The operations of the expression language, one class for each symbol.

/// An operation that only marks a place. When it has to act, its counterpart is missing.
class CMarkOperation : public COperation {
public:
    void execute(OperandStack& operands) override;

protected:
    ~CMarkOperation() = default;
};

class CEndOperation final : public CMarkOperation {
public:
    int32_t getPriority() const override { return PRIORITY_END; }
};

class CLeftParenthesisOperation final : public CMarkOperation {
public:
    int32_t getPriority() const override { return PRIORITY_LEFT_PARENTHESIS; }
};

class CRigthParenthesisOperation final : public CMarkOperation {
public:
    int32_t getPriority() const override { return PRIORITY_RIGHT_PARENTHESIS; }
};

/// Assigns to the left operand, which stays on the stack as the result.
class CAsignmentOperation final : public COperation {
public:
    void execute(OperandStack& operands) override;
    int32_t getPriority() const override { return PRIORITY_ASSIGNMENT; }
};

class CNoOperation final : public CUnaryOperation {
public:
    int32_t getPriority() const override { return PRIORITY_NOT; }
    OperandPtr compute(COperand& a) override;
};

class CGreaterOperation final : public CBinaryOperation {
public:
    int32_t getPriority() const override { return PRIORITY_RELATION; }
    OperandPtr compute(COperand& a, COperand& b) override;
};

class CLessOperation final : public CBinaryOperation {
public:
    int32_t getPriority() const override { return PRIORITY_RELATION; }
    OperandPtr compute(COperand& a, COperand& b) override;
};

class CGEOperation final : public CBinaryOperation {
public:
    int32_t getPriority() const override { return PRIORITY_RELATION; }
    OperandPtr compute(COperand& a, COperand& b) override;
};

class CLEOperation final : public CBinaryOperation {
public:
    int32_t getPriority() const override { return PRIORITY_RELATION; }
    OperandPtr compute(COperand& a, COperand& b) override;
};

class CEqualOperation final : public CBinaryOperation {
public:
    int32_t getPriority() const override { return PRIORITY_EQUALITY; }
    OperandPtr compute(COperand& a, COperand& b) override;
};

class CNEOperation final : public CBinaryOperation {
public:
    int32_t getPriority() const override { return PRIORITY_EQUALITY; }
    OperandPtr compute(COperand& a, COperand& b) override;
};

/// The right operand is asked only when the left one is true. Both have been worked out by then.
class CAndOperation final : public CBinaryOperation {
public:
    int32_t getPriority() const override { return PRIORITY_AND; }
    OperandPtr compute(COperand& a, COperand& b) override;
};

/// The right operand is asked only when the left one is false. Both have been worked out by then.
class COrOperation final : public CBinaryOperation {
public:
    int32_t getPriority() const override { return PRIORITY_OR; }
    OperandPtr compute(COperand& a, COperand& b) override;
};

/// The operation of a symbol. Throws a message when the text is none.
OperationPtr createOperation(const wchar_t* symbol);

/// What is done with the operation on top of the stack when another one arrives: by priority alone.
/// Throws a message when the one on top is a ")", which has no counterpart then.
enum class Decision { reduce, push, match };
Decision decide(int32_t top, int32_t current);
