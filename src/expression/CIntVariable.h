#pragma once

#include "expression/CVariable.h"

/// A variable of type "int", or a built-in one. The value of the former is the text `Value` of its
/// element, which is read anew each time; the latter holds its own, and is const.
class CIntVariable final : public CVariable {
public:
    CIntVariable(CVariableElement* element, bool isConst);
    /// A built-in variable. A name of 64 characters or more ends the process.
    CIntVariable(const wchar_t* name, int32_t value);

    const wchar_t* getName() const override;
    /// Throws a message when the element's text is no integer.
    int32_t getInt() const override;

    /// Throws a message when the variable is const.
    void setInt(int32_t newValue);

private:
    int32_t value = 0;      // of a built-in variable
    wchar_t name[64] = {};  // of a built-in variable
};
