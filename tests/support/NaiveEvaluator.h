#pragma once

#include <string>
#include <vector>

/// A variable of a script as the naive evaluator keeps it.
struct NaiveVariable {
    std::wstring name;
    bool isInt;
    bool isConst;
    std::wstring text;  ///< the value of an integer too
};

/// The first variable of that name, null if there is none.
NaiveVariable* findNaive(std::vector<NaiveVariable>& variables, const std::wstring& name);

struct NaiveOutcome {
    bool value;
    std::wstring message;  ///< empty when the expression didn't fail
};

/// Evaluates an expression the plain way, by recursive descent, to compare CExpression with. What
/// the expression assigns is found in `variables`, whether it fails afterwards or not.
NaiveOutcome evaluateNaively(const std::wstring& expression, std::vector<NaiveVariable>& variables);
