#include "elements/XmlBounds.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <algorithm>
#include <cctype>
#include <clocale>
#include <random>
#include <string>
#include <string_view>

namespace {

constexpr size_t unlimited = 1'000'000;

/// `depth` elements in each other, around a content.
std::string nested(size_t depth, std::string_view content = {}) {
    std::string text;
    for (size_t i = 0; i < depth; ++i)
        text += "<a>";
    text += content;
    for (size_t i = 0; i < depth; ++i)
        text += "</a>";
    return text;
}

size_t depthBelow(const TiXmlNode& node) {
    size_t deepest = 0;
    for (const TiXmlNode* child = node.FirstChild(); child; child = child->NextSibling())
        if (child->ToElement())
            deepest = std::max(deepest, 1 + depthBelow(*child));
    return deepest;
}

bool staysWithin(std::string text, size_t limit) {
    text.append(3, '\0');
    return !findExcess(text.c_str(), {.depth = limit});
}

/// An element of so many attributes, closed by `end`.
std::string attributed(size_t count, std::string_view end = "/>") {
    std::string text = "<a";
    for (size_t i = 0; i < count; ++i)
        text += " n" + std::to_string(i) + "='v'";
    return text.append(end);
}

/// Where the element begins that has too many attributes; "" for none.
std::string elementOfTooManyAttributes(std::string text, size_t limit) {
    text.append(3, '\0');
    const auto excess = findExcess(text.c_str(), {.depth = unlimited, .attributes = limit});
    if (!excess)
        return "";
    EXPECT_EQ(excess->bound, XmlExcess::attributes);
    return std::string(excess->element).substr(0, 5);
}

/// What the parser makes of a text, up to where it gives up.
struct Parsed {
    explicit Parsed(std::string text) {
        text.append(3, '\0');
        TiXmlDocument document;
        document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
        depth = depthBelow(document);
        accepted = depth > 0 && !document.Error();
    }

    size_t depth;
    bool accepted;  ///< as a document with a root element
};

TEST(XmlBoundsTest, LimitItselfPassesAndOneLevelMoreDoesNot) {
    for (const size_t limit : {1u, 2u, 256u}) {
        SCOPED_TRACE(limit);
        EXPECT_TRUE(staysWithin(nested(limit), limit));
        EXPECT_FALSE(staysWithin(nested(limit + 1), limit));
    }
}

TEST(XmlBoundsTest, ElementWithoutContentIsALevelToo) {
    EXPECT_TRUE(staysWithin(nested(255, "<a/>"), 256));
    EXPECT_FALSE(staysWithin(nested(256, "<a/>"), 256));
}

TEST(XmlBoundsTest, DepthOfAnyBranchCounts) {
    EXPECT_FALSE(staysWithin("<r><a/><b><c/></b></r>", 2));
    EXPECT_FALSE(staysWithin("<r><b><c/></b><a/></r>", 2));
    EXPECT_TRUE(staysWithin("<r><b><c/></b><b><c/></b></r>", 3));
}

TEST(XmlBoundsTest, MarkupWithoutContentHidesNoElement) {
    std::string text;
    for (int level = 0; level < 4; ++level)
        text += "<><a>";

    EXPECT_TRUE(staysWithin(text, 4));
    EXPECT_FALSE(staysWithin(text, 3));
}

TEST(XmlBoundsTest, TextMayEndWithinAValue) {
    for (const char* text : {"<a b=", "<a b=c", "<a b='c", "<a><b c=d"})
        EXPECT_TRUE(staysWithin(text, 2)) << text;
}

TEST(XmlBoundsTest, BlankEndsAValueWithoutQuotes) {
    EXPECT_EQ(elementOfTooManyAttributes("<a b=c d=e/>", 1), "<a b=");
    EXPECT_EQ(elementOfTooManyAttributes("<a b=c d=e/>", 2), "");
}

TEST(XmlBoundsTest, ValueWithoutQuotesMayHoldAllThatEndsNone) {
    for (char character = '!'; character <= '~'; ++character) {
        const std::string element = std::string("<a b=c") + character + "d>";
        const bool endsIt = std::string_view("/\"'").find(character) != std::string_view::npos;
        EXPECT_EQ(staysWithin(element + element, 1), endsIt) << element;
    }
}

TEST(XmlBoundsTest, MillionsOfLevelsAreNoBurden) {
    std::string text;
    for (int i = 0; i < 1'000'000; ++i)
        text += "<a>";
    EXPECT_FALSE(staysWithin(text, 256));
    EXPECT_TRUE(staysWithin(text, unlimited));
}

TEST(XmlBoundsTest, AsManyAttributesAsTheLimitPassAndOneMoreDoesNot) {
    for (const size_t limit : {0u, 1u, 256u}) {
        for (const char* end : {"/>", "></a>", " >", " "}) {
            SCOPED_TRACE(std::to_string(limit) + end);
            EXPECT_EQ(elementOfTooManyAttributes(attributed(limit, end), limit), "");
            EXPECT_NE(elementOfTooManyAttributes(attributed(limit + 1, end), limit), "");
        }
    }
}

TEST(XmlBoundsTest, AttributesOfEachElementAreCountedByThemselves) {
    const std::string three = attributed(3);
    EXPECT_EQ(elementOfTooManyAttributes("<r x='1'>" + three + three + "</r>", 3), "");
    EXPECT_EQ(elementOfTooManyAttributes("<r x='1'>" + three + "<bad 1", 2), "<a n0");
    EXPECT_EQ(elementOfTooManyAttributes("<r><b x='1'/>" + three + "</r>", 2), "<a n0");
    EXPECT_EQ(elementOfTooManyAttributes("<r><b x='<a y= z='/></r>", 1), "");
    EXPECT_EQ(elementOfTooManyAttributes("<r><!--" + three + "--><![CDATA[" + three + "]]></r>", 0),
              "");
}

TEST(XmlBoundsTest, OfSeveralTheFirstElementBeyondAnyBoundIsTold) {
    const auto boundOf = [](const std::string& text) {
        return findExcess(text.c_str(), {.depth = 2, .attributes = 2})->bound;
    };
    EXPECT_EQ(boundOf("<a><b><c x='' y='' z=''/>"), XmlExcess::depth);
    EXPECT_EQ(boundOf("<a><b x='' y='' z=''><c/>"), XmlExcess::attributes);
}

TEST(XmlBoundsTest, HundredThousandsOfAttributesAreNoBurden) {
    EXPECT_NE(elementOfTooManyAttributes(attributed(500'000), 256), "");
    EXPECT_EQ(elementOfTooManyAttributes(attributed(500'000), unlimited), "");
}

// A host may choose a locale in which further bytes are blanks.
TEST(XmlBoundsTest, BlanksAreThoseOfTheHostsLocale) {
    std::setlocale(LC_ALL, ".1252");
    const bool isBlank = std::isspace(0xA0) != 0;
    const std::string text = "\xA0" + nested(3);
    const size_t depth = Parsed(text).depth;
    const bool within = staysWithin(text, 2);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(depth, isBlank ? 3u : 0u);
    EXPECT_EQ(within, !isBlank);
    EXPECT_TRUE(staysWithin(text, 2)) << "It's no blank here.";
}

struct DepthCase {
    const char* text;
    size_t depth;
};

const DepthCase complete[] = {
    {"<a/>", 1},
    {"<a><b/></a>", 2},
    {"<a><b></b><b></b></a>", 2},
    {"<a/><b><c/></b>", 2},
    {"<_a.b-c:1><d/></_a.b-c:1>", 2},
    {"<\xE4><b/></\xE4>", 2},
    {"<a ><b /></a >", 2},
    {"<a\n>text<b\t/>text</a>", 2},
    // Comments.
    {"<a><!-- <b><c> --></a>", 1},
    {"<!-- <a><b> --><a/>", 1},
    {"<a><!--> <b> --></a>", 1},
    {"<a><!-- - -- -> <b> --></a>", 1},
    {"<a><!----><b/></a>", 2},
    {"<a><!-- </a> --><b/></a>", 2},
    {"<a><!- <b> --></b></a>", 1},
    // CDATA. Its keyword is exact.
    {"<a><![CDATA[<b><c>]]></a>", 1},
    {"<a><![CDATA[</a>]]><b/></a>", 2},
    {"<a><![CDATA[]]><b/></a>", 2},
    {"<a><![CDATA[]>]] ><b>]]></a>", 1},
    {"<a><![cdata[><b/>]]></a>", 2},
    {"<a><![CDATA><b/></a>", 2},
    // Declarations, and what the parser has no name for.
    {"<?xml version='1.0'?><a/>", 1},
    {"<?XML version='1.0'?><a/>", 1},
    {"<?xml version='<a><b>'?><a/>", 1},
    {"<?xml version='>' encoding=\"'\" standalone=yes?><a><b/></a>", 2},
    {"<?xml standalone='>'?><a/>", 1},
    {"<?xml other='><a/>", 1},
    {"<?xml other='version='?><a/>", 1},
    {"<?xml-stylesheet href='a b.xsl'?><a/>", 1},
    {"<a><?xml version='1.0'?><b/></a>", 2},
    {"<!DOCTYPE a><a/>", 1},
    {"<!DOCTYPE \"<a>\n<b><c/></b>", 2},
    {"<?php '><a/><?'?>", 1},
    {"< a><b/>", 1},
    {"<1><b/>", 1},
    {"</a><b/>", 1},
    {"</a b=\"><c><d/></c></e f=\">", 2},
    // Attributes.
    {"<a b='<c><d>'><e/></a>", 2},
    {"<a b=\"'>\"><e/></a>", 2},
    {"<a b='\"/>'><e/></a>", 2},
    {"<a b = 'c'd\n=\n'e'><f/></a>", 2},
    {"<a b='/'><c/></a>", 2},
    {"<a b='c'/>", 1},
    {"<a b=c><d/></a>", 2},
    {"<a><b c=d/><e/></a>", 2},
    {"<a><b c=/><d/></a>", 2},
    {"<a b=><c/></a>", 2},
    {"<a b=<c><d/></a>", 2},
    // A reference by number reaches up to its semicolon.
    {"<a b='&lt;&#60;&#x3C;&other;&'><c/></a>", 2},
    {"<a>&#60;b&#62;&#x3c;&#x3C;&amp;</a>", 1},
    {"<a>&#x</a>x1;</a>", 1},
    {"<a>&#</a><b>#1;</a>", 1},
    {"<a b='&#x' c=x1;'/>", 1},
    {"<a b='&#x' x1; c=' ><d/></a><!-- ' -->", 2},
    {"<a>&x;&;&#;</a>", 1},
    // In UTF-8 a character has the length that its first byte tells.
    {"<?xml?><a b='\xC3\xA4'>\xE4\xB8\xAD\xF0\x9F\x98\x80<b/></a>", 2},
    {"<?xml?><a>\xC1<b/></a>", 2},
    {"<?xml?><a>\xC2<b/></a>", 1},
    {"<?xml?><a>\xC2t<b/></a>", 2},
    {"<?xml?><a>\xDF<b/></a>", 1},
    {"<?xml?><a>\xDFt<b/></a>", 2},
    {"<?xml?><a>\xE0t<b/></a>", 1},
    {"<?xml?><a>\xE0tt<b/></a>", 2},
    {"<?xml?><a>\xEFt<b/></a>", 1},
    {"<?xml?><a>\xEFtt<b/></a>", 2},
    {"<?xml?><a>\xF0tt<b/></a>", 1},
    {"<?xml?><a>\xF0ttt<b/></a>", 2},
    {"<?xml?><a>\xF4tt<b/></a>", 1},
    {"<?xml?><a>\xF4ttt<b/></a>", 2},
    {"<?xml?><a>\xF5<b/></a>", 2},
    {"<?xml?><a>\xF0</a><a>\xF0</a></a></a>", 2},
    {"<?xml?><a b='\xE0' c=' ><d/></a><!-- ' -->", 2},
    {"<?xml?><a b='\xE0'><!-- ' ><c/></a><!-- -->", 2},
    // That a text is UTF-8 is told by its first bytes, or by the first declaration at the top.
    {"\xEF\xBB\xBF<a>\xF0<b/></a>", 1},
    {"\xEF\xBB\xBF<?xml encoding='GBK'?><a>\xF0<b/></a>", 1},
    {"<?xml encoding='utf-8'?><a>\xF0<b/></a>", 1},
    {"<?xml encoding='Utf8'?><a>\xF0<b/></a>", 1},
    {"<?xml encoding=UTF-8?><a>\xF0<b/></a>", 1},
    {"<?xml encoding='GBK' encoding=''?><a>\xF0<b/></a>", 1},
    {"<!----><?xml?><a>\xF0<b/></a>", 1},
    {"<?xml?><?xml encoding='GBK'?><a>\xF0<b/></a>", 1},
    // In any other encoding, and while none is told, a character is one byte.
    {"<a>\xF0<b/></a>", 2},
    {"<?xml encoding='GBK'?><a b='\xBA\xC3'>\xBA\xC3<b/></a>", 2},
    {"<?xml encoding='GBK' other='UTF-8'?><a>\xF0<b/></a>", 2},
    {"<?xml encoding='GBK'?><?xml?><a>\xF0<b/></a>", 2},
    {"<a><?xml?>\xF0<b/></a>", 2},
    {"<a>\xF0<b/></a><?xml?><a>\xF0<b/><c><d/></c></a>", 3},
    // The name of an encoding may be spelled with references, in quotes, of one byte each.
    {"<?xml encoding='&#85;TF-8'?><a>\xF0<b/></a>", 1},
    {"<?xml encoding=\"&#x55;&#x74;F&#56;\"?><a>\xF0<b/></a>", 1},
    {"<?xml encoding='&#341;TF-8'?><a>\xF0<b/></a>", 1},
    {"<?xml encoding='&#x;GBK'?><a>\xF0<b/></a>", 1},
    {"<?xml encoding='&#0;GBK'?><a>\xF0<b/></a>", 1},
    {"<?xml encoding='&UTF-8'?><a>\xF0<b/></a>", 1},
    {"<?xml encoding='&#x55' b='c&#x55;TF-8'?><a>\xF0<b/></a>", 1},
    {"<?xml encoding='&amp;UTF-8'?><a>\xF0<b/></a>", 2},
    {"<?xml encoding='&#71;BK'?><a>\xF0<b/></a>", 2},
    {"<?xml encoding=&#85;TF-8?><a>\xF0<b/></a>", 2},
    {"<a><?xml encoding='&#85;TF-8'?>\xF0<b/></a>", 2},
    // In UTF-8 three sequences are blanks.
    {"<?xml?>\xEF\xBB\xBF<a \xEF\xBF\xBE b\xEF\xBB\xBF=\xEF\xBF\xBF'>'><c/></a>", 2},
    {"<?xml?><a b =\xEF\xBB\xBF'>'\xEF\xBF\xBE/>\xEF\xBF\xBF<c><d/></c>", 2},
};

const DepthCase broken[] = {
    // Nothing to parse.
    {"", 0},
    {" \n", 0},
    {"text", 0},
    {"text<a><b/></a>", 0},
    {"\xEF\xBB\xBF", 0},
    {"\xEF\xBB", 0},
    {"\x01\x7F\x80\xFF<a>", 0},
    // Cut off in the middle.
    {"<", 0},
    {"<?xml", 0},
    {"<?xml version='", 0},
    {"<a", 1},
    {"<a ", 1},
    {"<a b", 1},
    {"<a b=", 1},
    {"<a b='", 1},
    {"<a b='c", 1},
    {"<a b='c'", 1},
    {"<a/", 1},
    {"<a>", 1},
    {"<a><", 1},
    {"<a><b", 2},
    {"<a><b/>", 2},
    {"<a></", 1},
    {"<a></a", 1},
    {"<a><!-- <b>", 1},
    {"<a><![CDATA[<b>", 1},
    {"<a><!DOCTYPE", 1},
    {"<a>&", 1},
    {"<a>&#", 1},
    {"<a>&#x", 1},
    {"<?xml?><a>\xE4", 1},
    {"<?xml?><a b='\xF0\x9F", 1},
    // Malformed before it comes to more.
    {"<a '><b/></a>", 1},
    {"<a b><c/></a>", 1},
    {"<a b'='><c/></a>", 1},
    {"<a b=c'><d/></a>", 1},
    {"<a ='b'><c/></a>", 1},
    {"<a<b/></a>", 1},
    {"<a / ><b/></a>", 1},
    {"<a 1='b'><c/></a>", 1},
    {"<a>&#60<b/></a>", 1},
    {"<a>&#6A;<b/></a>", 1},
    {"<a>&#xG;<b/></a>", 1},
    {"<?xml version?><a/>", 0},
    {"<?xml encoding=GBK'?><a/>", 0},
    {"<?xml encoding='&#85'?><a/>", 0},
    {"<?xml encoding='&#xG;'?><a/>", 0},
    {"<?xml?><?xml version='\xF0'?><a/>", 0},
    {"<?xml?><\xEF\xBB\xBF/a><b/>", 1},
};

void expectDepth(const DepthCase& row) {
    EXPECT_EQ(Parsed(row.text).depth, row.depth);
    EXPECT_TRUE(staysWithin(row.text, row.depth));
    EXPECT_FALSE(row.depth > 0 && staysWithin(row.text, row.depth - 1));
}

TEST(XmlBoundsTest, CountsTheLevelsThatTheParserMakes) {
    for (const DepthCase& row : complete) {
        SCOPED_TRACE(row.text);
        expectDepth(row);
    }
}

TEST(XmlBoundsTest, BrokenTextCountsUpToWhereTheParserGivesUp) {
    for (const DepthCase& row : broken) {
        SCOPED_TRACE(row.text);
        expectDepth(row);
    }
}

/// Makes texts out of all that could lead a reader of tags astray; the same ones in every run.
class TextMaker {
public:
    explicit TextMaker(uint32_t seed) : random(seed) {}

    /// Pieces in any order, from which the parser makes sense seldom.
    std::string jumble() {
        std::string text = prologue();
        for (size_t count = random() % 40; count > 0; --count)
            text += piece();
        return text;
    }

    /// A document whose values, texts and comments hold such pieces.
    std::string document() { return prologue() + element(random() % 12); }

    /// The same with one byte changed.
    std::string damagedDocument() {
        std::string text = element(random() % 12);
        text[random() % text.size()] = piece()[0];
        return prologue() + text;
    }

private:
    std::string pick(std::initializer_list<const char*> choices) {
        return choices.begin()[random() % choices.size()];
    }

    std::string prologue() {
        return pick({"", "", "\xEF\xBB\xBF", "<?xml?>", "<?xml version='1.0'?>",
                     "<?xml version=\"1.0\" encoding=\"UTF-8\"?>", "<?xml encoding='GBK' ?>",
                     "<?xml encoding='&#85;TF-8'?>", "<?xml encoding='&amp;UTF-8'?>"});
    }

    std::string piece() {
        return pick({"<a>",       "</a>",
                     "<a",        "/>",
                     "<",         ">",
                     "/",         "\"",
                     "'",         "=",
                     " b='",      " c=\"",
                     " d=",       "<!--",
                     "-->",       "<![CDATA[",
                     "]]>",       "<!",
                     "<?xml",     "?>",
                     " version=", "UTF-8",
                     "&#85;TF-8", " encoding=",
                     "<?",        "&#",
                     "#1;",       "&#x",
                     "x1;",       "&lt;",
                     "&",         ";",
                     "text",      "\xEF\xBB\xBF",
                     "\xC3",      "\xE4",
                     "\xF0",      "\xB8",
                     "\xFF",      " ",
                     "\n",        "-",
                     "]",         "<![cdata[",
                     "<?XML?>",   "</",
                     "_",         "1"});
    }

    std::string pieces(std::string_view without) {
        std::string text;
        for (size_t count = random() % 8; count > 5; --count)
            if (const std::string next = piece(); next.find(without) == next.npos)
                text += next;
        return text;
    }

    std::string content(size_t depth) {
        switch (random() % 5) {
            case 0:
                return "<!--" + pieces("-->") + "-->";
            case 1:
                return "<![CDATA[" + pieces("]]>") + "]]>";
            case 2:
                return pieces("<");
            default:
                return depth > 0 ? element(0) : "";
        }
    }

    std::string element(size_t depth) {
        std::string text = "<a";
        if (random() % 2)
            text += " b='" + pieces("'") + "'";
        if (random() % 2)
            text += " c=\"" + pieces("\"") + "\"";
        text += ">";
        for (size_t count = random() % 3; count > 0; --count)
            text += content(depth);
        if (depth > 0)
            text += element(depth - 1);
        return text + content(depth) + "</a>";
    }

    std::mt19937 random;
};

/// No text is nested deeper than the guard says, and none that the parser accepts less deep.
void expectAgreement(const std::string& text, const Parsed& parsed) {
    EXPECT_FALSE(parsed.depth > 0 && staysWithin(text, parsed.depth - 1))
        << testing::PrintToString(text);
    EXPECT_TRUE(!parsed.accepted || staysWithin(text, parsed.depth))
        << testing::PrintToString(text);
}

TEST(XmlBoundsTest, AgreesWithTheParserOnRandomTexts) {
    TextMaker maker(20'240'229);
    size_t deepAndAccepted = 0;
    for (int i = 0; i < 5'000 && !HasFailure(); ++i) {
        for (const std::string& text :
             {maker.jumble(), maker.document(), maker.damagedDocument()}) {
            const Parsed parsed(text);
            expectAgreement(text, parsed);
            deepAndAccepted += parsed.accepted && parsed.depth > 5;
        }
    }
    EXPECT_GT(deepAndAccepted, 1'000u);
}

}  // namespace
