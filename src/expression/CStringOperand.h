#pragma once

#include "expression/COperand.h"

class CVariable;

/// A text: always a view of a string variable, since expressions have no literal texts. Texts are
/// compared code unit by code unit.
class CStringOperand final : public COperand {
public:
    /// Views the variable, which isn't owned. Throws a message when it is null.
    explicit CStringOperand(CVariable* variable);

    /// Throws a message when `right` is no text, or the variable is const.
    COperand& assign(COperand* right) override;
    std::wstring getString() const override;
    int32_t getBoolean() const override;
    int32_t GreaterThan(COperand* other) const override;
    int32_t LessThan(COperand* other) const override;
    int32_t Equal(COperand* other) const override;
    int32_t getType() const override;

private:
    CVariable* variable;
};
