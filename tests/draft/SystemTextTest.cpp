#include "author/SystemText.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "author/Markup.h"

TEST(SystemText, HasTheCodeBehindWhatTheSystemSaysOfIt) {
    EXPECT_EQ(systemTextWithCode(ERROR_FILE_NOT_FOUND),
              systemText(ERROR_FILE_NOT_FOUND) + L" [error 2]");
    EXPECT_NE(systemText(ERROR_FILE_NOT_FOUND), L"");
}

TEST(SystemText, IsTheCodeAloneWhereTheSystemHasNoText) {
    EXPECT_EQ(systemTextWithCode(0xE0000001), L"[error 3758096385]");
}

TEST(Markup, EscapesWhatHasAMeaningInIt) {
    EXPECT_EQ(escapedForMarkup(L"<a b=\"c\"> & d"), L"&lt;a b=&quot;c&quot;&gt; &amp; d");
}
