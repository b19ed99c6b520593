#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "expression/VariableType.h"

class CVariable;
class CVariableElement;

/// Variables have no virtual destructor: their maker says how the real class is destroyed.
struct CVariableDeleter {
    void (*destroy)(CVariable*) = nullptr;
    void operator()(CVariable* variable) const { destroy(variable); }
};
using CVariablePtr = std::unique_ptr<CVariable, CVariableDeleter>;

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

template <class Variable, class... Arguments>
CVariablePtr makeVariable(Arguments&&... arguments) {
    return CVariablePtr(new Variable(std::forward<Arguments>(arguments)...), {[](CVariable* made) {
                            std::default_delete<Variable>()(static_cast<Variable*>(made));
                        }});
}
