#include "system/UniqueHandle.h"

#include <gmock/gmock.h>

#include <type_traits>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct NumberTraits {
    using Handle = int;
    static Handle invalid() { return -1; }
    static void close(Handle handle) { closed.push_back(handle); }
    static inline std::vector<Handle> closed;
};
using Number = UniqueHandle<NumberTraits>;

static_assert(!std::is_copy_constructible_v<Number> && !std::is_copy_assignable_v<Number>);
static_assert(std::is_nothrow_move_constructible_v<Number> &&
              std::is_nothrow_move_assignable_v<Number>);
static_assert(sizeof(Number) == sizeof(int));

class UniqueHandleTest : public testing::Test {
protected:
    UniqueHandleTest() { closed.clear(); }

    std::vector<int>& closed = NumberTraits::closed;
};

TEST_F(UniqueHandleTest, HoldsNothingAtFirst) {
    {
        const Number number;
        EXPECT_FALSE(number);
        EXPECT_EQ(number.get(), -1);
    }
    EXPECT_THAT(closed, IsEmpty());
}

TEST_F(UniqueHandleTest, ClosesOnceWhatItHolds) {
    {
        const Number number(7);
        EXPECT_TRUE(number);
        EXPECT_EQ(number.get(), 7);
        EXPECT_THAT(closed, IsEmpty());
    }
    EXPECT_THAT(closed, ElementsAre(7));
}

TEST_F(UniqueHandleTest, TakesOnlyTheInvalidValueForNothing) {
    {
        const Number failed(-1);
        const Number zero(0);
        EXPECT_FALSE(failed);
        EXPECT_TRUE(zero);
    }
    EXPECT_THAT(closed, ElementsAre(0));
}

TEST_F(UniqueHandleTest, ReleaseGivesTheHandleAwayUnclosed) {
    {
        Number number(7);
        EXPECT_EQ(number.release(), 7);
        EXPECT_FALSE(number);
    }
    EXPECT_THAT(closed, IsEmpty());
}

TEST_F(UniqueHandleTest, MoveConstructionLeavesOneOwner) {
    {
        Number from(7);
        const Number to(std::move(from));
        EXPECT_FALSE(from);
        EXPECT_EQ(to.get(), 7);
    }
    EXPECT_THAT(closed, ElementsAre(7));
}

TEST_F(UniqueHandleTest, MoveAssignmentClosesTheHandleHeldBefore) {
    {
        Number from(7);
        Number to(8);
        to = std::move(from);
        EXPECT_THAT(closed, ElementsAre(8));
        EXPECT_FALSE(from);
        EXPECT_EQ(to.get(), 7);
    }
    EXPECT_THAT(closed, ElementsAre(8, 7));
}

TEST_F(UniqueHandleTest, MoveAssignmentFromAnEmptyOneCloses) {
    Number from;
    Number to(8);

    to = std::move(from);

    EXPECT_FALSE(to);
    EXPECT_THAT(closed, ElementsAre(8));
}

TEST_F(UniqueHandleTest, MovedOntoItselfItKeepsItsHandle) {
    {
        Number number(7);
        Number& same = number;
        number = std::move(same);
        EXPECT_EQ(number.get(), 7);
        EXPECT_THAT(closed, IsEmpty());
    }
    EXPECT_THAT(closed, ElementsAre(7));
}

TEST_F(UniqueHandleTest, ResetClosesAtOnceAndOnce) {
    Number number(7);

    number.reset();
    number.reset();

    EXPECT_FALSE(number);
    EXPECT_THAT(closed, ElementsAre(7));
}

TEST_F(UniqueHandleTest, ResetOverAHeldHandleClosesTheHeldOne) {
    {
        Number number(7);
        number.reset(8);
        EXPECT_EQ(number.get(), 8);
        EXPECT_THAT(closed, ElementsAre(7));
    }
    EXPECT_THAT(closed, ElementsAre(7, 8));
}

TEST_F(UniqueHandleTest, ResetToTheHeldHandleItselfKeepsItOpen) {
    {
        Number number(7);
        number.reset(7);
        EXPECT_EQ(number.get(), 7);
        EXPECT_THAT(closed, IsEmpty());
    }
    EXPECT_THAT(closed, ElementsAre(7));
}

}  // namespace
