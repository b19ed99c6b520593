#include "motion/CMotionElement.h"

#include <gmock/gmock.h>

#include "support/ClassLayout.h"
#include "support/MotionElementTest.h"

using testing::IsEmpty;

namespace {

using CMotionElementTest = MotionElementTest;

TEST_F(CMotionElementTest, OperationsFollowThoseOfEveryElement) {
    EXPECT_EQ(slotOf(&CMotionElement::getAttribute), 6u);
    EXPECT_EQ(slotOf(&CMotionElement::prepare), 7u);
    EXPECT_EQ(slotOf(&CMotionElement::isChildAllowed), 8u);
    EXPECT_EQ(slotOf(&CMotionElement::execute), 9u);
    EXPECT_EQ(slotOf(&Extended<CMotionElement>::next), 10u);
}

TEST_F(CMotionElementTest, AddsItsProgressRangeToTheFieldsOfEveryElement) {
    ASSERT_TRUE(loadProduct("<Plain Id='P'/>"));
    const PlainElement plain(L"Plain", L"P", context);

    EXPECT_EQ(offsetIn(plain, plain.progressFrom), ptrdiff_t{sizeof(CElement)});
    EXPECT_EQ(offsetIn(plain, plain.progressTo), ptrdiff_t{sizeof(CElement) + 4});
    EXPECT_EQ(sizeof(CMotionElement), sizeof(CElement) + 8);
}

TEST_F(CMotionElementTest, ByItselfDescendsRefusesChildrenAndDoesNothing) {
    ASSERT_TRUE(loadProduct("<Plain Id='P' On='uninstall' Vital='no'/>"));
    PlainElement plain(L"Plain", L"P", context);
    bool descend = false;
    std::vector<AttributeDeclaration> declared(1);

    EXPECT_EQ(plain.prepare(descend, context), 0);
    plain.getAttributes(declared);

    EXPECT_TRUE(descend);
    EXPECT_FALSE(plain.isChildAllowed(L"Caution"));
    EXPECT_FALSE(plain.isChildAllowed(L"Fragment"));
    EXPECT_EQ(plain.execute(context), 0);
    EXPECT_THAT(declared, IsEmpty());
}

TEST_F(CMotionElementTest, ProgressRangeBeginsEmptyAndIsSetAsAWhole) {
    ASSERT_TRUE(loadProduct("<Plain Id='P'/>"));
    PlainElement plain(L"Plain", L"P", context);
    EXPECT_EQ(plain.progressFrom, 0u);
    EXPECT_EQ(plain.progressTo, 0u);

    plain.setProgressRange(20, 70);

    EXPECT_EQ(plain.progressFrom, 20u);
    EXPECT_EQ(plain.progressTo, 70u);
}

// The visit.

TEST_F(CMotionElementTest, VisitPreparesThenWalksTheChildrenThenExecutes) {
    MotionProbe& element = makeProbe("", cautions(2));

    EXPECT_EQ(element.runElement(context), 0);

    EXPECT_EQ(element.begunWith, false);
    EXPECT_EQ(element.heardAtPrepare, 0u);
    EXPECT_EQ(element.heardAtExecute, 2u);
    EXPECT_EQ(element.prepared, 1);
    EXPECT_EQ(element.executed, 1);
}

TEST_F(CMotionElementTest, VisitOfAFilteredElementDoesNothing) {
    MotionProbe& element = makeProbe("On='uninstall'", cautions(1));
    element.prepareResult = 5;

    EXPECT_EQ(element.runElement(context), 0);

    EXPECT_EQ(element.prepared, 0);
    EXPECT_EQ(element.executed, 0);
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CMotionElementTest, FailedPreparationEndsTheVisitWithoutAQuestion) {
    MotionProbe& element = makeProbe("Vital='no'", cautions(1));
    element.prepareResult = 5;

    EXPECT_EQ(element.runElement(context), 5);

    EXPECT_EQ(element.prepared, 1);
    EXPECT_EQ(element.executed, 0);
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(CMotionElementTest, ElementThatDoesNotDescendSucceedsWithoutChildrenAndAction) {
    MotionProbe& element = makeProbe("", cautions(1));
    element.descends = false;

    EXPECT_EQ(element.runElement(context), 0);

    EXPECT_EQ(element.executed, 0);
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_EQ(errorMessage(), L"");
}

TEST_F(CMotionElementTest, FailedChildKeepsTheActionFromRunning) {
    MotionProbe& element = makeProbe("Vital='no'", "<Illegal/>");

    EXPECT_EQ(element.runElement(context), -1);

    EXPECT_EQ(element.executed, 0);
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(CMotionElementTest, VisitGivesTheResultOfItsAction) {
    MotionProbe& element = makeProbe("");
    element.results = {17};

    EXPECT_EQ(element.runElement(context), 17);
}

TEST_F(CMotionElementTest, ExceptionOfAnActionLeavesTheVisit) {
    MotionProbe& element = makeProbe("Vital='no'");
    element.onExecute = [] { throw std::wstring(L"thrown"); };

    EXPECT_THROW(element.runElement(context), std::wstring);
}

}  // namespace
