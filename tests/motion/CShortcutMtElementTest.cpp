#include "motion/CShortcutMtElement.h"

#include <gmock/gmock.h>

#include <utility>

#include "support/AllowedChildren.h"
#include "support/ChildProcess.h"
#include "support/Declarations.h"
#include "support/FakeCall.h"
#include "support/FakeLinkShell.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/ScriptTest.h"
#include "support/ShellLinkFile.h"
#include "support/Text.h"
#include "support/Thrown.h"
#include "system/FileCalls.h"
#include "system/PathText.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Pair;
using testing::Values;
using Notification = RecordingObserver::Notification;

namespace {

constexpr int32_t unknownMode = 7;
constexpr uint32_t linkFailed = 8;
constexpr uint32_t removalFailed = 9;

/// Runs scripts that make the link `link`, whose directory is `menu` in the test's folder.
class CShortcutMtElementTest : public ScriptTest {
protected:
    /// A `Shortcut` of that name, with further attributes.
    static std::string shortcut(const std::string& attributes = {},
                                const std::string& name = "App") {
        return "<Shortcut Id='S' Name='" + name +
               "' Description='an app' Target='C:\\app\\app.exe' " + attributes + "/>";
    }

    /// Loads a script whose one component, in the directory, holds the elements.
    bool loadIn(const std::string& directory, const std::string& elements) {
        return loadProduct("<Directory Path='" + directory + "'><Component Id='C'>" + elements +
                           "</Component></Directory>"
                           "<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>"
                           "</InstallExecuteSequence>");
    }

    bool loadComponent(const std::string& elements) {
        return loadIn(narrow(folder.path(L"menu")), elements);
    }

    /// Runs without an observer, whose place a log line takes.
    int32_t runUnobserved(int32_t mode) {
        context.runMode = mode;
        return context.getProduct()->run(&context);
    }

    void expectError(uint32_t code, const std::wstring& text1, uint32_t systemError,
                     const std::wstring& message = {}) {
        const ErrorInfo& error = context.getProduct()->errorInfo;
        EXPECT_EQ(error.code, code);
        EXPECT_EQ(error.text1, text1);
        EXPECT_STREQ(error.text2, L"");
        EXPECT_EQ(error.systemError, systemError);
        EXPECT_EQ(error.message, message);
    }

    /// What an execution leaves at its start, and a success keeps.
    void expectNoError() { expectError(ERROR_CODE_MESSAGE, L"", 0); }

    const std::wstring link = folder.path(L"menu\\App.lnk");
};

// What the element asks of the script.

TEST_F(CShortcutMtElementTest, DeclaresItsAttributesInOrder) {
    ASSERT_TRUE(loadComponent(shortcut()));
    const CShortcutMtElement element(*context.findElementById(L"Shortcut", L"S"), context);

    EXPECT_THAT(declaredBy(element),
                ElementsAre(Pair(L"Name", true), Pair(L"Description", true), Pair(L"Target", true),
                            Pair(L"WorkingDirectory", false), Pair(L"IcoFile", false)));
    EXPECT_THAT(derivedBy(element), ElementsAre(Pair(L"Path", true)));
}

TEST_F(CShortcutMtElementTest, IsMadeOfAShortcutNodeAlone) {
    ASSERT_TRUE(loadComponent(shortcut()));
    const XmlHandlePtr component = context.findElementById(L"Component", L"C");

    EXPECT_EQ(thrownBy([&] { CShortcutMtElement(*component, context); }),
              L"Failed to create element (Component,C)");
}

TEST_F(CShortcutMtElementTest, RefusesChildren) {
    ASSERT_TRUE(
        loadComponent("<Shortcut Id='S' Name='App' Description='' Target='t'>"
                      "<Caution Title='x'/></Shortcut>"));
    const CShortcutMtElement element(*context.findElementById(L"Shortcut", L"S"), context);

    EXPECT_EQ(run(), -1);

    EXPECT_THAT(allowedChildren(element), IsEmpty());
    expectError(ERROR_CODE_MESSAGE, L"", 0, L"(Shortcut,S) has a illegal child element(Caution)");
    EXPECT_FALSE(exists(link));
}

TEST_F(CShortcutMtElementTest, IsNotMadeWithoutNameDescriptionOrTarget) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"<Shortcut Id='S' Description='d' Target='t'/>", L"Name"},
        {"<Shortcut Id='S' Name='n' Target='t'/>", L"Description"},
        {"<Shortcut Id='S' Name='n' Description='d'/>", L"Target"},
        {"<Shortcut Id='S'/>", L"Name"},
    };
    for (const auto& [element, missing] : rows) {
        SCOPED_TRACE(element);
        context.unload();
        ASSERT_TRUE(loadComponent(element));

        EXPECT_EQ(run(), -1);

        expectError(ERROR_CODE_MESSAGE, L"", 0,
                    L"Create Motion Element error:(Shortcut,S) cant get the require explicit " +
                        missing + L"attribute.(Component,C) cann't create child element(Shortcut)");
    }
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CShortcutMtElementTest, IsNotMadeWithoutADirectoryAroundIt) {
    ASSERT_TRUE(loadProduct("<InstallExecuteSequence><Feature><Component Id='C'>" + shortcut() +
                            "</Component></Feature></InstallExecuteSequence>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(),
              L"Create Motion Element error:(Shortcut,S) can't get Path attribute from  parent "
              L"element.(Component,C) cann't create child element(Shortcut)");
}

TEST_F(CShortcutMtElementTest, FailsAtOnceWhenItsAttributesAreNotSettled) {
    using Pass = bool (CElement::*)(CContext&, std::wstring&);
    struct Row {
        const char* element;
        std::vector<Pass> passes;
        const wchar_t* missing;
    };
    const Pass declared = &CElement::readDeclaredAttributes;
    const Pass derived = &CElement::resolveDerivedAttributes;
    const Row rows[] = {
        {"<Shortcut Id='S'/>", {}, L"Path"},
        {"<Shortcut Id='S' Name='n' Description='d' Target='t'/>", {declared}, L"Path"},
        {"<Shortcut Id='S'/>", {derived}, L"Name"},
        {"<Shortcut Id='S' Name='n'/>", {declared, derived}, L"Description"},
        {"<Shortcut Id='S' Name='n' Description='d'/>", {declared, derived}, L"Target"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.element + narrow(row.missing));
        context.unload();
        ASSERT_TRUE(loadComponent(row.element));
        CShortcutMtElement element(*context.findElementById(L"Shortcut", L"S"), context);
        std::wstring ignored;
        for (const Pass pass : row.passes)
            (element.*pass)(context, ignored);
        context.runMode = RUNMODE_INSTALL;

        EXPECT_EQ(element.execute(context), -1);

        expectError(ERROR_CODE_MESSAGE, L"", 0,
                    std::wstring(L"(Shortcut,S) can't get ") + row.missing + L" attribute.");
    }
    EXPECT_FALSE(exists(folder.path(L"menu")));
}

TEST_F(CShortcutMtElementTest, DoesNotReadOn) {
    for (const char* mode : {"install", "uninstall", "upgrade", "unknown"}) {
        SCOPED_TRACE(mode);
        context.unload();
        ASSERT_TRUE(loadComponent(shortcut("On='" + std::string(mode) + "'")));

        EXPECT_EQ(run(RUNMODE_INSTALL), 0);
        EXPECT_TRUE(exists(link));
        EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
        EXPECT_FALSE(exists(link));
        EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
        EXPECT_TRUE(exists(link));
    }
}

TEST_F(CShortcutMtElementTest, IsAlwaysVital) {
    ASSERT_TRUE(loadIn("", shortcut("Vital='no'") + "<Caution Title='next'/>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(observer.failures.size(), 1u);
    EXPECT_EQ(observer.updates.size(), 1u);
}

TEST_F(CShortcutMtElementTest, DoesNothingInAnUnknownMode) {
    const LogFile log;
    folder.write(L"menu\\App.lnk", "old");
    FakeLinkShell shell;
    ASSERT_TRUE(loadComponent(shortcut()));

    EXPECT_EQ(run(unknownMode), 0);

    expectNoError();
    EXPECT_EQ(readFile(link), "old");
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(shell.calls, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CShortcutMtElementTest, NameOf512CharactersEndsTheProcess) {
    const std::string fits(511, 'n');
    for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UNINSTALL}) {
        SCOPED_TRACE(mode);
        context.unload();
        observer.updates.clear();
        ASSERT_TRUE(loadIn("", shortcut("", fits)));
        run(mode);
        EXPECT_THAT(observer.updates,
                    ElementsAre(Notification{ACTION_SHORTCUT, std::wstring(511, L'n'), L"", 0}));

        context.unload();
        ASSERT_TRUE(loadIn("", shortcut("", fits + "n")));
        EXPECT_EXIT(run(mode), endedByInvalidParameter(), "");
    }
}

TEST_F(CShortcutMtElementTest, FetchesItsAttributesInAnUnknownModeToo) {
    ASSERT_TRUE(loadComponent(shortcut()));
    CShortcutMtElement element(*context.findElementById(L"Shortcut", L"S"), context);
    context.runMode = unknownMode;

    EXPECT_EQ(element.execute(context), -1);

    EXPECT_EQ(errorMessage(), L"(Shortcut,S) can't get Path attribute.");
}

// Install and upgrade.

class ShortcutMakingTest : public CShortcutMtElementTest,
                           public testing::WithParamInterface<RunMode> {
protected:
    int32_t runInMode() { return run(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(ModesThatMakeLinks, ShortcutMakingTest,
                         Values(RUNMODE_INSTALL, RUNMODE_UPGRADE), [](const auto& mode) {
                             return mode.param == RUNMODE_INSTALL ? "Install" : "Upgrade";
                         });

TEST_P(ShortcutMakingTest, MakesTheDirectoriesAndTheLink) {
    const std::wstring icon = folder.write(L"app.ico", "icon");
    std::wstring copyOfIcon;
    makeStampedName(icon.c_str(), copyOfIcon);
    ASSERT_TRUE(loadComponent(
        shortcut("WorkingDirectory='C:\\work' IcoFile='" + narrow(icon) + "'", "deep\\down\\App")));

    EXPECT_EQ(runInMode(), 0);

    const ShellLinkFile content(folder.path(L"menu\\deep\\down\\App.lnk"));
    EXPECT_EQ(content.target, L"C:\\app\\app.exe");
    EXPECT_EQ(content.workingDirectory, L"C:\\work");
    EXPECT_EQ(content.icon, copyOfIcon);
    EXPECT_EQ(content.description, L"");
    EXPECT_EQ(readFile(copyOfIcon), "icon");
    expectNoError();
}

TEST_P(ShortcutMakingTest, TakesTheDirectoryAndTheIconOfTheTargetForWhatIsNotGiven) {
    for (const char* attributes : {"", "WorkingDirectory='' IcoFile=''"}) {
        context.unload();
        ASSERT_TRUE(loadComponent(shortcut(attributes)));

        EXPECT_EQ(runInMode(), 0);

        const ShellLinkFile content(link);
        EXPECT_EQ(content.workingDirectory, L"C:\\app");
        EXPECT_EQ(content.icon, L"C:\\app\\app.exe");
        EXPECT_TRUE(DeleteFileW(link.c_str()));
    }
}

TEST_P(ShortcutMakingTest, OverwritesALinkThatIsThere) {
    folder.write(L"menu\\App.lnk", "old");
    ASSERT_TRUE(loadComponent(shortcut()));

    EXPECT_EQ(runInMode(), 0);

    EXPECT_EQ(ShellLinkFile(link).target, L"C:\\app\\app.exe");
}

TEST_P(ShortcutMakingTest, AppendsTheExtensionToEveryName) {
    ASSERT_TRUE(
        loadComponent(shortcut("", "App.lnk") + shortcut("", "app 1.0") + shortcut("", "")));

    EXPECT_EQ(runInMode(), 0);

    for (const wchar_t* name : {L"menu\\App.lnk.lnk", L"menu\\app 1.0.lnk", L"menu\\.lnk"})
        EXPECT_TRUE(exists(folder.path(name))) << narrow(name);
    EXPECT_FALSE(exists(link));
}

TEST_P(ShortcutMakingTest, ReplacesReferencesInItsAttributes) {
    FakeLinkShell shell;
    ASSERT_TRUE(loadProduct(
        "<Directory Id='MENU' Path='" + narrow(folder.path(L"menu")) +
            "'><Component Id='C'><Shortcut Name='#APP' Description='' Target='[MENU]a.exe'"
            " WorkingDirectory='[MENU]work' IcoFile='[MENU]#APP'/></Component></Directory>"
            "<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>"
            "</InstallExecuteSequence>",
        "<Variable Id='APP' Type='string' Value='App'/>"));

    EXPECT_EQ(runInMode(), 0);

    const std::wstring menu = folder.path(L"menu") + L"\\";
    EXPECT_THAT(shell.calls,
                IsSupersetOf({L"SetPath " + menu + L"a.exe", L"SetIconLocation 0 " + menu + L"App",
                              L"SetWorkingDirectory " + menu + L"work", L"Save 1 " + link}));
}

TEST_P(ShortcutMakingTest, AnnouncesEachLinkWithItsProgress) {
    ASSERT_TRUE(loadComponent(shortcut() + shortcut("", "Manual")));

    EXPECT_EQ(runInMode(), 0);

    EXPECT_THAT(observer.updates, ElementsAre(Notification{ACTION_SHORTCUT, L"App", L"", 0},
                                              Notification{ACTION_SHORTCUT, L"Manual", L"", 50}));
}

TEST_P(ShortcutMakingTest, LogsTheLinkAfterItsAnnouncementAndBeforeItIsMade) {
    const LogFile log;
    ASSERT_TRUE(loadComponent(shortcut("WorkingDirectory='C:\\work' IcoFile='C:\\none.ico'")));
    const std::vector<std::string> lines = {
        "[WARNNING] Observer is NULL in subject.", "[INFO] linkFile:" + narrow(link),
        "[INFO] target:C:\\app\\app.exe", "[INFO] workDir:C:\\work", "[INFO] icoFile:C:\\none.ico"};
    FakeCall<fileCalls, &FileCalls::CreateDirectoryW> make([&](auto path, auto security) {
        EXPECT_EQ(log.lines(), lines);
        return make.real(path, security);
    });

    EXPECT_EQ(runUnobserved(GetParam()), 0);

    EXPECT_EQ(make.count, 1);
    EXPECT_EQ(log.lines(), lines);
}

TEST_P(ShortcutMakingTest, LogsNothingForWhatIsNotGiven) {
    const LogFile log;
    ASSERT_TRUE(loadComponent(shortcut()));

    EXPECT_EQ(runInMode(), 0);

    EXPECT_THAT(log.lines(),
                ElementsAre("[INFO] linkFile:" + narrow(link), "[INFO] target:C:\\app\\app.exe",
                            "[INFO] workDir:", "[INFO] icoFile:"));
}

class ShortcutFailureTest : public ShortcutMakingTest {
protected:
    /// Runs a script that can't make the link, as the last line of the log tells.
    void expectFailure(uint32_t systemError, const std::string& linkFile, const std::string& line) {
        EXPECT_EQ(runInMode(), -1);

        expectError(linkFailed, L"App", systemError);
        EXPECT_THAT(observer.updates, ElementsAre(Notification{ACTION_SHORTCUT, L"App", L"", 0}));
        EXPECT_EQ(observer.failures.size(), 1u);
        EXPECT_THAT(log.lines(),
                    ElementsAre("[INFO] linkFile:" + linkFile, "[INFO] target:C:\\app\\app.exe",
                                "[INFO] workDir:", "[INFO] icoFile:", "[ERROR] " + line));
        EXPECT_FALSE(exists(link));
    }

    const LogFile log;
};

INSTANTIATE_TEST_SUITE_P(ModesThatMakeLinks, ShortcutFailureTest,
                         Values(RUNMODE_INSTALL, RUNMODE_UPGRADE), [](const auto& mode) {
                             return mode.param == RUNMODE_INSTALL ? "Install" : "Upgrade";
                         });

TEST_P(ShortcutFailureTest, ComesOfAnEmptyPath) {
    FakeLinkShell shell;
    ASSERT_TRUE(loadIn("", shortcut()));

    expectFailure(1, "App.lnk", "Fail to get short cut path.");

    EXPECT_THAT(shell.calls, IsEmpty());
}

TEST_P(ShortcutFailureTest, ComesOfAPathThatIsNothingButASeparator) {
    FakeLinkShell shell;
    ASSERT_TRUE(loadIn("\\", shortcut()));

    expectFailure(1, "\\App.lnk", "Fail to get short cut path.");

    EXPECT_THAT(shell.calls, IsEmpty());
}

TEST_P(ShortcutFailureTest, ComesOfADirectoryThatCannotBeMade) {
    const std::string path = narrow(folder.write(L"file", "no directory")) + "\\menu";
    FakeLinkShell shell;
    ASSERT_TRUE(loadIn(path, shortcut()));

    expectFailure(1, path + "\\App.lnk", "Fail to create short cut path:" + path);

    EXPECT_THAT(shell.calls, IsEmpty());
}

TEST_P(ShortcutFailureTest, ComesOfALinkObjectThatCannotBeHad) {
    FakeLinkShell shell;
    shell.created = E_FAIL;
    ASSERT_TRUE(loadComponent(shortcut()));

    expectFailure(0, narrow(link), "Fail to create short cut:" + narrow(link));
}

TEST_P(ShortcutFailureTest, ComesOfAFileInterfaceThatCannotBeHad) {
    FakeLinkShell shell;
    shell.link.queried = E_NOINTERFACE;
    ASSERT_TRUE(loadComponent(shortcut()));

    expectFailure(0, narrow(link), "Fail to create short cut:" + narrow(link));
}

TEST_P(ShortcutMakingTest, LogsThePathOfTheScriptWhenADirectoryOfTheNameCannotBeMade) {
    const LogFile log;
    folder.write(L"menu\\file", "no directory");
    ASSERT_TRUE(loadComponent(shortcut("", "file\\sub\\App")));

    EXPECT_EQ(runInMode(), -1);

    EXPECT_THAT(log.lines(),
                Contains("[ERROR] Fail to create short cut path:" + narrow(folder.path(L"menu"))));
    expectError(linkFailed, L"file\\sub\\App", 1);
}

TEST_P(ShortcutMakingTest, CountsALinkThatCannotBeSavedAsMade) {
    const LogFile log;
    folder.makeDirectory(L"menu\\App.lnk\\in the way");
    ASSERT_TRUE(loadComponent(shortcut()));

    EXPECT_EQ(runInMode(), 0);

    expectNoError();
    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_EQ(log.lines().size(), 4u);
}

TEST_P(ShortcutMakingTest, RepeatsTheWholeActionAtARetry) {
    FakeLinkShell shell;
    shell.created = E_FAIL;
    ASSERT_TRUE(loadComponent(shortcut()));
    observer.answers = {ANSWER_RETRY, ANSWER_RETRY, ANSWER_IGNORE};

    EXPECT_EQ(runInMode(), 0);

    EXPECT_EQ(observer.failures.size(), 3u);
    EXPECT_EQ(observer.updates.size(), 3u);
    EXPECT_EQ(shell.calls.size(), 9u);
    expectError(linkFailed, L"App", 0);
}

// Uninstall.

class ShortcutRemovalTest : public CShortcutMtElementTest {
protected:
    int32_t uninstall() { return run(RUNMODE_UNINSTALL); }
};

TEST_F(ShortcutRemovalTest, DeletesTheLinkAndNothingElse) {
    const std::wstring icon = folder.write(L"app.ico", "icon");
    std::wstring copyOfIcon;
    makeStampedName(icon.c_str(), copyOfIcon);
    ASSERT_TRUE(loadComponent(shortcut("IcoFile='" + narrow(icon) + "'")));
    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    const FakeLinkShell shell;

    EXPECT_EQ(uninstall(), 0);

    EXPECT_FALSE(exists(link));
    EXPECT_TRUE(exists(folder.path(L"menu")));
    EXPECT_TRUE(exists(icon));
    EXPECT_TRUE(exists(copyOfIcon));
    EXPECT_THAT(shell.calls, IsEmpty()) << "the shell isn't told";
    expectNoError();
}

TEST_F(ShortcutRemovalTest, AppendsTheExtensionToEveryName) {
    folder.write(L"menu\\App.lnk", "another");
    folder.write(L"menu\\App.lnk.lnk", "link");
    ASSERT_TRUE(loadComponent(shortcut("", "App.lnk")));

    EXPECT_EQ(uninstall(), 0);

    EXPECT_TRUE(exists(link));
    EXPECT_FALSE(exists(folder.path(L"menu\\App.lnk.lnk")));
}

TEST_F(ShortcutRemovalTest, CountsAnAbsentLinkAsDeleted) {
    ASSERT_TRUE(loadComponent(shortcut()));

    EXPECT_EQ(uninstall(), 0);

    expectNoError();
    EXPECT_FALSE(exists(folder.path(L"menu")));
}

TEST_F(ShortcutRemovalTest, NeedsNoDirectoryInThePath) {
    const LogFile log;
    ASSERT_TRUE(loadIn("", shortcut()));

    EXPECT_EQ(uninstall(), 0);

    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] delete file App.lnk"));
}

TEST_F(ShortcutRemovalTest, AnnouncesEachDeletionWithItsProgress) {
    ASSERT_TRUE(loadComponent(shortcut() + shortcut("", "Manual")));

    EXPECT_EQ(uninstall(), 0);

    EXPECT_THAT(observer.updates, ElementsAre(Notification{ACTION_SHORTCUT, L"App", L"", 0},
                                              Notification{ACTION_SHORTCUT, L"Manual", L"", 50}));
}

TEST_F(ShortcutRemovalTest, LogsTheDeletionAfterItsAnnouncementAndBeforeItIsDone) {
    const LogFile log;
    folder.write(L"menu\\App.lnk", "old");
    ASSERT_TRUE(loadComponent(shortcut()));
    std::vector<std::string> linesBefore;
    FakeCall<fileCalls, &FileCalls::DeleteFileW> remove([&](auto path) {
        linesBefore = log.lines();
        return remove.real(path);
    });

    EXPECT_EQ(runUnobserved(RUNMODE_UNINSTALL), 0);

    EXPECT_THAT(linesBefore, ElementsAre("[WARNNING] Observer is NULL in subject.",
                                         "[WARNNING] delete file " + narrow(link)));
    EXPECT_EQ(log.lines(), linesBefore);
}

TEST_F(ShortcutRemovalTest, DeletesAReadOnlyLink) {
    folder.write(L"menu\\App.lnk", "old");
    ASSERT_TRUE(SetFileAttributesW(link.c_str(), FILE_ATTRIBUTE_READONLY));
    ASSERT_TRUE(loadComponent(shortcut()));

    EXPECT_EQ(uninstall(), 0);

    EXPECT_FALSE(exists(link));
}

TEST_F(ShortcutRemovalTest, FailsOverALockedLink) {
    const LogFile log;
    folder.write(L"menu\\App.lnk", "old");
    const LockedFile lock(link);
    ASSERT_TRUE(loadComponent(shortcut()));

    EXPECT_EQ(uninstall(), -1);

    expectError(removalFailed, L"App", 0);
    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] delete file " + narrow(link),
                                         "[ERROR] Fail to delete short cut:" + narrow(link)));
    EXPECT_EQ(observer.failures.size(), 1u);
    EXPECT_EQ(observer.updates.size(), 1u);
    EXPECT_TRUE(exists(link));
}

}  // namespace
