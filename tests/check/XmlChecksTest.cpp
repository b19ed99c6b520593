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

TEST_F(XmlChecksTest, TellsOfNestingBeyondTheLimitAlone) {
    EXPECT_EQ(findingsIn(nested(257)),
              "0:0 TZ102 Elements are nested more than 256 deep, the root included.\n");
    EXPECT_EQ(findingsIn(nested(256)).find("TZ102"), std::string::npos);
}

TEST_F(XmlChecksTest, AScriptThatCannotBeOpenedIsNotReadable) {
    CheckRequest request;
    request.script = folder.path(L"missing.xml");
    EXPECT_EQ(checkScript(request, [](const Finding&) { ADD_FAILURE(); }), CheckEnd::notReadable);
}
