#include "expression/CVariable.h"

int32_t CVariable::getInt() const {
    throw std::wstring(L"It doesn't support getInt method.");
}

std::wstring CVariable::getString() const {
    throw std::wstring(L"It doesn't support getString method.");
}

void CVariable::requireWritable() const {
    if (isConst)
        throw std::wstring(L"It can't assign value to a const variable.");
}
