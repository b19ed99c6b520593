#include <gmock/gmock.h>

#include <regex>

#include "support/HostTest.h"
#include "support/ShellLinkFile.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using Notification = RecordingObserver::Notification;

namespace {

/// A program with its icon, and links to it beside a manual of the same name.
class ShortcutTest : public HostTest {
protected:
    std::string script(const std::string& version) const {
        const std::string app = narrow(this->app());
        return componentScript(
            file(L"greeter.exe", "program " + version) + file(L"greeter.ico", "icon " + version) +
            "<Shortcut Id='S' Name='menu\\Greeter' Description='says hello' Target='" + app +
            "\\greeter.exe' WorkingDirectory='" + app + "\\work " + version + "' IcoFile='" + app +
            "\\greeter.ico'/><Shortcut Name='menu\\Plain' Description='' Target='" + app +
            "\\greeter.exe'/>");
    }

    /// The copies of the icon under names with a time stamp.
    std::vector<std::wstring> copiesOfIcon() const {
        const std::regex copy("greeter\\d{9,14}\\.ico");
        std::vector<std::wstring> names;
        for (const auto& [name, content] : installedFiles())
            if (std::regex_match(narrow(name), copy))
                names.push_back(name);
        return names;
    }

    const std::wstring link = app(L"menu\\Greeter.lnk");
    const std::wstring plainLink = app(L"menu\\Plain.lnk");
};

TEST_F(ShortcutTest, IsInstalledUpgradedAndRemoved) {
    ASSERT_TRUE(load(script("1")));
    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    ASSERT_THAT(copiesOfIcon(), SizeIs(1));
    const std::wstring copy = app(copiesOfIcon()[0]);
    const ShellLinkFile installed(link);
    EXPECT_EQ(installed.target, app(L"greeter.exe"));
    EXPECT_EQ(installed.workingDirectory, app(L"work 1"));
    EXPECT_EQ(installed.icon, copy);
    EXPECT_EQ(readFile(copy), "icon 1");

    context->unload();
    ASSERT_TRUE(load(script("2")));
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    const ShellLinkFile upgraded(link);
    EXPECT_EQ(upgraded.workingDirectory, app(L"work 2"));
    EXPECT_EQ(upgraded.icon, copy);
    EXPECT_EQ(readFile(copy), "icon 2");

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(copiesOfIcon()[0], "icon 2")));
    EXPECT_TRUE(exists(app(L"menu")));
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(ShortcutTest, TakesDirectoryAndIconFromTheTargetWhereTheScriptSaysNone) {
    ASSERT_TRUE(load(script("1")));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    const ShellLinkFile content(plainLink);
    EXPECT_EQ(content.target, app(L"greeter.exe"));
    EXPECT_EQ(content.workingDirectory, app());
    EXPECT_EQ(content.icon, app(L"greeter.exe"));
}

TEST_F(ShortcutTest, IsAnnouncedToTheHostInEachMode) {
    for (const RunMode mode : {RUNMODE_INSTALL, RUNMODE_UPGRADE, RUNMODE_UNINSTALL}) {
        context->unload();
        ASSERT_TRUE(load(script("1")));
        observer.updates.clear();

        EXPECT_EQ(run(mode), 0);

        ASSERT_THAT(observer.updates, SizeIs(4));
        EXPECT_EQ(observer.updates[2], (Notification{ACTION_SHORTCUT, L"menu\\Greeter", {}, 50}));
        EXPECT_EQ(observer.updates[3], (Notification{ACTION_SHORTCUT, L"menu\\Plain", {}, 75}));
    }
}

TEST_F(ShortcutTest, AsksTheHostWhateverTheScriptSaysOfVital) {
    folder.write(L"app", "a file where the directory should be");
    ASSERT_TRUE(
        load(componentScript("<Shortcut Name='menu\\Greeter' Description='' Target='t'"
                             " Vital='no' On='uninstall'/>")));
    observer.answers = {ANSWER_RETRY, ANSWER_ABORT};

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    EXPECT_THAT(observer.failures, SizeIs(2));
    EXPECT_THAT(observer.failures.back(),
                AllOf(Field(&ErrorInfo::code, 8u), Field(&ErrorInfo::systemError, 1u)));
    EXPECT_STREQ(observer.failures.back().text1, L"menu\\Greeter");
}

TEST_F(ShortcutTest, ThatCannotBeRemovedIsAFailureOfItsOwn) {
    folder.makeDirectory(L"app\\menu\\Greeter.lnk");
    ASSERT_TRUE(
        load(componentScript("<Shortcut Name='menu\\Greeter' Description='' Target='t'/>")));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), -1);

    EXPECT_THAT(observer.failures, ElementsAre(AllOf(Field(&ErrorInfo::code, 9u),
                                                     Field(&ErrorInfo::systemError, 0u))));
    EXPECT_TRUE(exists(link));
}

}  // namespace
