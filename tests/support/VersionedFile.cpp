#include "support/VersionedFile.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "support/TestFolder.h"

void placeVersionedFile(const std::wstring& path, const std::wstring& version) {
    const std::wstring library = testProgramDirectory() + L"\\temz_version_" + version + L".dll";
    EXPECT_TRUE(CopyFileW(library.c_str(), path.c_str(), FALSE));
}
