#include "system/TextConversion.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "support/FakeCall.h"
#include "system/TextCalls.h"

using testing::ElementsAre;

namespace {

using FakeToWide = FakeCall<textCalls, &TextCalls::MultiByteToWideChar>;
using FakeToNarrow = FakeCall<textCalls, &TextCalls::WideCharToMultiByte>;

constexpr UINT westernEuropean = 1252;
constexpr UINT simplifiedChinese = 936;

/// Makes one code page the active one, whatever the system's is.
class ActiveCodePage {
public:
    explicit ActiveCodePage(UINT active)
        : toWide([=, this](UINT page, auto... arguments) {
              return toWide.real(page == CP_ACP ? active : page, arguments...);
          }),
          toNarrow([=, this](UINT page, auto... arguments) {
              return toNarrow.real(page == CP_ACP ? active : page, arguments...);
          }) {}

private:
    const FakeToWide toWide;
    const FakeToNarrow toNarrow;
};

TEST(ToWideTextTest, ConvertsFromTheActiveCodePage) {
    const ActiveCodePage chinese(simplifiedChinese);

    EXPECT_STREQ(toWideText("a\xD6\xD0\xCE\xC4z").get(), L"a\u4E2D\u6587z");
}

TEST(ToWideTextTest, AsksForTheSizeAndThenForTheTextWithoutFlags) {
    std::vector<int> capacities;
    const FakeToWide convert(
        [&](UINT page, DWORD flags, const char* text, int length, wchar_t* buffer, int capacity) {
            EXPECT_EQ(page, UINT{CP_ACP});
            EXPECT_EQ(flags, 0u);
            EXPECT_STREQ(text, "abc");
            EXPECT_EQ(length, -1);
            EXPECT_EQ(buffer == nullptr, capacity == 0);
            capacities.push_back(capacity);
            return convert.real(page, flags, text, length, buffer, capacity);
        });

    EXPECT_STREQ(toWideText("abc").get(), L"abc");

    EXPECT_THAT(capacities, ElementsAre(0, 4));
}

TEST(ToWideTextTest, NullGivesNull) {
    EXPECT_EQ(toWideText(nullptr), nullptr);
}

TEST(ToWideTextTest, EmptyTextGivesAnEmptyText) {
    EXPECT_STREQ(toWideText("").get(), L"");
}

TEST(ToWideTextTest, TellsOnStandardOutputThatThereIsNoSize) {
    const FakeToWide convert([](auto...) {
        SetLastError(ERROR_NO_UNICODE_TRANSLATION);
        return 0;
    });
    testing::internal::CaptureStdout();

    EXPECT_EQ(toWideText("a"), nullptr);

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "MultiByteToWideChar calc size error=1113\n");
    EXPECT_EQ(convert.count, 1);
}

TEST(ToWideTextTest, FailedConversionIsSilentlyNull) {
    const FakeToWide convert(
        [](auto, auto, auto, auto, wchar_t* buffer, auto) { return buffer ? 0 : 2; });
    testing::internal::CaptureStdout();

    EXPECT_EQ(toWideText("a"), nullptr);

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(convert.count, 2);
}

TEST(ToNarrowTextTest, ConvertsToTheActiveCodePage) {
    const ActiveCodePage chinese(simplifiedChinese);

    EXPECT_STREQ(toNarrowText(L"a\u4E2D\u6587z").get(), "a\xD6\xD0\xCE\xC4z");
}

TEST(ToNarrowTextTest, AsksForTheSizeAndThenForTheTextWithoutFlags) {
    std::vector<int> capacities;
    const FakeToNarrow convert([&](UINT page, DWORD flags, const wchar_t* text, int length,
                                   char* buffer, int capacity, const char* substitute,
                                   BOOL* substituted) {
        EXPECT_EQ(page, UINT{CP_ACP});
        EXPECT_EQ(flags, 0u);
        EXPECT_STREQ(text, L"abc");
        EXPECT_EQ(length, -1);
        EXPECT_EQ(buffer == nullptr, capacity == 0);
        EXPECT_EQ(substitute, nullptr);
        EXPECT_EQ(substituted, nullptr);
        capacities.push_back(capacity);
        return convert.real(page, flags, text, length, buffer, capacity, substitute, substituted);
    });

    EXPECT_STREQ(toNarrowText(L"abc").get(), "abc");

    EXPECT_THAT(capacities, ElementsAre(0, 4));
}

TEST(ToNarrowTextTest, NullGivesNull) {
    EXPECT_EQ(toNarrowText(nullptr), nullptr);
}

TEST(ToNarrowTextTest, EmptyTextGivesAnEmptyText) {
    EXPECT_STREQ(toNarrowText(L"").get(), "");
}

TEST(ToNarrowTextTest, MissingSizeIsSilentlyNull) {
    const FakeToNarrow convert([](auto...) { return 0; });
    testing::internal::CaptureStdout();

    EXPECT_EQ(toNarrowText(L"a"), nullptr);

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(convert.count, 1);
}

TEST(ToNarrowTextTest, FailedConversionIsSilentlyNull) {
    const FakeToNarrow convert(
        [](auto, auto, auto, auto, char* buffer, auto...) -> int { return buffer ? 0 : 2; });
    testing::internal::CaptureStdout();

    EXPECT_EQ(toNarrowText(L"a"), nullptr);

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(convert.count, 2);
}

TEST(RoundTripWideTextTest, KeepsWhatTheActiveCodePageHas) {
    const ActiveCodePage western(westernEuropean);

    EXPECT_STREQ(roundTripWideText(L"Gr\u00FC\u00DFe").get(), L"Gr\u00FC\u00DFe");
    EXPECT_STREQ(roundTripWideText(L"a\u4E2Dz").get(), L"a?z");
}

TEST(RoundTripWideTextTest, NullAndAFailureOnTheWayGiveNull) {
    EXPECT_EQ(roundTripWideText(nullptr), nullptr);

    const FakeToNarrow convert([](auto...) { return 0; });
    EXPECT_EQ(roundTripWideText(L"a"), nullptr);
}

TEST(AnsiToUtf8Test, ConvertsFromTheActiveCodePage) {
    const ActiveCodePage chinese(simplifiedChinese);

    EXPECT_STREQ(ansiToUtf8("a\xD6\xD0\xCE\xC4z").get(), "a\xE4\xB8\xAD\xE6\x96\x87z");
    EXPECT_STREQ(ansiToUtf8("").get(), "");
}

TEST(AnsiToUtf8Test, NullGivesNull) {
    EXPECT_EQ(ansiToUtf8(nullptr), nullptr);
}

TEST(AnsiToUtf8Test, TakesTheTextToItsEndEachTime) {
    const FakeToWide toWide(
        [&](UINT page, DWORD flags, const char* text, int length, auto... rest) {
            EXPECT_EQ(flags, 0u);
            EXPECT_EQ(length, -1);
            return toWide.real(page, flags, text, length, rest...);
        });
    const FakeToNarrow toNarrow(
        [&](UINT page, DWORD flags, const wchar_t* text, int length, auto... rest) {
            EXPECT_EQ(flags, 0u);
            EXPECT_EQ(length, -1);
            return toNarrow.real(page, flags, text, length, rest...);
        });

    EXPECT_STREQ(ansiToUtf8("abc").get(), "abc");

    EXPECT_EQ(toWide.count, 2);
    EXPECT_EQ(toNarrow.count, 2);
}

TEST(AnsiToUtf8Test, FailedConversionsGiveAnEmptyText) {
    {
        const FakeToWide convert([](auto...) { return 0; });
        EXPECT_STREQ(ansiToUtf8("a").get(), "");
    }
    const FakeToNarrow convert([](auto...) { return 0; });
    EXPECT_STREQ(ansiToUtf8("a").get(), "");
}

TEST(ConvertOrThrowTest, GivesWhatToWideTextGives) {
    const ActiveCodePage chinese(simplifiedChinese);
    for (const char* text :
         {"", "a", "a\xD6\xD0\xCE\xC4z", "a text that is too long for its string"}) {
        std::wstring wide = L"old";
        EXPECT_TRUE(convertOrThrow(text, wide));
        EXPECT_EQ(wide, toWideText(text).get());
        EXPECT_STREQ(PassingText(text).get(), toWideText(text).get());
    }
    std::wstring wide;
    EXPECT_FALSE(convertOrThrow(nullptr, wide));
    EXPECT_FALSE(PassingText(nullptr));
}

TEST(ConvertOrThrowTest, TakesTheLongerWayWhereTheShortOneFails) {
    bool failed = false;
    const FakeToWide convert([&](auto... arguments) {
        return std::exchange(failed, true) ? convert.real(arguments...) : 0;
    });
    std::wstring wide;

    EXPECT_TRUE(convertOrThrow("text", wide));

    EXPECT_EQ(wide, L"text");
}

TEST(ConvertOrThrowTest, FailsWhereTheLongerWayFails) {
    const FakeToWide convert([](auto...) { return 0; });
    std::wstring wide;

    EXPECT_FALSE(convertOrThrow("text", wide));
    EXPECT_FALSE(PassingText("text"));
}

TEST(PassingTextTest, HoldsTextsOfAnyLength) {
    for (size_t length = 0; length < 100; ++length) {
        const std::string text(length, 'x');
        EXPECT_EQ(PassingText(text.c_str()).get(), std::wstring(length, L'x'));
    }
}

TEST(AppendNarrowTest, AppendsWhatToNarrowTextGives) {
    const ActiveCodePage chinese(simplifiedChinese);
    std::string narrow = "a ";

    EXPECT_TRUE(appendNarrow(narrow, L"\u4E2D\u6587"));
    EXPECT_EQ(narrow, "a \xD6\xD0\xCE\xC4");
    EXPECT_TRUE(appendNarrow(narrow, L""));
    EXPECT_FALSE(appendNarrow(narrow, nullptr));
    EXPECT_EQ(narrow, "a \xD6\xD0\xCE\xC4");
}

TEST(AppendNarrowTest, TakesTheLongerWayWhereTheShortOneFails) {
    bool failed = false;
    const FakeToNarrow convert([&](auto... arguments) {
        return std::exchange(failed, true) ? convert.real(arguments...) : 0;
    });
    std::string narrow = "a ";

    EXPECT_TRUE(appendNarrow(narrow, L"text"));

    EXPECT_EQ(narrow, "a text");
}

TEST(AppendNarrowTest, ChangesNothingWhereTheLongerWayFails) {
    const FakeToNarrow convert([](auto...) { return 0; });
    std::string narrow = "a ";

    EXPECT_FALSE(appendNarrow(narrow, L"text"));

    EXPECT_EQ(narrow, "a ");
}

}  // namespace
