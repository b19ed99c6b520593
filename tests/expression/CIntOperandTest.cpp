#include "expression/CIntOperand.h"

#include <gtest/gtest.h>

#include <limits>

#include "expression/CIntVariable.h"
#include "expression/CStringOperand.h"
#include "expression/CVariableElement.h"
#include "support/ClassLayout.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

namespace {

constexpr int32_t least = std::numeric_limits<int32_t>::min();
constexpr int32_t greatest = std::numeric_limits<int32_t>::max();

class CIntOperandTest : public ScriptTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(loadProduct("", R"(<Variable Id='N' Type='int' Value='5'/>
                                       <Variable Id='M' Type='int' Value='-2'/>
                                       <Variable Id='BAD' Type='int' Value='bad'/>
                                       <Variable Id='WORSE' Type='int' Value='worse'/>
                                       <VariableConst Id='C' Type='int' Value='9'/>
                                       <Variable Id='S' Type='string' Value='5'/>)"));
    }

    CVariable* variable(const wchar_t* name) { return context.findVariable(name); }
};

TEST_F(CIntOperandTest, ConstantHoldsItsValue) {
    for (const int32_t value : {5, 0, -1, least, greatest}) {
        const CIntOperand operand(value);
        EXPECT_EQ(operand.getInt(), value);
        EXPECT_EQ(operand.getBoolean(), value);
        EXPECT_EQ(operand.getType(), 2);
    }
}

TEST_F(CIntOperandTest, ViewReadsItsVariableAnewEachTime) {
    const CIntOperand operand(variable(L"N"));
    EXPECT_EQ(operand.getInt(), 5);
    EXPECT_EQ(operand.getBoolean(), 5);
    EXPECT_EQ(operand.getType(), 2);

    variable(L"N")->element->setValueText(L"-7");

    EXPECT_EQ(operand.getInt(), -7);
    EXPECT_EQ(operand.getBoolean(), -7);
}

TEST_F(CIntOperandTest, ViewOfNothingIsRefused) {
    EXPECT_EQ(thrownBy([] { CIntOperand(static_cast<CVariable*>(nullptr)); }),
              L"variable obj is NULL in CIntOperand.");
}

TEST_F(CIntOperandTest, HasNoText) {
    EXPECT_EQ(thrownBy([] { CIntOperand(5).getString(); }),
              L"It doesn't support getString method.");
    EXPECT_EQ(thrownBy([&] { CIntOperand(variable(L"N")).getString(); }),
              L"It doesn't support getString method.");
}

TEST_F(CIntOperandTest, HoldsAValueAndAVariableBehindItsTable) {
    CIntOperand constant(-7);
    CIntOperand view(variable(L"N"));

    EXPECT_EQ(sizeof(CIntOperand), 24u);
    EXPECT_EQ(memberAt<int32_t>(constant, 8), -7);
    EXPECT_EQ(memberAt<CVariable*>(constant, 16), nullptr);
    EXPECT_EQ(memberAt<int32_t>(view, 8), 0);
    EXPECT_EQ(memberAt<CVariable*>(view, 16), variable(L"N"));
}

TEST_F(CIntOperandTest, ComparesSignedNumbers) {
    const struct {
        int32_t left;
        int32_t right;
        int32_t greater;
        int32_t less;
        int32_t equal;
    } rows[] = {{5, 5, 0, 0, 1},     {5, 4, 1, 0, 0},        {4, 5, 0, 1, 0},
                {-1, 0, 0, 1, 0},    {0, -1, 1, 0, 0},       {-1, -2, 1, 0, 0},
                {10, 9, 1, 0, 0},    {least, 1, 0, 1, 0},    {greatest, least, 1, 0, 0},
                {0, least, 1, 0, 0}, {least, least, 0, 0, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.left) + " and " + std::to_string(row.right));
        const CIntOperand left(row.left);
        CIntOperand right(row.right);
        EXPECT_EQ(left.GreaterThan(&right), row.greater);
        EXPECT_EQ(left.LessThan(&right), row.less);
        EXPECT_EQ(left.Equal(&right), row.equal);
    }
}

TEST_F(CIntOperandTest, ComparesVariablesAndConstantsAlike) {
    const CIntOperand n(variable(L"N"));
    CIntOperand m(variable(L"M"));
    CIntOperand five(5);

    EXPECT_EQ(n.GreaterThan(&m), 1);
    EXPECT_EQ(five.LessThan(&m), 0);
    EXPECT_EQ(n.Equal(&five), 1);
}

TEST_F(CIntOperandTest, IsNotComparedWithATextWhateverItHolds) {
    constexpr wchar_t refusal[] = L"It can't compare between different type variables.";
    const CIntOperand five(5);
    const CIntOperand bad(variable(L"BAD"));
    CStringOperand text(variable(L"S"));

    for (const CIntOperand& operand : {five, bad}) {
        EXPECT_EQ(thrownBy([&] { operand.GreaterThan(&text); }), refusal);
        EXPECT_EQ(thrownBy([&] { operand.LessThan(&text); }), refusal);
        EXPECT_EQ(thrownBy([&] { operand.Equal(&text); }), refusal);
    }
}

TEST_F(CIntOperandTest, ReportsTheRightSideWhenNeitherIsANumber) {
    const CIntOperand left(variable(L"BAD"));
    CIntOperand right(variable(L"WORSE"));
    constexpr wchar_t failure[] = L"(Variable,WORSE) is not int variable.";

    EXPECT_EQ(thrownBy([&] { left.GreaterThan(&right); }), failure);
    EXPECT_EQ(thrownBy([&] { left.LessThan(&right); }), failure);
    EXPECT_EQ(thrownBy([&] { left.Equal(&right); }), failure);
}

TEST_F(CIntOperandTest, AssignmentWritesTheVariableAndGivesTheOperandItself) {
    CIntOperand n(variable(L"N"));
    CIntOperand seven(7);
    CIntOperand m(variable(L"M"));

    EXPECT_EQ(&n.assign(&seven), &n);
    EXPECT_EQ(n.getInt(), 7);
    EXPECT_EQ(variable(L"N")->element->getValueText(), L"7");

    n.assign(&m);
    EXPECT_EQ(variable(L"N")->element->getValueText(), L"-2");
    EXPECT_EQ(m.getInt(), -2);
}

TEST_F(CIntOperandTest, TextCannotBeAssigned) {
    constexpr wchar_t refusal[] = L"It can't assign value between different type operands.";
    CStringOperand text(variable(L"S"));

    EXPECT_EQ(thrownBy([&] { CIntOperand(variable(L"N")).assign(&text); }), refusal);
    EXPECT_EQ(thrownBy([&] { CIntOperand(variable(L"C")).assign(&text); }), refusal);
    EXPECT_EQ(thrownBy([&] { CIntOperand(5).assign(&text); }), refusal);

    EXPECT_EQ(variable(L"N")->getInt(), 5);
}

TEST_F(CIntOperandTest, ConstantCannotBeAssigned) {
    constexpr wchar_t refusal[] = L"It can't be assignment in const operand.";
    CIntOperand five(5);
    CIntOperand seven(7);
    CIntOperand bad(variable(L"BAD"));

    EXPECT_EQ(thrownBy([&] { five.assign(&seven); }), refusal);
    EXPECT_EQ(thrownBy([&] { five.assign(&bad); }), refusal);

    EXPECT_EQ(five.getInt(), 5);
}

TEST_F(CIntOperandTest, ConstVariableCannotBeAssigned) {
    constexpr wchar_t refusal[] = L"It can't assign value to a const variable.";
    CIntOperand seven(7);
    const int32_t bits = variable(L"OS_BIT")->getInt();

    EXPECT_EQ(thrownBy([&] { CIntOperand(variable(L"C")).assign(&seven); }), refusal);
    EXPECT_EQ(thrownBy([&] { CIntOperand(variable(L"OS_BIT")).assign(&seven); }), refusal);

    EXPECT_EQ(variable(L"C")->getInt(), 9);
    EXPECT_EQ(variable(L"OS_BIT")->getInt(), bits);
}

TEST_F(CIntOperandTest, AssignedVariableIsReadBeforeTheOtherIsFoundConst) {
    CIntOperand constant(variable(L"C"));
    CIntOperand bad(variable(L"BAD"));

    EXPECT_EQ(thrownBy([&] { constant.assign(&bad); }), L"(Variable,BAD) is not int variable.");
}

}  // namespace
