#include "plan/ShadowRegistry.h"

#include "plan/PlanTest.h"
#include "support/TestKey.h"
#include "system/RegistryOperations.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class ShadowRegistryTest : public PlanTest {
protected:
    bool make(const std::wstring& name) const {
        return createKey(HKEY_CURRENT_USER, key.path(name).c_str());
    }
    bool removeTree(const std::wstring& name) const {
        return deleteKeyTree(HKEY_CURRENT_USER, key.path(name).c_str());
    }
    LSTATUS remove(HKEY root, const std::wstring& path) const {
        return registryCalls.RegDeleteKeyW(root, path.c_str());
    }
    LSTATUS open(HKEY root, const std::wstring& path) const {
        HKEY opened = nullptr;
        const LSTATUS error = registryCalls.RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &opened);
        if (error == ERROR_SUCCESS) {
            EXPECT_EQ(registryCalls.RegCloseKey(opened), ERROR_SUCCESS);
        }
        return error;
    }
    LSTATUS open(const std::wstring& name) const { return open(HKEY_CURRENT_USER, key.path(name)); }
    bool set(const std::wstring& name, uint32_t number) const {
        return setValue(HKEY_CURRENT_USER, key.path(name).c_str(), L"V", REG_DWORD, &number,
                        sizeof number);
    }
    std::wstring shown(const std::wstring& name) const {
        return L"HKEY_CURRENT_USER\\" + key.path(name);
    }

    const TestKey key;
};

TEST_F(ShadowRegistryTest, MadeKeyIsThereWithAllAboveIt) {
    EXPECT_TRUE(make(L"One\\Two"));

    EXPECT_EQ(open(L"One"), ERROR_SUCCESS);
    EXPECT_EQ(open(L"ONE\\two\\"), ERROR_SUCCESS);
    EXPECT_FALSE(keyExists(key.path(L"One")));
    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::keyAdded, shown(L"One")),
                                       Pair(ChangeKind::keyAdded, shown(L"One\\Two"))));
}

TEST_F(ShadowRegistryTest, KeyThatIsThereIsOpened) {
    key.make(L"One");
    DWORD disposition = 0;
    HKEY opened = nullptr;
    EXPECT_EQ(registryCalls.RegCreateKeyExW(HKEY_CURRENT_USER, key.path(L"One").c_str(), 0, nullptr,
                                            0, KEY_READ, nullptr, &opened, &disposition),
              ERROR_SUCCESS);
    EXPECT_EQ(disposition, DWORD{REG_OPENED_EXISTING_KEY});
    EXPECT_THAT(changes(), IsEmpty());
    EXPECT_EQ(registryCalls.RegCreateKeyExW(HKEY_CURRENT_USER, key.path(L"Two").c_str(), 0, nullptr,
                                            0, KEY_READ, nullptr, &opened, &disposition),
              ERROR_SUCCESS);
    EXPECT_EQ(disposition, DWORD{REG_CREATED_NEW_KEY});
}

TEST_F(ShadowRegistryTest, MadeKeyIsOpenedAndTakesOthersByItsHandle) {
    HKEY made = nullptr;
    ASSERT_EQ(registryCalls.RegCreateKeyExW(HKEY_CURRENT_USER, key.path(L"One").c_str(), 0, nullptr,
                                            0, KEY_READ, nullptr, &made, nullptr),
              ERROR_SUCCESS);
    HKEY opened = nullptr;
    EXPECT_EQ(registryCalls.RegCreateKeyExW(made, L"Two\\\\Three", 0, nullptr, 0, KEY_READ, nullptr,
                                            &opened, nullptr),
              ERROR_SUCCESS);

    EXPECT_EQ(open(made, L"Two"), ERROR_SUCCESS);
    EXPECT_EQ(open(made, L"\\Two"), ERROR_BAD_PATHNAME);
    EXPECT_EQ(registryCalls.RegOpenKeyExW(made, nullptr, 0, KEY_READ, &opened), ERROR_SUCCESS);
    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::keyAdded, shown(L"One")),
                                       Pair(ChangeKind::keyAdded, shown(L"One\\Two")),
                                       Pair(ChangeKind::keyAdded, shown(L"One\\Two\\Three"))));
    DWORD count = 0;
    EXPECT_EQ(registryCalls.RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, &count, nullptr,
                                             nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(count, 1u);
}

TEST_F(ShadowRegistryTest, PathThatTheSystemRefusesIsRefused) {
    const std::wstring path = L"\\" + key.path(L"One");
    HKEY opened = nullptr;
    EXPECT_EQ(open(HKEY_CURRENT_USER, path), ERROR_BAD_PATHNAME);
    EXPECT_EQ(registryCalls.RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0,
                                            KEY_READ, nullptr, &opened, nullptr),
              ERROR_BAD_PATHNAME);
}

TEST_F(ShadowRegistryTest, KeyThatTheRunHasNotOpenedIsTheSystems) {
    const std::wstring path = key.make(L"One");
    key.make(L"One\\Two");
    HKEY opened = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_ALL_ACCESS, &opened),
              ERROR_SUCCESS);

    DWORD count = 0;
    EXPECT_EQ(registryCalls.RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, &count, nullptr,
                                             nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(count, 1u);
    wchar_t name[8];
    DWORD length = 8;
    EXPECT_EQ(
        registryCalls.RegEnumKeyExW(opened, 0, name, &length, nullptr, nullptr, nullptr, nullptr),
        ERROR_SUCCESS);
    EXPECT_STREQ(name, L"Two");
    EXPECT_EQ(registryCalls.RegSetValueExW(opened, L"V", 0, REG_SZ, nullptr, 0),
              ERROR_INVALID_HANDLE);
    EXPECT_EQ(registryCalls.RegCloseKey(opened), ERROR_SUCCESS);
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ShadowRegistryTest, RemovedTreeIsGoneThoughItStays) {
    key.make(L"One\\Two\\Three");
    EXPECT_TRUE(make(L"One\\New"));
    planned.changes.clear();

    EXPECT_TRUE(removeTree(L"One"));

    EXPECT_EQ(open(L"One\\Two"), ERROR_FILE_NOT_FOUND);
    EXPECT_TRUE(keyExists(key.path(L"One\\Two\\Three")));
    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::keyRemoved, shown(L"One\\New")),
                                       Pair(ChangeKind::keyRemoved, shown(L"One\\Two\\Three")),
                                       Pair(ChangeKind::keyRemoved, shown(L"One\\Two")),
                                       Pair(ChangeKind::keyRemoved, shown(L"One"))));
}

TEST_F(ShadowRegistryTest, KeyMadeAnewIsEmpty) {
    writeValue(key.make(L"One\\Two"), L"V", {REG_DWORD, std::string(4, '\1')});
    EXPECT_TRUE(removeTree(L"One"));
    EXPECT_TRUE(make(L"One\\Two"));
    EXPECT_TRUE(set(L"One\\Two", 7));

    EXPECT_EQ(lastChange().before, L"");
    EXPECT_EQ(remove(HKEY_CURRENT_USER, key.path(L"One\\Two")), ERROR_SUCCESS);
    EXPECT_EQ(remove(HKEY_CURRENT_USER, key.path(L"One")), ERROR_SUCCESS);
}

TEST_F(ShadowRegistryTest, DeletionFailsAsTheSystemsDoes) {
    key.make(L"One\\Two");
    EXPECT_EQ(remove(HKEY_CURRENT_USER, key.path(L"One")), ERROR_ACCESS_DENIED);
    EXPECT_EQ(remove(HKEY_CURRENT_USER, key.path(L"None")), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(remove(HKEY_CURRENT_USER, L"\\" + key.path(L"One")), ERROR_BAD_PATHNAME);
    EXPECT_EQ(remove(nullptr, L"One"), ERROR_INVALID_HANDLE);
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ShadowRegistryTest, RefusedKeyIsRefused) {
    const RefusedKey refused(key.make(L"One"));

    EXPECT_EQ(open(L"One"), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(make(L"One\\Two"));
    EXPECT_FALSE(make(L"One\\Two\\Three"));
    EXPECT_FALSE(removeTree(L"One"));
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ShadowRegistryTest, ValueTellsWhatItReplaces) {
    writeValue(key.make(L"One"), L"V", {REG_DWORD, std::string("\5\0\0\0", 4)});

    EXPECT_TRUE(set(L"One", 7));
    EXPECT_EQ(lastChange().kind, ChangeKind::valueSet);
    EXPECT_EQ(lastChange().object, shown(L"One") + L"\\V");
    EXPECT_EQ(lastChange().before, L"5");
    EXPECT_EQ(lastChange().after, L"7");
    EXPECT_TRUE(set(L"One", 8));
    EXPECT_EQ(lastChange().before, L"7");
    EXPECT_EQ(readValue(key.path(L"One"), L"V").bytes[0], '\5');
}

TEST_F(ShadowRegistryTest, ValueThatCannotBeReadIsToldAsNone) {
    const std::wstring one = key.make(L"One");
    writeValue(one, L"V", {REG_DWORD, std::string("\5\0\0\0", 4)});
    HKEY opened = nullptr;
    ASSERT_EQ(
        registryCalls.RegOpenKeyExW(HKEY_CURRENT_USER, one.c_str(), 0, KEY_SET_VALUE, &opened),
        ERROR_SUCCESS);
    const RefusedKey refused(one);

    EXPECT_EQ(registryCalls.RegSetValueExW(opened, L"V", 0, REG_SZ, nullptr, 0), ERROR_SUCCESS);
    EXPECT_EQ(lastChange().before, L"");
}

TEST_F(ShadowRegistryTest, ValueWithoutANameIsTheKeys) {
    HKEY opened = nullptr;
    ASSERT_EQ(registryCalls.RegOpenKeyExW(HKEY_CURRENT_USER, key.make(L"One").c_str(), 0,
                                          KEY_SET_VALUE, &opened),
              ERROR_SUCCESS);
    EXPECT_EQ(registryCalls.RegSetValueExW(opened, nullptr, 0, REG_SZ, nullptr, 0), ERROR_SUCCESS);
    EXPECT_EQ(lastChange().object, shown(L"One") + L"\\");
}

TEST_F(ShadowRegistryTest, EmptyValueIsNoAbsentOne) {
    writeValue(key.make(L"One"), L"V", {REG_SZ, std::string("\0\0", 2)});

    EXPECT_TRUE(set(L"One", 7));
    EXPECT_EQ(lastChange().before, L"empty");
    writeValue(key.make(L"Two"), L"W", {REG_SZ, std::string("\0\0", 2)});
    EXPECT_TRUE(set(L"Two", 7));
    EXPECT_EQ(lastChange().before, L"");
}

TEST_F(ShadowRegistryTest, ValueSetToWhatItIsIsToldSo) {
    using namespace std::string_literals;
    const std::wstring one = key.make(L"One");
    struct Case {
        StoredValue there;
        StoredValue set;
        bool same;
    };
    // A text is stored with an end, whether it is set with it or not.
    const Case cases[] = {
        {{REG_DWORD, "\5\0\0\0"s}, {REG_DWORD, "\5\0\0\0"s}, true},
        {{REG_DWORD, "\5\0\0\0"s}, {REG_DWORD, "\6\0\0\0"s}, false},
        {{REG_SZ, "a\0\0\0"s}, {REG_SZ, "a\0"s}, true},
        {{REG_SZ, "a\0\0\0"s}, {REG_SZ, "a\0\0\0"s}, true},
        {{REG_EXPAND_SZ, "a\0\0\0"s}, {REG_EXPAND_SZ, "a\0"s}, true},
        {{REG_MULTI_SZ, "a\0\0\0\0\0"s}, {REG_MULTI_SZ, "a\0\0\0"s}, true},
        {{REG_SZ, "a\0b\0\0\0"s}, {REG_SZ, "a\0"s}, false},
        {{REG_SZ, "a\0\0\0"s}, {REG_BINARY, "a\0\0\0"s}, false},
        {{REG_BINARY, "a\0\0\0"s}, {REG_BINARY, "a\0"s}, false},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        const auto& [there, value, same] = cases[i];
        const std::wstring name = std::to_wstring(i);
        writeValue(one, name, there);
        EXPECT_TRUE(setValue(HKEY_CURRENT_USER, one.c_str(), name.c_str(), value.type,
                             value.bytes.data(), static_cast<uint32_t>(value.bytes.size())));
        EXPECT_EQ(lastChange().sameContent, same) << "case " << i;
    }
    EXPECT_TRUE(set(L"One", 7));
    EXPECT_FALSE(lastChange().sameContent);
    EXPECT_TRUE(set(L"One", 7));
    EXPECT_TRUE(lastChange().sameContent);
}

TEST_F(ShadowRegistryTest, ValueNeedsItsKeyAndTheRight) {
    EXPECT_FALSE(set(L"None", 7));
    HKEY opened = nullptr;
    ASSERT_EQ(registryCalls.RegOpenKeyExW(HKEY_CURRENT_USER, key.make(L"One").c_str(), 0,
                                          KEY_QUERY_VALUE, &opened),
              ERROR_SUCCESS);
    EXPECT_EQ(registryCalls.RegSetValueExW(opened, L"V", 0, REG_SZ, nullptr, 0),
              ERROR_ACCESS_DENIED);
    ASSERT_EQ(registryCalls.RegOpenKeyExW(HKEY_CURRENT_USER, key.path(L"One").c_str(), 0,
                                          KEY_SET_VALUE, &opened),
              ERROR_SUCCESS);
    EXPECT_TRUE(removeTree(L"One"));
    EXPECT_EQ(registryCalls.RegSetValueExW(opened, L"V", 0, REG_SZ, nullptr, 0), ERROR_KEY_DELETED);
}

TEST_F(ShadowRegistryTest, EnumerationTellsWhatIsAndWhatIsPlannedInOrder) {
    for (const wchar_t* name : {L"In\\b", L"In\\d", L"In\\e"})
        key.make(name);
    EXPECT_TRUE(make(L"In\\C"));
    EXPECT_TRUE(make(L"In\\a\\Deep"));
    EXPECT_TRUE(removeTree(L"In\\d"));
    HKEY opened = nullptr;
    ASSERT_EQ(registryCalls.RegOpenKeyExW(HKEY_CURRENT_USER, key.path(L"In").c_str(), 0, KEY_READ,
                                          &opened),
              ERROR_SUCCESS);

    DWORD count = 0;
    EXPECT_EQ(registryCalls.RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, &count, nullptr,
                                             nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    std::vector<std::wstring> names;
    wchar_t name[3];
    for (DWORD length = 3;
         registryCalls.RegEnumKeyExW(opened, static_cast<DWORD>(names.size()), name, &length,
                                     nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         length = 3)
        names.emplace_back(name, length);
    EXPECT_THAT(names, ElementsAre(L"a", L"b", L"C", L"e"));
    EXPECT_EQ(registryCalls.RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, nullptr, nullptr,
                                             nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(count, 4u);
    EXPECT_TRUE(removeTree(L"In\\a"));
    DWORD nameLength = 3;
    EXPECT_EQ(registryCalls.RegEnumKeyExW(opened, 0, name, &nameLength, nullptr, nullptr, nullptr,
                                          nullptr),
              ERROR_SUCCESS);
    EXPECT_STREQ(name, L"b");
    DWORD tooShort = 1;
    EXPECT_EQ(
        registryCalls.RegEnumKeyExW(opened, 0, name, &tooShort, nullptr, nullptr, nullptr, nullptr),
        ERROR_MORE_DATA);
    EXPECT_EQ(registryCalls.RegCloseKey(opened), ERROR_SUCCESS);
}

TEST_F(ShadowRegistryTest, KeyIsOneByWhateverRootItIsReached) {
    EXPECT_TRUE(make(L"One"));
    HKEY user = nullptr;
    ASSERT_EQ(RegOpenCurrentUser(KEY_READ, &user), ERROR_SUCCESS);
    std::wstring name = systemName(user).substr(std::wstring(L"\\REGISTRY\\USER\\").size());
    RegCloseKey(user);

    EXPECT_EQ(open(HKEY_USERS, name + L"\\" + key.path(L"One")), ERROR_SUCCESS);
    EXPECT_TRUE(createKey(HKEY_CLASSES_ROOT, L".temz-none"));
    EXPECT_EQ(open(HKEY_LOCAL_MACHINE, L"Software\\Classes\\.temz-none"), ERROR_SUCCESS);
}

TEST_F(ShadowRegistryTest, HiveIsNotRemoved) {
    EXPECT_EQ(remove(HKEY_LOCAL_MACHINE, L"Software"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(remove(HKEY_LOCAL_MACHINE, L""), ERROR_ACCESS_DENIED);
    EXPECT_EQ(remove(HKEY_CURRENT_USER, L""), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(deleteKeyTree(HKEY_CURRENT_USER, L""));
    EXPECT_EQ(open(HKEY_CURRENT_USER, L"Software"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(open(HKEY_CURRENT_USER, L""), ERROR_SUCCESS);
}

}  // namespace
