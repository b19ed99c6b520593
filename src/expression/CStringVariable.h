#pragma once

#include "expression/CVariable.h"

/// A variable of type "string". Its value is the text `Value` of its element.
class CStringVariable final : public CVariable {
public:
    CStringVariable(CVariableElement* element, bool isConst);

    const wchar_t* getName() const override;
    std::wstring getString() const override;

    /// Throws a message when the variable is const.
    void setString(const std::wstring& text);
};
