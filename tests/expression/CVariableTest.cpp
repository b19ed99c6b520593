#include "expression/CVariable.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "expression/CIntVariable.h"
#include "support/ClassLayout.h"
#include "support/Thrown.h"

namespace {

TEST(CVariableTest, OperationsStandInOrder) {
    EXPECT_EQ(slotOf(&CVariable::getName), 0u);
    EXPECT_EQ(slotOf(&CVariable::getInt), 1u);
    EXPECT_EQ(slotOf(&CVariable::getString), 2u);
    EXPECT_EQ(slotOf(&Extended<CVariable>::next), 3u);
}

TEST(CVariableTest, FieldsStandInOrderBehindTheTable) {
    const CIntVariable variable(L"N", 1);
    EXPECT_EQ(offsetIn(variable, variable.type), 8);
    EXPECT_EQ(offsetIn(variable, variable.isConst), 12);
    EXPECT_EQ(offsetIn(variable, variable.element), 16);
    EXPECT_EQ(sizeof(CVariable), 24u);
    EXPECT_FALSE(std::has_virtual_destructor_v<CVariable>);
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
