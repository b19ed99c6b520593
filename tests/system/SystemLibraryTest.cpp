#include "system/SystemLibrary.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// A library that nothing else in this program uses.
constexpr wchar_t spareName[] = L"lz32.dll";
constexpr char spareFunction[] = "LZClose";

std::wstring pathOf(HMODULE module) {
    wchar_t path[MAX_PATH];
    return std::wstring(path, GetModuleFileNameW(module, path, MAX_PATH));
}

std::wstring inSystemDirectory(const std::wstring& name) {
    wchar_t directory[MAX_PATH];
    return std::wstring(directory, GetSystemDirectoryW(directory, MAX_PATH)) + L'\\' + name;
}

class SystemLibraryTest : public testing::Test {
protected:
    SystemLibraryTest() { EXPECT_EQ(GetModuleHandleW(spareName), nullptr); }
    ~SystemLibraryTest() override { EXPECT_EQ(GetModuleHandleW(spareName), nullptr); }

    /// Ends the one use that a library makes of its module.
    static void releaseSpare() { FreeLibrary(GetModuleHandleW(spareName)); }
};

TEST_F(SystemLibraryTest, IsLoadedFromTheSystemDirectoryAtItsFirstUse) {
    SystemLibrary library(spareName);
    EXPECT_EQ(GetModuleHandleW(spareName), nullptr);

    void* const function = library.find(spareFunction);

    const HMODULE module = GetModuleHandleW(spareName);
    EXPECT_EQ(lstrcmpiW(pathOf(module).c_str(), inSystemDirectory(spareName).c_str()), 0);
    EXPECT_NE(function, nullptr);
    EXPECT_EQ(function, reinterpret_cast<void*>(GetProcAddress(module, spareFunction)));
    releaseSpare();
}

TEST_F(SystemLibraryTest, StaysLoadedAndIsLoadedOnce) {
    {
        SystemLibrary library(spareName);
        for (int use = 0; use < 3; ++use)
            EXPECT_NE(library.find(spareFunction), nullptr);
    }
    EXPECT_NE(GetModuleHandleW(spareName), nullptr);

    releaseSpare();

    EXPECT_EQ(GetModuleHandleW(spareName), nullptr);
}

/// Stands beside this program.
constinit SystemLibrary neighbour(L"temz_version_1.2.0.0.dll");

TEST_F(SystemLibraryTest, IsLookedForNowhereElse) {
    SetLastError(ERROR_SUCCESS);

    EXPECT_EQ(neighbour.find("any"), nullptr);

    EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
    const HMODULE module = LoadLibraryW(L"temz_version_1.2.0.0.dll");
    EXPECT_NE(module, nullptr);
    FreeLibrary(module);
}

constinit SystemLibrary kernel(L"kernel32.dll");

TEST(CallSystemTest, CallsTheFunctionOfThatName) {
    BOOL (*const isValidCodePage)(UINT) = callSystem<kernel, "IsValidCodePage">;

    EXPECT_TRUE(isValidCodePage(CP_UTF8));
    EXPECT_FALSE(isValidCodePage(4711));
}

TEST(CallSystemTest, FailsLikeAnyCallWhereItCannotBeBound) {
    DWORD (*const inAbsentLibrary)(int) = callSystem<neighbour, "IsValidCodePage">;
    DWORD (*const absentFunction)(int) = callSystem<kernel, "IsNoFunction">;

    SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(inAbsentLibrary(1), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});

    EXPECT_EQ(absentFunction(1), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
}

TEST(CallSystemTest, IsNoSuccessOfTheRegistryWhereItCannotBeBound) {
    LSTATUS (*const inAbsentLibrary)(HKEY) = callSystem<neighbour, "RegCloseKey">;

    EXPECT_NE(inAbsentLibrary(HKEY_CURRENT_USER), ERROR_SUCCESS);
}

}  // namespace
