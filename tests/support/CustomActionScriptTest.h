#pragma once

#include <string>

#include "support/ActionCall.h"
#include "support/Failure.h"
#include "support/ScriptTest.h"
#include "support/Text.h"

inline const std::string rootDirectory =
    "<Directory Id='APPLICATIONROOTDIRECTORY' Path='C:\\app'/>";

/// Runs scripts that call functions of the action library, which reports to `call`.
class CustomActionScriptTest : public ScriptTest {
protected:
    /// A call of a function of the library, with further attributes.
    std::string action(const std::string& entry, const std::string& attributes) const {
        return "<CustomAction Id='A' DllFile='" + narrow(library) + "' DllEntry='" + entry + "' " +
               attributes + "/>";
    }

    /// Loads a script whose sequence holds one fragment of these children.
    bool loadFragment(const std::string& children, const std::string& directory = rootDirectory,
                      const std::string& variables = {}) {
        const bool loaded = loadProduct(directory + "<InstallExecuteSequence><Fragment Id='F'>" +
                                            children + "</Fragment></InstallExecuteSequence>",
                                        variables);
        context.getProduct()->observerData = &call;
        return loaded;
    }

    XmlHandlePtr node() { return context.findElementById(L"CustomAction", L"A"); }

    void answerWith(uint32_t result, const std::wstring& text) {
        answerText = text;
        call.result = result;
        call.text = answerText.c_str();
        call.textLength = answerText.size();
    }

    Failure failure() { return Failure(context.getProduct()->errorInfo); }

    const std::wstring library = testProgramDirectory() + L"\\temz_test_actions.dll";
    std::wstring answerText;
    ActionCall call{};
};
