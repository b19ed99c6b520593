#include "plan/ShadowLibraries.h"

#include "plan/PlanTest.h"

using testing::ElementsAre;
using testing::Pair;

namespace {

class ShadowLibrariesTest : public PlanTest {
protected:
    static DWORD load(const std::wstring& name) {
        return errorOf(libraryCalls.LoadLibraryW(name.c_str()) != nullptr);
    }

    const std::wstring actions = testProgramDirectory() + L"\\temz_test_actions.dll";
};

TEST_F(ShadowLibrariesTest, LibraryThatIsCopiedBeforeHasItsFunctionsCalledInVain) {
    const std::wstring copy = folder.path(L"lib.dll");
    ASSERT_TRUE(fileCalls.CopyFileW(actions.c_str(), copy.c_str(), FALSE));
    planned.changes.clear();

    const HMODULE library = libraryCalls.LoadLibraryW(copy.c_str());
    const FARPROC entry = libraryCalls.GetProcAddress(library, "countCalls");
    EXPECT_EQ(libraryCalls.GetProcAddress(library, "CountCalls"), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
    ASSERT_NE(entry, nullptr);
    CustomActionParams params{};
    EXPECT_EQ(
        actionCalls.CallEntry(reinterpret_cast<CustomActionEntry>(reinterpret_cast<void*>(entry)),
                              &params, nullptr, 0),
        0u);
    EXPECT_TRUE(libraryCalls.FreeLibrary(library));

    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::libraryLoaded, copy),
                                       Pair(ChangeKind::actionCalled, copy + L"!countCalls")));
    EXPECT_TRUE(lastChange().unforeseeable);
    EXPECT_EQ(GetModuleHandleW(L"lib.dll"), nullptr);
}

TEST_F(ShadowLibrariesTest, LibraryIsFoundWhereTheSystemLooks) {
    EXPECT_EQ(load(L"temz_test_actions"), 0u);
    EXPECT_EQ(lastChange().object, actions);
    EXPECT_EQ(load(L"KERNEL32.dll"), 0u);
    EXPECT_EQ(load(L"version.dll"), 0u);
}

TEST_F(ShadowLibrariesTest, WhatIsNoLibraryFailsAsTheSystemsDoes) {
    for (const std::wstring& path :
         {folder.path(L"none.dll"), folder.path(L"none\\none.dll"), std::wstring(L"temz-none"),
          folder.write(L"text.dll", "text"), folder.write(L"empty.dll", "")}) {
        const DWORD real = errorOf(LoadLibraryW(path.c_str()) != nullptr);
        EXPECT_NE(real, 0u);
        EXPECT_EQ(load(path), real) << testing::PrintToString(path);
    }
}

}  // namespace
