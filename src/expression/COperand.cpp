#include "expression/COperand.h"

#include "expression/VariableType.h"

int32_t COperand::getInt() const {
    throw std::wstring(L"It doesn't support getInt method.");
}

std::wstring COperand::getString() const {
    throw std::wstring(L"It doesn't support getString method.");
}

int32_t COperand::getBoolean() const {
    throw std::wstring(L"It doesn't support 'getBoolean' method.");
}

int32_t COperand::GreaterThan(COperand*) const {
    throw std::wstring(L"It doesn't support 'LessThan' comparison.");
}

int32_t COperand::LessThan(COperand*) const {
    throw std::wstring(L"It doesn't support 'LessThan' comparison.");
}

int32_t COperand::Equal(COperand*) const {
    throw std::wstring(L"It doesn't support 'Equal' comparison.");
}

int32_t COperand::getType() const {
    return VARIABLE_UNKNOWN;
}

void COperand::requireSameType(const COperand& other) const {
    if (other.getType() != getType())
        throw std::wstring(L"It can't compare between different type variables.");
}
