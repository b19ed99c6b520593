#include <gtest/gtest.h>

#include <string>

#include "FailingAllocation.h"
#include "expression/CExpression.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

namespace {

std::wstring repeated(std::wstring_view part, size_t times) {
    std::wstring text;
    for (size_t i = 0; i < times; ++i)
        text += part;
    return text;
}

std::wstring termsJoinedBy(std::wstring_view middle, size_t count) {
    return L"1" + repeated(middle, count - 1);
}

std::wstring nested(size_t depth) {
    return repeated(L"(", depth) + L"N" + repeated(L")", depth);
}

std::wstring nestedWithBlanks(size_t depth) {
    return repeated(L"( 1 AND ", depth) + L"N" + repeated(L" )", depth);
}

std::wstring negated(size_t times) {
    return repeated(L"!", times) + L"N";
}

std::wstring assigned(size_t times) {
    return repeated(L"N=", times) + L"1";
}

struct Shape {
    const char* name;
    std::wstring (*make)(size_t size);
};

const Shape shapes[] = {
    {"terms of one level", [](size_t size) { return termsJoinedBy(L" AND 1", size); }},
    {"terms of several levels",
     [](size_t size) { return termsJoinedBy(L" OR N AND N E 1", size); }},
    {"parentheses", &nested},
    {"parentheses around terms", &nestedWithBlanks},
    {"negations", &negated},
    {"assignments in one word", &assigned},
};

/// Expressions grow to ten times their size; what they cost may grow as much, and a little for
/// what comes in steps.
class ExpressionGrowthTest : public ScriptTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(load("<Root><Variable Id='N' Type='int' Value='1'/><Product/></Root>"));
    }

    bool evaluate(const std::wstring& expression) {
        return CExpression().evaluate(expression.c_str(), context);
    }

    AllocationCount costOf(const std::wstring& expression) {
        const AllocationCount before = allocationsSoFar();
        EXPECT_TRUE(evaluate(expression));
        const AllocationCount after = allocationsSoFar();
        return {after.allocations - before.allocations, after.bytes - before.bytes};
    }
};

TEST_F(ExpressionGrowthTest, TenTimesTheExpressionAllocatesTenTimesAsMuch) {
    for (const Shape& shape : shapes) {
        SCOPED_TRACE(shape.name);
        const AllocationCount small = costOf(shape.make(1000));
        const AllocationCount large = costOf(shape.make(10000));
        EXPECT_LE(large.allocations, small.allocations * 11);
        // A stack that has become too small moves to twice its room.
        EXPECT_LE(large.bytes, small.bytes * 20);
    }
}

TEST_F(ExpressionGrowthTest, TermCostsItsPieceItsOperandAndTheResult) {
    constexpr size_t more = 1000;
    const AllocationCount small = costOf(termsJoinedBy(L" AND 1", more));
    const AllocationCount large = costOf(termsJoinedBy(L" AND 1", 2 * more));
    EXPECT_EQ(large.allocations - small.allocations, 3 * more);
}

TEST_F(ExpressionGrowthTest, DepthIsLimitedByMemoryAlone) {
    constexpr size_t deep = 10000;

    EXPECT_TRUE(evaluate(nested(deep)));
    EXPECT_TRUE(evaluate(negated(deep)));
    EXPECT_FALSE(evaluate(negated(deep + 1)));
    EXPECT_TRUE(evaluate(assigned(deep)));

    const std::wstring open = repeated(L"(", deep) + L"N";
    EXPECT_EQ(thrownBy([&] { evaluate(open); }),
              L"\"" + open + L"\" expression error: '(' didn't math ')'.");
}

}  // namespace
