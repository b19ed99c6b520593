#include "expression/Symbols.h"

#include <gmock/gmock.h>

#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::Pair;

namespace {

TEST(SymbolsTest, ClassesAreNumbered) {
    EXPECT_EQ(SYMBOL_OPERAND, 1);
    EXPECT_EQ(SYMBOL_END, 2);
    EXPECT_EQ(SYMBOL_LEFT_PARENTHESIS, 3);
    EXPECT_EQ(SYMBOL_RIGHT_PARENTHESIS, 4);
    EXPECT_EQ(SYMBOL_UNARY, 5);
    EXPECT_EQ(SYMBOL_BINARY, 6);
}

TEST(SymbolsTest, TableHoldsThirteenSymbolsInOrder) {
    std::vector<std::pair<std::wstring, int32_t>> table;
    for (const Symbol& symbol : symbols())
        table.emplace_back(symbol.text, symbol.symbolClass);

    EXPECT_THAT(table, ElementsAre(Pair(L"#", 2), Pair(L"(", 3), Pair(L")", 4), Pair(L"!", 5),
                                   Pair(L"L", 6), Pair(L"G", 6), Pair(L"E", 6), Pair(L"LE", 6),
                                   Pair(L"GE", 6), Pair(L"NE", 6), Pair(L"AND", 6), Pair(L"OR", 6),
                                   Pair(L"=", 6)));
}

TEST(SymbolsTest, WordOperatorsAndDelimitersAreSearchedInOrder) {
    const std::vector<std::wstring> words(wordOperators().begin(), wordOperators().end());
    const std::vector<std::wstring> marks(std::begin(delimiters), std::end(delimiters));

    EXPECT_THAT(words, ElementsAre(L"L", L"G", L"E", L"LE", L"GE", L"NE", L"AND", L"OR"));
    EXPECT_THAT(marks, ElementsAre(L"(", L")", L"!", L"="));
}

TEST(SymbolsTest, SymbolHasTheClassOfItsRow) {
    for (const Symbol& symbol : symbols())
        EXPECT_EQ(getSymbolClass(symbol.text), symbol.symbolClass) << symbol.text;
}

TEST(SymbolsTest, TextOutsideTheTableIsAnOperand) {
    for (const wchar_t* text :
         {L"",   L"A",  L"5",  L"-5", L"le", L"Or", L"e",  L"and", L"LEVEL", L"ORDER", L"GL",
          L"EQ", L"LT", L"A#", L"##", L"((", L"!=", L"==", L" ",   L"AND ",  L" AND",  L"\t"})
        EXPECT_EQ(getSymbolClass(text), SYMBOL_OPERAND) << testing::PrintToString(text);
}

TEST(CheckOperandNameTest, RefusesEverySymbol) {
    for (const Symbol& symbol : symbols()) {
        std::wstring message;
        EXPECT_FALSE(checkOperandName(symbol.text, message)) << symbol.text;
        EXPECT_EQ(message, std::wstring(symbol.text) + L" operand naming is legal.");
    }
}

TEST(CheckOperandNameTest, AcceptsEveryOtherText) {
    for (const wchar_t* name : {L"LEVEL", L"ORDER", L"A", L"and", L"Le", L"5", L"-", L"A#"}) {
        std::wstring message = L"of before";
        EXPECT_TRUE(checkOperandName(name, message)) << name;
        EXPECT_EQ(message, L"of before");
    }
}

constexpr const wchar_t* endingATerm[] = {L"A", L"5", L"AND2", L")"};
constexpr const wchar_t* endingNoTerm[] = {L"#",  L"(",  L"!",  L"L",   L"G",  L"E",
                                           L"LE", L"GE", L"NE", L"AND", L"OR", L"="};

class CheckGrammarTest : public testing::Test {
protected:
    static void expectAllowed(const wchar_t* previous, const wchar_t* current) {
        std::wstring message = L"of before";
        EXPECT_TRUE(checkGrammar(previous, current, message)) << previous << L" " << current;
        EXPECT_EQ(message, L"of before");
    }

    static void expectRefused(const wchar_t* previous, const wchar_t* current,
                              const wchar_t* refusal) {
        std::wstring message;
        EXPECT_FALSE(checkGrammar(previous, current, message)) << previous << L" " << current;
        EXPECT_EQ(message, std::wstring(L"Grammar error:The symbol ") + previous + refusal);
    }
};

TEST_F(CheckGrammarTest, BeginningOfATermStandsBehindAnythingButATerm) {
    constexpr std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"B", L" can't be in front of operand."},
        {L"7", L" can't be in front of operand."},
        {L"or", L" can't be in front of operand."},
        {L"(", L" can't be in front of '('."},
        {L"!", L" can't be in front of unary operation."}};
    for (const auto& [current, refusal] : rows) {
        for (const wchar_t* previous : endingNoTerm)
            expectAllowed(previous, current);
        for (const wchar_t* previous : endingATerm)
            expectRefused(previous, current, refusal);
    }
}

TEST_F(CheckGrammarTest, WhatFollowsATermStandsBehindNothingElse) {
    constexpr std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L")", L" can't be in front of ')'."},
        {L"#", L" can't be in front of end."},
        {L"L", L" can't be in front of binary operation."},
        {L"G", L" can't be in front of binary operation."},
        {L"E", L" can't be in front of binary operation."},
        {L"LE", L" can't be in front of binary operation."},
        {L"GE", L" can't be in front of binary operation."},
        {L"NE", L" can't be in front of binary operation."},
        {L"AND", L" can't be in front of binary operation."},
        {L"OR", L" can't be in front of binary operation."},
        {L"=", L" can't be in front of binary operation."}};
    for (const auto& [current, refusal] : rows) {
        for (const wchar_t* previous : endingATerm)
            expectAllowed(previous, current);
        for (const wchar_t* previous : endingNoTerm)
            expectRefused(previous, current, refusal);
    }
}

TEST_F(CheckGrammarTest, MessageSpeaksOfTheSymbolInFront) {
    std::wstring message;

    EXPECT_FALSE(checkGrammar(L"#", L")", message));
    EXPECT_EQ(message, L"Grammar error:The symbol # can't be in front of ')'.");

    EXPECT_FALSE(checkGrammar(L"A", L"B", message));
    EXPECT_EQ(message, L"Grammar error:The symbol A can't be in front of operand.");
}

}  // namespace
