// Scripts that are broken by accident or on purpose: none may harm the host, and after each of them
// its context loads a good one.

#include <gmock/gmock.h>

#include <functional>
#include <ostream>

#include "support/HostTest.h"
#include "support/OwnStack.h"

using testing::ElementsAre;
using testing::Pair;
using testing::ValuesIn;

namespace {

class HostileScriptTest : public HostTest {
protected:
    /// Loads and runs a good script in the context.
    void expectUsableContext() {
        EXPECT_EQ(context->getProduct(), nullptr);
        ASSERT_TRUE(load(componentScript(file(L"a.txt", "a"))));
        EXPECT_EQ(run(RUNMODE_INSTALL), 0);
        EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
    }
};

std::string repeated(std::string_view text, size_t count) {
    std::string all;
    while (count-- != 0)
        all += text;
    return all;
}

/// Elements nested to a depth, with something in their middle.
std::string nested(size_t depth, const std::string& middle = {}) {
    return repeated("<a>", depth) + middle + repeated("</a>", depth);
}

// No script at all.

TEST_F(HostileScriptTest, MayBeMissing) {
    EXPECT_FALSE(context->load(folder.path(L"absent.xml").c_str()));
    EXPECT_FALSE(context->load(folder.path(L"absent\\script.xml").c_str()));

    EXPECT_EQ(context->getLastError(), L"");
    expectUsableContext();
}

TEST_F(HostileScriptTest, MayHaveNoName) {
    EXPECT_FALSE(context->load(L""));
    EXPECT_FALSE(context->load(nullptr));

    EXPECT_EQ(context->getLastError(), L"");
    expectUsableContext();
}

TEST_F(HostileScriptTest, MayBeADirectory) {
    EXPECT_FALSE(context->load(folder.path().c_str()));

    EXPECT_EQ(context->getLastError(), L"");
    expectUsableContext();
}

TEST_F(HostileScriptTest, MayBeAProgram) {
    EXPECT_FALSE(context->load((testProgramDirectory() + L"\\TEMZ.dll").c_str()));

    expectUsableContext();
}

// Scripts that don't load.

struct Refused {
    std::string name;
    std::function<std::string()> content;
    std::wstring lastError = {};
};

void PrintTo(const Refused& script, std::ostream* out) {
    *out << script.name;
}

const std::wstring noRoot = L"There is no root element.";
const std::wstring noProduct = L"There is no Product element.";

const Refused refusedScripts[] = {
    {"Empty", [] { return ""; }},
    {"OneByte", [] { return "<"; }, noRoot},
    {"BlanksAlone", [] { return " \r\n\t"; }},
    {"ByteOrderMarkAlone", [] { return "\xEF\xBB\xBF"; }},
    {"NulBytes", [] { return std::string(1000, '\0'); }},
    {"PlainText", [] { return "InstallExecuteSequence"; }},
    {"Utf16", [] { return std::string("\xFF\xFE<\0S\0/\0>\0", 10); }},
    {"DeclarationAlone", [] { return "<?xml version='1.0'?>"; }, noRoot},
    {"CommentsAlone", [] { return "<!-- a --><!-- b -->"; }, noRoot},
    {"RootAlone", [] { return "<Script/>"; }, noProduct},
    {"ProductAsRoot", [] { return "<Product><Product2/></Product>"; }, noProduct},
    {"ProductTooDeep", [] { return "<S><A><Product/></A></S>"; }, noProduct},
    {"ProductInLowerCase", [] { return "<S><product/></S>"; }, noProduct},
    {"UnclosedRoot", [] { return "<Script><Product/>"; }},
    {"CrossedTags", [] { return "<S><Product><A></Product></A></S>"; }},
    {"ValueWithoutEnd", [] { return "<S a='1><Product/></S>"; }},
    {"AttributeWithoutValue", [] { return "<S a><Product/></S>"; }},
    {"AttributeTwice", [] { return "<S a='1' a='2'><Product/></S>"; }},
    {"CommentWithoutEnd", [] { return "<S><!-- <Product/></S>"; }},
    {"CharacterDataWithoutEnd", [] { return "<S><![CDATA[<Product/></S>"; }},
    {"DeclarationWithoutEnd", [] { return "<?xml version='1.0'"; }, noRoot},
    {"NulInside", [] { return std::string("<S>\0<Product/></S>", 18); }},
    {"DeepNesting", [] { return "<S><Product>" + nested(1000) + "</Product></S>"; }},
    {"BottomlessNesting", [] { return repeated("<a>", 2'000'000); }},
    {"BottomlessNestingWithAttributes", [] { return repeated("<a b='>'>", 500'000); }},
    {"MegabytesOfText", [] { return std::string(5'000'000, 'x'); }},
    {"MegabytesOfBrackets", [] { return std::string(5'000'000, '<'); }, noRoot},
    {"MegabytesOfEndTags", [] { return repeated("</a>", 1'000'000); }, noRoot},
    {"MegabytesOfQuotes", [] { return "<S a=" + std::string(5'000'000, '\'') + "/>"; }},
    {"MegabytesOfAmpersands", [] { return "<S>" + std::string(5'000'000, '&'); }},
    {"MegabytesInAName", [] { return "<" + std::string(5'000'000, 'n'); }},
    {"MegabytesInAValue", [] { return "<S a='" + std::string(5'000'000, 'v'); }},
    {"MegabytesOfElements", [] { return "<S>" + repeated("<a b='c'/>", 200'000) + "</S>"; },
     noProduct},
};

class RefusedScriptTest : public HostileScriptTest, public testing::WithParamInterface<Refused> {};

INSTANTIATE_TEST_SUITE_P(EachKind, RefusedScriptTest, ValuesIn(refusedScripts),
                         [](const auto& script) { return script.param.name; });

TEST_P(RefusedScriptTest, LeavesAUsableContext) {
    EXPECT_FALSE(load(GetParam().content()));

    EXPECT_EQ(context->getLastError(), GetParam().lastError);
    expectUsableContext();
}

TEST_F(HostileScriptTest, MayEndAnywhere) {
    const std::string script = componentScript(file(L"a.txt", "a", "Vital='&#65;&amp;'"));

    for (size_t length = 0; length < script.size(); ++length) {
        SCOPED_TRACE(script.substr(0, length));
        EXPECT_FALSE(load(script.substr(0, length)));
    }

    expectUsableContext();
}

TEST_F(HostileScriptTest, MayEndAnywhereAfterAWrongByte) {
    const std::string script = "<?xml version='1.0'?>" + componentScript(file(L"a.txt", "a"));

    for (size_t length = 0; length < script.size(); ++length) {
        SCOPED_TRACE(script.substr(0, length));
        EXPECT_FALSE(load(script.substr(0, length) + "\xF0"));
    }

    expectUsableContext();
}

// In the parser's eyes such a byte swallows the quote behind it, so that what looks like a value is
// none, and what stands in it are elements.
TEST_F(HostileScriptTest, MayHideItsDepthBehindAWrongByte) {
    for (const std::string opening : {"<?xml version='1.0'?>", "\xEF\xBB\xBF"}) {
        SCOPED_TRACE(opening);
        EXPECT_FALSE(load(opening + "<S a=\"\xE1x\" b=\">" + repeated("<a>", 1'000'000) + "\"/>"));
    }

    expectUsableContext();
}

// Scripts that load, but do no harm.

TEST_F(HostileScriptTest, MayDefineEntitiesWithoutAnyEffect) {
    std::string entities = "<!ENTITY l0 'ha'>";
    for (int level = 1; level < 20; ++level)
        entities += "<!ENTITY l" + std::to_string(level) + " '" +
                    repeated("&l" + std::to_string(level - 1) + ";", 10) + "'>";
    load("<!DOCTYPE S [" + entities + "]><S><Variable Id='V' Type='string' Value='&l19;'/>" +
         "<Product/></S>");

    context->unload();
    expectUsableContext();
}

TEST_F(HostileScriptTest, MayBeHugeAndGood) {
    std::string directories;
    for (int number = 0; number < 50'000; ++number)
        directories += "<Directory Id='D" + std::to_string(number) + "' Path='unused'/>";
    ASSERT_TRUE(load("<S><Product>" + directories + "<Directory Path='" + narrow(app()) +
                     "'><Component Id='C'>" + file(L"a.txt", "a") +
                     "</Component></Directory><InstallExecuteSequence><Feature>"
                     "<ComponentRef Id='C'/></Feature></InstallExecuteSequence></Product></S>"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
}

TEST_F(HostileScriptTest, MayBeNestedAsDeepAsTheLimit) {
    EXPECT_TRUE(load("<S><Product>" + nested(254) + "</Product></S>"));
    context->unload();

    EXPECT_FALSE(load("<S><Product>" + nested(255) + "</Product></S>"));

    expectUsableContext();
}

TEST_F(HostileScriptTest, MayBeRunOnASmallStack) {
    onStackOf(256 * 1024, [&] {
        EXPECT_TRUE(load("<S><Product><InstallExecuteSequence>" + repeated("<Fragment>", 252) +
                         "<Caution Title='deep'/>" + repeated("</Fragment>", 252) +
                         "</InstallExecuteSequence></Product></S>"));
        EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    });

    ASSERT_EQ(observer.updates.size(), 1u);
    EXPECT_EQ(observer.updates[0].text2, L"deep");
}

TEST_F(HostileScriptTest, MayHoldADirectoryThatNeedsItself) {
    ASSERT_TRUE(
        load("<S><Product><Directory Id='D' Path='[D]'/><InstallExecuteSequence><Fragment>"
             "<Caution Title='[D]'/></Fragment></InstallExecuteSequence></Product></S>"));

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    EXPECT_STREQ(product().errorInfo.message,
                 L"Create Motion Element error:[D] mismatch.(Fragment,) cann't create child "
                 L"element(Caution)");
    context->unload();
    expectUsableContext();
}

}  // namespace
