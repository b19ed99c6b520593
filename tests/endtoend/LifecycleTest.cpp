#include <gmock/gmock.h>

#include "support/HostTest.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Pair;
using Notification = RecordingObserver::Notification;

namespace {

using LifecycleTest = HostTest;

TEST_F(LifecycleTest, BeginsWithAnEmptyContext) {
    std::wstring value = L"untouched";

    EXPECT_EQ(context->getProduct(), nullptr);
    EXPECT_EQ(context->getLastError(), L"");
    EXPECT_EQ(context->getReservedText(), L"");
    EXPECT_TRUE(context->unload());
    EXPECT_FALSE(context->getVariable(value, L"OS_BIT"));
    EXPECT_EQ(value, L"untouched");
    EXPECT_EQ(context->getLastError(), L"OS_BIT variable is no exist.");
}

TEST(FreeContextObjectTest, IgnoresANullPointer) {
    FreeContextObject(nullptr);
}

TEST(FreeContextObjectTest, LeavesTheScriptAlone) {
    const TestFolder folder;
    const std::wstring script = folder.write(L"script.xml", "<Script><Product/></Script>");
    IterfaceContext* context = CreateContextObject();
    ASSERT_TRUE(context->load(script.c_str()));
    IterfaceProduct* product = context->getProduct();

    FreeContextObject(context);

    EXPECT_EQ(product->progress, 0u);
    delete product;
}

/// A product with variables, nested directories and parts for some of the modes only.
class ProductLifecycleTest : public HostTest {
protected:
    std::string script(const std::string& version) const {
        return "<Script>"
               "<Variable Id='COMPANY' Type='string' Value='Example Works'/>"
               "<VariableConst Id='PRODUCT' Type='string' Value='Greeter'/>"
               "<Product Id='P'>"
               "<Directory Id='BASE' Path='" +
               narrow(app()) +
               "'><Directory Id='COMPANY_DIR' Path='#COMPANY'><Directory Id='ROOT' Path='#PRODUCT'>"
               "<Component Id='Program'>" +
               file(L"greeter.exe", "program " + version) +
               "</Component><Directory Id='DOC' Path='doc'>"
               "<Component Id='Manual'>" +
               file(L"manual.txt", "manual " + version) +
               "</Component><Component Id='Notes' On='install'>" +
               file(L"notes.txt", "notes " + version) +
               "</Component><Component Id='Changes' On='upgrade'>" +
               file(L"changes.txt", "changes " + version) +
               "</Component></Directory></Directory></Directory></Directory>"
               "<InstallExecuteSequence>"
               "<Feature Id='Main'><ComponentRef Id='Program'/></Feature>"
               "<Feature Id='Documentation'><ComponentRef Id='Manual'/><ComponentRef Id='Notes'/>"
               "<ComponentRef Id='Changes'/></Feature>"
               "<Fragment On='uninstall'><Caution Title='Notes stay in [DOC]'/></Fragment>"
               "</InstallExecuteSequence></Product></Script>";
    }

    const std::wstring root = L"Example Works\\Greeter\\";
};

TEST_F(ProductLifecycleTest, InstallsUpgradesAndRemovesAProduct) {
    ASSERT_TRUE(load(script("1")));
    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(root + L"doc\\manual.txt", "manual 1"),
                                              Pair(root + L"doc\\notes.txt", "notes 1"),
                                              Pair(root + L"greeter.exe", "program 1")));

    context->unload();
    ASSERT_TRUE(load(script("2")));
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(root + L"doc\\changes.txt", "changes 2"),
                                              Pair(root + L"doc\\manual.txt", "manual 2"),
                                              Pair(root + L"doc\\notes.txt", "notes 1"),
                                              Pair(root + L"greeter.exe", "program 2")));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(root + L"doc\\changes.txt", "changes 2"),
                                              Pair(root + L"doc\\notes.txt", "notes 1")));
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(ProductLifecycleTest, TellsTheHostOfEachActionWithItsProgress) {
    ASSERT_TRUE(load(script("1")));

    run(RUNMODE_INSTALL);
    run(RUNMODE_UNINSTALL);

    EXPECT_THAT(observer.updates,
                ElementsAre(Notification{ACTION_COPY_FILE, L"greeter.exe", L"", 0},
                            Notification{ACTION_COPY_FILE, L"manual.txt", L"", 33},
                            Notification{ACTION_COPY_FILE, L"notes.txt", L"", 44},
                            Notification{ACTION_DELETE_FILE, L"greeter.exe", L"", 0},
                            Notification{ACTION_DELETE_FILE, L"manual.txt", L"", 33},
                            Notification{ACTION_CAUTION, L"",
                                         L"Notes stay in " + app(root + L"doc\\"), 66}));
}

TEST_F(ProductLifecycleTest, AnswersTheHostsQuestionsBeforeARun) {
    ASSERT_TRUE(load(script("1")));
    std::wstring directory;
    std::wstring company;

    EXPECT_TRUE(product().getDirectory(directory, L"DOC", context));
    EXPECT_TRUE(context->getVariable(company, L"COMPANY"));

    EXPECT_EQ(directory, app(root + L"doc\\"));
    EXPECT_EQ(company, L"Example Works");
    EXPECT_FALSE(product().getDirectory(directory, L"NONE", context));
    EXPECT_STREQ(product().errorInfo.message, L"Get directory error:can't get the NONE directory");
}

TEST_F(ProductLifecycleTest, RunsAScriptAgainAndAgain) {
    ASSERT_TRUE(load(script("1")));

    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(round);
        observer.updates.clear();
        EXPECT_EQ(run(RUNMODE_INSTALL), 0);
        EXPECT_EQ(observer.updates.size(), 3u);
        EXPECT_EQ(installedFiles().size(), 3u);
        EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    }
}

TEST_F(ProductLifecycleTest, LoadsTheSameScriptTwice) {
    ASSERT_TRUE(load(script("1")));
    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    context->unload();
    EXPECT_EQ(context->getProduct(), nullptr);

    ASSERT_TRUE(load(script("1")));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(root + L"doc\\notes.txt", "notes 1")));
}

TEST_F(LifecycleTest, LoadsOneScriptAfterAnother) {
    for (const wchar_t* name : {L"a.txt", L"b.txt", L"c.txt"}) {
        ASSERT_TRUE(load(componentScript(file(name, narrow(name)))));
        EXPECT_EQ(run(RUNMODE_INSTALL), 0);
        EXPECT_TRUE(context->unload());
    }

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a.txt"), Pair(L"b.txt", "b.txt"),
                                              Pair(L"c.txt", "c.txt")));
}

TEST_F(LifecycleTest, ForgetsTheVariablesOfAnEarlierScript) {
    ASSERT_TRUE(load("<S><Variable Id='A' Type='string' Value='a'/><Product/></S>"));
    context->unload();
    ASSERT_TRUE(load("<S><Variable Id='B' Type='string' Value='b'/><Product/></S>"));
    std::wstring value;

    EXPECT_TRUE(context->getVariable(value, L"B"));
    EXPECT_EQ(value, L"b");
    EXPECT_FALSE(context->getVariable(value, L"A"));
    EXPECT_EQ(context->getLastError(), L"A variable is no exist.");
}

TEST_F(LifecycleTest, KeepsALoadedScriptWhenAnotherIsLoaded) {
    ASSERT_TRUE(load(componentScript(file(L"a.txt", "a"))));

    EXPECT_FALSE(load(componentScript(file(L"b.txt", "b"))));

    EXPECT_EQ(context->getLastError(), L"It have already loaded.");
    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
}

TEST_F(LifecycleTest, RunsWithoutAnObserver) {
    ASSERT_TRUE(load(componentScript(file(L"a.txt", "a"))));
    context->runMode = RUNMODE_INSTALL;

    EXPECT_EQ(product().run(context), 0);

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
}

TEST_F(LifecycleTest, FailsAtOnceWithoutAnObserver) {
    ASSERT_TRUE(load(componentScript("<File Name='n' Source='absent'/>" + file(L"a.txt", "a"))));
    context->runMode = RUNMODE_INSTALL;

    EXPECT_EQ(product().run(context), 2);

    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(LifecycleTest, GoesOnOrEndsAsTheHostAnswers) {
    struct Row {
        int32_t answer;
        int32_t result;
        size_t actions;
    };
    const Row rows[] = {{ANSWER_ABORT, 2, 1}, {ANSWER_IGNORE, 0, 2}, {99, 2, 1}};
    ASSERT_TRUE(load(componentScript("<File Name='n' Source='absent'/>" + file(L"a.txt", "a"))));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.answer);
        observer = {};
        observer.answers = {row.answer};

        EXPECT_EQ(run(RUNMODE_INSTALL), row.result);

        EXPECT_EQ(observer.updates.size(), row.actions);
        EXPECT_THAT(observer.failures, ElementsAre(AllOf(Field(&ErrorInfo::code, ACTION_COPY_FILE),
                                                         Field(&ErrorInfo::systemError, 2u))));
    }
}

TEST_F(LifecycleTest, TriesAgainWhenTheHostSaysSo) {
    ASSERT_TRUE(load(componentScript("<File Name='n' Source='absent'/>")));
    observer.answers = {ANSWER_RETRY, ANSWER_RETRY, 99, ANSWER_ABORT};

    EXPECT_EQ(run(RUNMODE_INSTALL), 2);

    EXPECT_EQ(observer.failures.size(), 4u);
    EXPECT_EQ(observer.updates.size(), 4u);
}

TEST_F(LifecycleTest, FailsToRunAScriptWithoutASequence) {
    ASSERT_TRUE(load("<Script><Product/></Script>"));

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    EXPECT_STREQ(product().errorInfo.message, L"Failed to create install element.");
}

}  // namespace
