// The action of an element, its failures and the answers to them.

#include <gmock/gmock.h>

#include <utility>

#include "support/LogFile.h"
#include "support/MotionElementTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using ActionFailureTest = MotionElementTest;

TEST_F(ActionFailureTest, VitalIsYesAloneOrNothingAtAll) {
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

TEST_F(ActionFailureTest, SuccessfulActionAsksNobody) {
    MotionProbe& element = makeProbe("");
    observer.answers = {ANSWER_RETRY};

    EXPECT_EQ(element.runAction(context), 0);

    EXPECT_EQ(element.executed, 1);
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(ActionFailureTest, AnswersDecideOverAFailedAction) {
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
        MotionProbe& element = makeProbe("Vital='yes'");
        element.results = row.results;
        observer.answers = row.answers;

        EXPECT_EQ(element.runAction(context), row.result);

        EXPECT_EQ(element.executed, row.executed);
        EXPECT_THAT(observer.answers, IsEmpty());
        EXPECT_EQ(observer.failures.size(), row.answers.size());
    }
}

TEST_F(ActionFailureTest, RetryRepeatsTheActionAlone) {
    MotionProbe& element = makeProbe("", cautions(1));
    element.results = {5};
    observer.answers = {ANSWER_RETRY};

    EXPECT_EQ(element.runElement(context), 0);

    EXPECT_EQ(element.prepared, 1);
    EXPECT_EQ(element.executed, 2);
    EXPECT_EQ(observer.updates.size(), 1u);
}

TEST_F(ActionFailureTest, RetryOfOneActionIsForgottenAtTheNext) {
    MotionProbe& element = makeProbe("");
    element.results = {5, 0, 6, 0};
    observer.answers = {ANSWER_RETRY, 7};

    EXPECT_EQ(element.runAction(context), 0);
    EXPECT_EQ(element.runAction(context), 6);
}

TEST_F(ActionFailureTest, HostIsAskedWithTheRecordOfTheFailure) {
    MotionProbe& element = makeProbe("");
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

TEST_F(ActionFailureTest, RecordOfTheFailureStaysWhateverTheAnswer) {
    for (const int32_t answer : {ANSWER_RETRY, ANSWER_ABORT, ANSWER_IGNORE}) {
        MotionProbe& element = makeProbe("");
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

TEST_F(ActionFailureTest, FailureThatIsNotVitalIsIgnoredWithALine) {
    const LogFile log;
    MotionProbe& element = makeProbe("Vital='no'");
    element.results = {5};
    element.onExecute = [&] { context.getProduct()->errorInfo = {15, L"a", L"b", 4, L"m"}; };

    EXPECT_EQ(element.runAction(context), 0);

    EXPECT_EQ(element.executed, 1);
    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] The last error isn't vital - ignore."));
    EXPECT_EQ(errorInfo().code, 15u);
    EXPECT_EQ(errorMessage(), L"m");
}

TEST_F(ActionFailureTest, FailureWithoutAnObserverEndsTheAction) {
    const LogFile log;
    MotionProbe& element = makeProbe("Vital='yes'");
    element.results = {5};
    context.getProduct()->observer = nullptr;

    EXPECT_EQ(element.runAction(context), 5);

    EXPECT_EQ(element.executed, 1);
    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] Observer is NULL in subject."));
}

TEST_F(ActionFailureTest, VitalFailureIsNoMatterForTheLog) {
    const LogFile log;
    MotionProbe& element = makeProbe("");
    element.results = {5};
    observer.answers = {ANSWER_IGNORE};

    EXPECT_EQ(element.runAction(context), 0);

    EXPECT_THAT(log.lines(), IsEmpty());
}

}  // namespace
