#pragma once

#include <cstdint>
#include <string>

#include "expression/VariableType.h"
#include "system/BaseOwner.h"

class CVariableElement;

/// A named value that expressions read and assign, and that attribute texts refer to by `#name`.
class CVariable {
public:
    /// Valid as long as the variable.
    virtual const wchar_t* getName() const = 0;
    /// The value as an integer. Throws a message when the variable has none.
    virtual int32_t getInt() const;
    /// The value as a text. Throws a message when the variable has none.
    virtual std::wstring getString() const;

    VariableType type;
    bool isConst;               ///< can't be assigned to
    CVariableElement* element;  ///< holds name and value; not owned, null for a built-in variable

protected:
    CVariable(VariableType type, CVariableElement* element, bool isConst)
        : type(type), isConst(isConst), element(element) {}
    ~CVariable() = default;

    /// Throws a message when the variable is const.
    void requireWritable() const;
};

using CVariablePtr = BaseOwner<CVariable>;
