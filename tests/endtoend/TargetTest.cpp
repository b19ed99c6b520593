#include <gmock/gmock.h>
#include <windows.h>

#include "support/HostTest.h"
#include "support/Requirements.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

using TargetTest = HostTest;

void makeReadOnly(const std::wstring& path) {
    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY));
}

TEST_F(TargetTest, IsRemovedThoughReadOnly) {
    makeReadOnly(folder.write(L"app\\a.txt", "old"));
    ASSERT_TRUE(load(componentScript(file(L"a.txt", "new"))));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(TargetTest, IsNotReplacedWhenItIsReadOnly) {
    REQUIRES_ORDINARY_USER();
    makeReadOnly(folder.write(L"app\\a.txt", "old"));
    ASSERT_TRUE(load(componentScript(file(L"a.txt", "new"))));

    EXPECT_EQ(run(RUNMODE_UPGRADE), ERROR_ACCESS_DENIED);

    EXPECT_EQ(product().errorInfo.systemError, DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(product().errorInfo.message, systemMessage(ERROR_ACCESS_DENIED));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "old")));
}

TEST_F(TargetTest, BarsItsOwnUpgradeWhenItsSourceIsReadOnly) {
    REQUIRES_ORDINARY_USER();
    const std::wstring source = payload.write(L"a.txt", "new");
    makeReadOnly(testProgramDirectory() + L"\\" + source);
    ASSERT_TRUE(load(componentScript("<File Name='a.txt' Source='" + narrow(source) + "'/>")));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_EQ(run(RUNMODE_UPGRADE), ERROR_ACCESS_DENIED);
    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(TargetTest, StaysWhenADirectoryHasItsName) {
    folder.makeDirectory(L"app\\a.txt");
    ASSERT_TRUE(load(componentScript(file(L"a.txt", "new"))));

    EXPECT_EQ(run(RUNMODE_INSTALL), ERROR_ACCESS_DENIED);
    EXPECT_EQ(run(RUNMODE_UNINSTALL), -1);

    EXPECT_TRUE(exists(app(L"a.txt")));
}

TEST_F(TargetTest, IsRemovedThoughItsDirectoryIsMissing) {
    ASSERT_TRUE(load(componentScript(file(L"a.txt", "new"))));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_FALSE(exists(app()));
}

TEST_F(TargetTest, GetsTheMissingDirectoriesOfItsName) {
    ASSERT_TRUE(load(componentScript(file(L"a\\b/c\\d.txt", "new"))));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a\\b\\c\\d.txt", "new")));
}

TEST_F(TargetTest, MayLieDeepInNestedDirectories) {
    constexpr int depth = 60;
    std::string opened, closed;
    std::wstring path;
    for (int level = 0; level < depth; ++level) {
        opened += "<Directory Path='d'>";
        closed += "</Directory>";
        path += L"d\\";
    }
    ASSERT_TRUE(load("<S><Product><Directory Path='" + narrow(app()) + "'>" + opened +
                     "<Component Id='C'>" + file(L"a.txt", "new") + "</Component>" + closed +
                     "</Directory><InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>"
                     "</InstallExecuteSequence></Product></S>"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(path + L"a.txt", "new")));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(TargetTest, MayBeOneOfMany) {
    constexpr int count = 120;
    std::string files;
    for (int number = 0; number < count; ++number)
        files += file(std::to_wstring(number) + L".txt", std::to_string(number));
    ASSERT_TRUE(load(componentScript(files)));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_EQ(installedFiles().size(), size_t{count});
    EXPECT_EQ(observer.updates.back().progress, 99u);

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(TargetTest, MayBeEmptyOrLarge) {
    const std::string large(10'000'000, 'x');
    ASSERT_TRUE(load(componentScript(file(L"empty", "") + file(L"large", large))));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_EQ(readFile(app(L"empty")), "");
    EXPECT_TRUE(readFile(app(L"large")) == large);
}

}  // namespace
