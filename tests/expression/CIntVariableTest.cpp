#include "expression/CIntVariable.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "expression/CVariableElement.h"
#include "support/ChildProcess.h"
#include "support/ClassLayout.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

namespace {

class CIntVariableTest : public ScriptTest {
protected:
    /// Loads a script whose variable "N" has this text.
    CIntVariable& load(const std::string& value, const std::string& elementName = "Variable") {
        context.unload();
        EXPECT_TRUE(
            loadProduct("", "<" + elementName + " Id='N' Type='int' Value='" + value + "'/>"));
        return static_cast<CIntVariable&>(*context.findVariable(L"N"));
    }
};

TEST_F(CIntVariableTest, BuiltInOneHoldsNameAndValueItself) {
    const CIntVariable variable(L"NAME", -7);

    EXPECT_STREQ(variable.getName(), L"NAME");
    EXPECT_EQ(variable.getInt(), -7);
    EXPECT_EQ(variable.type, 2);
    EXPECT_TRUE(variable.isConst);
    EXPECT_EQ(variable.element, nullptr);
}

TEST_F(CIntVariableTest, AddsItsValueThenItsNameToTheFieldsOfEveryVariable) {
    CIntVariable builtIn(L"NAME", -7);
    CIntVariable& scripted = load("12");

    EXPECT_EQ(sizeof(CIntVariable), sizeof(CVariable) + 4 + 64 * sizeof(wchar_t) + 4);
    EXPECT_EQ(memberAt<int32_t>(builtIn, sizeof(CVariable)), -7);
    EXPECT_STREQ(&memberAt<wchar_t>(builtIn, sizeof(CVariable) + 4), L"NAME");
    EXPECT_EQ(memberAt<int32_t>(scripted, sizeof(CVariable)), 0);
    EXPECT_STREQ(&memberAt<wchar_t>(scripted, sizeof(CVariable) + 4), L"");
    EXPECT_EQ(slotOf(&CIntVariable::setInt), notVirtual);
}

TEST_F(CIntVariableTest, BuiltInOneTakesANameOf63Characters) {
    const std::wstring longest(63, L'N');
    EXPECT_EQ(CIntVariable(longest.c_str(), 1).getName(), longest);

    const std::wstring tooLong(64, L'N');
    EXPECT_EXIT(CIntVariable(tooLong.c_str(), 1), endedByInvalidParameter(), "");
}

TEST_F(CIntVariableTest, BuiltInOneKeepsItsOwnCopyOfTheName) {
    wchar_t name[] = L"NAME";
    const CIntVariable variable(name, 1);

    name[0] = L'X';

    EXPECT_STREQ(variable.getName(), L"NAME");
}

TEST_F(CIntVariableTest, BuiltInOneCannotBeAssigned) {
    CIntVariable variable(L"NAME", 7);

    EXPECT_EQ(thrownBy([&] { variable.setInt(8); }), L"It can't assign value to a const variable.");

    EXPECT_EQ(variable.getInt(), 7);
}

TEST_F(CIntVariableTest, OneWithoutAnElementIsNamelessAndBeginsAtZero) {
    CIntVariable variable(nullptr, false);
    EXPECT_STREQ(variable.getName(), L"");
    EXPECT_EQ(variable.type, 2);
    EXPECT_EQ(variable.getInt(), 0);

    variable.setInt(5);

    EXPECT_EQ(variable.getInt(), 5);
}

TEST_F(CIntVariableTest, HasNoText) {
    EXPECT_EQ(thrownBy([] { CIntVariable(L"NAME", 7).getString(); }),
              L"It doesn't support getString method.");
    EXPECT_EQ(thrownBy([&] { load("7").getString(); }), L"It doesn't support getString method.");
}

TEST_F(CIntVariableTest, ReadsNameAndNumberFromItsElement) {
    EXPECT_STREQ(load("12").getName(), L"N");

    constexpr std::pair<const char*, int32_t> rows[] = {
        {"12", 12},
        {"0", 0},
        {"007", 7},
        {"-5", -5},
        {"-0", 0},
        {"2147483647", std::numeric_limits<int32_t>::max()},
        {"-2147483648", std::numeric_limits<int32_t>::min()},
        {"2147483648", std::numeric_limits<int32_t>::max()},
        {"-99999999999999999999", std::numeric_limits<int32_t>::min()}};
    for (const auto& [text, number] : rows)
        EXPECT_EQ(load(text).getInt(), number) << text;
}

TEST_F(CIntVariableTest, TextThatIsNoNumberFailsAtTheFirstRead) {
    for (const char* text :
         {"", "-", "--5", "+5", " 5", "5 ", "1 2", "5a", "a5", "0x10", "1.0", "1-", "#N", "[1]"}) {
        SCOPED_TRACE(text);
        const CIntVariable& variable = load(text);
        EXPECT_EQ(thrownBy([&] { variable.getInt(); }), L"(Variable,N) is not int variable.");
    }
}

TEST_F(CIntVariableTest, FailureNamesTheElementAsItStandsInTheScript) {
    const CIntVariable& variable = load("x", "VariableConst");

    EXPECT_EQ(thrownBy([&] { variable.getInt(); }), L"(VariableConst,N) is not int variable.");
}

TEST_F(CIntVariableTest, TextIsLookedAtAnewEachTime) {
    CIntVariable& variable = load("x");
    EXPECT_EQ(thrownBy([&] { variable.getInt(); }), L"(Variable,N) is not int variable.");

    variable.element->setValueText(L"3");
    EXPECT_EQ(variable.getInt(), 3);

    variable.element->setValueText(L"y");
    EXPECT_EQ(thrownBy([&] { variable.getInt(); }), L"(Variable,N) is not int variable.");
}

TEST_F(CIntVariableTest, AssignmentWritesTheDecimalText) {
    constexpr std::pair<int32_t, const wchar_t*> rows[] = {
        {7, L"7"},
        {0, L"0"},
        {-6, L"-6"},
        {std::numeric_limits<int32_t>::max(), L"2147483647"},
        {std::numeric_limits<int32_t>::min(), L"-2147483648"}};
    CIntVariable& variable = load("12");
    for (const auto& [number, text] : rows) {
        variable.setInt(number);
        EXPECT_EQ(variable.element->getValueText(), text);
        EXPECT_EQ(variable.getInt(), number);
    }
}

TEST_F(CIntVariableTest, AssignmentRepairsATextThatIsNoNumber) {
    CIntVariable& variable = load("x");

    variable.setInt(4);

    EXPECT_EQ(variable.getInt(), 4);
}

TEST_F(CIntVariableTest, ConstOneCanBeReadButNotAssigned) {
    CIntVariable& variable = load("12", "VariableConst");

    EXPECT_EQ(thrownBy([&] { variable.setInt(13); }),
              L"It can't assign value to a const variable.");

    EXPECT_EQ(variable.getInt(), 12);
}

TEST_F(CIntVariableTest, CannotBeReferredToInATextOfTheScript) {
    ASSERT_TRUE(
        loadProduct("<InstallExecuteSequence><Fragment><Caution Title='#N'/></Fragment>"
                    "</InstallExecuteSequence>",
                    "<Variable Id='N' Type='int' Value='7'/>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(context.getLastError(), L"It doesn't support getString method.");
}

TEST_F(CIntVariableTest, ElementWithoutAValueThrowsWhenRead) {
    const XmlDocumentPtr document = makeDocument();
    ASSERT_TRUE(parseDocument(*document, L"<Variable Id='N' Type='int'/>"));
    CVariableElement element(*getRootElement(*document), context);
    CIntVariable bare(&element, false);

    bare.setInt(5);

    EXPECT_EQ(thrownBy([&] { bare.getInt(); }), L"(Variable,N) can't get value attribute.");
}

}  // namespace
