#pragma once

#include <cstdint>
#include <stack>
#include <string>
#include <vector>

#include "system/BaseOwner.h"

/// A value of an expression: an integer, or a view of a variable that reads it anew at each use.
/// There are integers and texts, and no conversion between them. What a type can't do is thrown as
/// a message.
class COperand {
public:
    /// Assigns to the variable behind this operand.
    virtual COperand& assign(COperand* right) = 0;
    virtual int32_t getInt() const;
    virtual std::wstring getString() const;
    /// Non-zero for true: an integer other than 0, a text that isn't empty.
    virtual int32_t getBoolean() const;
    /// Comparisons give 1 or 0; `other` is the right side.
    virtual int32_t GreaterThan(COperand* other) const;
    virtual int32_t LessThan(COperand* other) const;
    virtual int32_t Equal(COperand* other) const;
    virtual int32_t getType() const;

protected:
    ~COperand() = default;

    /// Throws a message when the types differ.
    void requireSameType(const COperand& other) const;
};

using OperandPtr = BaseOwner<COperand>;
using OperandStack = std::stack<OperandPtr, std::vector<OperandPtr>>;
