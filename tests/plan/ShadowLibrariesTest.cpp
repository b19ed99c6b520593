#include "plan/ShadowLibraries.h"

#include <cstring>

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
          folder.write(L"text.dll", "text"), folder.write(L"empty.dll", ""),
          testProgramDirectory() + L"\\temz_test_actions.", std::wstring(L"x.")}) {
        const DWORD real = errorOf(LoadLibraryW(path.c_str()) != nullptr);
        EXPECT_NE(real, 0u);
        EXPECT_EQ(load(path), real) << testing::PrintToString(path);
    }
}

TEST_F(ShadowLibrariesTest, LibraryIsKnownInEachSpellingOfItsPath) {
    const std::wstring plain = folder.path(L"plain");
    ASSERT_TRUE(fileCalls.CopyFileW(actions.c_str(), plain.c_str(), FALSE));
    EXPECT_EQ(load(plain + L"."), 0u);
    EXPECT_EQ(lastChange().object, plain);
    EXPECT_EQ(load(L"\\\\?\\" + actions), 0u);
    EXPECT_EQ(load(plain), DWORD{ERROR_MOD_NOT_FOUND});
}

TEST_F(ShadowLibrariesTest, DirectoryIsNoLibrary) {
    EXPECT_NE(load(folder.makeDirectory(L"directory.dll")), 0u);
}

TEST_F(ShadowLibrariesTest, WhatWasNotLoadedHasNoFunctionsAndIsNotLetGo) {
    EXPECT_EQ(libraryCalls.GetProcAddress(nullptr, "countCalls"), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
    EXPECT_EQ(errorOf(libraryCalls.FreeLibrary(nullptr)), DWORD{ERROR_INVALID_HANDLE});
}

uint32_t neverCalled(CustomActionParams*, wchar_t*, uint32_t) {
    ADD_FAILURE() << "called";
    return 1;
}

TEST_F(ShadowLibrariesTest, FunctionOfNoLibraryIsNotCalledEither) {
    EXPECT_EQ(actionCalls.CallEntry(&neverCalled, nullptr, nullptr, 0), 0u);
    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::actionCalled, L"")));
}

/// Changes a library that is sound.
using Damage = void (*)(std::string& bytes, IMAGE_NT_HEADERS64& headers);

class DamagedLibraryTest : public ShadowLibrariesTest {
protected:
    std::wstring damaged(Damage damage) const {
        std::string bytes = readFile(actions);
        IMAGE_NT_HEADERS64 headers;
        LONG at = 0;
        std::memcpy(&at, &bytes[offsetof(IMAGE_DOS_HEADER, e_lfanew)], sizeof at);
        std::memcpy(&headers, &bytes[static_cast<size_t>(at)], sizeof headers);
        const size_t size = bytes.size();
        damage(bytes, headers);
        if (bytes.size() == size)
            std::memcpy(&bytes[static_cast<size_t>(at)], &headers, sizeof headers);
        return folder.write(L"damaged.dll", bytes);
    }

    static IMAGE_DATA_DIRECTORY& exportsOf(IMAGE_NT_HEADERS64& headers) {
        return headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    }

    template <class Record>
    static void put(std::string& bytes, size_t at, const Record& record) {
        bytes.replace(at, sizeof record, reinterpret_cast<const char*>(&record), sizeof record);
    }

    static void setOffset(std::string& bytes, LONG offset) {
        put(bytes, offsetof(IMAGE_DOS_HEADER, e_lfanew), offset);
    }

    /// Has the library export one name, whose address is found at another. Each address is an
    /// offset in the file then, and what is exported is told in place of the program for DOS.
    static void exportOnly(DWORD name, DWORD addressOfName, std::string& bytes,
                           IMAGE_NT_HEADERS64& headers) {
        LONG at = 0;
        std::memcpy(&at, &bytes[offsetof(IMAGE_DOS_HEADER, e_lfanew)], sizeof at);
        IMAGE_SECTION_HEADER wholeFile{};
        wholeFile.SizeOfRawData = UINT32_MAX;
        put(bytes, static_cast<size_t>(at) + sizeof headers, wholeFile);
        IMAGE_EXPORT_DIRECTORY directory{};
        directory.NumberOfNames = 1;
        directory.AddressOfNames = addressOfName;
        put(bytes, sizeof(IMAGE_DOS_HEADER), directory);
        put(bytes, nameAddress, name);
        exportsOf(headers).VirtualAddress = sizeof(IMAGE_DOS_HEADER);
    }

    static constexpr DWORD nameAddress = sizeof(IMAGE_DOS_HEADER) + sizeof(IMAGE_EXPORT_DIRECTORY);
};

TEST_F(DamagedLibraryTest, LibraryWithoutSoundHeadersIsNone) {
    const Damage damages[] = {
        [](std::string& bytes, auto&) { bytes[0] = 'X'; },
        [](std::string& bytes, auto&) { setOffset(bytes, -1); },
        [](std::string& bytes, auto&) { setOffset(bytes, INT32_MAX); },
        [](std::string& bytes, auto&) { bytes.resize(sizeof(IMAGE_DOS_HEADER) + 4); },
        [](std::string&, auto& headers) { headers.Signature = 0; },
        [](std::string&, auto& headers) { headers.FileHeader.Machine = IMAGE_FILE_MACHINE_I386; },
        [](std::string&, auto& headers) {
            headers.OptionalHeader.Magic = IMAGE_NT_OPTIONAL_HDR32_MAGIC;
        },
    };
    for (size_t i = 0; i < std::size(damages); ++i)
        EXPECT_EQ(load(damaged(damages[i])), DWORD{ERROR_BAD_EXE_FORMAT}) << "damage " << i;
}

TEST_F(DamagedLibraryTest, NameIsReadWhereItsAddressPoints) {
    const std::wstring path = damaged([](std::string& bytes, auto& headers) {
        put(bytes, nameAddress + sizeof nameAddress, "only");
        exportOnly(nameAddress + sizeof nameAddress, nameAddress, bytes, headers);
    });
    const HMODULE library = libraryCalls.LoadLibraryW(path.c_str());
    EXPECT_NE(libraryCalls.GetProcAddress(library, "only"), nullptr);
    EXPECT_EQ(libraryCalls.GetProcAddress(library, "countCalls"), nullptr);
}

TEST_F(DamagedLibraryTest, FunctionsThatAreNotInTheFileAreNotThere) {
    const Damage damages[] = {
        [](std::string&, auto&) {},
        [](std::string&, auto& headers) { exportsOf(headers).Size = 0; },
        [](std::string&, auto& headers) { exportsOf(headers).VirtualAddress = INT32_MAX; },
        [](std::string&, auto& headers) { exportsOf(headers).VirtualAddress = 0; },
        [](std::string&, auto& headers) { headers.FileHeader.NumberOfSections = 0; },
        [](std::string&, auto& headers) { headers.FileHeader.SizeOfOptionalHeader = UINT16_MAX; },
        [](std::string&, auto& headers) {
            headers.FileHeader.NumberOfSections = UINT16_MAX;
            exportsOf(headers).VirtualAddress = INT32_MAX;
        },
        [](std::string& bytes, auto& headers) {
            setOffset(bytes, static_cast<LONG>(bytes.size()));
            bytes.append(reinterpret_cast<const char*>(&headers), sizeof headers);
        },
        [](std::string& bytes, auto& headers) {
            exportOnly(nameAddress, INT32_MAX, bytes, headers);
        },
        [](std::string& bytes, auto& headers) {
            exportOnly(INT32_MAX, nameAddress, bytes, headers);
        },
    };
    for (size_t i = 0; i < std::size(damages); ++i) {
        const HMODULE library = libraryCalls.LoadLibraryW(damaged(damages[i]).c_str());
        ASSERT_NE(library, nullptr) << "damage " << i;
        EXPECT_EQ(libraryCalls.GetProcAddress(library, "countCalls") != nullptr, i == 0)
            << "damage " << i;
    }
}

}  // namespace
