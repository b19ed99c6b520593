#pragma once

#include <string>

#include "support/ScriptTest.h"
#include "support/TestKey.h"
#include "support/Text.h"

/// A test of scripts that work below a registry key of its own.
class RegistryScriptTest : public ScriptTest {
protected:
    /// Loads a script whose one component holds the elements.
    bool loadComponent(const std::string& elements, const std::string& variables = {}) {
        return loadProduct("<InstallExecuteSequence><Feature><Component Id='C'>" + elements +
                               "</Component></Feature></InstallExecuteSequence>",
                           variables);
    }

    /// A `RegistryKey` for a key in the test's own one, with further attributes.
    std::string element(const std::string& action, const std::wstring& name,
                        const std::string& attributes = {},
                        const std::string& children = {}) const {
        return "<RegistryKey Id='K' Root='HKEY_CURRENT_USER' Action='" + action + "' Key='" +
               narrow(key.path(name)) + "' " + attributes + ">" + children + "</RegistryKey>";
    }

    /// How a key in the test's own one is told of.
    std::wstring told(const std::wstring& name) const {
        return L"HKEY_CURRENT_USER\\" + key.path(name);
    }

    void expectError(uint32_t code, const std::wstring& text1, const std::wstring& text2,
                     const std::wstring& message) {
        const ErrorInfo& error = context.getProduct()->errorInfo;
        EXPECT_EQ(error.code, code);
        EXPECT_EQ(error.text1, text1);
        EXPECT_EQ(error.text2, text2);
        EXPECT_EQ(error.systemError, 0u);
        EXPECT_EQ(error.message, message);
    }

    void expectErrorMessage(const std::wstring& message) {
        expectError(ERROR_CODE_MESSAGE, L"", L"", message);
    }

    /// What an element leaves that succeeds.
    void expectNoError() { expectErrorMessage(L""); }

    const TestKey key;
};
