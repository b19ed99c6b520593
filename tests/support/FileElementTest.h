#pragma once

#include <string>

#include "support/PayloadFolder.h"
#include "support/ScriptTest.h"
#include "support/Text.h"

inline constexpr int32_t unknownMode = 7;

/// Runs scripts that install `source`, which holds "new", as `target`.
class FileElementTest : public ScriptTest {
protected:
    /// A `File` for the target, with further attributes.
    std::string file(const std::string& attributes = {}) const {
        return "<File Id='F' Name='a.txt' Source='" + narrow(source) + "' " + attributes + "/>";
    }

    /// Loads a script whose one component holds the elements, in the directory of the target.
    bool loadComponent(const std::string& elements, const std::string& attributes = {}) {
        return loadIn(narrow(folder.path(L"app")), elements, attributes);
    }

    /// The same in another directory.
    bool loadIn(const std::string& directory, const std::string& elements,
                const std::string& attributes = {}) {
        return loadProduct("<Directory Path='" + directory + "'><Component Id='C' " + attributes +
                           ">" + elements +
                           "</Component></Directory>"
                           "<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>"
                           "</InstallExecuteSequence>");
    }

    void expectError(uint32_t code, const std::wstring& text1, uint32_t systemError,
                     const std::wstring& message) {
        const ErrorInfo& error = context.getProduct()->errorInfo;
        EXPECT_EQ(error.code, code);
        EXPECT_EQ(error.text1, text1);
        EXPECT_STREQ(error.text2, L"");
        EXPECT_EQ(error.systemError, systemError);
        EXPECT_EQ(error.message, message);
    }

    /// What an execution leaves at its start, and a success keeps.
    void expectNoError() { expectError(ERROR_CODE_MESSAGE, L"", 0, L""); }

    const PayloadFolder payload;
    const std::wstring source = payload.write(L"a.txt", "new");
    const std::wstring target = folder.path(L"app\\a.txt");
};
