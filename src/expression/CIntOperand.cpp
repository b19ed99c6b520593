#include "expression/CIntOperand.h"

#include "expression/CIntVariable.h"

CIntOperand::CIntOperand(int32_t value) : value(value) {}

CIntOperand::CIntOperand(CVariable* variable) : variable(variable) {
    if (variable == nullptr)
        throw std::wstring(L"variable obj is NULL in CIntOperand.");
}

COperand& CIntOperand::assign(COperand* right) {
    if (right->getType() != getType())
        throw std::wstring(L"It can't assign value between different type operands.");
    if (variable == nullptr)
        throw std::wstring(L"It can't be assignment in const operand.");
    static_cast<CIntVariable*>(variable)->setInt(right->getInt());
    return *this;
}

int32_t CIntOperand::getInt() const {
    return variable ? variable->getInt() : value;
}

int32_t CIntOperand::getBoolean() const {
    return getInt();
}

// The right side is read first: of two variables that are no numbers it is the one reported.
int32_t CIntOperand::GreaterThan(COperand* other) const {
    requireSameType(*other);
    const int32_t right = other->getInt();
    return getInt() > right;
}

int32_t CIntOperand::LessThan(COperand* other) const {
    requireSameType(*other);
    const int32_t right = other->getInt();
    return getInt() < right;
}

int32_t CIntOperand::Equal(COperand* other) const {
    requireSameType(*other);
    const int32_t right = other->getInt();
    return getInt() == right;
}

int32_t CIntOperand::getType() const {
    return VARIABLE_INT;
}
