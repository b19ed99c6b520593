#pragma once

#include "expression/COperand.h"

class CVariable;

/// An integer: a constant, or a view of an integer variable.
class CIntOperand final : public COperand {
public:
    explicit CIntOperand(int32_t value);
    /// Views the variable, which isn't owned. Throws a message when it is null.
    explicit CIntOperand(CVariable* variable);

    /// Throws a message when `right` is no integer, or this is a constant or a const variable.
    COperand& assign(COperand* right) override;
    int32_t getInt() const override;
    int32_t getBoolean() const override;
    int32_t GreaterThan(COperand* other) const override;
    int32_t LessThan(COperand* other) const override;
    int32_t Equal(COperand* other) const override;
    int32_t getType() const override;

private:
    int32_t value = 0;  // of a constant
    CVariable* variable = nullptr;
};
