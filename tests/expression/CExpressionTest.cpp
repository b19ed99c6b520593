#include "expression/CExpression.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

#include "expression/CVariableElement.h"
#include "support/ClassLayout.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

namespace {

class CExpressionTest : public ScriptTest {
protected:
    struct Case {
        const wchar_t* expression;
        const wchar_t* result;
    };

    void SetUp() override {
        ASSERT_TRUE(loadProduct("", R"(<Variable Id='N' Type='int' Value='5'/>
                                       <Variable Id='M' Type='int' Value='3'/>
                                       <Variable Id='Z' Type='int' Value='0'/>
                                       <Variable Id='BAD' Type='int' Value='bad'/>
                                       <VariableConst Id='CONST' Type='int' Value='9'/>
                                       <Variable Id='LEVEL' Type='int' Value='7'/>
                                       <Variable Id='ORDER' Type='int' Value='0'/>
                                       <Variable Id='S' Type='string' Value='abc'/>
                                       <Variable Id='T' Type='string' Value='abcd'/>
                                       <Variable Id='UPPER' Type='string' Value='ABC'/>
                                       <Variable Id='ONE' Type='string' Value='1'/>
                                       <Variable Id='ZERO' Type='string' Value='0'/>
                                       <Variable Id='EMPTY' Type='string' Value=''/>
                                       <VariableConst Id='TEXT' Type='string' Value='const'/>)"));
    }

    /// "true", "false", or the message of the failure.
    std::wstring result(const wchar_t* text) {
        bool truth = false;
        const std::wstring message = thrownBy([&] { truth = expression.evaluate(text, context); });
        return message != L"<nothing>" ? message : truth ? L"true" : L"false";
    }

    void expectResults(std::initializer_list<Case> rows) {
        for (const Case& row : rows)
            EXPECT_EQ(result(row.expression), row.result) << row.expression;
    }

    /// Failures of the reading, whose message stands behind the quoted expression.
    void expectFailures(std::initializer_list<Case> rows) {
        for (const Case& row : rows)
            EXPECT_EQ(result(row.expression),
                      std::wstring(L"\"") + row.expression + L"\" expression error:" + row.result);
    }

    /// The value as a text, which the engine itself gives of string variables alone.
    std::wstring valueOf(const wchar_t* name) {
        return context.findVariable(name)->element->getValueText();
    }

    CExpression expression;
};

TEST_F(CExpressionTest, HoldsOperationsThenOperandsThenTheSymbolInFront) {
    const auto& operations = memberAt<OperationStack>(expression, 0);
    const auto& operands = memberAt<OperandStack>(expression, sizeof(OperationStack));
    const auto& symbol = memberAt<std::wstring>(expression, 2 * sizeof(OperationStack));
    EXPECT_EQ(sizeof(CExpression), 2 * sizeof(OperationStack) + sizeof(std::wstring));
    EXPECT_TRUE(operations.empty());
    EXPECT_TRUE(operands.empty());
    EXPECT_EQ(symbol, L"#");

    EXPECT_THROW(expression.evaluate(L"N E ( 64 absent", context), std::wstring);

    EXPECT_EQ(operations.size(), 3u);
    EXPECT_EQ(operations.top()->getPriority(), PRIORITY_LEFT_PARENTHESIS);
    EXPECT_EQ(operands.size(), 2u);
    EXPECT_EQ(operands.top()->getInt(), 64);
    EXPECT_EQ(symbol, L"64");
}

TEST_F(CExpressionTest, OneOperandIsAnExpression) {
    expectResults({{L"5", L"true"},
                   {L"0", L"false"},
                   {L"-1", L"true"},
                   {L"-0", L"false"},
                   {L"000", L"false"},
                   {L"N", L"true"},
                   {L"Z", L"false"},
                   {L"CONST", L"true"},
                   {L"S", L"true"},
                   {L"EMPTY", L"false"},
                   {L"ZERO", L"true"},
                   {L"TEXT", L"true"}});
}

TEST_F(CExpressionTest, IntegersAreDecimalAndStayWithinTheirRange) {
    expectResults({{L"007 E 7", L"true"},
                   {L"-5 L 0", L"true"},
                   {L"-5 E 5", L"false"},
                   {L"-007 E -7", L"true"},
                   {L"2147483648 E 2147483647", L"true"},
                   {L"99999999999999999999 E 2147483647", L"true"},
                   {L"-2147483649 E -2147483648", L"true"}});
    EXPECT_EQ(result(L"N = 2147483648"), L"true");
    EXPECT_EQ(valueOf(L"N"), L"2147483647");
}

TEST_F(CExpressionTest, WhatIsNoIntegerIsAName) {
    expectFailures({{L"-", L"Reference undefined variable:-"},
                    {L"--5", L"Reference undefined variable:--5"},
                    {L"+5", L"Reference undefined variable:+5"},
                    {L"5a", L"Reference undefined variable:5a"},
                    {L"5-", L"Reference undefined variable:5-"},
                    {L"0x10", L"Reference undefined variable:0x10"},
                    {L"1.0", L"Reference undefined variable:1.0"},
                    {L"N-1", L"Reference undefined variable:N-1"},
                    {L"N+M", L"Reference undefined variable:N+M"},
                    {L"n", L"Reference undefined variable:n"},
                    {L"N#", L"Reference undefined variable:N#"},
                    {L"#N", L"Reference undefined variable:#N"},
                    {L"[N]", L"Reference undefined variable:[N]"},
                    {L"\"abc\"", L"Reference undefined variable:\"abc\""},
                    {L"S E 'abc'", L"Reference undefined variable:'abc'"}});
}

TEST_F(CExpressionTest, NameIsAnyRunOfOrdinaryCharacters) {
    context.unload();
    ASSERT_TRUE(loadProduct("", R"(<Variable Id='N-1' Type='int' Value='1'/>
                                   <Variable Id='5a' Type='int' Value='2'/>
                                   <Variable Id='-' Type='int' Value='3'/>
                                   <Variable Id='&quot;q&quot;' Type='int' Value='4'/>
                                   <Variable Id='#N' Type='int' Value='5'/>
                                   <Variable Id='and' Type='int' Value='6'/>)"));

    for (const wchar_t* text : {L"N-1 E 1", L"5a E 2", L"- E 3", L"\"q\" E 4", L"#N E 5",
                                L"and E 6", L"N-1 AND and", L"and AND and"})
        EXPECT_EQ(result(text), L"true") << text;
}

TEST_F(CExpressionTest, IntegerIsNeverLookedUp) {
    context.unload();
    ASSERT_TRUE(loadProduct("", "<Variable Id='0' Type='int' Value='1'/>"));

    EXPECT_EQ(result(L"0"), L"false");
}

TEST_F(CExpressionTest, OnlyWholeUpperCaseWordsAreOperators) {
    expectResults({{L"LEVEL E 7", L"true"},
                   {L"ORDER", L"false"},
                   {L"ORDER OR LEVEL", L"true"},
                   {L"LEVEL AND ORDER", L"false"}});
    expectFailures({{L"and", L"Reference undefined variable:and"},
                    {L"Or", L"Reference undefined variable:Or"},
                    {L"e", L"Reference undefined variable:e"},
                    {L"NANDM", L"Reference undefined variable:NANDM"},
                    {L"N and M", L"Grammar error:The symbol N can't be in front of operand."},
                    {L"N E5", L"Grammar error:The symbol N can't be in front of operand."},
                    {L"(N)AND(M)", L"AND operand naming is legal."},
                    {L"N E(M)", L"E operand naming is legal."},
                    {L"(L)", L"L operand naming is legal."},
                    {L"!G", L"G operand naming is legal."},
                    {L"N=OR", L"OR operand naming is legal."}});
}

TEST_F(CExpressionTest, VariableNamedAsAnOperatorCannotBeReferredTo) {
    for (const wchar_t* name : {L"L", L"G", L"E", L"LE", L"GE", L"NE", L"AND", L"OR"}) {
        context.unload();
        const std::wstring id = name;
        ASSERT_TRUE(loadProduct(
            "", "<Variable Id='" + std::string(id.begin(), id.end()) + "' Type='int' Value='1'/>"));
        ASSERT_NE(context.findVariable(name), nullptr);
        const std::wstring piece = L"(" + id + L")";

        EXPECT_EQ(result(name),
                  L"\"" + id +
                      L"\" expression error:"
                      L"Grammar error:The symbol # can't be in front of binary operation.");
        EXPECT_EQ(result(piece.c_str()),
                  L"\"" + piece + L"\" expression error:" + id + L" operand naming is legal.");
    }
}

TEST_F(CExpressionTest, BlanksSeparateWordsAndNothingElseDoes) {
    expectResults({{L" N", L"true"},
                   {L"N ", L"true"},
                   {L"   N    E     5   ", L"true"},
                   {L"  !   (   Z   )  ", L"true"},
                   {L"!Z", L"true"},
                   {L"!!N", L"true"},
                   {L"(N)", L"true"},
                   {L"((N)) E (5)", L"true"},
                   {L"!(N)AND", L"\"!(N)AND\" expression error:AND operand naming is legal."},
                   {L"(!Z) AND (!(Z))", L"true"},
                   {L"Z=!Z", L"true"}});
    expectFailures({{L"N\tE\t5", L"Reference undefined variable:N\tE\t5"},
                    {L"N\t", L"Reference undefined variable:N\t"},
                    {L"N\rE\r5", L"Reference undefined variable:N\rE\r5"},
                    {L"N\nE\n5", L"Reference undefined variable:N\nE\n5"},
                    {L"N\u00A0E\u00A05", L"Reference undefined variable:N\u00A0E\u00A05"}});
}

TEST_F(CExpressionTest, TextOfTheCallerIsLeftAlone) {
    wchar_t text[] = L" N  AND !(Z) ";

    EXPECT_EQ(result(text), L"true");

    EXPECT_STREQ(text, L" N  AND !(Z) ");
}

TEST_F(CExpressionTest, ComparesIntegers) {
    expectResults({{L"N G M", L"true"},   {L"M G N", L"false"},   {L"N G 5", L"false"},
                   {L"M L N", L"true"},   {L"N L M", L"false"},   {L"N L 5", L"false"},
                   {L"N GE 5", L"true"},  {L"N GE 4", L"true"},   {L"N GE 6", L"false"},
                   {L"N LE 5", L"true"},  {L"N LE 6", L"true"},   {L"N LE 4", L"false"},
                   {L"N E 5", L"true"},   {L"N E M", L"false"},   {L"N NE M", L"true"},
                   {L"N NE 5", L"false"}, {L"-2 L -1", L"true"},  {L"5 E N", L"true"},
                   {L"10 G 9", L"true"},  {L"CONST E 9", L"true"}});
}

TEST_F(CExpressionTest, ComparesTexts) {
    expectResults({{L"S L T", L"true"},
                   {L"S G T", L"false"},
                   {L"T G S", L"true"},
                   {L"S LE T", L"true"},
                   {L"S GE T", L"false"},
                   {L"S GE S", L"true"},
                   {L"S LE S", L"true"},
                   {L"S E S", L"true"},
                   {L"S E UPPER", L"false"},
                   {L"S NE UPPER", L"true"},
                   {L"UPPER L S", L"true"},
                   {L"EMPTY L S", L"true"}});
}

TEST_F(CExpressionTest, LogicTakesAnyTypes) {
    expectResults({{L"S AND N", L"true"},
                   {L"EMPTY AND N", L"false"},
                   {L"N AND EMPTY", L"false"},
                   {L"S AND Z", L"false"},
                   {L"Z OR S", L"true"},
                   {L"EMPTY OR N", L"true"},
                   {L"EMPTY OR Z", L"false"},
                   {L"! S", L"false"},
                   {L"! EMPTY", L"true"},
                   {L"! ZERO", L"false"},
                   {L"! N E 0", L"true"},
                   {L"! ! N E 1", L"true"},
                   {L"! ! S E 1", L"true"},
                   {L"-1 AND -1", L"true"}});
}

TEST_F(CExpressionTest, OperandThatDoesNotDecideIsNotAskedForItsTruth) {
    expectResults({{L"Z AND BAD", L"false"}, {L"N OR BAD", L"true"}});
    expectFailures({{L"N AND BAD", L"(Variable,BAD) is not int variable."},
                    {L"Z OR BAD", L"(Variable,BAD) is not int variable."},
                    {L"! BAD", L"(Variable,BAD) is not int variable."},
                    {L"BAD E 1", L"(Variable,BAD) is not int variable."},
                    {L"Z AND ( BAD E 1 )", L"(Variable,BAD) is not int variable."},
                    {L"N OR absent", L"Reference undefined variable:absent"},
                    {L"Z AND absent", L"Reference undefined variable:absent"}});
}

TEST_F(CExpressionTest, OperatorsGroupByTheirPriorities) {
    expectResults({{L"N E 5 AND Z", L"false"},
                   {L"1 OR 0 AND 0", L"true"},
                   {L"( 1 OR 0 ) AND 0", L"false"},
                   {L"0 AND 0 OR 1", L"true"},
                   {L"0 AND ( 0 OR 1 )", L"false"},
                   {L"2 L 3 E 1", L"true"},
                   {L"1 E 2 L 3", L"true"},
                   {L"( 3 E 3 ) L 3", L"true"},
                   {L"3 E 3 L 3", L"false"},
                   {L"3 L 2 L 1", L"true"},
                   {L"3 L ( 2 L 1 )", L"false"},
                   {L"0 E 0 E 0", L"false"},
                   {L"0 E ( 0 E 0 )", L"false"},
                   {L"2 E 2 E 1", L"true"},
                   {L"! 0 E 0", L"false"},
                   {L"! ( 0 E 1 )", L"true"},
                   {L"( ( N ) )", L"true"},
                   {L"(((((((N)))))))", L"true"}});
}

TEST_F(CExpressionTest, BuiltInVariablesTakePart) {
    context.unload();
    ASSERT_TRUE(loadProduct("", R"(<Variable Id='Flag' Type='int' Value='0'/>
                                   <Variable Id='Count' Type='int' Value='5'/>
                                   <Variable Id='OS_BIT' Type='int' Value='16'/>)"));

    expectResults({{L"OS_BIT E 64 AND ( ! Flag OR Count GE 3 )", L"true"},
                   {L"OS_BIT E 16", L"false"},
                   {L"( Flag = 1 ) AND ( Count = 2 )", L"true"},
                   {L"OS_BIT E 64 AND ( ! Flag OR Count GE 3 )", L"false"},
                   {L"OS_MAJOR_VERSION GE 1", L"true"}});
}

TEST_F(CExpressionTest, FirstVariableOfANameIsMeant) {
    context.unload();
    ASSERT_TRUE(loadProduct("", R"(<Variable Id='N' Type='int' Value='1'/>
                                   <Variable Id='N' Type='string' Value='2'/>)"));

    EXPECT_EQ(result(L"N E 1"), L"true");
}

TEST_F(CExpressionTest, AssignmentGivesTheTruthOfItsLeftSide) {
    const struct {
        const wchar_t* expression;
        const wchar_t* result;
        const wchar_t* variable;
        const wchar_t* value;
    } rows[] = {
        {L"N = 0", L"false", L"N", L"0"},
        {L"N=-7", L"true", L"N", L"-7"},
        {L"N = M", L"true", L"N", L"3"},
        {L"Z = N = 3", L"true", L"Z", L"3"},
        {L"Z = N = 4", L"true", L"N", L"4"},
        {L"N = 1 E 1", L"true", L"N", L"1"},
        {L"N = 2 E 1", L"false", L"N", L"0"},
        {L"N = M OR 0", L"true", L"N", L"1"},
        {L"( N ) = 8", L"true", L"N", L"8"},
        {L"( N = 8 ) = 9", L"true", L"N", L"9"},
        {L"( N = 0 ) E 0", L"true", L"N", L"0"},
        {L"BAD = 6", L"true", L"BAD", L"6"},
        {L"N = OS_BIT", L"true", L"N", L"64"},
        {L"N = CONST", L"true", L"N", L"9"},
        {L"N = N", L"true", L"N", L"9"},
        {L"S = T", L"true", L"S", L"abcd"},
        {L"S = ZERO", L"true", L"S", L"0"},
        {L"S = EMPTY", L"false", L"S", L""},
        {L"S = T = TEXT", L"true", L"S", L"const"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(result(row.expression), row.result) << row.expression;
        EXPECT_EQ(valueOf(row.variable), row.value) << row.expression;
    }
}

TEST_F(CExpressionTest, AssignedValueIsSeenByLaterReads) {
    expectResults({{L"( N = 1 ) AND ( M = N ) AND M E 1", L"true"},
                   {L"N E ( N = 8 )", L"true"},
                   {L"Z AND ( M = 12 )", L"false"},
                   {L"M E 12", L"true"},
                   {L"N OR ( M = 13 )", L"true"},
                   {L"M E 13", L"true"}});
}

TEST_F(CExpressionTest, WrongTypesAndConstantsAreRefused) {
    expectFailures(
        {{L"S E 1", L"It can't compare between different type variables."},
         {L"ONE E 1", L"It can't compare between different type variables."},
         {L"1 NE ONE", L"It can't compare between different type variables."},
         {L"S L T L UPPER", L"It can't compare between different type variables."},
         {L"S GE N", L"It can't compare between different type variables."},
         {L"1 = 2", L"It can't be assignment in const operand."},
         {L"1 = N", L"It can't be assignment in const operand."},
         {L"! N = 3", L"It can't be assignment in const operand."},
         {L"N = 1 AND M = 2", L"It can't be assignment in const operand."},
         {L"N = 1 = 2", L"It can't be assignment in const operand."},
         {L"OS_BIT = 32", L"It can't assign value to a const variable."},
         {L"CONST = 1", L"It can't assign value to a const variable."},
         {L"TEXT = S", L"It can't assign value to a const variable."},
         {L"S = 1", L"It can't assign value between operands with different type."},
         {L"S = N", L"It can't assign value between operands with different type."},
         {L"TEXT = 1", L"It can't assign value between operands with different type."},
         {L"N = S", L"It can't assign value between different type operands."},
         {L"1 = S", L"It can't assign value between different type operands."},
         {L"N = 1 AND M = S", L"It can't assign value between different type operands."}});
    EXPECT_EQ(valueOf(L"N"), L"5");
    EXPECT_EQ(valueOf(L"M"), L"3");
    EXPECT_EQ(valueOf(L"S"), L"abc");
}

TEST_F(CExpressionTest, SymbolInTheWrongPlaceIsAGrammarError) {
    expectFailures(
        {{L"", L"Grammar error:The symbol # can't be in front of end."},
         {L"    ", L"Grammar error:The symbol # can't be in front of end."},
         {L"N M", L"Grammar error:The symbol N can't be in front of operand."},
         {L"N absent", L"Grammar error:The symbol N can't be in front of operand."},
         {L"5 5", L"Grammar error:The symbol 5 can't be in front of operand."},
         {L"( N ) M", L"Grammar error:The symbol ) can't be in front of operand."},
         {L"N ( M )", L"Grammar error:The symbol N can't be in front of '('."},
         {L"(N)(M)", L"Grammar error:The symbol ) can't be in front of '('."},
         {L"N ! M", L"Grammar error:The symbol N can't be in front of unary operation."},
         {L"N != M", L"Grammar error:The symbol N can't be in front of unary operation."},
         {L"(N)!M", L"Grammar error:The symbol ) can't be in front of unary operation."},
         {L")", L"Grammar error:The symbol # can't be in front of ')'."},
         {L"()", L"Grammar error:The symbol ( can't be in front of ')'."},
         {L"( N AND )", L"Grammar error:The symbol AND can't be in front of ')'."},
         {L"(!)", L"Grammar error:The symbol ! can't be in front of ')'."},
         {L"!", L"Grammar error:The symbol ! can't be in front of end."},
         {L"(", L"Grammar error:The symbol ( can't be in front of end."},
         {L"N NE", L"Grammar error:The symbol NE can't be in front of end."},
         {L"N =", L"Grammar error:The symbol = can't be in front of end."},
         {L"OR N", L"Grammar error:The symbol # can't be in front of binary operation."},
         {L"= N", L"Grammar error:The symbol # can't be in front of binary operation."},
         {L"N == M", L"Grammar error:The symbol = can't be in front of binary operation."},
         {L"N AND OR M", L"Grammar error:The symbol AND can't be in front of binary operation."},
         {L"( GE N )", L"Grammar error:The symbol ( can't be in front of binary operation."},
         {L"! L N", L"Grammar error:The symbol ! can't be in front of binary operation."}});
}

TEST_F(CExpressionTest, ScriptCannotWriteTheEndSymbol) {
    expectFailures({{L"#", L"# operand naming is legal."},
                    {L"N #", L"# operand naming is legal."},
                    {L"N E #", L"# operand naming is legal."},
                    {L"(#)", L"# operand naming is legal."}});
}

TEST_F(CExpressionTest, UnclosedParenthesisIsReportedAtTheEnd) {
    expectFailures({{L"( N", L" '(' didn't math ')'."},
                    {L"(N", L" '(' didn't math ')'."},
                    {L"( ( N )", L" '(' didn't math ')'."},
                    {L"N AND ( M OR Z", L" '(' didn't math ')'."},
                    {L"! ( N", L" '(' didn't math ')'."}});
}

TEST_F(CExpressionTest, SurplusParenthesisIsReportedAtTheNextSymbol) {
    expectFailures({{L"N )", L" '(' didn't math ')' int precede."},
                    {L"N)", L" '(' didn't math ')' int precede."},
                    {L"( N ) )", L" '(' didn't math ')' int precede."},
                    {L"N ) )", L" '(' didn't math ')' int precede."},
                    {L"N AND M )", L" '(' didn't math ')' int precede."},
                    {L"N ) L absent", L" '(' didn't math ')' int precede."},
                    {L"N ) G absent", L" '(' didn't math ')' int precede."},
                    {L"N ) LE absent", L" '(' didn't math ')' int precede."},
                    {L"N ) GE absent", L" '(' didn't math ')' int precede."},
                    {L"N ) E absent", L" '(' didn't math ')' int precede."},
                    {L"N ) NE absent", L" '(' didn't math ')' int precede."},
                    {L"N ) AND absent", L" '(' didn't math ')' int precede."},
                    {L"N ) OR absent", L" '(' didn't math ')' int precede."},
                    {L"N ) = absent", L" '(' didn't math ')' int precede."}});
}

TEST_F(CExpressionTest, FailureQuotesTheExpressionAsItWasGiven) {
    EXPECT_EQ(result(L"N M"),
              L"\"N M\" expression error:"
              L"Grammar error:The symbol N can't be in front of operand.");
    EXPECT_EQ(result(L"  N   )  "),
              L"\"  N   )  \" expression error: '(' didn't math ')' int precede.");
    EXPECT_EQ(result(L""),
              L"\"\" expression error:Grammar error:The symbol # can't be in front of end.");
}

TEST_F(CExpressionTest, VariableOfNoTypeIsNotRecognised) {
    for (const int32_t type : {0, 3, -1}) {
        context.findVariable(L"N")->type = static_cast<VariableType>(type);
        expectFailures({{L"N", L"Didn't recognize N variable type"},
                        {L"1 AND N", L"Didn't recognize N variable type"}});
    }
}

TEST_F(CExpressionTest, LoneVariableThatCannotBeReadFailsOutsideTheReading) {
    const XmlDocumentPtr document = makeDocument();
    ASSERT_TRUE(parseDocument(*document, L"<Variable Id='S' Type='string'/>"));
    CVariableElement textless(*getRootElement(*document), context);
    context.findVariable(L"S")->element = &textless;

    expectResults({{L"S", L"(Variable,S) can't get value attribute."},
                   {L"(S)", L"(Variable,S) can't get value attribute."},
                   {L"BAD", L"(Variable,BAD) is not int variable."}});
    expectFailures({{L"! S", L"(Variable,S) can't get value attribute."}});
}

TEST_F(CExpressionTest, AssignmentsMadeBeforeAFailureStayInForce) {
    constexpr std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"N = 11 )", L"11"},       {L"( N = 12 ) AND absent", L"12"},
        {L"( N = 13 ) E S", L"13"}, {L"1 = N = 14", L"14"},
        {L"( ( N = 15 )", L"15"},   {L"( N = 16 ) AND ( N = 17 ) M", L"17"}};
    for (const auto& [text, value] : rows) {
        EXPECT_THROW(expression.evaluate(text, context), std::wstring) << text;
        EXPECT_EQ(valueOf(L"N"), value) << text;
    }
}

TEST_F(CExpressionTest, AssignmentNotReducedBeforeAFailureIsNotMade) {
    EXPECT_THROW(expression.evaluate(L"N = 11 M", context), std::wstring);
    EXPECT_THROW(expression.evaluate(L"N = 11 AND absent", context), std::wstring);

    EXPECT_EQ(valueOf(L"N"), L"5");
}

TEST_F(CExpressionTest, FailureLeavesNoTraceInTheNextEvaluation) {
    for (const wchar_t* failing : {L"( ( N AND", L"N )", L"Z ! N", L"Z OR Z AND absent", L"1 = 2",
                                   L"BAD", L"", L"! (", L"N E S"}) {
        EXPECT_THROW(expression.evaluate(failing, context), std::wstring) << failing;
        EXPECT_TRUE(expression.evaluate(L"N", context)) << failing;
        EXPECT_FALSE(expression.evaluate(L"Z AND N OR Z", context)) << failing;
    }
}

TEST_F(CExpressionTest, FailureLeavesTheStacksUntilTheNextEvaluation) {
    EXPECT_THROW(expression.evaluate(L"N M", context), std::wstring);

    EXPECT_EQ(thrownBy([&] { expression.readOperation(L"#"); }), L"<nothing>");
    EXPECT_EQ(thrownBy([&] { expression.readOperation(L"#"); }), L"Operations stack is empty!");
}

TEST_F(CExpressionTest, NextEvaluationBeginsWithEmptyStacks) {
    EXPECT_THROW(expression.evaluate(L"( ( N M", context), std::wstring);

    EXPECT_TRUE(expression.evaluate(L"N", context));

    EXPECT_EQ(thrownBy([&] { expression.readOperation(L"#"); }), L"Operations stack is empty!");
}

TEST_F(CExpressionTest, OperationNeedsOneBelowIt) {
    EXPECT_EQ(thrownBy([&] { expression.readOperation(L"("); }), L"Operations stack is empty!");
    EXPECT_EQ(thrownBy([&] { expression.readOperation(L"!"); }), L"Operations stack is empty!");

    EXPECT_TRUE(expression.evaluate(L"N", context));

    EXPECT_EQ(thrownBy([&] { expression.readOperation(L"AND"); }), L"Operations stack is empty!");
}

TEST_F(CExpressionTest, GrammarIsCheckedBeforeAnOperationIsTaken) {
    EXPECT_EQ(thrownBy([&] { expression.readOperation(L"AND"); }),
              L"Grammar error:The symbol # can't be in front of binary operation.");
    EXPECT_EQ(thrownBy([&] { expression.readOperation(L"absent"); }),
              L"It can't new absent operation");
}

TEST_F(CExpressionTest, OperandIsCheckedByNameThenGrammarThenLookedUp) {
    EXPECT_EQ(thrownBy([&] { expression.readOperand(L"absent", context); }),
              L"Reference undefined variable:absent");

    EXPECT_TRUE(expression.evaluate(L"N", context));

    EXPECT_EQ(thrownBy([&] { expression.readOperand(L"absent", context); }),
              L"Grammar error:The symbol N can't be in front of operand.");
    for (const Symbol& symbol : symbols())
        EXPECT_EQ(thrownBy([&] { expression.readOperand(symbol.text, context); }),
                  std::wstring(symbol.text) + L" operand naming is legal.");
}

// The text of the symbol in front is kept up by the reading of the whole expression.
TEST_F(CExpressionTest, OperandsByThemselvesAreNotRememberedAsTheSymbolInFront) {
    expression.readOperand(L"5", context);
    expression.readOperand(L"N", context);

    EXPECT_EQ(thrownBy([&] { expression.readOperation(L"#"); }),
              L"Grammar error:The symbol # can't be in front of end.");
}

}  // namespace
