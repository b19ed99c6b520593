#pragma once

#include "expression/CExpression.h"
#include "motion/CMotionElement.h"
#include "system/CallTable.h"

namespace own {

inline int32_t VisitElement(CMotionElement& element, CContext& context) {
    return element.runElement(context);
}
inline bool Evaluate(const wchar_t* expression, CContext& context) {
    return CExpression().evaluate(expression, context);
}

}  // namespace own

/// What the walk does by itself: it visits an element, and works out an expression. Both may throw
/// messages. Here a tool sees which element asks for the calls of the other tables.
#define TEMZ_WALK_CALLS(CALL) \
    CALL(VisitElement)        \
    CALL(Evaluate)
TEMZ_CALL_TABLE(WalkCalls, walkCalls, "walk", TEMZ_WALK_CALLS, TEMZ_OWN_CALL)
