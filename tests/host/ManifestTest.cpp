// What the host programs say about themselves to Windows.

#include <gmock/gmock.h>
#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>

#include "support/TestFolder.h"

using testing::HasSubstr;
using testing::Not;

namespace {

struct LibraryCloser {
    void operator()(HMODULE library) const { FreeLibrary(library); }
};
using LibraryPtr = std::unique_ptr<std::remove_pointer_t<HMODULE>, LibraryCloser>;

/// The manifest that lies in a program, as Windows finds it there.
std::string manifestOf(const std::wstring& program) {
    const LibraryPtr image(LoadLibraryExW((testProgramDirectory() + L"\\" + program).c_str(),
                                          nullptr, LOAD_LIBRARY_AS_DATAFILE));
    const HRSRC place = FindResourceW(image.get(), CREATEPROCESS_MANIFEST_RESOURCE_ID, RT_MANIFEST);
    if (!place)
        return "<none>";
    const HGLOBAL manifest = LoadResource(image.get(), place);
    return {static_cast<const char*>(LockResource(manifest)), SizeofResource(image.get(), place)};
}

class ManifestTest : public testing::TestWithParam<const wchar_t*> {};

TEST_P(ManifestTest, LeavesTheRightsToWhoeverStartsTheProgram) {
    EXPECT_THAT(manifestOf(GetParam()),
                HasSubstr("<requestedExecutionLevel level=\"asInvoker\" uiAccess=\"false\"/>"));
}

TEST_P(ManifestTest, AsksForUtf8) {
    EXPECT_THAT(manifestOf(GetParam()),
                HasSubstr("<activeCodePage xmlns=\"http://schemas.microsoft.com/SMI/2019/"
                          "WindowsSettings\">UTF-8</activeCodePage>"));
}

TEST_P(ManifestTest, ClaimsNoLongPaths) {
    EXPECT_THAT(manifestOf(GetParam()), Not(HasSubstr("longPathAware")));
}

TEST_P(ManifestTest, NamesTheVersionsOfWindowsUpTo11) {
    EXPECT_THAT(manifestOf(GetParam()),
                HasSubstr("<supportedOS Id=\"{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}\"/>"));
}

INSTANTIATE_TEST_SUITE_P(Hosts, ManifestTest,
                         testing::Values(L"temz.exe", L"temz_minimal_host.exe"));

}  // namespace
