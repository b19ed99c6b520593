#include "check/CCheckTest.h"

using EncodingChecksTest = CCheckTest;

namespace {

std::string script(std::string_view declaration, std::string_view title) {
    return std::string(declaration) +
           "<Root><Product><InstallExecuteSequence><Fragment><Caution Title=\"" +
           std::string(title) + "\"/></Fragment></InstallExecuteSequence></Product></Root>";
}

constexpr std::string_view declared = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr std::string_view foreign = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n";

}  // namespace

TEST_F(EncodingChecksTest, WhatDeclaresUtf8AndIsSoHasNoFinding) {
    EXPECT_EQ(findingsIn(script(declared, "Gr\xC3\xBC\xC3\x9F")), "");
    EXPECT_EQ(findingsIn("\xEF\xBB\xBF" + script("", "Gr\xC3\xBC\xC3\x9F")), "");
}

TEST_F(EncodingChecksTest, AsciiHasNoFindingWhateverIsDeclared) {
    EXPECT_EQ(findingsIn(script(foreign, "Gruss")), "");
    EXPECT_EQ(findingsIn(script("<!-- \xC3\xBC -->", "Gruss")), "");
}

TEST_F(EncodingChecksTest, ADeclaredEncodingOtherThanUtf8IsNotFollowed) {
    EXPECT_EQ(findingsIn(script(foreign, "Gr\xC3\xBC")),
              "1:31 TZ103 The script declares `WINDOWS-1252`, which no host looks at.\n");
}

TEST_F(EncodingChecksTest, BytesThatAreNotUtf8AreReadDifferently) {
    EXPECT_EQ(findingsIn(script("<?xml version=\"1.0\" encoding=\"latin1\"?>\n", "Gr\xFC!")),
              "1:31 TZ103 The script declares `LATIN1`, which no host looks at.\n"
              "2:66 TZ105 This text isn't UTF-8: each machine reads it in its own code page.\n");
}

TEST_F(EncodingChecksTest, AByteThatBeginsNoCharacterCountsAsOne) {
    EXPECT_EQ(findingsIn(script("", "\xF5[X]")).substr(0, 11), "1:66 TZ105 ");
    EXPECT_NE(findingsIn(script("", "\xF5[X]")).find("\n1:67 TZ4"), std::string::npos);
}

// Columns count as editors do, which the parser doesn't.
TEST_F(EncodingChecksTest, ColumnsCountTabsAndUnitsOfUtf16) {
    const std::string text = std::string(declared) +
                             "<Root><Product><InstallExecuteSequence><Fragment>\n"
                             "\t<Caution Title=\"\xF0\x9F\x98\x80&amp;\xC3\xBC\xE2\x82\xAC[X]\"/>\n"
                             "</Fragment></InstallExecuteSequence></Product></Root>";
    const std::vector<Finding> findings = check(text);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].place, (Place{3, 27, 3}));
    EXPECT_EQ(findings[0].sourceLine, L"\t<Caution Title=\"\U0001F600&amp;\u00FC\u20AC[X]\"/>");
}

TEST_F(EncodingChecksTest, TextBeyondAsciiNeedsADeclaredEncoding) {
    const std::string told = " TZ104 This text isn't ASCII, and the script declares no encoding.\n";
    EXPECT_EQ(findingsIn(script("", "\xC3\xBC")), "1:66" + told);
    for (const char* declaration :
         {"<?xml version=\"1.0\"?>\n", "<?xml version=\"1.0\" encoding=?>\n"})
        EXPECT_EQ(findingsIn(script(declaration, "\xC3\xBC")), "2:66" + told) << declaration;
    EXPECT_EQ(findingsIn(script("<?xml version=\"1.0\"?>\n<!-- encoding -->\n", "\xC3\xBC")),
              "3:66" + told);
    EXPECT_EQ(findingsIn(script("<?xml version=\"1.0\" encoding=\"utf8\"?>\n", "\xC3\xBC")), "");
}

TEST_F(EncodingChecksTest, ABareMarkIsTold) {
    const std::string told = "` is refused by other XML tools.\n";
    for (const char* title : {"&", "&#;", "&#x;", "& amp;"})
        EXPECT_EQ(findingsIn(script("", title)), "1:66 TZ106 A bare `&" + told) << title;
    EXPECT_EQ(findingsIn(script("", "a<b")), "1:67 TZ106 A bare `<" + told);
    for (const char* title : {"&amp;", "&lt;&gt;&quot;&apos;", "&#65;", "&#x1F;"})
        EXPECT_EQ(findingsIn(script("", title)), "") << title;
}
