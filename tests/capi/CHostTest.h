#pragma once

#include <gtest/gtest.h>
#include <temz/temz.h>

#include <string>
#include <string_view>

#include "support/PayloadFolder.h"
#include "support/TestFolder.h"
#include "support/Text.h"

/// A host of the library for every language: a test with a context of its own, and a script that
/// installs files into app().
class CHostTest : public testing::Test {
protected:
    CHostTest() { EXPECT_EQ(temz_create(&context), TEMZ_OK); }
    ~CHostTest() override { EXPECT_EQ(temz_free(context), TEMZ_OK); }

    temz_status load(std::string_view xml) {
        return temz_load(context, folder.write(L"script.xml", xml).c_str());
    }

    std::wstring app(std::wstring_view name) const {
        return folder.path(L"app\\" + std::wstring(name));
    }

    /// A script whose one component, with the given attributes, installs "a.txt" into app().
    std::string fileScript(const std::string& attributes = {}) const {
        return "<Script><Variable Id='V' Type='string' Value='a text that is long enough to need "
               "memory of its own'/><Product><Directory Id='D' Path='" +
               narrow(folder.path(L"app")) + "'><Component Id='C' " + attributes +
               "><File Name='a.txt' Source='" + narrow(payload.write(L"a.txt", "new")) +
               "'/></Component></Directory><InstallExecuteSequence><Condition Expression='OS_BIT E "
               "64'><Feature><ComponentRef Id='C'/></Feature></Condition>"
               "</InstallExecuteSequence></Product></Script>";
    }

    const TestFolder folder;
    const PayloadFolder payload;
    temz_context* context = nullptr;
};
