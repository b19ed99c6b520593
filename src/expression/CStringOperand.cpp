#include "expression/CStringOperand.h"

#include "expression/CStringVariable.h"

CStringOperand::CStringOperand(CVariable* variable) : variable(variable) {
    if (variable == nullptr)
        throw std::wstring(L"variable obj is NULL in CStringOperand.");
}

COperand& CStringOperand::assign(COperand* right) {
    if (right->getType() != getType())
        throw std::wstring(L"It can't assign value between operands with different type.");
    static_cast<CStringVariable*>(variable)->setString(right->getString());
    return *this;
}

std::wstring CStringOperand::getString() const {
    return variable->getString();
}

int32_t CStringOperand::getBoolean() const {
    return !getString().empty();
}

// The right side is read first, as with integers.
int32_t CStringOperand::GreaterThan(COperand* other) const {
    requireSameType(*other);
    const std::wstring right = other->getString();
    return getString() > right;
}

int32_t CStringOperand::LessThan(COperand* other) const {
    requireSameType(*other);
    const std::wstring right = other->getString();
    return getString() < right;
}

int32_t CStringOperand::Equal(COperand* other) const {
    requireSameType(*other);
    const std::wstring right = other->getString();
    return getString() == right;
}

int32_t CStringOperand::getType() const {
    return VARIABLE_STRING;
}
