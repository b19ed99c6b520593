#include "expression/CVariable.h"

#include <gtest/gtest.h>

#include "support/ClassLayout.h"
#include "support/Thrown.h"

namespace {

TEST(CVariableTest, OperationsStandInTheOrderThatCustomActionsCall) {
    EXPECT_EQ(slotOf(&CVariable::getName), 0u);
    EXPECT_EQ(slotOf(&CVariable::getInt), 1u);
    EXPECT_EQ(slotOf(&CVariable::getString), 2u);
}

TEST(CVariableTest, OffersNeitherAnIntegerNorATextByItself) {
    struct Nameless final : CVariable {
        Nameless() : CVariable(VARIABLE_STRING, nullptr, false) {}
        const wchar_t* getName() const override { return L""; }
    } const variable;

    EXPECT_EQ(thrownBy([&] { variable.getInt(); }), L"It doesn't support getInt method.");
    EXPECT_EQ(thrownBy([&] { variable.getString(); }), L"It doesn't support getString method.");
}

}  // namespace
