#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "author/check/FindingKinds.h"
#include "author/check/NearMiss.h"
#include "author/check/ScriptVariables.h"

/// A symbol of an expression, and where it stands.
struct ExpressionToken {
    std::wstring text;
    size_t from;
    bool isOperation;
};

/// The symbols of an expression, cut as the engine cuts them, without the end symbol.
std::vector<ExpressionToken> tokensOf(const std::wstring& expression);

/// What is wrong with an expression, at a place in it.
struct ExpressionFault {
    Fault fault;
    size_t from;
    size_t length;
    bool surely;  ///< each evaluation meets it
    std::wstring text;
    std::wstring help;
    ElementNumber variable = noElement;  ///< whose Value is wrong, and not the expression
};

/// What is known of an expression without a machine.
struct ExpressionResult {
    std::vector<ExpressionFault> faults;
    std::optional<bool> value;  ///< when it is the same on every machine
    bool assigns = false;
};

/// Works an expression out by the engine's own symbols, priorities and operations, as far as the
/// values of variables are known.
ExpressionResult readExpression(const std::wstring& expression, const ScriptVariables& variables,
                                NearMiss& nearMiss);
