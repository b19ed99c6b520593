#include "motion/RegistryNames.h"

#include <gtest/gtest.h>

#include <utility>

#include "support/Text.h"

namespace {

TEST(RootFromNameTest, KnowsFivePredefinedKeys) {
    const std::pair<const wchar_t*, HKEY> rows[] = {
        {L"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},     {L"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
        {L"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},   {L"HKEY_USERS", HKEY_USERS},
        {L"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG},
    };
    for (const auto& [name, expected] : rows) {
        SCOPED_TRACE(narrow(name));
        HKEY root = nullptr;

        EXPECT_TRUE(rootFromName(name, root));

        EXPECT_EQ(root, expected);
    }
}

TEST(RootFromNameTest, SignExtendsTheNumberOfTheKey) {
    const std::pair<const wchar_t*, uint64_t> rows[] = {
        {L"HKEY_CLASSES_ROOT", 0xFFFFFFFF80000000},   {L"HKEY_CURRENT_USER", 0xFFFFFFFF80000001},
        {L"HKEY_LOCAL_MACHINE", 0xFFFFFFFF80000002},  {L"HKEY_USERS", 0xFFFFFFFF80000003},
        {L"HKEY_CURRENT_CONFIG", 0xFFFFFFFF80000005},
    };
    for (const auto& [name, expected] : rows) {
        SCOPED_TRACE(narrow(name));
        HKEY root = nullptr;

        rootFromName(name, root);

        EXPECT_EQ(reinterpret_cast<uint64_t>(root), expected);
    }
}

TEST(RootFromNameTest, OtherNamesAreUnknownAndChangeNothing) {
    for (const wchar_t* name :
         {L"", L"HKLM", L"HKCU", L"hkey_current_user", L"HKEY_CURRENT_USE", L"HKEY_CURRENT_USERS",
          L"HKEY_CURRENT_USER ", L" HKEY_USERS", L"HKEY_CURRENT_USER\\", L"HKEY_PERFORMANCE_DATA",
          L"HKEY_DYN_DATA", L"2147483649"}) {
        SCOPED_TRACE(narrow(name));
        HKEY root = HKEY_PERFORMANCE_DATA;

        EXPECT_FALSE(rootFromName(name, root));

        EXPECT_EQ(root, HKEY_PERFORMANCE_DATA);
    }
}

TEST(TypeFromNameTest, KnowsThreeTypes) {
    const std::pair<const wchar_t*, uint32_t> rows[] = {
        {L"REG_SZ", 1}, {L"REG_DWORD", 4}, {L"REG_MULTI_SZ", 7}};
    for (const auto& [name, expected] : rows) {
        SCOPED_TRACE(narrow(name));
        uint32_t type = 0;

        EXPECT_TRUE(typeFromName(name, type));

        EXPECT_EQ(type, expected);
    }
}

TEST(TypeFromNameTest, OtherNamesAreUnknownAndChangeNothing) {
    for (const wchar_t* name :
         {L"", L"REG_BINARY", L"REG_EXPAND_SZ", L"REG_QWORD", L"REG_NONE", L"reg_sz", L"REG_S",
          L"REG_SZ ", L" REG_SZ", L"REG_DWORD_BIG_ENDIAN", L"DWORD", L"1"}) {
        SCOPED_TRACE(narrow(name));
        uint32_t type = 77;

        EXPECT_FALSE(typeFromName(name, type));

        EXPECT_EQ(type, 77u);
    }
}

}  // namespace
