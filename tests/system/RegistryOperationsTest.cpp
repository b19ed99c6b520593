#include "system/RegistryOperations.h"

#include <gmock/gmock.h>

#include <string>
#include <tuple>
#include <vector>

#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/TestKey.h"
#include "system/RegistryCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using FakeCreate = FakeCall<registryCalls, &RegistryCalls::RegCreateKeyExW>;
using FakeOpen = FakeCall<registryCalls, &RegistryCalls::RegOpenKeyExW>;
using FakeQueryInfo = FakeCall<registryCalls, &RegistryCalls::RegQueryInfoKeyW>;
using FakeEnum = FakeCall<registryCalls, &RegistryCalls::RegEnumKeyExW>;
using FakeDelete = FakeCall<registryCalls, &RegistryCalls::RegDeleteKeyW>;
using FakeSetValue = FakeCall<registryCalls, &RegistryCalls::RegSetValueExW>;
using FakeClose = FakeCall<registryCalls, &RegistryCalls::RegCloseKey>;

/// Any name for a key or value where the call is faked.
constexpr wchar_t anything[] = L"Software\\temz-tests\\absent";

const HKEY fakeKey = reinterpret_cast<HKEY>(0x1234);

/// Stands for a call that mustn't be made.
LSTATUS unexpected() {
    ADD_FAILURE() << "a call too many";
    return ERROR_INVALID_FUNCTION;
}

/// The operations leave no line in the log.
class RegistryTest : public testing::Test {
protected:
    ~RegistryTest() override { EXPECT_THAT(log.lines(), IsEmpty()); }

    bool create(const std::wstring& name) {
        return createKey(HKEY_CURRENT_USER, key.path(name).c_str());
    }
    bool remove(const std::wstring& name) {
        return deleteKeyTree(HKEY_CURRENT_USER, key.path(name).c_str());
    }
    bool set(const std::wstring& name, const StoredValue& value) {
        return setValue(HKEY_CURRENT_USER, key.path(name).c_str(), L"v", value.type,
                        value.bytes.data(), static_cast<uint32_t>(value.bytes.size()));
    }

    const LogFile log;
    const TestKey key;
};

// Making a key.

using CreateKeyTest = RegistryTest;

TEST_F(CreateKeyTest, MakesAllMissingKeysInOneCall) {
    const FakeCreate call([&](auto... arguments) { return call.real(arguments...); });

    EXPECT_TRUE(create(L"a\\b\\c"));

    EXPECT_THAT(key.keys(), ElementsAre(L"a", L"a\\b", L"a\\b\\c"));
    EXPECT_EQ(call.count, 1);
}

TEST_F(CreateKeyTest, ExistingKeyCountsAsMadeAndKeepsWhatItHolds) {
    key.make(L"a\\b");
    const StoredValue value{REG_BINARY, "old"};
    writeValue(key.path(L"a"), L"v", value);

    EXPECT_TRUE(create(L"a"));

    EXPECT_THAT(key.keys(), ElementsAre(L"a", L"a\\b"));
    EXPECT_EQ(readValue(key.path(L"a"), L"v"), value);
}

TEST_F(CreateKeyTest, AsksForALastingKeyWithFullAccess) {
    const FakeCreate call([](HKEY root, const wchar_t* subkey, DWORD reserved, wchar_t* className,
                             DWORD options, REGSAM access, SECURITY_ATTRIBUTES* security, HKEY*,
                             DWORD* disposition) {
        EXPECT_EQ(root, HKEY_USERS);
        EXPECT_STREQ(subkey, L"a\\b");
        EXPECT_EQ(reserved, 0u);
        EXPECT_EQ(className, nullptr);
        EXPECT_EQ(options, 0u);
        EXPECT_EQ(access, 0xF003Fu);
        EXPECT_EQ(security, nullptr);
        EXPECT_EQ(disposition, nullptr);
        return ERROR_SUCCESS;
    });

    EXPECT_TRUE(createKey(HKEY_USERS, L"a\\b"));

    EXPECT_EQ(call.count, 1);
}

TEST_F(CreateKeyTest, LeavesItsHandleOpen) {
    HKEY made = nullptr;
    const FakeCreate call([&](auto... arguments) {
        const LSTATUS result = call.real(arguments...);
        made = *std::get<7>(std::tuple(arguments...));
        return result;
    });
    const FakeClose close([](HKEY) { return unexpected(); });

    EXPECT_TRUE(create(L"a"));

    EXPECT_EQ(RegCloseKey(made), ERROR_SUCCESS);
}

TEST_F(CreateKeyTest, FailsWhereTheSystemRefuses) {
    const RefusedKey refused(key.make(L"refused"));

    EXPECT_FALSE(create(L"refused"));
    EXPECT_FALSE(createKey(HKEY_CURRENT_USER, L"\\begins with a separator"));
    EXPECT_FALSE(createKey(nullptr, L"a"));
}

TEST_F(CreateKeyTest, FailsWithAnyError) {
    for (const LSTATUS error : {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_ALREADY_EXISTS}) {
        SCOPED_TRACE(error);
        const FakeCreate call([=](auto...) { return error; });

        EXPECT_FALSE(create(L"a"));
    }
}

// Deleting a tree.

using DeleteKeyTreeTest = RegistryTest;

TEST_F(DeleteKeyTreeTest, AbsentKeyCountsAsDeletedWithoutAnotherCall) {
    const FakeQueryInfo query([](auto...) { return unexpected(); });
    const FakeEnum enumerate([](auto...) { return unexpected(); });
    const FakeDelete deletion([](auto...) { return unexpected(); });
    const FakeClose close([](auto...) { return unexpected(); });

    EXPECT_TRUE(remove(L"absent"));
    EXPECT_TRUE(remove(L"absent\\below"));
}

TEST_F(DeleteKeyTreeTest, DeletesAKeyWithItsValues) {
    key.make(L"a");
    key.make(L"ab");
    writeValue(key.path(L"a"), L"v", {REG_BINARY, "old"});

    EXPECT_TRUE(remove(L"a"));

    EXPECT_THAT(key.keys(), ElementsAre(L"ab"));
}

TEST_F(DeleteKeyTreeTest, DeletesTheDeepestKeysFirst) {
    for (const wchar_t* name : {L"a\\b\\c", L"a\\b\\d", L"a\\e", L"a\\f\\g"})
        key.make(name);
    std::vector<std::wstring> deleted;
    const FakeDelete deletion([&](HKEY parent, const wchar_t* subkey) {
        deleted.push_back(subkey);
        return deletion.real(parent, subkey);
    });

    EXPECT_TRUE(remove(L"a"));

    EXPECT_THAT(deleted, ElementsAre(L"c", L"d", L"b", L"e", L"g", L"f", key.path(L"a")));
    EXPECT_THAT(key.keys(), IsEmpty());
}

/// Writes down all calls of a deletion.
class DeletionTrace {
public:
    std::vector<std::wstring> calls;

private:
    const FakeOpen open{
        [&](HKEY parent, const wchar_t* subkey, DWORD options, REGSAM access, HKEY* key) {
            EXPECT_EQ(options, 0u);
            EXPECT_EQ(access, 0xF003Fu);
            calls.push_back(L"open " + std::wstring(subkey));
            return open.real(parent, subkey, options, access, key);
        }};
    const FakeQueryInfo query{[&](auto... arguments) {
        EXPECT_NE(std::get<1>(std::tuple(arguments...)), nullptr);
        EXPECT_EQ(*std::get<2>(std::tuple(arguments...)), 260u);
        calls.push_back(L"count");
        return query.real(arguments...);
    }};
    const FakeEnum enumerate{[&](auto... arguments) {
        EXPECT_EQ(*std::get<3>(std::tuple(arguments...)), 255u);
        calls.push_back(L"name " + std::to_wstring(std::get<1>(std::tuple(arguments...))));
        return enumerate.real(arguments...);
    }};
    const FakeDelete deletion{[&](HKEY parent, const wchar_t* subkey) {
        calls.push_back(L"delete " + std::wstring(subkey));
        return deletion.real(parent, subkey);
    }};
    const FakeClose close{[&](HKEY key) {
        calls.push_back(L"close");
        return close.real(key);
    }};
};

TEST_F(DeleteKeyTreeTest, GathersAllNamesBeforeItDeletesAndClosesEachKeyBeforeItsEnd) {
    key.make(L"a\\b");
    key.make(L"a\\c");
    const std::wstring path = key.path(L"a");
    DeletionTrace trace;

    EXPECT_TRUE(deleteKeyTree(HKEY_CURRENT_USER, path.c_str()));

    EXPECT_THAT(trace.calls, ElementsAre(L"open " + path, L"count", L"name 0", L"name 1", L"open b",
                                         L"count", L"close", L"delete b", L"open c", L"count",
                                         L"close", L"delete c", L"close", L"delete " + path));
}

TEST_F(DeleteKeyTreeTest, DeletesNothingAtTheLevelOfAKeyThatItMayNotOpen) {
    const RefusedKey refused(key.make(L"a"));
    const FakeDelete deletion([](auto...) { return unexpected(); });

    EXPECT_FALSE(remove(L"a"));
}

TEST_F(DeleteKeyTreeTest, OnlyAMissingKeyCountsAsDeleted) {
    key.make(L"a");
    const FakeDelete deletion([](auto...) { return unexpected(); });
    const FakeClose close([](auto...) { return unexpected(); });
    for (const LSTATUS error : {ERROR_PATH_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_KEY_DELETED}) {
        SCOPED_TRACE(error);
        const FakeOpen open([=](auto...) { return error; });

        EXPECT_FALSE(remove(L"a"));
    }
}

TEST_F(DeleteKeyTreeTest, DeletesWhatItCanAroundAKeyThatItMayNotOpen) {
    for (const wchar_t* name : {L"a\\1", L"a\\2\\kept", L"a\\2\\x", L"a\\3\\y"})
        key.make(name);
    const RefusedKey refused(key.path(L"a\\2\\kept"));

    EXPECT_FALSE(remove(L"a"));

    EXPECT_THAT(key.keys(), ElementsAre(L"a", L"a\\2", L"a\\2\\kept"));
}

TEST_F(DeleteKeyTreeTest, FailsWhenTheKeyItselfCannotBeDeleted) {
    key.make(L"a\\b");
    const FakeDelete deletion([&](HKEY parent, const wchar_t* subkey) {
        return subkey == key.path(L"a") ? ERROR_FILE_NOT_FOUND : deletion.real(parent, subkey);
    });

    EXPECT_FALSE(remove(L"a"));

    EXPECT_THAT(key.keys(), ElementsAre(L"a"));
}

TEST_F(DeleteKeyTreeTest, IgnoresTheResultOfASubkey) {
    key.make(L"a\\b");
    const FakeDelete deletion([&](HKEY parent, const wchar_t* subkey) {
        const LSTATUS result = deletion.real(parent, subkey);
        return subkey == std::wstring(L"b") ? ERROR_ACCESS_DENIED : result;
    });

    EXPECT_TRUE(remove(L"a"));

    EXPECT_THAT(key.keys(), IsEmpty());
}

TEST_F(DeleteKeyTreeTest, TakesAKeyThatCannotBeCountedForOneWithoutSubkeys) {
    key.make(L"full\\b");
    key.make(L"empty");
    const FakeQueryInfo query([](auto...) { return ERROR_INVALID_HANDLE; });
    const FakeEnum enumerate([](auto...) { return unexpected(); });

    EXPECT_TRUE(remove(L"empty"));
    EXPECT_FALSE(remove(L"full"));

    EXPECT_THAT(key.keys(), ElementsAre(L"full", L"full\\b"));
}

TEST_F(DeleteKeyTreeTest, LeavesOutASubkeyWhoseNameCannotBeRead) {
    for (const wchar_t* name : {L"a\\0", L"a\\1", L"a\\2"})
        key.make(name);
    const FakeEnum enumerate([&](auto... arguments) {
        const LSTATUS result = enumerate.real(arguments...);
        return std::get<1>(std::tuple(arguments...)) == 1 ? ERROR_NO_MORE_ITEMS : result;
    });

    EXPECT_FALSE(remove(L"a"));

    EXPECT_THAT(key.keys(), ElementsAre(L"a", L"a\\1"));
}

TEST_F(DeleteKeyTreeTest, ReadsNamesOfAtMost254Characters) {
    const std::wstring read = L"a\\" + std::wstring(254, L'r');
    const std::wstring tooLong = L"a\\" + std::wstring(255, L't');
    key.make(read);
    key.make(tooLong);

    EXPECT_FALSE(remove(L"a"));

    EXPECT_THAT(key.keys(), ElementsAre(L"a", tooLong));
}

// Writing a value.

using SetValueTest = RegistryTest;

TEST_F(SetValueTest, WritesTheBytesAsTheyStand) {
    const StoredValue values[] = {{REG_BINARY, {"a\0b", 3}}, {REG_DWORD, "1234"}, {REG_NONE, ""}};
    key.make(L"a");
    for (const StoredValue& value : values) {
        SCOPED_TRACE(value.type);
        EXPECT_TRUE(set(L"a", value));

        EXPECT_EQ(readValue(key.path(L"a"), L"v"), value);
    }
}

TEST_F(SetValueTest, WritesTheUnnamedValue) {
    key.make(L"a");

    EXPECT_TRUE(setValue(HKEY_CURRENT_USER, key.path(L"a").c_str(), L"", REG_BINARY, "x", 1));

    EXPECT_EQ(readValue(key.path(L"a"), L""), (StoredValue{REG_BINARY, "x"}));
}

TEST_F(SetValueTest, FailsForAnAbsentKeyAndMakesNone) {
    const FakeCreate create([](auto...) { return unexpected(); });
    const FakeSetValue write([](auto...) { return unexpected(); });
    const FakeClose close([](auto...) { return unexpected(); });

    EXPECT_FALSE(set(L"absent", {REG_BINARY, "x"}));

    EXPECT_THAT(key.keys(), IsEmpty());
}

TEST_F(SetValueTest, FailsForAKeyThatItMayNotOpen) {
    const RefusedKey refused(key.make(L"a"));
    const FakeSetValue write([](auto...) { return unexpected(); });

    EXPECT_FALSE(set(L"a", {REG_BINARY, "x"}));
}

TEST_F(SetValueTest, AsksForNoMoreThanToSetValues) {
    const FakeOpen open(
        [](HKEY root, const wchar_t* subkey, DWORD options, REGSAM access, HKEY* key) {
            EXPECT_EQ(root, HKEY_USERS);
            EXPECT_STREQ(subkey, anything);
            EXPECT_EQ(options, 0u);
            EXPECT_EQ(access, 2u);
            *key = fakeKey;
            return ERROR_SUCCESS;
        });
    const FakeSetValue write([](HKEY key, const wchar_t* name, DWORD reserved, DWORD type,
                                const BYTE* data, DWORD size) {
        EXPECT_EQ(key, fakeKey);
        EXPECT_STREQ(name, L"name");
        EXPECT_EQ(reserved, 0u);
        EXPECT_EQ(type, 77u);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(data), size), "data");
        return ERROR_SUCCESS;
    });
    const FakeClose close([](HKEY key) {
        EXPECT_EQ(key, fakeKey);
        return ERROR_INVALID_HANDLE;
    });

    EXPECT_TRUE(setValue(HKEY_USERS, anything, L"name", 77, "data", 4));

    EXPECT_EQ(close.count, 1);
}

TEST_F(SetValueTest, ClosesTheKeyAlsoWhenTheValueIsRefused) {
    key.make(L"a");
    for (const LSTATUS error : {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED}) {
        SCOPED_TRACE(error);
        const FakeSetValue write([=](auto...) { return error; });
        const FakeClose close([&](HKEY opened) { return close.real(opened); });

        EXPECT_FALSE(set(L"a", {REG_BINARY, "x"}));

        EXPECT_EQ(close.count, 1);
    }
}

}  // namespace
