#include <gmock/gmock.h>
#include <windows.h>

#include <optional>

#include "support/HostTest.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/Requirements.h"
#include "support/Restart.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

namespace {

/// A product that is to replace "a.txt", which holds "old".
class DelayedReplacementTest : public HostTest {
protected:
    DelayedReplacementTest() { writeOld(); }

    void SetUp() override { REQUIRES_WINE("restarts the machine"); }

    void writeOld() { folder.write(L"app\\a.txt", "old"); }

    bool loadFile(std::string_view content, const std::string& attributes = {}) {
        return load(componentScript(file(L"a.txt", content, attributes)));
    }

    std::optional<LockedFile> lock;
};

constexpr char delayed[] = "SupportDelayInstall='yes'";

TEST_F(DelayedReplacementTest, PutsTheFileInPlaceAtTheNextRestart) {
    const LogFile log;
    ASSERT_TRUE(loadFile("new", delayed));
    lock.emplace(app(L"a.txt"));

    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);

    lock.reset();
    EXPECT_TRUE(product().rebootRequired);
    EXPECT_THAT(log.lines(), ElementsAre(StartsWith("[WARNNING] Succeed to MoveFileEx, file=")));
    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "old"), Pair(L"a.txt!@#$%", "new")));
    restart();
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "new")));
}

TEST_F(DelayedReplacementTest, InstallsTheOtherFilesAtOnce) {
    ASSERT_TRUE(load(componentScript(
        file(L"0.txt", "0") + file(L"a.txt", "new") + file(L"b.txt", "b"), delayed)));
    lock.emplace(app(L"a.txt"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    lock.reset();
    EXPECT_TRUE(product().rebootRequired);
    restart();
    EXPECT_THAT(installedFiles(),
                ElementsAre(Pair(L"0.txt", "0"), Pair(L"a.txt", "new"), Pair(L"b.txt", "b")));
}

TEST_F(DelayedReplacementTest, IsOvertakenByAReplacementAtOnce) {
    ASSERT_TRUE(loadFile("new", delayed));
    lock.emplace(app(L"a.txt"));
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    lock.reset();

    context->unload();
    ASSERT_TRUE(loadFile("newer", delayed));
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);

    EXPECT_FALSE(product().rebootRequired);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "newer")));
    restart();
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "newer")));
}

TEST_F(DelayedReplacementTest, IsOfTheLastVersionThatWasInstalledBeforeTheRestart) {
    const LogFile log;
    ASSERT_TRUE(loadFile("new", delayed));
    lock.emplace(app(L"a.txt"));
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);

    context->unload();
    ASSERT_TRUE(loadFile("newer", delayed));
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);

    lock.reset();
    EXPECT_TRUE(product().rebootRequired);
    EXPECT_THAT(log.lines(), ElementsAre(StartsWith("[WARNNING] Succeed to MoveFileEx, file="),
                                         StartsWith("[WARNNING] Succeed to MoveFileEx, file=")));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "old"), Pair(L"a.txt!@#$%", "newer")));
    restart();
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "newer")));
    EXPECT_FALSE(pendingReplacements());
}

// The staged file is cleared away ahead of each attempt.
TEST_F(DelayedReplacementTest, IsLostWhenTheNextVersionCannotBeCopied) {
    ASSERT_TRUE(loadFile("new", delayed));
    lock.emplace(app(L"a.txt"));
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);

    context->unload();
    ASSERT_TRUE(
        load(componentScript("<File Name='a.txt' Source='lacking' SupportDelayInstall='yes'/>")));
    EXPECT_EQ(run(RUNMODE_UPGRADE), ERROR_FILE_NOT_FOUND);

    lock.reset();
    EXPECT_FALSE(product().rebootRequired);
    restart();
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "old")));
}

TEST_F(DelayedReplacementTest, IsMadeEvenIfTheFileCannotBeRemovedBeforeTheRestart) {
    ASSERT_TRUE(loadFile("new", delayed));
    lock.emplace(app(L"a.txt"));
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);

    EXPECT_EQ(run(RUNMODE_UNINSTALL), -1);

    lock.reset();
    EXPECT_FALSE(product().rebootRequired);
    restart();
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "new")));
}

TEST_F(DelayedReplacementTest, BringsTheFileBackWhenTheProductIsRemovedBeforeTheRestart) {
    const LogFile log;
    ASSERT_TRUE(loadFile("new", delayed));
    lock.emplace(app(L"a.txt"));
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    lock.reset();

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_FALSE(product().rebootRequired);
    EXPECT_THAT(log.lines(), ElementsAre(StartsWith("[WARNNING] Succeed to MoveFileEx, file="),
                                         "[WARNNING] delete file " + narrow(app(L"a.txt"))));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt!@#$%", "new")));
    restart();
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "new")));
}

TEST_F(DelayedReplacementTest, BringsNothingBackWhenTheProductIsRemovedAndInstalledAgain) {
    ASSERT_TRUE(loadFile("new", delayed));
    lock.emplace(app(L"a.txt"));
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    lock.reset();

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    context->unload();
    ASSERT_TRUE(loadFile("newer", delayed));
    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_FALSE(product().rebootRequired);
    restart();
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "newer")));
}

TEST_F(DelayedReplacementTest, BringsNothingBackWhenTheDirectoryIsRemoved) {
    ASSERT_TRUE(
        load(componentScript(file(L"a.txt", "new", delayed) +
                             "<RemoveDirectory On='uninstall' Path='" + narrow(app()) + "'/>")));
    lock.emplace(app(L"a.txt"));
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    lock.reset();

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    restart();
    EXPECT_FALSE(exists(app()));
}

TEST_F(DelayedReplacementTest, IsNotTriedUnlessTheScriptAllowsIt) {
    ASSERT_TRUE(loadFile("new"));
    lock.emplace(app(L"a.txt"));

    EXPECT_EQ(run(RUNMODE_UPGRADE), ERROR_SHARING_VIOLATION);

    lock.reset();
    EXPECT_FALSE(product().rebootRequired);
    EXPECT_EQ(product().errorInfo.code, ACTION_COPY_FILE);
    EXPECT_EQ(product().errorInfo.message, systemMessage(ERROR_SHARING_VIOLATION));
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "old")));
    restart();
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "old")));
}

TEST_F(DelayedReplacementTest, IsNoDeletion) {
    ASSERT_TRUE(loadFile("new", delayed));
    lock.emplace(app(L"a.txt"));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), -1);

    lock.reset();
    EXPECT_FALSE(product().rebootRequired);
    EXPECT_EQ(product().errorInfo.code, ACTION_DELETE_FILE);
    restart();
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "old")));
}

/// A host whose user closes the program that holds the file, and then lets the engine try again.
class ClosingObserver final : public IterfaceObserver {
public:
    explicit ClosingObserver(std::optional<LockedFile>& lock) : lock(lock) {}

    void update(IterfaceProduct*) override {}
    ObserverAnswer askOnError(ErrorInfo*) override {
        lock.reset();
        return ANSWER_RETRY;
    }

private:
    std::optional<LockedFile>& lock;
};

TEST_F(DelayedReplacementTest, IsNotNeededWhenTheUserLetsGoOfTheFile) {
    ASSERT_TRUE(loadFile("new"));
    lock.emplace(app(L"a.txt"));
    ClosingObserver closing(lock);
    product().observer = &closing;
    context->runMode = RUNMODE_UPGRADE;

    EXPECT_EQ(product().run(context), 0);

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "new")));
}

}  // namespace
