#include "plan/ShadowLinks.h"

#include "plan/PlanTest.h"
#include "system/FileOperations.h"
#include "system/ShellLink.h"

using testing::ElementsAre;
using testing::Pair;

namespace {

class ShadowLinksTest : public PlanTest {
protected:
    const std::wstring target = folder.write(L"a.txt", "x");
};

TEST_F(ShadowLinksTest, LinkIsThereThoughItIsNotWritten) {
    const std::wstring link = folder.path(L"a.lnk");

    EXPECT_EQ(createShellLink(link.c_str(), target.c_str(), nullptr, nullptr), 0);

    EXPECT_TRUE(fileExists(link.c_str()));
    EXPECT_FALSE(exists(link));
    ASSERT_THAT(changes(), ElementsAre(Pair(ChangeKind::linkWritten, link)));
    EXPECT_EQ(lastChange().source, target);
    EXPECT_EQ(deleteFile(link.c_str()), 0);
    EXPECT_FALSE(fileExists(link.c_str()));
}

TEST_F(ShadowLinksTest, LinkNeedsItsDirectory) {
    EXPECT_EQ(
        createShellLink(folder.path(L"none\\a.lnk").c_str(), target.c_str(), nullptr, nullptr), 0);
    EXPECT_TRUE(changes().empty());
    EXPECT_EQ(linkCalls.Save(nullptr, folder.path(L"none\\a.lnk").c_str(), TRUE),
              HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
}

}  // namespace
