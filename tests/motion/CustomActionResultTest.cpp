// What becomes of the number and the text that the function of a custom action gives.

#include "motion/CCustomActionMtElement.h"

#include <gmock/gmock.h>

#include "support/CustomActionScriptTest.h"
#include "support/LogFile.h"

using testing::IsEmpty;

namespace {

using CustomActionResultTest = CustomActionScriptTest;

TEST_F(CustomActionResultTest, NumberIsTheResultWhenItIsChecked) {
    for (const uint32_t number : {1u, 1234u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(number);
        answerWith(number, L"It went wrong.\r\n");
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='check' Title='A title'")));
        const LogFile log;

        EXPECT_EQ(run(), static_cast<int32_t>(number));

        EXPECT_EQ(failure(), Failure(ACTION_CUSTOM_ACTION, L"answer", L"A title", number,
                                     L"It went wrong.\r\n"));
        EXPECT_EQ(log.lines().size(), 2u);
    }
}

TEST_F(CustomActionResultTest, NumberCountsForTheExactWordAlone) {
    answerWith(7, L"It went wrong.");
    const std::pair<std::string, bool> rows[] = {
        {"check", true},   {"Check", false},  {"CHECK", false}, {"checked", false},
        {"chec", false},   {" check", false}, {"", false},      {"ignore", false},
        {"check ", false}, {"sync", false},   {"yes", false}};
    for (const auto& [word, counts] : rows) {
        SCOPED_TRACE(word);
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='" + word + "'")));
        const LogFile log;

        EXPECT_EQ(run(), counts ? 7 : 0);

        EXPECT_EQ(failure() == noFailure, !counts);
        EXPECT_EQ(log.lines().size(), 2u);
    }
    EXPECT_EQ(call.calls, std::size(rows));
}

TEST_F(CustomActionResultTest, TextOfASuccessIsDropped) {
    answerWith(0, L"All is well.");
    ASSERT_TRUE(loadFragment(action("answer", "Return='check' Title='t'")));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(failure(), noFailure);
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(CustomActionResultTest, TextEndsAtItsTerminator) {
    answerWith(1, std::wstring(L"seen\0unseen", 11));
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

    EXPECT_EQ(run(), 1);

    EXPECT_EQ(errorMessage(), L"seen");
}

TEST_F(CustomActionResultTest, HostSeesTheFirst511CharactersOfALongText) {
    answerWith(1, std::wstring(511, L'a') + std::wstring(512, L'b'));
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

    EXPECT_EQ(run(), 1);

    EXPECT_EQ(errorMessage(), std::wstring(511, L'a'));
}

TEST_F(CustomActionResultTest, CallGivesBackTheNumberAndTheWholeText) {
    for (const size_t length : {0, 1, 1022, 1023, 1024}) {
        SCOPED_TRACE(length);
        const std::wstring text(length, L'x');
        answerWith(9, text);
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));
        const CCustomActionMtElement element(*node(), context);
        uint32_t result = 0;
        std::wstring message = L"old";

        EXPECT_TRUE(element.callDllEntry(library, "answer", context, result, message));

        EXPECT_EQ(result, 9u);
        EXPECT_EQ(message, text);
    }
}

}  // namespace
