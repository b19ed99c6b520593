#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "support/RecordingObserver.h"
#include "support/TestFolder.h"

/// A test with a folder and a context of its own.
class ScriptTest : public testing::Test {
protected:
    ~ScriptTest() override { context.unload(); }

    /// Writes the text as a script file and loads it.
    bool load(std::string_view xml) {
        return context.load(folder.write(L"script.xml", xml).c_str());
    }

    /// Loads a script whose product holds `product` and whose root holds `variables` before it.
    bool loadProduct(std::string_view product, std::string_view variables = {}) {
        return load("<Root>" + std::string(variables) + "<Product>" + std::string(product) +
                    "</Product></Root>");
    }

    /// Runs the loaded script in a mode, with `observer` listening.
    int32_t run(int32_t mode = RUNMODE_INSTALL) {
        context.runMode = mode;
        context.getProduct()->observer = &observer;
        const int32_t result = context.getProduct()->run(&context);
        context.getProduct()->observer = nullptr;
        return result;
    }

    std::wstring errorMessage() { return context.getProduct()->errorInfo.message; }

    TestFolder folder;
    RecordingObserver observer;
    CContext context;
};
