#include "expression/CIntVariable.h"

#include "expression/CVariableElement.h"
#include "system/TextFields.h"
#include "system/TextParsing.h"

CIntVariable::CIntVariable(CVariableElement* element, bool isConst)
    : CVariable(VARIABLE_INT, element, isConst) {}

CIntVariable::CIntVariable(const wchar_t* builtInName, int32_t value)
    : CVariable(VARIABLE_INT, nullptr, true), value(value) {
    copyBounded(name, builtInName);
}

const wchar_t* CIntVariable::getName() const {
    return element ? element->getId() : name;
}

int32_t CIntVariable::getInt() const {
    if (element == nullptr)
        return value;
    int32_t number = 0;
    if (!parseIntText(element->getValueText().c_str(), number))
        throw element->describe() + L" is not int variable.";
    return number;
}

void CIntVariable::setInt(int32_t newValue) {
    requireWritable();
    if (element)
        element->setValueText(std::to_wstring(newValue));
    else
        value = newValue;
}
