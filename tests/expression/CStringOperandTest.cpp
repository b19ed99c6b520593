#include "expression/CStringOperand.h"

#include <gtest/gtest.h>

#include "expression/CIntOperand.h"
#include "expression/CStringVariable.h"
#include "expression/CVariableElement.h"
#include "support/ClassLayout.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

namespace {

class CStringOperandTest : public ScriptTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(loadProduct("", R"(<Variable Id='S' Type='string' Value='abc'/>
                                       <Variable Id='T' Type='string' Value='5'/>
                                       <VariableConst Id='C' Type='string' Value='const'/>)"));
    }

    CVariable* variable(const wchar_t* name) { return context.findVariable(name); }
};

TEST_F(CStringOperandTest, ViewReadsItsVariableAnewEachTime) {
    const CStringOperand operand(variable(L"S"));
    EXPECT_EQ(operand.getString(), L"abc");
    EXPECT_EQ(operand.getType(), 1);

    variable(L"S")->element->setValueText(L"new");

    EXPECT_EQ(operand.getString(), L"new");
}

TEST_F(CStringOperandTest, ViewOfNothingIsRefused) {
    EXPECT_EQ(thrownBy([] { CStringOperand(nullptr); }),
              L"variable obj is NULL in CStringOperand.");
}

TEST_F(CStringOperandTest, HasNoInteger) {
    EXPECT_EQ(thrownBy([&] { CStringOperand(variable(L"T")).getInt(); }),
              L"It doesn't support getInt method.");
}

TEST_F(CStringOperandTest, HoldsAVariableBehindItsTable) {
    CStringOperand operand(variable(L"S"));

    EXPECT_EQ(sizeof(CStringOperand), 16u);
    EXPECT_EQ(memberAt<CVariable*>(operand, 8), variable(L"S"));
}

TEST_F(CStringOperandTest, IsTrueUnlessItsTextIsEmpty) {
    const CStringOperand operand(variable(L"S"));
    for (const wchar_t* text : {L"0", L"false", L" ", L"a"}) {
        variable(L"S")->element->setValueText(text);
        EXPECT_EQ(operand.getBoolean(), 1) << text;
    }

    variable(L"S")->element->setValueText({});

    EXPECT_EQ(operand.getBoolean(), 0);
}

TEST_F(CStringOperandTest, ComparesCodeUnitByCodeUnit) {
    const struct {
        const wchar_t* left;
        const wchar_t* right;
        int32_t greater;
        int32_t less;
        int32_t equal;
    } rows[] = {
        {L"", L"", 0, 0, 1},
        {L"abc", L"abc", 0, 0, 1},
        {L"abc", L"abcd", 0, 1, 0},
        {L"abcd", L"abc", 1, 0, 0},
        {L"", L"a", 0, 1, 0},
        {L"b", L"abc", 1, 0, 0},
        {L"abc", L"ABC", 1, 0, 0},
        {L"B", L"a", 0, 1, 0},
        {L"10", L"9", 0, 1, 0},
        {L"5", L"05", 1, 0, 0},
        {L"a ", L"a", 1, 0, 0},
        {L"\u00E4", L"z", 1, 0, 0},
        {L"\u7FFF", L"\uFFFD", 0, 1, 0},
        // A surrogate is below U+FFFD, though the character that it begins is above.
        {L"\U0001F600", L"\uFFFD", 0, 1, 0},
    };
    const CStringOperand left(variable(L"S"));
    CStringOperand right(variable(L"T"));
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.left) + " and " +
                     testing::PrintToString(row.right));
        variable(L"S")->element->setValueText(row.left);
        variable(L"T")->element->setValueText(row.right);
        EXPECT_EQ(left.GreaterThan(&right), row.greater);
        EXPECT_EQ(left.LessThan(&right), row.less);
        EXPECT_EQ(left.Equal(&right), row.equal);
    }
}

TEST_F(CStringOperandTest, IsNotComparedWithAnIntegerWhateverItHolds) {
    constexpr wchar_t refusal[] = L"It can't compare between different type variables.";
    const CStringOperand text(variable(L"T"));
    CIntOperand five(5);

    EXPECT_EQ(thrownBy([&] { text.GreaterThan(&five); }), refusal);
    EXPECT_EQ(thrownBy([&] { text.LessThan(&five); }), refusal);
    EXPECT_EQ(thrownBy([&] { text.Equal(&five); }), refusal);
}

TEST_F(CStringOperandTest, AssignmentWritesTheVariableAndGivesTheOperandItself) {
    CStringOperand s(variable(L"S"));
    CStringOperand t(variable(L"T"));

    EXPECT_EQ(&s.assign(&t), &s);

    EXPECT_EQ(s.getString(), L"5");
    EXPECT_EQ(variable(L"S")->element->getValueText(), L"5");
    EXPECT_EQ(t.getString(), L"5");
}

TEST_F(CStringOperandTest, IntegerCannotBeAssigned) {
    constexpr wchar_t refusal[] = L"It can't assign value between operands with different type.";
    CIntOperand five(5);

    EXPECT_EQ(thrownBy([&] { CStringOperand(variable(L"S")).assign(&five); }), refusal);
    EXPECT_EQ(thrownBy([&] { CStringOperand(variable(L"C")).assign(&five); }), refusal);

    EXPECT_EQ(variable(L"S")->getString(), L"abc");
}

TEST_F(CStringOperandTest, ConstVariableCannotBeAssigned) {
    CStringOperand s(variable(L"S"));

    EXPECT_EQ(thrownBy([&] { CStringOperand(variable(L"C")).assign(&s); }),
              L"It can't assign value to a const variable.");

    EXPECT_EQ(variable(L"C")->getString(), L"const");
}

/// Variables whose elements have no text, which a loaded script never has.
class TextlessVariableTest : public CStringOperandTest {
protected:
    XmlDocumentPtr parse(const wchar_t* xml) {
        XmlDocumentPtr document = makeDocument();
        EXPECT_TRUE(parseDocument(*document, xml));
        return document;
    }

    XmlDocumentPtr first = parse(L"<Variable Id='FIRST' Type='string'/>");
    XmlDocumentPtr second = parse(L"<Variable Id='SECOND' Type='string'/>");
    CVariableElement firstElement{*getRootElement(*first), context};
    CVariableElement secondElement{*getRootElement(*second), context};
    CStringVariable firstVariable{&firstElement, false};
    CStringVariable secondVariable{&secondElement, false};
    CStringOperand left{&firstVariable};
    CStringOperand right{&secondVariable};
};

TEST_F(TextlessVariableTest, FailsWhereItIsRead) {
    constexpr wchar_t failure[] = L"(Variable,FIRST) can't get value attribute.";

    EXPECT_EQ(thrownBy([&] { left.getString(); }), failure);
    EXPECT_EQ(thrownBy([&] { left.getBoolean(); }), failure);
}

TEST_F(TextlessVariableTest, RightSideIsReportedFirst) {
    constexpr wchar_t failure[] = L"(Variable,SECOND) can't get value attribute.";

    EXPECT_EQ(thrownBy([&] { left.GreaterThan(&right); }), failure);
    EXPECT_EQ(thrownBy([&] { left.LessThan(&right); }), failure);
    EXPECT_EQ(thrownBy([&] { left.Equal(&right); }), failure);
}

TEST_F(TextlessVariableTest, AssignedVariableIsReadBeforeTheOtherIsFoundConst) {
    CStringOperand constant(variable(L"C"));

    EXPECT_EQ(thrownBy([&] { constant.assign(&right); }),
              L"(Variable,SECOND) can't get value attribute.");
}

}  // namespace
