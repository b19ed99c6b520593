#include "motion/CMotionElement.h"

#include <gmock/gmock.h>

#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/CContext.h"
#include "support/ClassLayout.h"
#include "support/FakeCall.h"
#include "support/Heard.h"
#include "support/LogFile.h"
#include "support/ScriptTest.h"
#include "system/TextCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// An element that does as it is told and counts what is asked of it.
class ProbeElement final : public CMotionElement {
public:
    using CMotionElement::CMotionElement;

    void getAttributes(std::vector<AttributeDeclaration>& list) const override {
        list = {{L"On", false}, {L"Vital", false}, {L"Path", false}};
    }

    int32_t prepare(bool& descend, CContext& context) override {
        begunWith = descend;
        heardAtPrepare = heard(context);
        ++prepared;
        descend = descends;
        return prepareResult;
    }

    bool isChildAllowed(const wchar_t* childName) const override {
        return std::wstring_view(childName) != L"Illegal";
    }

    int32_t execute(CContext& context) override {
        heardAtExecute = heard(context);
        ++executed;
        if (onExecute)
            onExecute();
        if (results.empty())
            return 0;
        const int32_t result = results.front();
        results.pop_front();
        return result;
    }

    void loseNode() { node.reset(); }

    bool descends = true;
    int32_t prepareResult = 0;
    std::deque<int32_t> results;  ///< of `execute`, one by one, then 0
    std::function<void()> onExecute;

    std::optional<bool> begunWith;  ///< what `prepare` found in `descend`
    int prepared = 0;
    int executed = 0;
    size_t heardAtPrepare = 0;
    size_t heardAtExecute = 0;

private:
    static size_t heard(CContext& context) {
        const auto* observer = static_cast<RecordingObserver*>(context.getProduct()->observer);
        return observer ? observer->updates.size() : 0;
    }
};

/// What CMotionElement does by itself.
class PlainElement final : public CMotionElement {
public:
    using CMotionElement::CMotionElement;
    using CMotionElement::progressFrom;
    using CMotionElement::progressTo;
};

class CMotionElementTest : public ScriptTest {
protected:
    /// Makes the probe of `<Probe Id='P' attributes>children</Probe>`, which the observer hears.
    ProbeElement& makeProbe(std::string_view attributes, std::string_view children = {}) {
        context.unload();
        EXPECT_TRUE(loadProduct("<Probe Id='P' " + std::string(attributes) + ">" +
                                std::string(children) + "</Probe>"));
        context.runMode = RUNMODE_INSTALL;
        context.getProduct()->observer = &observer;
        probe.emplace(L"Probe", L"P", context);
        std::wstring message;
        EXPECT_TRUE(probe->readDeclaredAttributes(context, message));
        return *probe;
    }

    const ErrorInfo& errorInfo() { return context.getProduct()->errorInfo; }

    std::optional<ProbeElement> probe;
};

std::string cautions(int count) {
    std::string children;
    for (int i = 0; i < count; ++i)
        children += "<Caution Title='c'/>";
    return children;
}

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
    ProbeElement& element = makeProbe("", cautions(2));

    EXPECT_EQ(element.runElement(context), 0);

    EXPECT_EQ(element.begunWith, false);
    EXPECT_EQ(element.heardAtPrepare, 0u);
    EXPECT_EQ(element.heardAtExecute, 2u);
    EXPECT_EQ(element.prepared, 1);
    EXPECT_EQ(element.executed, 1);
}

TEST_F(CMotionElementTest, VisitOfAFilteredElementDoesNothing) {
    ProbeElement& element = makeProbe("On='uninstall'", cautions(1));
    element.prepareResult = 5;

    EXPECT_EQ(element.runElement(context), 0);

    EXPECT_EQ(element.prepared, 0);
    EXPECT_EQ(element.executed, 0);
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CMotionElementTest, FailedPreparationEndsTheVisitWithoutAQuestion) {
    ProbeElement& element = makeProbe("Vital='no'", cautions(1));
    element.prepareResult = 5;

    EXPECT_EQ(element.runElement(context), 5);

    EXPECT_EQ(element.prepared, 1);
    EXPECT_EQ(element.executed, 0);
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(CMotionElementTest, ElementThatDoesNotDescendSucceedsWithoutChildrenAndAction) {
    ProbeElement& element = makeProbe("", cautions(1));
    element.descends = false;

    EXPECT_EQ(element.runElement(context), 0);

    EXPECT_EQ(element.executed, 0);
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_EQ(errorMessage(), L"");
}

TEST_F(CMotionElementTest, FailedChildKeepsTheActionFromRunning) {
    ProbeElement& element = makeProbe("Vital='no'", "<Illegal/>");

    EXPECT_EQ(element.runElement(context), -1);

    EXPECT_EQ(element.executed, 0);
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(CMotionElementTest, VisitGivesTheResultOfItsAction) {
    ProbeElement& element = makeProbe("");
    element.results = {17};

    EXPECT_EQ(element.runElement(context), 17);
}

TEST_F(CMotionElementTest, ExceptionOfAnActionLeavesTheVisit) {
    ProbeElement& element = makeProbe("Vital='no'");
    element.onExecute = [] { throw std::wstring(L"thrown"); };

    EXPECT_THROW(element.runElement(context), std::wstring);
}

// The mode filter.

TEST_F(CMotionElementTest, OnLetsAnElementPassInItsModes) {
    struct Row {
        const char* attributes;
        bool install;
        bool uninstall;
        bool upgrade;
        bool other;
    };
    constexpr Row rows[] = {
        {"", true, true, true, true},
        {"On=''", true, true, true, true},
        {"On='install'", true, false, false, false},
        {"On='uninstall'", false, true, false, false},
        {"On='upgrade'", false, false, true, false},
        {"On='installupgrade'", true, false, true, false},
        {"On='Install'", false, false, false, false},
        {"On=' '", false, false, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.attributes);
        const ProbeElement& element = makeProbe(row.attributes);
        const auto passesIn = [&](int32_t mode) {
            context.runMode = mode;
            return element.passesOnFilter(context);
        };
        EXPECT_EQ(passesIn(RUNMODE_INSTALL), row.install);
        EXPECT_EQ(passesIn(RUNMODE_UNINSTALL), row.uninstall);
        EXPECT_EQ(passesIn(RUNMODE_UPGRADE), row.upgrade);
        for (const int32_t mode : {3, -1, 32, -32})
            EXPECT_EQ(passesIn(mode), row.other) << mode;
    }
}

TEST_F(CMotionElementTest, UnknownOnIsToldInTheLogInEveryMode) {
    for (const char* word : {"Install", "install ", "installUpgrade", "both", "upgrad"}) {
        const LogFile log;
        const ProbeElement& element = makeProbe("On='" + std::string(word) + "'");
        for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UNINSTALL, RUNMODE_UPGRADE}) {
            context.runMode = mode;
            EXPECT_FALSE(element.passesOnFilter(context));
        }
        const std::string line =
            "[WARNNING] (Probe,P) " + std::string(word) + " attribute is unknown.";
        EXPECT_THAT(log.lines(), ElementsAre(line, line, line));
    }
}

TEST_F(CMotionElementTest, KeywordThatDoesNotMatchTheModeIsNoMatterForTheLog) {
    const LogFile log;
    const ProbeElement& element = makeProbe("On='uninstall'");
    context.runMode = 99;

    EXPECT_FALSE(element.passesOnFilter(context));

    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CMotionElementTest, OnThatAClassDoesNotDeclareIsNotRead) {
    ASSERT_TRUE(loadProduct("<Plain Id='P' On='uninstall'/>"));
    PlainElement plain(L"Plain", L"P", context);
    std::wstring message;
    ASSERT_TRUE(plain.readDeclaredAttributes(context, message));

    for (const int32_t mode : {0, 1, 2, 99}) {
        context.runMode = mode;
        EXPECT_TRUE(plain.passesOnFilter(context));
    }
}

// The walk over the children.

TEST_F(CMotionElementTest, WalkWithoutChildrenSucceeds) {
    EXPECT_EQ(makeProbe("").runChildren(context), 0);
    EXPECT_EQ(makeProbe("", "text<!-- Illegal -->").runChildren(context), 0);

    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CMotionElementTest, WalkWithoutANodeSucceeds) {
    ProbeElement& element = makeProbe("", "<Illegal/>");
    element.loseNode();

    EXPECT_EQ(element.runChildren(context), 0);
}

TEST_F(CMotionElementTest, ChildrenRunInDocumentOrder) {
    ProbeElement& element = makeProbe("",
                                      "<Caution Title='1'/><Fragment><Caution Title='2'/>"
                                      "<Caution Title='3'/></Fragment><Caution Title='4'/>");

    EXPECT_EQ(element.runChildren(context), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"1", L"2", L"3", L"4"));
}

TEST_F(CMotionElementTest, ChildTakesAttributesFromTheElementAboveIt) {
    const std::wstring file = folder.write(L"file.txt", "x");
    const std::string path = std::filesystem::path(folder.path()).string();
    ProbeElement& element =
        makeProbe("Path='" + path + "'", "<File Name='file.txt' Source='unused'/>");
    context.runMode = RUNMODE_UNINSTALL;

    EXPECT_EQ(element.runChildren(context), 0);

    EXPECT_FALSE(exists(file));
}

TEST_F(CMotionElementTest, ChildrenShareTheProgressOfTheirParent) {
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
        ProbeElement& element = makeProbe("", cautions(row.children));
        element.setProgressRange(row.from, row.to);

        EXPECT_EQ(element.runChildren(context), 0);

        EXPECT_EQ(heardProgress(observer), row.progress);
    }
}

// Three ranges, told by the starts of two children in each: 0 to 33, 33 to 66 and 66 to 100.
TEST_F(CMotionElementTest, ShareOfAChildEndsWhereTheNextOneBegins) {
    const std::string pair = "<Fragment>" + cautions(2) + "</Fragment>";
    ProbeElement& element = makeProbe("", pair + pair + pair);
    element.setProgressRange(0, 100);

    EXPECT_EQ(element.runChildren(context), 0);

    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 16u, 33u, 49u, 66u, 83u));
}

// (53 / 100) * 100 falls short of 53 in single precision, as does 59; all others are exact.
TEST_F(CMotionElementTest, SharesAreReckonedInSinglePrecision) {
    std::vector<uint32_t> expected;
    for (uint32_t i = 0; i < 100; ++i)
        expected.push_back(i == 53 || i == 59 ? i - 1 : i);
    ProbeElement& element = makeProbe("", cautions(100));
    element.setProgressRange(0, 100);

    EXPECT_EQ(element.runChildren(context), 0);

    EXPECT_EQ(heardProgress(observer), expected);
}

TEST_F(CMotionElementTest, SkippedChildrenKeepTheirShare) {
    ProbeElement& element =
        makeProbe("",
                  "<Caution Title='a'/><Caution Title='b' On='uninstall'/>"
                  "<Fragment On='upgrade'><Caution Title='c'/></Fragment><Caution Title='d'/>");
    element.setProgressRange(0, 100);

    EXPECT_EQ(element.runChildren(context), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a", L"d"));
    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 75u));
}

TEST_F(CMotionElementTest, OnlyElementsHaveAShare) {
    ProbeElement& element = makeProbe("",
                                      "text<!-- <Caution/> --><Caution Title='a'/>"
                                      "<![CDATA[<Caution/>]]><Caution Title='b'/><?x y?>");
    element.setProgressRange(0, 100);

    EXPECT_EQ(element.runChildren(context), 0);

    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 50u));
}

TEST_F(CMotionElementTest, IllegalChildEndsTheWalkWhenItsTurnComes) {
    ProbeElement& element = makeProbe(
        "", "<Caution Title='a'/><Caution Title='b'/><Illegal Id='I'/><Caution Title='c'/>");
    element.setProgressRange(0, 100);

    EXPECT_EQ(element.runChildren(context), -1);

    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 25u));
    EXPECT_EQ(errorInfo().code, 1u);
    EXPECT_STREQ(errorInfo().text1, L"");
    EXPECT_EQ(errorInfo().systemError, 0u);
    EXPECT_EQ(errorMessage(), L"(Probe,P) has a illegal child element(Illegal)");
}

TEST_F(CMotionElementTest, IllegalChildFailsEvenIfTheFilterWouldSkipIt) {
    EXPECT_EQ(makeProbe("", "<Illegal On='uninstall'/>").runChildren(context), -1);

    EXPECT_EQ(errorMessage(), L"(Probe,P) has a illegal child element(Illegal)");
}

TEST_F(CMotionElementTest, ChildThatCannotBeMadeEndsTheWalk) {
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
        ProbeElement& element = makeProbe("", row.child + cautions(1));
        EXPECT_EQ(element.runChildren(context), -1);
        EXPECT_EQ(errorInfo().code, 1u);
        EXPECT_EQ(errorMessage(), row.message);
    }
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(CMotionElementTest, ChildWithoutANameEndsTheWalk) {
    ProbeElement& element = makeProbe("", cautions(1));
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

TEST_F(CMotionElementTest, FailedChildEndsTheWalkWithItsResultAndItsRecord) {
    const std::string file = "<File Name='f' Source='a source that is absent'/>";
    ProbeElement& element = makeProbe("Path='C:\\temz-tests'", file + cautions(1));

    EXPECT_EQ(element.runChildren(context), ERROR_FILE_NOT_FOUND);

    EXPECT_EQ(errorInfo().code, ACTION_COPY_FILE);
    EXPECT_STREQ(errorInfo().text1, L"f");
    ASSERT_EQ(observer.failures.size(), 1u);
    ASSERT_EQ(observer.updates.size(), 1u);
    EXPECT_EQ(observer.updates[0].code, ACTION_COPY_FILE);
}

TEST_F(CMotionElementTest, IgnoredFailureOfAChildLetsTheNextOneRun) {
    const std::string file = "<File Name='f' Source='a source that is absent'/>";
    ProbeElement& element = makeProbe("Path='C:\\temz-tests'", file + cautions(1));
    observer.answers = {ANSWER_IGNORE};

    EXPECT_EQ(element.runElement(context), 0);

    ASSERT_EQ(observer.updates.size(), 2u);
    EXPECT_EQ(observer.updates[1].code, ACTION_CAUTION);
    EXPECT_EQ(element.executed, 1);
}

TEST_F(CMotionElementTest, FailureIsPassedUpThroughEveryLevelWithoutAnotherQuestion) {
    ProbeElement& element = makeProbe(
        "Path='C:\\temz-tests'",
        "<Component><File Name='f' Source='a source that is absent'/></Component>" + cautions(1));

    EXPECT_EQ(element.runElement(context), ERROR_FILE_NOT_FOUND);

    EXPECT_EQ(observer.failures.size(), 1u);
    EXPECT_EQ(element.executed, 0);
    EXPECT_STREQ(errorInfo().text1, L"f");
}

// The action, its failures and the answers to them.

TEST_F(CMotionElementTest, VitalIsYesAloneOrNothingAtAll) {
    constexpr std::pair<const char*, bool> rows[] = {{"", true},
                                                     {"Vital='yes'", true},
                                                     {"Vital='Yes'", false},
                                                     {"Vital='no'", false},
                                                     {"Vital='true'", false},
                                                     {"Vital=''", false},
                                                     {"Vital='yes '", false},
                                                     {"Vital='ye'", false},
                                                     {"vital='no'", true}};
    for (const auto& [attributes, vital] : rows)
        EXPECT_EQ(makeProbe(attributes).isVital(context), vital) << attributes;
}

TEST_F(CMotionElementTest, SuccessfulActionAsksNobody) {
    ProbeElement& element = makeProbe("");
    observer.answers = {ANSWER_RETRY};

    EXPECT_EQ(element.runAction(context), 0);

    EXPECT_EQ(element.executed, 1);
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(CMotionElementTest, AnswersDecideOverAFailedAction) {
    constexpr int32_t unknown = 7;
    struct Row {
        const char* name;
        std::deque<int32_t> results;
        std::deque<int32_t> answers;
        int32_t result;
        int executed;
    };
    const Row rows[] = {
        {"abort gives the code", {5}, {ANSWER_ABORT}, 5, 1},
        {"ignore succeeds", {5}, {ANSWER_IGNORE}, 0, 1},
        {"retry that succeeds", {5, 0}, {ANSWER_RETRY}, 0, 2},
        {"retries without a limit",
         {1, 1, 1, 1, 1, 0},
         {ANSWER_RETRY, ANSWER_RETRY, ANSWER_RETRY, ANSWER_RETRY, ANSWER_RETRY},
         0,
         6},
        {"abort gives the code of the last attempt", {5, 6}, {ANSWER_RETRY, ANSWER_ABORT}, 6, 2},
        {"ignore after a retry", {5, 6}, {ANSWER_RETRY, ANSWER_IGNORE}, 0, 2},
        {"unknown answer aborts", {5, 0}, {unknown}, 5, 1},
        {"so do answers on either side", {5, 0}, {3}, 5, 1},
        {"of the known ones", {-1, 0}, {-1}, -1, 1},
        {"unknown answer after a retry retries", {5, 6, 0}, {ANSWER_RETRY, unknown}, 0, 3},
        {"after two retries too", {5, 6, 7, 0}, {ANSWER_RETRY, ANSWER_RETRY, unknown}, 0, 4},
        {"again and again", {5, 6, 7, 8}, {ANSWER_RETRY, unknown, -1, ANSWER_ABORT}, 8, 4},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        observer.failures.clear();
        ProbeElement& element = makeProbe("Vital='yes'");
        element.results = row.results;
        observer.answers = row.answers;

        EXPECT_EQ(element.runAction(context), row.result);

        EXPECT_EQ(element.executed, row.executed);
        EXPECT_THAT(observer.answers, IsEmpty());
        EXPECT_EQ(observer.failures.size(), row.answers.size());
    }
}

TEST_F(CMotionElementTest, RetryRepeatsTheActionAlone) {
    ProbeElement& element = makeProbe("", cautions(1));
    element.results = {5};
    observer.answers = {ANSWER_RETRY};

    EXPECT_EQ(element.runElement(context), 0);

    EXPECT_EQ(element.prepared, 1);
    EXPECT_EQ(element.executed, 2);
    EXPECT_EQ(observer.updates.size(), 1u);
}

TEST_F(CMotionElementTest, RetryOfOneActionIsForgottenAtTheNext) {
    ProbeElement& element = makeProbe("");
    element.results = {5, 0, 6, 0};
    observer.answers = {ANSWER_RETRY, 7};

    EXPECT_EQ(element.runAction(context), 0);
    EXPECT_EQ(element.runAction(context), 6);
}

TEST_F(CMotionElementTest, HostIsAskedWithTheRecordOfTheFailure) {
    ProbeElement& element = makeProbe("");
    element.results = {5};
    element.onExecute = [&] { context.getProduct()->errorInfo = {15, L"a", L"b", 4, L"m"}; };

    EXPECT_EQ(element.runAction(context), 5);

    ASSERT_EQ(observer.failures.size(), 1u);
    EXPECT_EQ(observer.failures[0].code, 15u);
    EXPECT_STREQ(observer.failures[0].text1, L"a");
    EXPECT_STREQ(observer.failures[0].text2, L"b");
    EXPECT_EQ(observer.failures[0].systemError, 4u);
    EXPECT_STREQ(observer.failures[0].message, L"m");
}

TEST_F(CMotionElementTest, RecordOfTheFailureStaysWhateverTheAnswer) {
    for (const int32_t answer : {ANSWER_RETRY, ANSWER_ABORT, ANSWER_IGNORE}) {
        ProbeElement& element = makeProbe("");
        element.results = {5};
        element.onExecute = [&] {
            if (element.executed == 1)
                context.getProduct()->errorInfo = {15, L"a", L"b", 4, L"m"};
        };
        observer.answers = {answer};

        element.runAction(context);

        EXPECT_EQ(errorInfo().code, 15u);
        EXPECT_EQ(errorMessage(), L"m");
    }
}

TEST_F(CMotionElementTest, FailureThatIsNotVitalIsIgnoredWithALine) {
    const LogFile log;
    ProbeElement& element = makeProbe("Vital='no'");
    element.results = {5};
    element.onExecute = [&] { context.getProduct()->errorInfo = {15, L"a", L"b", 4, L"m"}; };

    EXPECT_EQ(element.runAction(context), 0);

    EXPECT_EQ(element.executed, 1);
    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] The last error isn't vital - ignore."));
    EXPECT_EQ(errorInfo().code, 15u);
    EXPECT_EQ(errorMessage(), L"m");
}

TEST_F(CMotionElementTest, FailureWithoutAnObserverEndsTheAction) {
    const LogFile log;
    ProbeElement& element = makeProbe("Vital='yes'");
    element.results = {5};
    context.getProduct()->observer = nullptr;

    EXPECT_EQ(element.runAction(context), 5);

    EXPECT_EQ(element.executed, 1);
    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] Observer is NULL in subject."));
}

TEST_F(CMotionElementTest, VitalFailureIsNoMatterForTheLog) {
    const LogFile log;
    ProbeElement& element = makeProbe("");
    element.results = {5};
    observer.answers = {ANSWER_IGNORE};

    EXPECT_EQ(element.runAction(context), 0);

    EXPECT_THAT(log.lines(), IsEmpty());
}

}  // namespace
