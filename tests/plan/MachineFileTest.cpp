#include "plan/MachineFile.h"

#include <gtest/gtest.h>

#include "SizeText.h"
#include "support/TestFolder.h"

namespace {

TEST(MachineFile, TimeThatIsNoneIsLeftOutOfTheText) {
    constexpr FILETIME none{UINT32_MAX, UINT32_MAX};
    EXPECT_EQ(fileText(std::nullopt, 1, none), L"1 byte");
    EXPECT_EQ(fileText(uint64_t{1} << 48 | 2, 3, none), L"1.0.0.2, 3 bytes");
}

TEST(MachineFile, SizeIsToldInTheLargestUnitThereIs) {
    EXPECT_EQ(sizeText(uint64_t{3} << 30), L"3.0 GB");
    EXPECT_EQ(sizeText(uint64_t{1} << 60), L"1048576 TB");
}

TEST(MachineFile, OnlyWhatCanBeReadHasTheSameContent) {
    const TestFolder folder;
    const std::wstring file = folder.write(L"a.txt", "x");
    const std::wstring none = folder.path(L"none");
    EXPECT_TRUE(haveSameContent(file, folder.write(L"b.txt", "x")));
    EXPECT_FALSE(haveSameContent(file, none));
    EXPECT_FALSE(haveSameContent(none, file));
}

TEST(MachineFile, ProgramIsKnownByItsBeginning) {
    const TestFolder folder;
    EXPECT_TRUE(isProgramFile(folder.write(L"program", "MZ.")));
    for (const char* content : {"", "M", "ZM"})
        EXPECT_FALSE(isProgramFile(folder.write(L"other", content))) << content;
    EXPECT_FALSE(isProgramFile(folder.path(L"none")));
}

}  // namespace
