#include "expression/COperand.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "support/ClassLayout.h"
#include "support/Thrown.h"

namespace {

/// An operand that adds nothing to its base.
struct BareOperand final : COperand {
    COperand& assign(COperand*) override { return *this; }
};

TEST(COperandTest, OperationsStandInOrder) {
    EXPECT_EQ(slotOf(&COperand::assign), 0u);
    EXPECT_EQ(slotOf(&COperand::getInt), 1u);
    EXPECT_EQ(slotOf(&COperand::getString), 2u);
    EXPECT_EQ(slotOf(&COperand::getBoolean), 3u);
    EXPECT_EQ(slotOf(&COperand::GreaterThan), 4u);
    EXPECT_EQ(slotOf(&COperand::LessThan), 5u);
    EXPECT_EQ(slotOf(&COperand::Equal), 6u);
    EXPECT_EQ(slotOf(&COperand::getType), 7u);
    EXPECT_EQ(slotOf(&Extended<COperand>::next), 8u);
}

TEST(COperandTest, HoldsNothingAndHasNoVirtualDestructor) {
    EXPECT_EQ(sizeof(COperand), sizeof(void*));
    EXPECT_FALSE(std::has_virtual_destructor_v<COperand>);
}

TEST(COperandTest, OffersNoValueByItself) {
    const BareOperand operand;

    EXPECT_EQ(thrownBy([&] { operand.getInt(); }), L"It doesn't support getInt method.");
    EXPECT_EQ(thrownBy([&] { operand.getString(); }), L"It doesn't support getString method.");
    EXPECT_EQ(thrownBy([&] { operand.getBoolean(); }), L"It doesn't support 'getBoolean' method.");
    EXPECT_EQ(operand.getType(), 0);
}

TEST(COperandTest, OffersNoComparisonByItselfAndTellsTwoOfThemAlike) {
    const BareOperand operand;
    BareOperand other;

    EXPECT_EQ(thrownBy([&] { operand.GreaterThan(&other); }),
              L"It doesn't support 'LessThan' comparison.");
    EXPECT_EQ(thrownBy([&] { operand.LessThan(&other); }),
              L"It doesn't support 'LessThan' comparison.");
    EXPECT_EQ(thrownBy([&] { operand.Equal(&other); }), L"It doesn't support 'Equal' comparison.");
}

}  // namespace
