#pragma once

#include "motion/CustomAction.h"
#include "system/CallTable.h"

namespace own {

inline uint32_t CallEntry(CustomActionEntry entry, CustomActionParams* params, wchar_t* message,
                          uint32_t capacity) {
    return entry(params, message, capacity);
}

}  // namespace own

/// The call of a custom action's function.
#define TEMZ_ACTION_CALLS(CALL) CALL(CallEntry)
TEMZ_CALL_TABLE(ActionCalls, actionCalls, "action", TEMZ_ACTION_CALLS, TEMZ_OWN_CALL)
