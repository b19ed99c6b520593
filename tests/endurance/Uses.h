#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "engine/IterfaceContext.h"
#include "expression/CVariableElement.h"
#include "logging/IterfaceObserver.h"
#include "logging/IterfaceProduct.h"
#include "support/Text.h"

/// Has every failure ignored.
class Ignorer final : public IterfaceObserver {
public:
    void update(IterfaceProduct*) override {}
    ObserverAnswer askOnError(ErrorInfo*) override { return ANSWER_IGNORE; }
};

/// Loads a script, runs it in a mode and unloads it.
inline void use(IterfaceContext& context, const std::wstring& script, int32_t mode) {
    Ignorer ignorer;
    context.runMode = mode;
    ASSERT_TRUE(context.load(script.c_str())) << narrow(context.lastError);
    context.getProduct()->observer = &ignorer;
    const int32_t result = context.getProduct()->run(&context);
    const std::wstring message = context.getProduct()->errorInfo.message;
    context.unload();
    ASSERT_EQ(result, 0) << narrow(message);
}

/// Uses it in each mode.
inline void useInAllModes(IterfaceContext& context, const std::wstring& script) {
    for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UPGRADE, RUNMODE_UNINSTALL})
        use(context, script, mode);
}
inline constexpr int64_t modes = 3;

/// The element of a variable with short texts: itself, and the list of its attributes.
inline constexpr int64_t elementBlocks = 2;
inline constexpr int64_t elementBytes = sizeof(CVariableElement) + 2 * sizeof(AttributeRecord);
