#include "support/FakeCall.h"

#include <gtest/gtest.h>

namespace {

int addReally(int left, int right) {
    return left + right;
}

void doubleReally(int* number) {
    *number *= 2;
}

struct Calls {
    decltype(&addReally) add = addReally;
    decltype(&addReally) addAgain = addReally;
    decltype(&doubleReally) twice = doubleReally;
};

Calls calls;

using FakeAdd = FakeCall<calls, &Calls::add>;
using FakeTwice = FakeCall<calls, &Calls::twice>;

TEST(FakeCallTest, AnswersInPlaceOfTheRealCall) {
    const FakeAdd add([](int left, int right) { return left * 10 + right; });

    EXPECT_EQ(calls.add(1, 2), 12);
}

TEST(FakeCallTest, WritesWhatItsArgumentsPointAt) {
    const FakeTwice twice([](int* number) { *number = 7; });
    int number = 1;

    calls.twice(&number);

    EXPECT_EQ(number, 7);
}

TEST(FakeCallTest, LeavesTheOtherCallsOfTheTableReal) {
    const FakeAdd add([](auto...) { return -1; });

    EXPECT_EQ(calls.addAgain, addReally);
    EXPECT_EQ(calls.twice, doubleReally);
}

TEST(FakeCallTest, PutsTheRealCallBackAtItsEnd) {
    {
        const FakeAdd add([](auto...) { return -1; });
        ASSERT_NE(calls.add, addReally);
    }
    EXPECT_EQ(calls.add, addReally);
}

TEST(FakeCallTest, ReachesTheRealCall) {
    const FakeAdd add([&](int left, int right) { return add.real(left, right) + 100; });

    EXPECT_EQ(calls.add(1, 2), 103);
    EXPECT_EQ(add.real, addReally);
}

TEST(FakeCallTest, CountsItsCalls) {
    const FakeAdd add([](auto...) { return 0; });
    EXPECT_EQ(add.count, 0);

    calls.add(1, 2);
    calls.add(3, 4);

    EXPECT_EQ(add.count, 2);
}

TEST(FakeCallTest, CountsNoOtherCallAndNoRealOne) {
    const FakeAdd add([](auto...) { return 0; });
    const FakeTwice twice([](auto...) {});
    int number = 1;

    calls.twice(&number);
    calls.addAgain(1, 2);
    add.real(1, 2);

    EXPECT_EQ(add.count, 0);
    EXPECT_EQ(twice.count, 1);
}

TEST(FakeCallTest, CountsAnewInTheNextFake) {
    {
        const FakeAdd add([](auto...) { return 0; });
        calls.add(1, 2);
    }
    const FakeAdd add([](auto...) { return 5; });

    EXPECT_EQ(add.count, 0);
    EXPECT_EQ(calls.add(1, 2), 5);
    EXPECT_EQ(add.count, 1);
}

}  // namespace
