#include "engine/CProductElement.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "engine/CContext.h"
#include "expression/CStringVariable.h"
#include "support/ClassLayout.h"
#include "support/Heard.h"
#include "support/LogFile.h"
#include "support/ScriptTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CProductElementTest : public ScriptTest {
protected:
    bool loadSequence(std::string_view children, std::string_view variables = {}) {
        return loadProduct(
            "<InstallExecuteSequence>" + std::string(children) + "</InstallExecuteSequence>",
            variables);
    }

    IterfaceProduct& product() { return *context.getProduct(); }
};

TEST_F(CProductElementTest, IsAnElementFirstAndTheHostsProductBehindIt) {
    ASSERT_TRUE(loadProduct(""));
    const auto& element = static_cast<CProductElement&>(product());

    EXPECT_EQ(offsetIn(element, static_cast<const CElement&>(element)), 0);
    EXPECT_EQ(offsetIn(element, static_cast<const IterfaceProduct&>(element)),
              ptrdiff_t{sizeof(CElement)});
}

TEST_F(CProductElementTest, BeginsWithEmptyRecords) {
    ASSERT_TRUE(loadProduct(""));

    EXPECT_EQ(product().observer, nullptr);
    EXPECT_EQ(product().observerData, nullptr);
    EXPECT_EQ(product().progress, 0u);
    EXPECT_FALSE(product().rebootRequired);
    EXPECT_EQ(product().actionInfo.code, 0u);
    EXPECT_EQ(product().errorInfo.code, 0u);
    EXPECT_EQ(errorMessage(), L"");
}

TEST_F(CProductElementTest, ReadsNoAttributes) {
    const XmlDocumentPtr document = makeDocument();
    ASSERT_TRUE(parseDocument(*document, L"<Product Id='P' Path='[none]' On='install'/>"));
    CProductElement element(*getRootElement(*document), context);
    std::wstring message;
    AttributeRecord record;

    EXPECT_TRUE(element.readDeclaredAttributes(context, message));
    EXPECT_TRUE(element.resolveDerivedAttributes(context, message));

    EXPECT_EQ(element.describe(), L"(Product,P)");
    EXPECT_FALSE(element.getAttribute(L"Path", record));
    EXPECT_FALSE(element.getAttribute(L"On", record));
}

TEST_F(CProductElementTest, EmptySequenceSucceedsInSilence) {
    ASSERT_TRUE(loadSequence(""));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CProductElementTest, SequenceTakesTheWholeRangeOfProgress) {
    ASSERT_TRUE(
        loadSequence("<Fragment><Caution Title='a'/></Fragment>"
                     "<Fragment><Caution Title='b'/><Caution Title='c'/></Fragment>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 50u, 75u));
}

TEST_F(CProductElementTest, ScriptWithoutASequenceFails) {
    ASSERT_TRUE(loadProduct("<Fragment/>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(product().errorInfo.code, 1u);
    EXPECT_EQ(errorMessage(), L"Failed to create install element.");
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(CProductElementTest, SequenceCountsOnlyRightUnderTheProduct) {
    ASSERT_TRUE(loadProduct("<Group><InstallExecuteSequence/></Group>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(), L"Failed to create install element.");
}

TEST_F(CProductElementTest, FirstOfSeveralSequencesRuns) {
    ASSERT_TRUE(
        loadProduct("<InstallExecuteSequence><Fragment><Caution Title='1'/></Fragment>"
                    "</InstallExecuteSequence>"
                    "<InstallExecuteSequence><Fragment><Caution Title='2'/></Fragment>"
                    "</InstallExecuteSequence>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"1"));
}

TEST_F(CProductElementTest, RunBeginsWithClearedRecords) {
    ASSERT_TRUE(loadProduct("<InstallExecuteSequence/>"));
    IterfaceProduct& subject = product();
    subject.progress = 70;
    subject.rebootRequired = true;
    subject.actionInfo = {3, L"a", L"b"};
    subject.errorInfo = {4, L"a", L"b", 5, L"m"};
    subject.observerData = &subject;

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(subject.progress, 0u);
    EXPECT_FALSE(subject.rebootRequired);
    EXPECT_EQ(subject.actionInfo.code, 0u);
    EXPECT_STREQ(subject.actionInfo.text1, L"");
    EXPECT_STREQ(subject.actionInfo.text2, L"");
    EXPECT_EQ(subject.errorInfo.code, 0u);
    EXPECT_STREQ(subject.errorInfo.text1, L"");
    EXPECT_EQ(subject.errorInfo.systemError, 0u);
    EXPECT_EQ(errorMessage(), L"");
    EXPECT_EQ(subject.observerData, &subject);
}

TEST_F(CProductElementTest, RunWithoutASequenceClearsTheRecordsTheSame) {
    ASSERT_TRUE(loadProduct(""));
    product().progress = 70;
    product().rebootRequired = true;
    product().actionInfo.code = 3;
    product().errorInfo = {4, L"a", L"b", 5, L"m"};

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(product().progress, 0u);
    EXPECT_FALSE(product().rebootRequired);
    EXPECT_EQ(product().actionInfo.code, 0u);
    EXPECT_STREQ(product().errorInfo.text1, L"");
    EXPECT_EQ(product().errorInfo.systemError, 0u);
}

TEST_F(CProductElementTest, RunLeavesTheHostsMembersAlone) {
    ASSERT_TRUE(loadSequence("<Fragment><Caution Title='a'/></Fragment><Caution/>"));
    context.runMode = RUNMODE_INSTALL;
    product().observer = &observer;
    product().observerData = &folder;

    EXPECT_EQ(product().run(&context), -1);

    EXPECT_EQ(product().observer, &observer);
    EXPECT_EQ(product().observerData, &folder);
}

TEST_F(CProductElementTest, RebootRequirementOutlivesTheRun) {
    class RebootingObserver final : public IterfaceObserver {
        void update(IterfaceProduct* product) override { product->rebootRequired = true; }
        ObserverAnswer askOnError(ErrorInfo*) override { return ANSWER_ABORT; }
    } rebooting;
    ASSERT_TRUE(loadSequence("<Fragment><Caution Title='a'/></Fragment>"));
    product().observer = &rebooting;
    context.runMode = RUNMODE_INSTALL;

    EXPECT_EQ(product().run(&context), 0);

    EXPECT_TRUE(product().rebootRequired);
}

TEST_F(CProductElementTest, NothingHappensInAModeThatNoElementTakesPartIn) {
    ASSERT_TRUE(
        loadSequence("<Fragment><Caution On='install' Title='a'/></Fragment>"
                     "<Fragment On='install'><Caution Title='b'/></Fragment>"));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_EQ(product().progress, 0u);
}

TEST_F(CProductElementTest, StructuralFailureEndsTheRun) {
    ASSERT_TRUE(loadSequence("<Caution Title='a'/>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(product().errorInfo.code, 1u);
    EXPECT_EQ(errorMessage(), L"(InstallExecuteSequence,) has a illegal child element(Caution)");
}

TEST_F(CProductElementTest, FailingActionGivesItsCodeAndKeepsItsRecord) {
    ASSERT_TRUE(
        load("<Root><Product><Directory Id='D' Path='C:\\temz-tests'><Component Id='C'>"
             "<File Name='made' Source='a source that is absent'/></Component></Directory>"
             "<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>"
             "</InstallExecuteSequence></Product></Root>"));

    EXPECT_EQ(run(), ERROR_FILE_NOT_FOUND);

    EXPECT_EQ(product().errorInfo.code, ACTION_COPY_FILE);
    EXPECT_STREQ(product().errorInfo.text1, L"made");
    EXPECT_EQ(product().errorInfo.systemError, uint32_t{ERROR_FILE_NOT_FOUND});
}

TEST_F(CProductElementTest, SuccessfulRunLeavesAnEmptyMessageUnderCode1) {
    ASSERT_TRUE(loadSequence("<Fragment><Caution Title='a'/></Fragment>"));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(product().errorInfo.code, 1u);
    EXPECT_EQ(errorMessage(), L"");
}

TEST_F(CProductElementTest, SecondRunBeginsAnewWithTheVariablesAsTheyAre) {
    ASSERT_TRUE(loadSequence("<Fragment><Caution Title='#V'/><Caution Title='end'/></Fragment>",
                             "<Variable Id='V' Type='string' Value='a'/>"));
    ASSERT_EQ(run(), 0);
    static_cast<CStringVariable*>(context.findVariable(L"V"))->setString(L"b");

    EXPECT_EQ(run(), 0);
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a", L"end", L"b", L"end", L"b", L"end"));
    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 50u, 0u, 50u, 0u, 50u));
}

TEST_F(CProductElementTest, SecondRunCanSucceedAfterAFailedOne) {
    ASSERT_TRUE(
        loadSequence("<Fragment On='install'><File/></Fragment>"
                     "<Fragment><Caution Title='a'/></Fragment>"));
    ASSERT_EQ(run(RUNMODE_INSTALL), -1);

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a"));
    EXPECT_EQ(errorMessage(), L"");
}

TEST_F(CProductElementTest, RunWithoutAnObserverGoesOnAndTellsTheLog) {
    ASSERT_TRUE(loadSequence("<Fragment><Caution Title='a'/><Caution Title='b'/></Fragment>"));
    const LogFile log;
    context.runMode = RUNMODE_INSTALL;

    EXPECT_EQ(product().run(&context), 0);

    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] Observer is NULL in subject.",
                                         "[WARNNING] Observer is NULL in subject."));
    EXPECT_EQ(product().progress, 50u);
}

TEST_F(CProductElementTest, ExceptionOfAnObserverLeavesTheRun) {
    class ThrowingObserver final : public IterfaceObserver {
        void update(IterfaceProduct*) override { throw std::wstring(L"thrown"); }
        ObserverAnswer askOnError(ErrorInfo*) override { return ANSWER_ABORT; }
    } throwing;
    ASSERT_TRUE(loadSequence("<Fragment><Caution Title='a'/></Fragment>"));
    product().observer = &throwing;
    context.runMode = RUNMODE_INSTALL;

    EXPECT_THROW(product().run(&context), std::wstring);
}

}  // namespace
