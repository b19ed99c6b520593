// Checks the file that is shipped, by its headers and its resource.

#include <gmock/gmock.h>
#include <windows.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsSubsetOf;

namespace {

/// The loaded library, in which the system has laid the file out by its headers.
class LibraryFileTest : public testing::Test {
protected:
    LibraryFileTest() {
        const auto* dos = at<IMAGE_DOS_HEADER>(0);
        headers = at<IMAGE_NT_HEADERS64>(static_cast<DWORD>(dos->e_lfanew));
    }

    template <class Record>
    const Record* at(DWORD address) const {
        return reinterpret_cast<const Record*>(image + address);
    }

    template <class Record>
    const Record* directory(int index) const {
        return at<Record>(headers->OptionalHeader.DataDirectory[index].VirtualAddress);
    }

    std::string path() const {
        char path[MAX_PATH];
        GetModuleFileNameA(module, path, MAX_PATH);
        return path;
    }

    const HMODULE module = GetModuleHandleW(L"TEMZ.dll");
    const std::byte* const image = reinterpret_cast<const std::byte*>(module);
    const IMAGE_NT_HEADERS64* headers;
};

TEST_F(LibraryFileTest, IsA64BitLibrary) {
    EXPECT_EQ(headers->FileHeader.Machine, IMAGE_FILE_MACHINE_AMD64);
    EXPECT_EQ(headers->OptionalHeader.Magic, IMAGE_NT_OPTIONAL_HDR64_MAGIC);
    EXPECT_TRUE(headers->FileHeader.Characteristics & IMAGE_FILE_DLL);
}

TEST_F(LibraryFileTest, ExportsItsTwoFunctionsByTheirPlainNames) {
    const auto* exports = directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    const auto* names = at<DWORD>(exports->AddressOfNames);
    std::vector<std::string> exported;
    for (DWORD index = 0; index < exports->NumberOfNames; ++index)
        exported.push_back(at<char>(names[index]));

    EXPECT_EQ(exports->NumberOfFunctions, 2u);
    EXPECT_THAT(exported, ElementsAre("CreateContextObject", "FreeContextObject"));
    EXPECT_STREQ(at<char>(exports->Name), "TEMZ.dll");
}

// Windows takes these from its own directory, and all others from the host's folder first.
TEST_F(LibraryFileTest, ImportsOnlyWhatNobodyCanPutInFrontOfTheSystems) {
    std::vector<std::string> imported;
    for (const auto* import = directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
         import->Name != 0; ++import) {
        imported.push_back(at<char>(import->Name));
        CharUpperA(imported.back().data());
    }

    EXPECT_THAT(imported, IsSubsetOf({"ADVAPI32.DLL", "KERNEL32.DLL", "MSVCRT.DLL", "OLE32.DLL",
                                      "SHELL32.DLL", "USER32.DLL"}));
}

TEST_F(LibraryFileTest, IsLoadedAtRandomAddressesWithoutExecutableData) {
    const WORD wanted = IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA |
                        IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT;

    EXPECT_EQ(headers->OptionalHeader.DllCharacteristics & wanted, wanted);
    EXPECT_FALSE(headers->FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED);
    EXPECT_NE(headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0u);
    const auto* section = IMAGE_FIRST_SECTION(headers);
    for (int index = 0; index < headers->FileHeader.NumberOfSections; ++index)
        EXPECT_FALSE(section[index].Characteristics & IMAGE_SCN_MEM_WRITE &&
                     section[index].Characteristics & IMAGE_SCN_MEM_EXECUTE);
}

TEST_F(LibraryFileTest, IsTheSameForTheSameSources) {
    EXPECT_EQ(headers->FileHeader.TimeDateStamp, 0u);
}

/// The version resource of the library.
class VersionResourceTest : public LibraryFileTest {
protected:
    VersionResourceTest() {
        block.resize(GetFileVersionInfoSizeA(path().c_str(), nullptr));
        const auto size = static_cast<DWORD>(block.size());
        EXPECT_TRUE(GetFileVersionInfoA(path().c_str(), 0, size, block.data()));
    }

    std::string text(const std::string& name) {
        void* value = nullptr;
        UINT length = 0;
        VerQueryValueA(block.data(), ("\\StringFileInfo\\040904B0\\" + name).c_str(), &value,
                       &length);
        return length ? static_cast<const char*>(value) : "";
    }

    std::vector<std::byte> block;
};

TEST_F(VersionResourceTest, NamesTheLibraryAndItsVersion) {
    EXPECT_EQ(text("FileVersion"), TEMZ_VERSION);
    EXPECT_EQ(text("ProductVersion"), TEMZ_VERSION);
    EXPECT_EQ(text("ProductName"), "TEMZ");
    EXPECT_EQ(text("OriginalFilename"), "TEMZ.dll");
    EXPECT_NE(text("FileDescription"), "");
}

TEST_F(VersionResourceTest, NamesItsAuthors) {
    EXPECT_EQ(text("CompanyName"), "The TEMZ authors");
    EXPECT_EQ(text("LegalCopyright"), "Copyright (c) 2026 The TEMZ authors");
}

TEST_F(VersionResourceTest, HoldsTheVersionAsANumber) {
    VS_FIXEDFILEINFO* info = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(block.data(), "\\", reinterpret_cast<void**>(&info), &length));

    const std::string version = std::to_string(HIWORD(info->dwFileVersionMS)) + "." +
                                std::to_string(LOWORD(info->dwFileVersionMS)) + "." +
                                std::to_string(HIWORD(info->dwFileVersionLS));
    EXPECT_EQ(version, TEMZ_VERSION);
    EXPECT_EQ(info->dwProductVersionMS, info->dwFileVersionMS);
    EXPECT_EQ(info->dwProductVersionLS, info->dwFileVersionLS);
    EXPECT_EQ(info->dwFileType, DWORD{VFT_DLL});
}

}  // namespace
