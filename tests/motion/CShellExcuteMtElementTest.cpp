#include "motion/CShellExcuteMtElement.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "support/AllowedChildren.h"
#include "support/ChildProcess.h"
#include "support/Declarations.h"
#include "support/Failure.h"
#include "support/FakeShell.h"
#include "support/Heard.h"
#include "support/LogFile.h"
#include "support/Requirements.h"
#include "support/ScriptTest.h"
#include "support/StartedProcess.h"
#include "support/Text.h"
#include "support/Thrown.h"
#include "system/SystemCalls.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Notification = RecordingObserver::Notification;

namespace {

class CShellExcuteMtElementTest : public ScriptTest {
protected:
    /// Loads a script whose sequence holds one fragment of these children.
    bool loadFragment(const std::string& children, std::string_view variables = {}) {
        return loadProduct("<InstallExecuteSequence><Fragment Id='F'>" + children +
                               "</Fragment></InstallExecuteSequence>",
                           variables);
    }

    /// Loads a script of one `ShellExcute` with these attributes.
    bool loadShellExcute(const std::string& attributes) {
        context.unload();
        return loadFragment("<ShellExcute Id='S' " + attributes + "/>");
    }

    XmlHandlePtr node() { return context.findElementById(L"ShellExcute", L"S"); }

    Failure failure() { return Failure(context.getProduct()->errorInfo); }
};

// What the element asks of the script.

TEST_F(CShellExcuteMtElementTest, DeclaresItsAttributesInOrder) {
    ASSERT_TRUE(loadShellExcute("File='f' Return='r'"));
    const CShellExcuteMtElement element(*node(), context);

    EXPECT_THAT(declaredBy(element),
                ElementsAre(Pair(L"File", true), Pair(L"Return", true), Pair(L"ExeCommand", false),
                            Pair(L"On", false), Pair(L"Show", false), Pair(L"Title", false),
                            Pair(L"Vital", false)));
    EXPECT_THAT(derivedBy(element), IsEmpty());
}

TEST_F(CShellExcuteMtElementTest, CannotBeMadeWithoutWhatItDemands) {
    const std::pair<std::string, std::wstring> rows[] = {{"File='f'", L"Return"},
                                                         {"Return='sync'", L"File"}};
    for (const auto& [attributes, missing] : rows) {
        SCOPED_TRACE(attributes);
        ASSERT_TRUE(loadShellExcute(attributes));

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(
            failure(),
            messageFailure(
                L"Create Motion Element error:(ShellExcute,S) cant get the require explicit " +
                missing + L"attribute.(Fragment,F) cann't create child element(ShellExcute)"));
    }
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CShellExcuteMtElementTest, FailsWhenItsAttributesWereNeverRead) {
    const FakeShell shell;
    ASSERT_TRUE(loadShellExcute("File='f' Return='r'"));
    CShellExcuteMtElement element(*node(), context);
    context.getProduct()->observer = &observer;

    EXPECT_EQ(element.execute(context), -1);

    EXPECT_EQ(failure(), messageFailure(L"(ShellExcute,S) can't get File attribute."));
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(shell.steps, IsEmpty());
}

TEST_F(CShellExcuteMtElementTest, TakesNoChildren) {
    const FakeShell shell;
    ASSERT_TRUE(
        loadFragment("<ShellExcute Id='S' File='f' Return='r'><Caution Title='a'/></ShellExcute>"));
    EXPECT_THAT(allowedChildren(CShellExcuteMtElement(*node(), context)), IsEmpty());

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(), L"(ShellExcute,S) has a illegal child element(Caution)");
    EXPECT_THAT(shell.steps, IsEmpty());
}

TEST_F(CShellExcuteMtElementTest, StandsForNoOtherElement) {
    ASSERT_TRUE(loadFragment(""));
    const XmlHandlePtr fragment = context.findElementById(L"Fragment", L"F");

    EXPECT_EQ(thrownBy([&] { CShellExcuteMtElement(*fragment, context); }),
              L"Failed to create element (Fragment,F)");
}

TEST_F(CShellExcuteMtElementTest, OnLimitsItToItsModes) {
    const FakeShell shell;
    ASSERT_TRUE(loadShellExcute("File='f' Return='r' On='uninstall'"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(shell.steps, IsEmpty());

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(shell.steps, Contains(FakeShell::start()));
}

TEST_F(CShellExcuteMtElementTest, StartsInEveryMode) {
    const FakeShell shell;
    ASSERT_TRUE(loadShellExcute("File='f' Return='r'"));

    for (const int32_t mode : {0, 1, 2, 7})
        EXPECT_EQ(run(mode), 0) << mode;

    EXPECT_EQ(std::count(shell.steps.begin(), shell.steps.end(), FakeShell::start()), 4);
}

// How the file is started.

TEST_F(CShellExcuteMtElementTest, StartsItsFileWithItsParametersHidden) {
    const FakeShell shell;
    ASSERT_TRUE(loadFragment("<ShellExcute File='#V' Return='' ExeCommand='/q #V'/>",
                             "<Variable Id='V' Type='string' Value='C:\\a b.exe'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(shell.file, L"C:\\a b.exe");
    EXPECT_EQ(shell.parameters, L"/q C:\\a b.exe");
    EXPECT_EQ(shell.verb, L"runas");
    EXPECT_EQ(shell.started.nShow, 0);
    EXPECT_EQ(failure(), noFailure);
}

TEST_F(CShellExcuteMtElementTest, PassesEmptyParametersWithoutExeCommand) {
    const FakeShell shell;
    for (const std::string attribute : {"", "ExeCommand=''"}) {
        ASSERT_TRUE(loadShellExcute("File='f' Return='sync' " + attribute));

        EXPECT_EQ(run(), 0);

        EXPECT_EQ(shell.parameters, L"");
    }
}

TEST_F(CShellExcuteMtElementTest, ShowMakesNoDifference) {
    FakeShell shell;
    for (const std::string show : {"", "Show='no'", "Show='yes'", "Show=''", "Show='No'"}) {
        SCOPED_TRACE(show);
        shell.started.nShow = -1;
        ASSERT_TRUE(loadShellExcute("File='f' Return='sync' " + show));

        EXPECT_EQ(run(), 0);

        EXPECT_EQ(shell.started.nShow, 0);
    }
}

TEST_F(CShellExcuteMtElementTest, WaitsForTheExactWordAlone) {
    FakeShell shell;
    const std::pair<std::string, bool> rows[] = {
        {"sync", true}, {"Sync", false},  {"SYNC", false},  {"synchronous", false},
        {"syn", false}, {" sync", false}, {"sync ", false}, {"check", false},
        {"", false},    {"yes", false},   {"async", false}};
    for (const auto& [word, waits] : rows) {
        SCOPED_TRACE(word);
        shell.steps.clear();
        ASSERT_TRUE(loadShellExcute("File='f' Return='" + word + "'"));

        EXPECT_EQ(run(), 0);

        std::vector<FakeShell::Step> expected = {FakeShell::start()};
        if (waits)
            expected.push_back(FakeShell::wait(shell.process));
        expected.push_back(FakeShell::close(shell.process));
        EXPECT_EQ(shell.steps, expected);
    }
}

TEST_F(CShellExcuteMtElementTest, TellsTheHostBeforeTheStartAndLogsNothing) {
    const LogFile log;
    ASSERT_TRUE(loadFragment("<Caution Title='c'/><ShellExcute File='f' Return='r' Title='t'/>"));
    std::vector<Notification> updatesBefore;
    FakeCall<shellCalls, &ShellCalls::ShellExecuteExW> start([&](auto...) {
        updatesBefore = observer.updates;
        return TRUE;
    });

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(updatesBefore, ElementsAre(Notification{ACTION_CAUTION, L"", L"c", 0},
                                           Notification{ACTION_SHELL_EXCUTE, L"f", L"t", 50}));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CShellExcuteMtElementTest, HasAnEmptyTitleWithoutOne) {
    const FakeShell shell;
    ASSERT_TRUE(loadShellExcute("File='f' Return='r'"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L""));
}

TEST_F(CShellExcuteMtElementTest, TextsOf512CharactersEndTheProcess) {
    const FakeShell shell;
    const std::string fits(511, 'x');
    ASSERT_TRUE(loadShellExcute("File='" + fits + "' Return='r' Title='" + fits + "'"));
    EXPECT_EQ(run(), 0);

    ASSERT_TRUE(loadShellExcute("File='" + fits + "x' Return='r'"));
    EXPECT_EXIT(run(), endedByInvalidParameter(), "");

    ASSERT_TRUE(loadShellExcute("File='f' Return='r' Title='" + fits + "x'"));
    EXPECT_EXIT(run(), endedByInvalidParameter(), "");
}

// Real programs.

TEST_F(CShellExcuteMtElementTest, WaitsForTheEndOfASynchronousProgram) {
    REQUIRES_WINE("asks for elevation");
    const StartedProcess process;
    const std::wstring trace = folder.path(L"trace");
    ASSERT_TRUE(
        loadShellExcute("File='C:\\windows\\system32\\cmd.exe' Return='sync' "
                        "ExeCommand='/c \"echo done>" +
                        narrow(trace) + "\"'"));

    EXPECT_EQ(run(), 0);

    EXPECT_FALSE(process.isRunning());
    EXPECT_EQ(readFile(trace), "done\r\n");
}

TEST_F(CShellExcuteMtElementTest, ReturnsWhileAProgramRunsThatIsNotSynchronous) {
    REQUIRES_WINE("asks for elevation");
    const StartedProcess process;
    ASSERT_TRUE(loadShellExcute("File='" + narrow(testProgramDirectory()) +
                                "\\temz_sleeper.exe' Return='async'"));

    EXPECT_EQ(run(), 0);

    EXPECT_TRUE(process.isRunning());
}

TEST_F(CShellExcuteMtElementTest, ExitCodePlaysNoPart) {
    REQUIRES_WINE("asks for elevation");
    const StartedProcess process;
    ASSERT_TRUE(loadShellExcute(
        "File='C:\\windows\\system32\\cmd.exe' Return='sync' ExeCommand='/c exit 7'"));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(process.exitCode(), 7u);
    EXPECT_EQ(failure(), noFailure);
}

// Failures.

TEST_F(CShellExcuteMtElementTest, FailsWhenNothingCanBeStarted) {
    const std::string absent = narrow(folder.path(L"absent.exe"));
    for (const std::string& file : {absent, std::string()}) {
        SCOPED_TRACE(file);
        ASSERT_TRUE(loadShellExcute("File='" + file + "' Return='sync' Title='A title'"));
        const LogFile log;

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(narrow(context.getProduct()->errorInfo.text1), file);
        EXPECT_EQ(failure(), Failure(ACTION_SHELL_EXCUTE, context.getProduct()->errorInfo.text1,
                                     L"A title", 0xFFFFFFFF, L""));
        EXPECT_THAT(log.lines(), IsEmpty());
    }
    EXPECT_EQ(observer.updates.size(), 2u);
}

TEST_F(CShellExcuteMtElementTest, FailsWhenTheVersionIsUnreadable) {
    const FakeShell shell;
    ASSERT_TRUE(loadShellExcute("File='f' Return='sync'"));
    FakeCall<systemCalls, &SystemCalls::GetVersionExW> ask([](auto...) { return FALSE; });

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(failure(), Failure(ACTION_SHELL_EXCUTE, L"f", L"", 0xFFFFFFFF, L""));
    EXPECT_THAT(shell.steps, IsEmpty());
}

TEST_F(CShellExcuteMtElementTest, VitalTellsWhetherAFailureEndsTheRun) {
    FakeShell shell;
    shell.accepts = FALSE;
    const std::pair<std::string, int32_t> rows[] = {
        {"", -1}, {"Vital='yes'", -1}, {"Vital='no'", 0}, {"Vital='Yes'", 0}, {"Vital=''", 0}};
    for (const auto& [vital, result] : rows) {
        SCOPED_TRACE(vital);
        ASSERT_TRUE(loadShellExcute("File='f' Return='r' " + vital));
        observer.failures.clear();

        EXPECT_EQ(run(), result);

        EXPECT_EQ(observer.failures.size(), result == 0 ? 0u : 1u);
        EXPECT_EQ(failure(), Failure(ACTION_SHELL_EXCUTE, L"f", L"", 0xFFFFFFFF, L""));
    }
}

TEST_F(CShellExcuteMtElementTest, RetryTellsTheHostAndStartsAgain) {
    ASSERT_TRUE(loadShellExcute("File='f' Return='r'"));
    FakeCall<shellCalls, &ShellCalls::ShellExecuteExW> start(
        [&](auto...) { return start.count < 3 ? FALSE : TRUE; });
    observer.answers = {ANSWER_RETRY, ANSWER_RETRY};

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(start.count, 3);
    EXPECT_EQ(observer.updates.size(), 3u);
    EXPECT_EQ(failure(), noFailure);
}

TEST_F(CShellExcuteMtElementTest, FailsWhenAnAttributeIsNotSettled) {
    const FakeShell shell;
    for (const auto& [attributes, missing] :
         {std::pair(std::string(), std::wstring(L"File")),
          std::pair(std::string("File='f'"), std::wstring(L"Return"))}) {
        context.unload();
        ASSERT_TRUE(loadFragment("<ShellExcute Id='S' " + attributes + "/>"));
        CShellExcuteMtElement element(*context.findElementById(L"ShellExcute", L"S"), context);
        std::wstring ignored;
        element.readDeclaredAttributes(context, ignored);

        EXPECT_EQ(element.execute(context), -1);

        EXPECT_EQ(failure(),
                  messageFailure(L"(ShellExcute,S) can't get " + missing + L" attribute."));
    }
    EXPECT_THAT(shell.steps, IsEmpty());
}

}  // namespace
