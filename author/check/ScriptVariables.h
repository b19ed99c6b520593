#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "author/check/KnownText.h"
#include "author/check/ScriptModel.h"
#include "expression/VariableType.h"

/// A variable of a script, or a built-in one.
struct ScriptVariable {
    std::wstring name;
    VariableType type = VARIABLE_UNKNOWN;
    bool isConst = false;
    bool isBuiltIn = false;
    ElementNumber element = noElement;
    std::wstring value;     ///< with which it begins; of a built-in one nothing
    bool assigned = false;  ///< an expression may change it
    mutable bool read = false;

    /// Its value in a text.
    KnownText asText() const;
    bool hasKnownValue() const { return !isBuiltIn && !assigned; }
};

/// The variables that the engine would find, in their order: the built-in ones come first.
class ScriptVariables {
public:
    explicit ScriptVariables(const ScriptModel& model);

    /// Null when there is none of that name.
    const ScriptVariable* find(std::wstring_view name) const;
    const std::vector<ScriptVariable>& all() const { return variables; }
    /// The names that a text or an expression can use.
    const std::vector<std::wstring>& names() const { return allNames; }
    /// The longest name of a variable that `text` begins with; empty if there is none.
    std::wstring_view nameInFrontOf(std::wstring_view text) const;

private:
    void findAssigned(const ScriptModel& model);
    void add(ScriptVariable variable);

    std::vector<ScriptVariable> variables;
    std::vector<std::wstring> allNames;
    std::unordered_map<std::wstring, size_t> byName;
};
