#pragma once

#include <cstdint>

/// What a variable, or an operand of an expression, holds.
enum VariableType : int32_t { VARIABLE_UNKNOWN = 0, VARIABLE_STRING = 1, VARIABLE_INT = 2 };
