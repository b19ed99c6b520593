#include "check/CCheckTest.h"

using XmlChecksTest = CCheckTest;

namespace {

std::string nested(size_t depth) {
    std::string text;
    for (size_t i = 0; i < depth; ++i)
        text += "<a>";
    for (size_t i = 0; i < depth; ++i)
        text += "</a>";
    return text;
}

}  // namespace

TEST_F(XmlChecksTest, TellsWhereTheParserGaveUp) {
    EXPECT_EQ(findingsIn("<Root>\r\n\t<Product>\r\n\t</Prduct>\r\n</Root>"),
              "3:2 TZ101 The script isn't well-formed XML: the parser says \"Error reading end "
              "tag.\"\n");
}

TEST_F(XmlChecksTest, TakesALineForEndedByWhicheverMarkEndsIt) {
    for (const char* end : {"\r", "\n", "\r\n"})
        EXPECT_TRUE(findingsIn("<a>" + std::string(end) + "</b>" + end).starts_with("2:1 TZ101 "));
}

TEST_F(XmlChecksTest, TellsOfAnEmptyFile) {
    EXPECT_EQ(findingsIn(""),
              "1:1 TZ101 The script isn't well-formed XML: the parser says \"Error document "
              "empty.\"\n");
}

TEST_F(XmlChecksTest, KnowsAScriptThatWasSavedAsUtf16) {
    using namespace std::string_view_literals;
    for (const std::string_view script :
         {"\xFF\xFE<\0S\0/\0>\0"sv, "\xFE\xFF\0<\0S\0/\0>"sv, "<\0S\0/\0>\0"sv}) {
        const std::vector<Finding> findings = check(script);
        ASSERT_EQ(findings.size(), 1U);
        EXPECT_EQ(findings[0].help,
                  L"save the script as UTF-8: it is read up to its first NUL, and UTF-16 is full "
                  L"of them.");
    }
}

TEST_F(XmlChecksTest, TellsOfACommentWithoutAnEndWhereItBegins) {
    EXPECT_EQ(findingsIn("<Root>\n  <!-- one -->\n  <!-- two ->\n</Root>"),
              "3:3 TZ101 The script isn't well-formed XML: this comment has no end.\n");
    EXPECT_EQ(findingsIn("\n<!-- one ->\n<Root/>"),
              "2:1 TZ101 The script isn't well-formed XML: this comment has no end.\n");
}

TEST_F(XmlChecksTest, TellsOfNestingBeyondTheLimitAlone) {
    EXPECT_EQ(findingsIn(nested(257)),
              "1:769 TZ102 Elements are nested more than 256 deep, the root included.\n");
    EXPECT_EQ(findingsIn(nested(256)).find("TZ102"), std::string::npos);
}

TEST_F(XmlChecksTest, TellsOfAttributesBeyondTheLimitAlone) {
    const auto attributed = [](size_t count) {
        std::string text = "<Root>\n  <Product";
        for (size_t i = 0; i < count; ++i)
            text += " n" + std::to_string(i) + "=\"\"";
        return text + "/>\n</Root>";
    };
    EXPECT_EQ(findingsIn(attributed(257)), "2:3 TZ107 The element has more than 256 attributes.\n");
    EXPECT_EQ(findingsIn(attributed(256)).find("TZ107"), std::string::npos);
}

TEST_F(XmlChecksTest, AScriptThatCannotBeOpenedIsNotReadable) {
    CheckRequest request;
    request.script = folder.path(L"missing.xml");
    EXPECT_EQ(checkScript(request, [](const Finding&) { ADD_FAILURE(); }), CheckEnd::notReadable);
}

TEST_F(XmlChecksTest, HelpsToTheElementThatIsOpenThere) {
    const struct {
        std::string script;
        std::string place;
        std::wstring open;  ///< with its line; empty where there is none to tell
    } cases[] = {
        {"<a></b>", "1:4", L"a` of line 1"},
        {"<a><b/></c>", "1:8", L"a` of line 1"},
        {"<a>\n<b></b></c>", "2:8", L"a` of line 1"},
        {"<a></c></b>", "1:4", L"a` of line 1"},
        {"<a><_b-1.c:d/></x>", "1:15", L"a` of line 1"},
        {"<a><_b-1.c:d></x>", "1:14", L"_b-1.c:d` of line 1"},
        {"<a><!-- <b> --><![CDATA[<b>]]></x>", "1:31", L"a` of line 1"},
        {"<a>\n\n</b><c", "3:1", L"a` of line 1"},
        {"<a></a", "1:1", L""},
    };
    for (const auto& [script, place, open] : cases) {
        const std::vector<Finding> findings = check(script);
        ASSERT_EQ(findings.size(), 1U) << script;
        EXPECT_EQ(findingsIn(script), place +
                                          " TZ101 The script isn't well-formed XML: the parser "
                                          "says \"Error reading end tag.\"\n");
        EXPECT_EQ(findings[0].help,
                  open.empty()
                      ? L"mend the XML at the place where the parser gave up, or shortly before it."
                      : L"close the `" + open + L" in front of this.");
    }
}

TEST_F(XmlChecksTest, HelpsToAnAttributeThatStandsThereTwice) {
    const std::string twice = "stands there twice: leave one out.";
    const struct {
        std::string script;
        std::string help;
    } cases[] = {
        {"<a b='1' b='2'/>", "`b` " + twice},
        {"<a b=\"1\" c=2 c = '3'/>", "`c` " + twice},
        {"<a b='1' b='2'", "`b` " + twice},
        {"<a b='1' c='2'",
         "mend the XML at the place where the parser gave up, or shortly before it."},
        {"<a b=c", "mend the XML at the place where the parser gave up, or shortly before it."},
        {"<a b='", "mend the XML at the place where the parser gave up, or shortly before it."},
        {"<a b", "look for a missing quotation mark, a missing end tag, or a bare < or &."},
        {"<a b=", "look for a missing quotation mark, a missing end tag, or a bare < or &."},
        {"<a b='1' <c/>",
         "look for a missing quotation mark, a missing end tag, or a bare < or &."},
    };
    for (const auto& [script, help] : cases) {
        const std::vector<Finding> findings = check(script);
        ASSERT_EQ(findings.size(), 1U) << script;
        EXPECT_EQ(narrow(findings[0].help), help) << script;
    }
}

// The parser counts bytes until it takes a text for UTF-8.
TEST_F(XmlChecksTest, CountsColumnsInWhicheverEncodingTheParserDoes) {
    const std::string text = "<a b='\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80'></x>";
    for (const std::string start :
         {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n", "<?xml version=\"1.0\"?>\n",
          "<?xml version=\"1.0\" encoding=\"utf8\"?>\n", "\xEF\xBB\xBF\n", "<!-- -->\n", "\n",
          "<?xml version=\"1.0\" encoding=\"latin1\"?>\n"})
        EXPECT_TRUE(findingsIn(start + text).starts_with("2:13 TZ101 ")) << start;
    EXPECT_TRUE(findingsIn("<a b='\xF5\xC0'></x>").starts_with("1:11 TZ101 "));
}
