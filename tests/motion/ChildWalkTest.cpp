// The walk over the children of an element.

#include <gmock/gmock.h>

#include <filesystem>

#include "support/FakeCall.h"
#include "support/Heard.h"
#include "support/MotionElementTest.h"
#include "system/TextCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using ChildWalkTest = MotionElementTest;

TEST_F(ChildWalkTest, WalkWithoutChildrenSucceeds) {
    EXPECT_EQ(makeProbe("").runChildren(context), 0);
    EXPECT_EQ(makeProbe("", "text<!-- Illegal -->").runChildren(context), 0);

    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(ChildWalkTest, WalkWithoutANodeSucceeds) {
    MotionProbe& element = makeProbe("", "<Illegal/>");
    element.loseNode();

    EXPECT_EQ(element.runChildren(context), 0);
}

TEST_F(ChildWalkTest, ChildrenRunInDocumentOrder) {
    MotionProbe& element = makeProbe("",
                                     "<Caution Title='1'/><Fragment><Caution Title='2'/>"
                                     "<Caution Title='3'/></Fragment><Caution Title='4'/>");

    EXPECT_EQ(element.runChildren(context), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"1", L"2", L"3", L"4"));
}

TEST_F(ChildWalkTest, ChildTakesAttributesFromTheElementAboveIt) {
    const std::wstring file = folder.write(L"file.txt", "x");
    const std::string path = std::filesystem::path(folder.path()).string();
    MotionProbe& element =
        makeProbe("Path='" + path + "'", "<File Name='file.txt' Source='unused'/>");
    context.runMode = RUNMODE_UNINSTALL;

    EXPECT_EQ(element.runChildren(context), 0);

    EXPECT_FALSE(exists(file));
}

TEST_F(ChildWalkTest, ChildrenShareTheProgressOfTheirParent) {
    struct Row {
        uint32_t from;
        uint32_t to;
        int children;
        std::vector<uint32_t> progress;
    };
    const Row rows[] = {
        {0, 100, 1, {0}},
        {0, 100, 2, {0, 50}},
        {0, 100, 3, {0, 33, 66}},
        {0, 100, 7, {0, 14, 28, 42, 57, 71, 85}},
        {33, 66, 2, {33, 49}},
        {66, 100, 4, {66, 74, 83, 91}},
        {10, 12, 5, {10, 10, 10, 11, 11}},
        {40, 40, 3, {40, 40, 40}},
        {0, 0, 2, {0, 0}},
        {100, 0, 4, {100, 75, 50, 25}},  // a range is signed
        {9, 2, 4, {9, 8, 6, 4}},         // and is cut towards zero
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.children << " in " << row.from << ".." << row.to);
        observer.updates.clear();
        MotionProbe& element = makeProbe("", cautions(row.children));
        element.setProgressRange(row.from, row.to);

        EXPECT_EQ(element.runChildren(context), 0);

        EXPECT_EQ(heardProgress(observer), row.progress);
    }
}

// Three ranges, told by the starts of two children in each: 0 to 33, 33 to 66 and 66 to 100.
TEST_F(ChildWalkTest, ShareOfAChildEndsWhereTheNextOneBegins) {
    const std::string pair = "<Fragment>" + cautions(2) + "</Fragment>";
    MotionProbe& element = makeProbe("", pair + pair + pair);
    element.setProgressRange(0, 100);

    EXPECT_EQ(element.runChildren(context), 0);

    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 16u, 33u, 49u, 66u, 83u));
}

// (53 / 100) * 100 falls short of 53 in single precision, as does 59; all others are exact.
TEST_F(ChildWalkTest, SharesAreReckonedInSinglePrecision) {
    std::vector<uint32_t> expected;
    for (uint32_t i = 0; i < 100; ++i)
        expected.push_back(i == 53 || i == 59 ? i - 1 : i);
    MotionProbe& element = makeProbe("", cautions(100));
    element.setProgressRange(0, 100);

    EXPECT_EQ(element.runChildren(context), 0);

    EXPECT_EQ(heardProgress(observer), expected);
}

TEST_F(ChildWalkTest, SkippedChildrenKeepTheirShare) {
    MotionProbe& element =
        makeProbe("",
                  "<Caution Title='a'/><Caution Title='b' On='uninstall'/>"
                  "<Fragment On='upgrade'><Caution Title='c'/></Fragment><Caution Title='d'/>");
    element.setProgressRange(0, 100);

    EXPECT_EQ(element.runChildren(context), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a", L"d"));
    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 75u));
}

TEST_F(ChildWalkTest, OnlyElementsHaveAShare) {
    MotionProbe& element = makeProbe("",
                                     "text<!-- <Caution/> --><Caution Title='a'/>"
                                     "<![CDATA[<Caution/>]]><Caution Title='b'/><?x y?>");
    element.setProgressRange(0, 100);

    EXPECT_EQ(element.runChildren(context), 0);

    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 50u));
}

TEST_F(ChildWalkTest, IllegalChildEndsTheWalkWhenItsTurnComes) {
    MotionProbe& element = makeProbe(
        "", "<Caution Title='a'/><Caution Title='b'/><Illegal Id='I'/><Caution Title='c'/>");
    element.setProgressRange(0, 100);

    EXPECT_EQ(element.runChildren(context), -1);

    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 25u));
    EXPECT_EQ(errorInfo().code, 1u);
    EXPECT_STREQ(errorInfo().text1, L"");
    EXPECT_EQ(errorInfo().systemError, 0u);
    EXPECT_EQ(errorMessage(), L"(Probe,P) has a illegal child element(Illegal)");
}

TEST_F(ChildWalkTest, IllegalChildFailsEvenIfTheFilterWouldSkipIt) {
    EXPECT_EQ(makeProbe("", "<Illegal On='uninstall'/>").runChildren(context), -1);

    EXPECT_EQ(errorMessage(), L"(Probe,P) has a illegal child element(Illegal)");
}

TEST_F(ChildWalkTest, ChildThatCannotBeMadeEndsTheWalk) {
    struct Row {
        const char* child;
        const wchar_t* message;
    };
    constexpr Row rows[] = {
        {"<Unknown/>",
         L"Create Motion Element error:Unknown element name is undefined."
         L"(Probe,P) cann't create child element(Unknown)"},
        {"<Caution Id='C'/>",
         L"Create Motion Element error:(Caution,C) cant get the require explicit Titleattribute."
         L"(Probe,P) cann't create child element(Caution)"},
        {"<FeatureRef Id='F'/>",
         L"Create Motion Element error:(Feature,F) element can't create(get the node is null)."
         L"(Probe,P) cann't create child element(FeatureRef)"},
        {"<FragmentRef/>",
         L"Create Motion Element error:The name or id is NULL in createRefMotionElement."
         L"(Probe,P) cann't create child element(FragmentRef)"},
        {"<File Name='n' Source='s'/>",
         L"Create Motion Element error:(File,) can't get Path attribute from  parent element."
         L"(Probe,P) cann't create child element(File)"},
    };
    for (const Row& row : rows) {
        MotionProbe& element = makeProbe("", row.child + cautions(1));
        EXPECT_EQ(element.runChildren(context), -1);
        EXPECT_EQ(errorInfo().code, 1u);
        EXPECT_EQ(errorMessage(), row.message);
    }
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(ChildWalkTest, ChildWithoutANameEndsTheWalk) {
    MotionProbe& element = makeProbe("", cautions(1));
    for (const bool isNull : {true, false}) {
        FakeCall<textCalls, &TextCalls::MultiByteToWideChar> convert(
            [&](auto page, auto flags, const char* text, auto... rest) {
                if (std::string_view(text) != "Caution")
                    return convert.real(page, flags, text, rest...);
                return isNull ? 0 : convert.real(page, flags, "", rest...);
            });
        context.getProduct()->errorInfo = {3, L"a", L"b", 4, L"m"};

        EXPECT_EQ(element.runChildren(context), -1);

        EXPECT_EQ(errorInfo().code, 1u);
        EXPECT_STREQ(errorInfo().text1, L"");
        EXPECT_EQ(errorMessage(), L"(Probe,P) can't get child element name.");
    }
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(ChildWalkTest, FailedChildEndsTheWalkWithItsResultAndItsRecord) {
    const std::string file = "<File Name='f' Source='a source that is absent'/>";
    MotionProbe& element = makeProbe("Path='C:\\temz-tests'", file + cautions(1));

    EXPECT_EQ(element.runChildren(context), ERROR_FILE_NOT_FOUND);

    EXPECT_EQ(errorInfo().code, ACTION_COPY_FILE);
    EXPECT_STREQ(errorInfo().text1, L"f");
    ASSERT_EQ(observer.failures.size(), 1u);
    ASSERT_EQ(observer.updates.size(), 1u);
    EXPECT_EQ(observer.updates[0].code, ACTION_COPY_FILE);
}

TEST_F(ChildWalkTest, IgnoredFailureOfAChildLetsTheNextOneRun) {
    const std::string file = "<File Name='f' Source='a source that is absent'/>";
    MotionProbe& element = makeProbe("Path='C:\\temz-tests'", file + cautions(1));
    observer.answers = {ANSWER_IGNORE};

    EXPECT_EQ(element.runElement(context), 0);

    ASSERT_EQ(observer.updates.size(), 2u);
    EXPECT_EQ(observer.updates[1].code, ACTION_CAUTION);
    EXPECT_EQ(element.executed, 1);
}

TEST_F(ChildWalkTest, FailureIsPassedUpThroughEveryLevelWithoutAnotherQuestion) {
    MotionProbe& element = makeProbe(
        "Path='C:\\temz-tests'",
        "<Component><File Name='f' Source='a source that is absent'/></Component>" + cautions(1));

    EXPECT_EQ(element.runElement(context), ERROR_FILE_NOT_FOUND);

    EXPECT_EQ(observer.failures.size(), 1u);
    EXPECT_EQ(element.executed, 0);
    EXPECT_STREQ(errorInfo().text1, L"f");
}

}  // namespace
