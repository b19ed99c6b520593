#include "motion/CCautionMtElement.h"

#include <gmock/gmock.h>

#include "elements/ElementFactory.h"
#include "engine/CContext.h"
#include "support/AllowedChildren.h"
#include "support/ChildProcess.h"
#include "support/Heard.h"
#include "support/LogFile.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CCautionMtElementTest : public ScriptTest {
protected:
    /// Loads a script whose sequence holds one fragment of these children.
    bool loadFragment(std::string_view children, std::string_view variables = {}) {
        return loadProduct("<InstallExecuteSequence><Fragment Id='F'>" + std::string(children) +
                               "</Fragment></InstallExecuteSequence>",
                           variables);
    }
};

TEST_F(CCautionMtElementTest, TellsTheHostItsTitleAsTheSecondText) {
    ASSERT_TRUE(loadFragment("<Caution Title='a'/><Caution Title='Mind the gap'/>"));

    EXPECT_EQ(run(), 0);

    using Notification = RecordingObserver::Notification;
    EXPECT_THAT(observer.updates, ElementsAre(Notification{16, L"", L"a", 0},
                                              Notification{16, L"", L"Mind the gap", 50}));
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(CCautionMtElementTest, ReplacesReferencesInItsTitle) {
    ASSERT_TRUE(
        loadFragment("<Caution Title='about #V'/>", "<Variable Id='V' Type='string' Value='x'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"about x"));
}

TEST_F(CCautionMtElementTest, EmptyTitleIsATitle) {
    ASSERT_TRUE(loadFragment("<Caution Title=''/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L""));
}

TEST_F(CCautionMtElementTest, TitleOf512CharactersEndsTheProcess) {
    const std::string fits(511, 't');
    ASSERT_TRUE(loadFragment("<Caution Title='" + fits + "'/>"));
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(heardTitles(observer), ElementsAre(std::wstring(511, L't')));
    context.unload();

    ASSERT_TRUE(loadFragment("<Caution Title='" + fits + "t'/>"));
    EXPECT_EXIT(run(), endedByInvalidParameter(), "");
}

TEST_F(CCautionMtElementTest, IsToldInEveryMode) {
    ASSERT_TRUE(loadFragment("<Caution Title='a'/>"));

    for (const int32_t mode : {0, 1, 2, 7})
        EXPECT_EQ(run(mode), 0) << mode;

    EXPECT_EQ(observer.updates.size(), 4u);
}

TEST_F(CCautionMtElementTest, CannotBeMadeWithoutATitle) {
    ASSERT_TRUE(loadFragment("<Caution Id='C' title='a'/>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(),
              L"Create Motion Element error:(Caution,C) cant get the require explicit "
              L"Titleattribute.(Fragment,F) cann't create child element(Caution)");
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CCautionMtElementTest, FailsWhenItsTitleWasNeverRead) {
    ASSERT_TRUE(loadProduct("<Caution Id='C' Title='a'/>"));
    CCautionMtElement element(*context.findElementById(L"Caution", L"C"), context);
    context.getProduct()->observer = &observer;

    EXPECT_EQ(element.execute(context), -1);

    EXPECT_EQ(errorMessage(), L"(Caution,C) can't get Title attribute.");
    EXPECT_EQ(context.getProduct()->errorInfo.code, 1u);
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CCautionMtElementTest, OnLimitsItToItsModes) {
    ASSERT_TRUE(loadFragment("<Caution Title='a' On='uninstall'/>"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    EXPECT_THAT(observer.updates, IsEmpty());

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a"));
}

TEST_F(CCautionMtElementTest, DeclaresTitleAndOn) {
    ASSERT_TRUE(loadProduct("<Caution Id='C' Title='a' Vital='no'/>"));
    const XmlHandlePtr node = context.findElementById(L"Caution", L"C");
    const MotionElementPtr element = CreateMotionElement(node.get(), context, nullptr);
    std::vector<AttributeDeclaration> declared;
    AttributeRecord record;

    element->getAttributes(declared);

    ASSERT_EQ(declared.size(), 2u);
    EXPECT_STREQ(declared[0].name, L"Title");
    EXPECT_TRUE(declared[0].required);
    EXPECT_STREQ(declared[1].name, L"On");
    EXPECT_FALSE(declared[1].required);
    EXPECT_FALSE(element->getAttribute(L"Vital", record));
    EXPECT_TRUE(element->isVital(context));
}

TEST_F(CCautionMtElementTest, HoldsNothing) {
    ASSERT_TRUE(loadProduct("<Caution Id='C' Title='a'/>"));
    const CCautionMtElement element(*context.findElementById(L"Caution", L"C"), context);
    std::vector<AttributeDeclaration> derived(1);

    element.getDerivedAttributes(derived);

    EXPECT_THAT(allowedChildren(element), IsEmpty());
    EXPECT_THAT(derived, IsEmpty());
}

TEST_F(CCautionMtElementTest, ChildOfItFailsBeforeItIsTold) {
    ASSERT_TRUE(loadFragment("<Caution Id='C' Title='a'><Caution Title='b'/></Caution>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(), L"(Caution,C) has a illegal child element(Caution)");
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CCautionMtElementTest, StandsForNoOtherElement) {
    ASSERT_TRUE(loadProduct("<Fragment Id='F'/>"));
    const XmlHandlePtr node = context.findElementById(L"Fragment", L"F");

    EXPECT_EQ(thrownBy([&] { CCautionMtElement(*node, context); }),
              L"Failed to create element (Fragment,F)");
}

TEST_F(CCautionMtElementTest, WithoutAnObserverOnlyTheLogIsTold) {
    ASSERT_TRUE(loadFragment("<Caution Title='a'/>"));
    const LogFile log;
    context.runMode = RUNMODE_INSTALL;

    EXPECT_EQ(context.getProduct()->run(&context), 0);

    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] Observer is NULL in subject."));
    EXPECT_STREQ(context.getProduct()->actionInfo.text2, L"a");
}

}  // namespace
