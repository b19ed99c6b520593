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
