#include "system/TextParsing.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "support/WatchedText.h"

using testing::ElementsAre;

namespace {

TEST(ParseIntTextTest, NullIsNoNumber) {
    int32_t value = 77;

    EXPECT_FALSE(parseIntText(nullptr, value));

    EXPECT_EQ(value, 77);
}

TEST(ParseIntTextTest, ReadsADecimalInteger) {
    const struct {
        const wchar_t* text;
        int32_t value;
    } rows[] = {
        {L"0", 0},
        {L"-0", 0},
        {L"7", 7},
        {L"-5", -5},
        {L"007", 7},
        {L"-010", -10},
        {L"1234567890", 1234567890},
        {L"2147483647", 2147483647},
        {L"-2147483648", INT32_MIN},
        {L"2147483648", 2147483647},
        {L"-2147483649", INT32_MIN},
        {L"4294967295", 2147483647},
        {L"99999999999", 2147483647},
        {L"-99999999999", INT32_MIN},
        {L"18446744073709551617", 2147483647},
        {L"-1000000000000000000000000000000", INT32_MIN},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        int32_t value = 77;
        EXPECT_TRUE(parseIntText(row.text, value));
        EXPECT_EQ(value, row.value);
    }
}

TEST(ParseIntTextTest, RefusesAnythingElseAndLeavesTheOutput) {
    for (const wchar_t* text :
         {L"", L"-", L"+5", L" 5", L"5 ", L"-5-", L"--5", L"- 5", L"5-", L"0x10", L"1A", L"a",
          L"1.5", L"1,000", L"1e3", L"5\n", L"5/", L"5:"}) {
        SCOPED_TRACE(testing::PrintToString(text));
        int32_t value = 77;
        EXPECT_FALSE(parseIntText(text, value));
        EXPECT_EQ(value, 77);
    }
}

constexpr const wchar_t* delimiters[] = {L"==", L"=", L"&&", L"("};

using Piece = std::pair<std::wstring, int32_t>;

/// All pieces of a text, each with its index.
std::vector<Piece> piecesOf(const wchar_t* text) {
    std::vector<Piece> pieces;
    const wchar_t* rest = nullptr;
    int32_t index = 77;
    for (WideText piece = nextPiece(text, delimiters, 4, rest, index); piece;
         piece = nextPiece(nullptr, delimiters, 4, rest, index))
        pieces.emplace_back(piece.get(), index);
    return pieces;
}

TEST(NextPieceTest, CutsADelimiterFromTheTextAroundIt) {
    EXPECT_THAT(piecesOf(L"a=b"), ElementsAre(Piece(L"a", -1), Piece(L"=", 1), Piece(L"b", -1)));
    EXPECT_THAT(piecesOf(L"ab&&(cd"),
                ElementsAre(Piece(L"ab", -1), Piece(L"&&", 2), Piece(L"(", 3), Piece(L"cd", -1)));
}

TEST(NextPieceTest, GivesATextWithoutDelimiterWhole) {
    EXPECT_THAT(piecesOf(L"a b)c"), ElementsAre(Piece(L"a b)c", -1)));
}

TEST(NextPieceTest, PutsNoEmptyPieceBeforeALeadingDelimiter) {
    EXPECT_THAT(piecesOf(L"(a"), ElementsAre(Piece(L"(", 3), Piece(L"a", -1)));
}

TEST(NextPieceTest, PutsNoEmptyPieceBehindATrailingDelimiter) {
    EXPECT_THAT(piecesOf(L"a("), ElementsAre(Piece(L"a", -1), Piece(L"(", 3)));
}

TEST(NextPieceTest, TakesTheFirstMatchingDelimiterOfTheArray) {
    EXPECT_THAT(piecesOf(L"a==b"), ElementsAre(Piece(L"a", -1), Piece(L"==", 0), Piece(L"b", -1)));
}

TEST(NextPieceTest, TakesTheFirstPlaceBeforeTheFirstDelimiter) {
    EXPECT_THAT(piecesOf(L"a(b==c"), ElementsAre(Piece(L"a", -1), Piece(L"(", 3), Piece(L"b", -1),
                                                 Piece(L"==", 0), Piece(L"c", -1)));
}

TEST(NextPieceTest, MatchesADelimiterThatTheTextEndsInside) {
    EXPECT_THAT(piecesOf(L"a&"), ElementsAre(Piece(L"a", -1), Piece(L"&", 2)));
    EXPECT_THAT(piecesOf(L"&"), ElementsAre(Piece(L"&", 2)));
    EXPECT_THAT(piecesOf(L"==="), ElementsAre(Piece(L"==", 0), Piece(L"=", 0)));
}

TEST(NextPieceTest, PartOfADelimiterWithinTheTextIsText) {
    EXPECT_THAT(piecesOf(L"a&b&&c"),
                ElementsAre(Piece(L"a&b", -1), Piece(L"&&", 2), Piece(L"c", -1)));
}

TEST(NextPieceTest, RestStandsAtTheDelimiterAndThenBehindIt) {
    const wchar_t* const text = L"ab&&c";
    const wchar_t* rest = nullptr;
    int32_t index = 77;

    nextPiece(text, delimiters, 4, rest, index);
    EXPECT_EQ(rest, text + 2);

    nextPiece(nullptr, delimiters, 4, rest, index);
    EXPECT_EQ(rest, text + 4);

    nextPiece(nullptr, delimiters, 4, rest, index);
    EXPECT_EQ(rest, nullptr);
}

// So that cutting a text into all its pieces reads it about once.
TEST(NextPieceTest, ReadsNoFurtherThanOneCharacterBehindThePiece) {
    constexpr const wchar_t* single[] = {L"(", L")", L"!", L"="};
    const WatchedText watched(L"ab(c");
    const wchar_t* rest = nullptr;
    int32_t index = 77;

    EXPECT_STREQ(nextPiece(watched.text(), single, 4, rest, index).get(), L"ab");
    EXPECT_STREQ(nextPiece(nullptr, single, 4, rest, index).get(), L"(");
    EXPECT_FALSE(watched.wasReadBehind());

    EXPECT_STREQ(nextPiece(nullptr, single, 4, rest, index).get(), L"c");
    EXPECT_TRUE(watched.wasReadBehind());
}

TEST(NextPieceTest, GivenTextGoesBeforeTheRest) {
    const wchar_t* rest = L"old";
    int32_t index = 77;

    EXPECT_STREQ(nextPiece(L"new", delimiters, 4, rest, index).get(), L"new");

    EXPECT_EQ(rest, nullptr);
}

TEST(NextPieceTest, NothingLeftGivesNullAndChangesNothing) {
    const wchar_t* const held = L"rest";
    const wchar_t* const empty = L"";
    const struct {
        const wchar_t* text;
        const wchar_t* rest;
    } rows[] = {{nullptr, nullptr}, {nullptr, empty}, {empty, nullptr}, {empty, held}};
    for (const auto& row : rows) {
        const wchar_t* rest = row.rest;
        int32_t index = 77;
        EXPECT_EQ(nextPiece(row.text, delimiters, 4, rest, index), nullptr);
        EXPECT_EQ(rest, row.rest);
        EXPECT_EQ(index, 77);
    }
}

TEST(NextPieceTest, IgnoresTheCount) {
    for (const size_t count : {0u, 1u, 100u}) {
        const wchar_t* rest = nullptr;
        int32_t index = 77;
        EXPECT_STREQ(nextPiece(L"(a", delimiters, count, rest, index).get(), L"(");
        EXPECT_EQ(index, 3);
    }
}

}  // namespace
