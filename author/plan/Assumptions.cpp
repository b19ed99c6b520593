#include "plan/Assumptions.h"

#include "engine/CContext.h"
#include "expression/CIntVariable.h"
#include "expression/CVariableElement.h"
#include "system/TextParsing.h"

namespace {

/// A variable without an element is a built-in one, which is an integer, and const to scripts.
void setBuiltIn(CVariable& variable, int32_t number) {
    variable.isConst = false;
    static_cast<CIntVariable&>(variable).setInt(number);
    variable.isConst = true;
}

}  // namespace

Assumptions::Assumptions(const CContext& context) {
    for (const CVariablePtr& variable : context.getVariables()) {
        Saved& one = saved.emplace_back();
        one.variable = variable.get();
        if (variable->element)
            one.text = variable->element->getValueText();
        else
            one.number = variable->getInt();
    }
}

Assumptions::~Assumptions() {
    for (Saved& one : saved) {
        if (one.variable->element)
            one.variable->element->exchangeValueText(one.text);
        else
            setBuiltIn(*one.variable, one.number);
    }
}

Assumptions::Answer Assumptions::check(const CContext& context, const wchar_t* name,
                                       const wchar_t* text) {
    const CVariable* variable = context.findVariable(name);
    if (variable == nullptr)
        return Answer::unknownVariable;
    int32_t number = 0;
    return variable->type == VARIABLE_INT && !parseIntText(text, number) ? Answer::noInteger
                                                                         : Answer::possible;
}

void Assumptions::assume(const CContext& context, const wchar_t* name, const wchar_t* text) {
    CVariable* variable = context.findVariable(name);
    std::wstring value = text;
    int32_t number = 0;
    if (variable->element)
        variable->element->exchangeValueText(value);
    else if (parseIntText(text, number))
        setBuiltIn(*variable, number);
}
