#include <gmock/gmock.h>
#include <windows.h>

#include "support/HostTest.h"
#include "support/Requirements.h"
#include "support/TestKey.h"

using testing::ElementsAre;
using testing::IsEmpty;
using Notification = RecordingObserver::Notification;

namespace {

class RegistryTest : public HostTest {
protected:
    /// A `RegistryKey` for a key in the test's own one.
    std::string registryKey(const std::string& action, const std::wstring& name,
                            const std::string& children, const std::string& attributes = {}) const {
        return "<RegistryKey Root='HKEY_CURRENT_USER' Action='" + action + "' Key='" +
               narrow(key.path(name)) + "' " + attributes + ">" + children + "</RegistryKey>";
    }

    /// How a key in the test's own one is told of.
    std::wstring told(const std::wstring& name) const {
        return L"HKEY_CURRENT_USER\\" + key.path(name);
    }

    StoredValue stored(const std::wstring& keyName, const std::wstring& name) const {
        return readValue(key.path(keyName), name);
    }

    const TestKey key;
};

TEST_F(RegistryTest, GetsKeysAndValuesByteByByte) {
    REQUIRES_CODE_PAGE(1252, 932, 936, 65001);
    const std::wstring notAscii = L"20 \u00B0";
    ASSERT_TRUE(load(componentScript(
        registryKey("create", L"app\\settings",
                    "<RegistryValue Name='Path' Type='REG_SZ' Value='" + narrow(notAscii) +
                        "'/><RegistryValue Name='Count' Type='REG_DWORD' Value='-5'/>"
                        "<RegistryKey Action='create' Key='more'>"
                        "<Condition Expression='1'>"
                        "<RegistryValue Name='' Type='REG_MULTI_SZ' Value='one'/>"
                        "</Condition></RegistryKey>"))));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_THAT(key.keys(), ElementsAre(L"app", L"app\\settings", L"app\\settings\\more"));
    EXPECT_EQ(stored(L"app\\settings", L"Path"), (StoredValue{REG_SZ, bytesOf(notAscii)}));
    EXPECT_EQ(stored(L"app\\settings", L"Count"), (StoredValue{REG_DWORD, "\xFB\xFF\xFF\xFF"}));
    EXPECT_EQ(stored(L"app\\settings\\more", L""), (StoredValue{REG_MULTI_SZ, {"o\0n\0e\0", 6}}));
}

TEST_F(RegistryTest, LosesATreeOfThreeLevels) {
    for (const wchar_t* name : {L"app\\a\\b", L"app\\a\\c", L"app\\d\\e", L"apple"})
        key.make(name);
    writeValue(key.path(L"app\\a\\b"), L"v", {REG_BINARY, "old"});
    ASSERT_TRUE(load(componentScript(registryKey("remove", L"app", "", "Title='Removing'"))));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_THAT(key.keys(), ElementsAre(L"apple"));
    EXPECT_THAT(observer.updates, ElementsAre(Notification{13, told(L"app"), L"Removing", 0}));
}

TEST_F(RegistryTest, GetsNoValueBelowARemovedKey) {
    key.make(L"app");
    ASSERT_TRUE(load(componentScript(
        registryKey("remove", L"app", "<RegistryValue Name='v' Type='REG_SZ' Value='x'/>"))));

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    ASSERT_EQ(observer.failures.size(), 1u);
    EXPECT_EQ(observer.failures[0].code, 14u);
    EXPECT_EQ(observer.failures[0].text1, told(L"app") + L"[Value Name]v");
    EXPECT_EQ(observer.failures[0].systemError, 0u);
    EXPECT_THAT(key.keys(), IsEmpty());
}

TEST_F(RegistryTest, RefusedKeyEndsTheRunWithoutAQuestion) {
    const RefusedKey refused(key.make(L"refused"));
    ASSERT_TRUE(load(componentScript(registryKey("create", L"refused", "", "Vital='no'") +
                                     registryKey("create", L"behind", ""))));

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    EXPECT_EQ(product().errorInfo.code, 12u);
    EXPECT_EQ(product().errorInfo.text1, told(L"refused"));
    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_FALSE(keyExists(key.path(L"behind")));
}

TEST_F(RegistryTest, IsRestoredByAScriptThatHasAnElementForEachMode) {
    const StoredValue others{REG_BINARY, "another's"};
    writeValue(key.make(L"vendor"), L"v", others);
    ASSERT_TRUE(load(componentScript(
        registryKey("create", L"vendor\\app", "<RegistryValue Name='v' Type='REG_SZ' Value='x'/>",
                    "On='install'") +
        registryKey("remove", L"vendor\\app", "", "On='uninstall'"))));

    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    EXPECT_THAT(key.keys(), ElementsAre(L"vendor"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_EQ(stored(L"vendor\\app", L"v"), (StoredValue{REG_SZ, {"x\0", 2}}));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(key.keys(), ElementsAre(L"vendor"));
    EXPECT_EQ(stored(L"vendor", L"v"), others);
}

}  // namespace
