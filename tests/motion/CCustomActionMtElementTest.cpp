#include "motion/CCustomActionMtElement.h"

#include <gmock/gmock.h>

#include "elements/ElementFactory.h"
#include "support/AllowedChildren.h"
#include "support/CustomActionScriptTest.h"
#include "support/Declarations.h"
#include "support/FakeCall.h"
#include "support/Thrown.h"
#include "system/LibraryCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

using CCustomActionMtElementTest = CustomActionScriptTest;

// What the element asks of the script.

TEST_F(CCustomActionMtElementTest, DeclaresItsAttributesInOrder) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check' Vital='no'")));
    const MotionElementPtr element = CreateMotionElement(node().get(), context, nullptr);
    AttributeRecord record;

    EXPECT_THAT(declaredBy(*element),
                ElementsAre(Pair(L"DllFile", true), Pair(L"DllEntry", true), Pair(L"Return", true),
                            Pair(L"On", false), Pair(L"Title", false)));
    EXPECT_THAT(derivedBy(*element), IsEmpty());
    EXPECT_FALSE(element->getAttribute(L"Vital", record));
}

TEST_F(CCustomActionMtElementTest, CannotBeMadeWithoutWhatItDemands) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"DllEntry='e' Return='r'", L"DllFile"},
        {"DllFile='f' Return='r'", L"DllEntry"},
        {"DllFile='f' DllEntry='e'", L"Return"},
    };
    for (const auto& [attributes, missing] : rows) {
        SCOPED_TRACE(attributes);
        context.unload();
        ASSERT_TRUE(loadFragment("<CustomAction Id='A' " + attributes + "/>"));

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(
            failure(),
            messageFailure(
                L"Create Motion Element error:(CustomAction,A) cant get the require explicit " +
                missing + L"attribute.(Fragment,F) cann't create child element(CustomAction)"));
    }
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CCustomActionMtElementTest, FailsWhenItsAttributesWereNeverRead) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));
    CCustomActionMtElement element(*node(), context);
    context.getProduct()->observer = &observer;

    EXPECT_EQ(element.execute(context), -1);

    EXPECT_EQ(failure(), messageFailure(L"(CustomAction,A) can't get DllFile attribute."));
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_EQ(call.calls, 0u);
}

TEST_F(CCustomActionMtElementTest, TakesNoChildren) {
    ASSERT_TRUE(
        loadFragment("<CustomAction Id='A' DllFile='f' DllEntry='e' Return='r'>"
                     "<Caution Title='a'/></CustomAction>"));
    EXPECT_THAT(allowedChildren(CCustomActionMtElement(*node(), context)), IsEmpty());

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(), L"(CustomAction,A) has a illegal child element(Caution)");
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CCustomActionMtElementTest, StandsForNoOtherElement) {
    ASSERT_TRUE(loadFragment(""));
    const XmlHandlePtr fragment = context.findElementById(L"Fragment", L"F");

    EXPECT_EQ(thrownBy([&] { CCustomActionMtElement(*fragment, context); }),
              L"Failed to create element (Fragment,F)");
}

TEST_F(CCustomActionMtElementTest, OnLimitsItToItsModes) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check' On='uninstall'")));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_EQ(call.calls, 0u);
    EXPECT_THAT(observer.updates, IsEmpty());

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_EQ(call.calls, 1u);
}

TEST_F(CCustomActionMtElementTest, CallsInEveryMode) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

    for (const int32_t mode : {0, 1, 2, 7})
        EXPECT_EQ(run(mode), 0) << mode;

    EXPECT_EQ(call.calls, 4u);
}

// What the host and the script decide about a failure.

TEST_F(CCustomActionMtElementTest, IsVitalWhateverTheScriptSays) {
    answerWith(7, L"It went wrong.");
    for (const std::string attributes : {"Vital='no'", "Vital=''", "Vital='yes'", ""}) {
        SCOPED_TRACE(attributes);
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='check' " + attributes)));
        observer.failures.clear();

        EXPECT_EQ(run(), 7);

        EXPECT_EQ(observer.failures.size(), 1u);
    }
}

TEST_F(CCustomActionMtElementTest, RetryTellsTheHostAndLoadsTheLibraryAnew) {
    ASSERT_TRUE(loadFragment(action("countCalls", "Return='check'")));
    observer.answers = {ANSWER_RETRY, ANSWER_RETRY, ANSWER_ABORT};
    FakeCall<libraryCalls, &LibraryCalls::LoadLibraryW> open(
        [&](auto file) { return open.real(file); });

    EXPECT_EQ(run(), 1);

    EXPECT_EQ(open.count, 3);
    EXPECT_EQ(observer.updates.size(), 3u);
    for (const ErrorInfo& error : observer.failures)
        EXPECT_EQ(error.systemError, 1u);
}

TEST_F(CCustomActionMtElementTest, RetryThatSucceedsLeavesNoFailure) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));
    FakeCall<libraryCalls, &LibraryCalls::LoadLibraryW> open(
        [&](auto file) { return open.count == 1 ? nullptr : open.real(file); });
    observer.answers = {ANSWER_RETRY};

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(call.calls, 1u);
    EXPECT_EQ(observer.failures.size(), 1u);
    EXPECT_EQ(failure(), noFailure);
}

}  // namespace
