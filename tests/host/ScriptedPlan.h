#pragma once

#include "host/Plan.h"

/// A plan with a step of each kind, as pages show it.
Plan scriptedPlan();

/// A step in an element of a script.
Step stepOf(uint32_t kind, uint32_t depth, const wchar_t* element, const wchar_t* object = L"",
            const wchar_t* detail = L"");
/// One that changes something.
Step changeOf(uint32_t code, uint32_t depth, const wchar_t* object, const wchar_t* before = L"",
              const wchar_t* after = L"");
