#include "support/SmallDisk.h"

#include <windows.h>

#include "support/TestFolder.h"

namespace {

TEST(SmallDiskTest, IsFullWhenItHasBeenFilled) {
    REQUIRES_SMALL_DISK();
    const TestFolder folder;
    const std::wstring source = folder.write(L"source", std::string(5000, 'x'));
    const std::wstring directory = folder.makeDirectory(L"disk");
    const std::wstring target = directory + L"\\target";
    {
        const SmallDisk disk(directory, 65536);
        disk.fill(4096);

        EXPECT_FALSE(CopyFileW(source.c_str(), target.c_str(), FALSE));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_DISK_FULL});

        disk.makeRoom();
        EXPECT_TRUE(CopyFileW(source.c_str(), target.c_str(), FALSE));
    }
    EXPECT_FALSE(exists(target));
}

}  // namespace
