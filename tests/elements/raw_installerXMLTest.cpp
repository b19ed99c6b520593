#include "elements/raw_installerXML.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>

#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/Requirements.h"
#include "support/TestFolder.h"
#include "system/TextCalls.h"

namespace {

constexpr wchar_t kept[] = L"kept";

/// Makes every conversion to narrow, or to wide, text fail.
using FailingToNarrow = FakeCall<textCalls, &TextCalls::WideCharToMultiByte>;
using FailingToWide = FakeCall<textCalls, &TextCalls::MultiByteToWideChar>;
int fail(...) {
    return 0;
}

std::wstring text(const WideText& wide) {
    return wide ? wide.get() : L"<null>";
}

/// The name of an element, with its `Id` if it has one: "File", "File f".
std::wstring show(const XmlHandlePtr& handle) {
    if (!handle)
        return L"<null>";
    std::wstring id;
    return text(getElementName(handle.get())) +
           (getAttributeText(handle.get(), L"Id", id) ? L" " + id : L"");
}

std::string repeat(std::string_view piece, size_t count) {
    std::string text;
    for (size_t i = 0; i < count; ++i)
        text += piece;
    return text;
}

/// `depth` elements in each other.
std::string nested(size_t depth) {
    return repeat("<a>", depth) + repeat("</a>", depth);
}

/// A document made of a text.
class Document {
public:
    explicit Document(const wchar_t* xml) : document(makeDocument()) {
        EXPECT_TRUE(parseDocument(*document, xml)) << "not well-formed";
        root = getRootElement(*document);
    }

    XmlHandlePtr child() const { return getFirstChildElement(root.get()); }

    XmlDocumentPtr document;
    XmlHandlePtr root;
};

class OpenDocumentTest : public testing::Test {
protected:
    XmlDocumentPtr open(std::string_view xml) {
        return openDocument(folder.write(L"a.xml", xml).c_str());
    }

    /// The attribute `b` of the root.
    std::wstring valueIn(std::string_view xml) {
        std::wstring value;
        const XmlDocumentPtr document = open(xml);
        getAttributeText(document ? getRootElement(*document).get() : nullptr, L"b", value);
        return value;
    }

    TestFolder folder;
};

TEST_F(OpenDocumentTest, ReadsAFile) {
    const XmlDocumentPtr document =
        open("<?xml version=\"1.0\"?>\n<!-- c -->\n<Root><A/></Root>\n");

    ASSERT_NE(document, nullptr);
    EXPECT_EQ(show(getRootElement(*document)), L"Root");
}

TEST_F(OpenDocumentTest, FileNameGoesThroughTheCodePage) {
    REQUIRES_CODE_PAGE(1252);
    EXPECT_NE(openDocument(folder.write(L"\u00E4\u00F6.xml", "<a/>").c_str()), nullptr);
}

TEST_F(OpenDocumentTest, WithoutAReadableFileThereIsNoDocument) {
    EXPECT_EQ(openDocument(folder.path(L"absent.xml").c_str()), nullptr);
    EXPECT_EQ(openDocument(folder.path().c_str()), nullptr);
    EXPECT_EQ(openDocument(L""), nullptr);
    EXPECT_EQ(openDocument(nullptr), nullptr);
}

TEST_F(OpenDocumentTest, MalformedFilesGiveNoDocumentAndNoTextAnywhere) {
    const LogFile log;
    for (const char* xml :
         {"", " \r\n", "text", "<a>", "<a></b>", "<a b></a>", "<a b='c></a>", "<a b='' b=''/>",
          "<a><!-- </a>", "<a>&#60</a>", "\xEF\xBB\xBF", "\x7F\x45\x4C\x46\x02\x01"}) {
        SCOPED_TRACE(xml);
        EXPECT_EQ(open(xml), nullptr);
    }
    EXPECT_THAT(log.lines(), testing::IsEmpty());
}

TEST_F(OpenDocumentTest, NameThatCanNotBeConvertedGivesNoDocument) {
    const std::wstring path = folder.write(L"a.xml", "<a/>");
    const FailingToNarrow failing(&fail);

    EXPECT_EQ(openDocument(path.c_str()), nullptr);
}

TEST_F(OpenDocumentTest, NestingIsLimited) {
    EXPECT_NE(open(nested(256)), nullptr);
    EXPECT_EQ(open(nested(257)), nullptr);
    EXPECT_EQ(open(nested(100'000)), nullptr);
    EXPECT_EQ(open(repeat("<a>", 100'000)), nullptr);
    EXPECT_NE(open("<r>" + repeat("<a></a>", 10'000) + "</r>"), nullptr);
}

// In UTF-8 an incomplete character takes the marks behind it along.
TEST_F(OpenDocumentTest, IncompleteCharacterHidesNoNesting) {
    EXPECT_EQ(open("<?xml?>" + repeat("<a>\xF0</a>", 300) + repeat("</a>", 300)), nullptr);
    EXPECT_EQ(open("<?xml?><r b='\xE0' c=' >" + nested(300) + "</r><!-- ' -->"), nullptr);
    EXPECT_EQ(open("<?xml?><r b='\xE0\r\n' c=' >" + nested(300) + "</r><!-- ' -->"), nullptr);
}

TEST_F(OpenDocumentTest, NothingCountsBehindANul) {
    const std::string nul(1, '\0');
    EXPECT_NE(open("<a/>" + nul + "</b>"), nullptr);
    EXPECT_EQ(open("<?xml?><a>\xE4" + nul + nul + "</a>"), nullptr);
    EXPECT_EQ(open("<?xml?><a>\xE4" + nul + nul + nested(300) + "</a>"), nullptr);
}

TEST_F(OpenDocumentTest, EveryEndOfALineBecomesALineFeed) {
    EXPECT_EQ(valueIn("<a\r\nb='1\r\n2\r3\n4\r\r\n\n5\n\r6'\r/>"), L"1\n2\n3\n4\n\n\n5\n\n6");
    EXPECT_EQ(valueIn("<a b='1'/>\r"), L"1");
}

// The bytes of a value are text of the active code page, here 1252, whatever encoding is declared.
TEST_F(OpenDocumentTest, DeclaredEncodingDoesNotConvertText) {
    REQUIRES_CODE_PAGE(1252);
    EXPECT_EQ(valueIn("<a b='\xC3\xA4'/>"), L"\u00C3\u00A4");
    EXPECT_EQ(valueIn("<?xml version='1.0' encoding='UTF-8'?><a b='\xC3\xA4'/>"), L"\u00C3\u00A4");
    EXPECT_EQ(valueIn("\xEF\xBB\xBF<a b='\xC3\xA4'/>"), L"\u00C3\u00A4");
    EXPECT_EQ(valueIn("<?xml version='1.0' encoding='ISO-8859-1'?><a b='\xE4'/>"), L"\u00E4");
}

// The parser finds the encoding out and writes a reference's character in it.
TEST_F(OpenDocumentTest, EncodingIsDetected) {
    REQUIRES_CODE_PAGE(1252);
    EXPECT_EQ(valueIn("<a b='&#228;&lt;'/>"), L"\u00E4<");
    EXPECT_EQ(valueIn("<?xml encoding='ISO-8859-1'?><a b='&#228;'/>"), L"\u00E4");
    EXPECT_EQ(valueIn("<?xml version='1.0'?><a b='&#228;'/>"), L"\u00C3\u00A4");
    EXPECT_EQ(valueIn("<?xml encoding='utf-8'?><a b='&#228;'/>"), L"\u00C3\u00A4");
    EXPECT_EQ(valueIn("<?xml encoding='&#85;TF-8'?><a b='&#228;'/>"), L"\u00C3\u00A4");
    EXPECT_EQ(valueIn("\xEF\xBB\xBF<a b='&#228;'/>"), L"\u00C3\u00A4");
}

TEST(ParseDocumentTest, ReplacesWhatTheDocumentHolds) {
    const Document made(L"<a/>");

    EXPECT_TRUE(parseDocument(*made.document, L"<!-- c --><b/>"));

    EXPECT_EQ(show(getRootElement(*made.document)), L"b");
}

TEST(ParseDocumentTest, TellsThatATextIsMalformedAndCanBeUsedOn) {
    const XmlDocumentPtr document = makeDocument();
    EXPECT_FALSE(parseDocument(*document, L"<a>"));
    EXPECT_FALSE(parseDocument(*document, L""));
    EXPECT_FALSE(parseDocument(*document, nullptr));
    EXPECT_TRUE(parseDocument(*document, L"<a/>"));
}

TEST(ParseDocumentTest, NestingIsLimited) {
    const XmlDocumentPtr document = makeDocument();
    const auto wide = [](const std::string& text) {
        return std::wstring(text.begin(), text.end());
    };
    EXPECT_TRUE(parseDocument(*document, wide(nested(256)).c_str()));
    EXPECT_FALSE(parseDocument(*document, wide(nested(257)).c_str()));
}

TEST(ParseDocumentTest, TextThatCanNotBeConvertedFails) {
    const XmlDocumentPtr document = makeDocument();
    const FailingToNarrow failing(&fail);
    EXPECT_FALSE(parseDocument(*document, L"<a/>"));
}

TEST(LoadDocumentTest, ReplacesWhatTheDocumentHolds) {
    const TestFolder folder;
    const Document made(L"<a/>");

    EXPECT_TRUE(loadDocument(*made.document, folder.write(L"b.xml", "<b/>").c_str()));

    EXPECT_EQ(show(getRootElement(*made.document)), L"b");
    EXPECT_FALSE(loadDocument(*made.document, folder.path(L"absent.xml").c_str()));
    EXPECT_FALSE(loadDocument(*made.document, folder.write(L"c.xml", "<c>").c_str()));
}

TEST(SaveDocumentTest, WritesTheTreeInPlaceOfWhatTheFileHeld) {
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.xml", std::string(1000, 'x'));
    const Document made(L"<a><b c='1'>t</b></a>");

    EXPECT_TRUE(saveDocument(*made.document, path.c_str()));

    EXPECT_EQ(readFile(path), "<a>\r\n    <b c=\"1\">t</b>\r\n</a>\r\n");
}

TEST(SaveDocumentTest, WritesTheByteOrderMarkOfADocumentThatHadOne) {
    const TestFolder folder;
    const XmlDocumentPtr document =
        openDocument(folder.write(L"a.xml", "\xEF\xBB\xBF<a/>").c_str());

    EXPECT_TRUE(saveDocument(*document, folder.path(L"b.xml").c_str()));

    EXPECT_EQ(readFile(folder.path(L"b.xml")), "\xEF\xBB\xBF<a />\r\n");
}

TEST(SaveDocumentTest, FileThatCanNotBeWrittenFails) {
    const TestFolder folder;
    const Document made(L"<a/>");
    EXPECT_FALSE(saveDocument(*made.document, folder.path(L"absent\\a.xml").c_str()));

    const FailingToNarrow failing(&fail);
    EXPECT_FALSE(saveDocument(*made.document, folder.path(L"a.xml").c_str()));
}

TEST(GetRootElementTest, PassesOverAllThatIsNoElement) {
    EXPECT_EQ(show(Document(L"<?xml version='1.0'?><!-- c --><!DOCTYPE a><a/><b/>").root), L"a");
}

TEST(GetRootElementTest, DeclarationAndCommentsHaveNone) {
    EXPECT_EQ(Document(L"<?xml version='1.0'?><!-- c -->").root, nullptr);
    EXPECT_EQ(getRootElement(*makeDocument()), nullptr);
}

TEST(NavigationTest, GoesFromElementToElement) {
    const Document made(L"<r>t<!-- c --><a/>t<?x?><b/><![CDATA[t]]><a Id='2'/>t</r>");

    const XmlHandlePtr first = made.child();
    const XmlHandlePtr second = getNextSiblingElement(first.get());
    const XmlHandlePtr third = getNextSiblingElement(second.get());

    EXPECT_EQ(show(first), L"a");
    EXPECT_EQ(show(second), L"b");
    EXPECT_EQ(show(third), L"a 2");
    EXPECT_EQ(getNextSiblingElement(third.get()), nullptr);
}

TEST(NavigationTest, LeafHasNoChild) {
    EXPECT_EQ(Document(L"<r/>").child(), nullptr);
    EXPECT_EQ(Document(L"<r>text<!-- c --></r>").child(), nullptr);
}

TEST(NavigationTest, GoesToTheElementsOfAName) {
    const Document made(L"<r><ab/><a Id='1'><b/></a><A/><b Id='2'/><a Id='3'/></r>");

    const XmlHandlePtr first = getFirstChildElementNamed(made.root.get(), L"a");
    const XmlHandlePtr second = getNextSiblingElementNamed(first.get(), L"a");

    EXPECT_EQ(show(first), L"a 1");
    EXPECT_EQ(show(second), L"a 3");
    EXPECT_EQ(getNextSiblingElementNamed(second.get(), L"a"), nullptr);
    EXPECT_EQ(show(getFirstChildElementNamed(made.root.get(), L"b")), L"b 2");
    EXPECT_EQ(getFirstChildElementNamed(made.root.get(), L"r"), nullptr);
}

TEST(NavigationTest, NameGoesThroughTheCodePage) {
    REQUIRES_CODE_PAGE(1252);
    const Document made(L"<r><\u00E4 Id='1'/><\u00E4 Id='2'/></r>");
    const XmlHandlePtr first = getFirstChildElementNamed(made.root.get(), L"\u00E4");

    EXPECT_EQ(show(first), L"\u00E4 1");
    EXPECT_EQ(show(getNextSiblingElementNamed(first.get(), L"\u00E4")), L"\u00E4 2");

    const FailingToNarrow failing(&fail);
    EXPECT_EQ(getFirstChildElementNamed(made.root.get(), L"\u00E4"), nullptr);
    EXPECT_EQ(getNextSiblingElementNamed(first.get(), L"\u00E4"), nullptr);
}

TEST(NavigationTest, ParentOfTheRootIsTheDocument) {
    const Document made(L"<r><a/></r>");

    const XmlHandlePtr parent = getParentNode(made.child().get());
    const XmlHandlePtr document = getParentNode(parent.get());

    EXPECT_EQ(show(parent), L"r");
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(asElement(document.get()), nullptr);
    EXPECT_EQ(show(getFirstChildElement(document.get())), L"r");
    EXPECT_EQ(getParentNode(document.get()), nullptr);
}

TEST(NavigationTest, EveryStepYieldsAHandleOfItsOwn) {
    const Document made(L"<r><a/></r>");
    const XmlHandlePtr child = made.child();

    for (const XmlHandlePtr& other : {made.child(), asElement(child.get()), copyHandle(*child),
                                      getFirstChildElementNamed(made.root.get(), L"a")}) {
        EXPECT_EQ(other->node, child->node);
        EXPECT_NE(other, child);
    }
}

TEST(NavigationTest, HandleIsAPointerToItsNode) {
    EXPECT_EQ(sizeof(XmlHandle), sizeof(void*));
}

TEST(NavigationTest, EmptyHandleLeadsNowhere) {
    const XmlHandle empty;
    for (const XmlHandle* handle : {&empty, static_cast<const XmlHandle*>(nullptr)}) {
        EXPECT_EQ(getFirstChildElement(handle), nullptr);
        EXPECT_EQ(getFirstChildElementNamed(handle, L"a"), nullptr);
        EXPECT_EQ(getNextSiblingElement(handle), nullptr);
        EXPECT_EQ(getNextSiblingElementNamed(handle, L"a"), nullptr);
        EXPECT_EQ(getParentNode(handle), nullptr);
        EXPECT_EQ(asElement(handle), nullptr);
        EXPECT_EQ(countChildElements(handle), 0u);
    }
}

TEST(CountChildElementsTest, CountsDirectChildElementsAlone) {
    const Document made(L"<r>t<a><b/></a><!-- c --><a/><?x?></r>");
    EXPECT_EQ(countChildElements(made.root.get()), 2u);
    EXPECT_EQ(countChildElements(getParentNode(made.root.get()).get()), 1u);
    EXPECT_EQ(countChildElements(getNextSiblingElement(made.child().get()).get()), 0u);
}

TEST(GetElementNameTest, OnlyAnElementHasOne) {
    REQUIRES_CODE_PAGE(1252);
    const Document made(L"<\u00E4.x/>");
    const XmlHandle empty;
    EXPECT_EQ(text(getElementName(made.root.get())), L"\u00E4.x");
    EXPECT_EQ(getElementName(getParentNode(made.root.get()).get()), nullptr);
    EXPECT_EQ(getElementName(&empty), nullptr);
    EXPECT_EQ(getElementName(nullptr), nullptr);

    const FailingToWide failing(&fail);
    EXPECT_EQ(getElementName(made.root.get()), nullptr);
}

TEST(GetNodeNameTest, AnyNodeHasOne) {
    const Document made(L"<a/>");
    std::wstring name = kept;

    getNodeName(made.root.get(), name);
    EXPECT_EQ(name, L"a");

    getNodeName(getParentNode(made.root.get()).get(), name);
    EXPECT_EQ(name, L"");
}

TEST(GetNodeNameTest, LeavesTheTextAloneWhenThereIsNone) {
    const Document made(L"<a/>");
    const XmlHandle empty;
    const FailingToWide failing(&fail);
    std::wstring name = kept;

    getNodeName(made.root.get(), name);
    getNodeName(&empty, name);
    getNodeName(nullptr, name);

    EXPECT_EQ(name, kept);
}

TEST(AttributeTest, IsReadAsTextAndAsCopy) {
    REQUIRES_CODE_PAGE(1252);
    const Document made(L"<a b='1' B='2' c='' \u00E4='\u00F6'/>");
    const struct {
        const wchar_t* name;
        const wchar_t* value;
    } attributes[] = {{L"b", L"1"}, {L"B", L"2"}, {L"c", L""}, {L"\u00E4", L"\u00F6"}};

    for (const auto& attribute : attributes) {
        std::wstring value = kept;
        EXPECT_TRUE(getAttributeText(made.root.get(), attribute.name, value));
        EXPECT_EQ(value, attribute.value);
        EXPECT_EQ(text(getAttributeCopy(attribute.name, made.root.get())), attribute.value);
    }
}

TEST(AttributeTest, WithoutItTheTextIsEmptyAndTheCopyNull) {
    const Document made(L"<a Name='1'/>");
    const XmlHandlePtr document = getParentNode(made.root.get());
    const XmlHandle empty;
    const struct {
        const XmlHandle* handle;
        const wchar_t* name;
    } absent[] = {{made.root.get(), L"name"}, {made.root.get(), L"Nam"}, {made.root.get(), nullptr},
                  {document.get(), L"Name"},  {&empty, L"Name"},         {nullptr, L"Name"}};

    for (const auto& row : absent) {
        std::wstring value = kept;
        EXPECT_FALSE(getAttributeText(row.handle, row.name, value));
        EXPECT_EQ(value, L"");
        EXPECT_EQ(getAttributeCopy(row.name, row.handle), nullptr);
    }
}

TEST(AttributeTest, NameThatCanNotBeConvertedIsNotFound) {
    const Document made(L"<a b='1'/>");
    const FailingToNarrow failing(&fail);
    std::wstring value = kept;

    EXPECT_FALSE(getAttributeText(made.root.get(), L"b", value));

    EXPECT_EQ(value, L"");
    EXPECT_EQ(getAttributeCopy(L"b", made.root.get()), nullptr);
}

TEST(AttributeTest, ValueThatCanNotBeConvertedIsThereAndReadsAsEmpty) {
    const Document made(L"<a b='1'/>");
    const FailingToWide failing(&fail);
    std::wstring value = kept;

    EXPECT_TRUE(getAttributeText(made.root.get(), L"b", value));

    EXPECT_EQ(value, L"");
    EXPECT_EQ(getAttributeCopy(L"b", made.root.get()), nullptr);
}

TEST(SetAttributeTextTest, OverwritesOrMakesTheAttribute) {
    REQUIRES_CODE_PAGE(1252);
    const Document made(L"<a b='1'/>");

    EXPECT_TRUE(setAttributeText(made.root.get(), L"b", L"\u00E4"));
    EXPECT_TRUE(setAttributeText(made.root.get(), L"c", L""));

    EXPECT_EQ(text(getAttributeCopy(L"b", made.root.get())), L"\u00E4");
    EXPECT_EQ(text(getAttributeCopy(L"c", made.root.get())), L"");
}

TEST(SetAttributeTextTest, NeedsAnElementAndTexts) {
    const Document made(L"<a b='1'/>");
    const XmlHandle empty;
    EXPECT_FALSE(setAttributeText(nullptr, L"b", L"2"));
    EXPECT_FALSE(setAttributeText(&empty, L"b", L"2"));
    EXPECT_FALSE(setAttributeText(getParentNode(made.root.get()).get(), L"b", L"2"));
    EXPECT_FALSE(setAttributeText(made.root.get(), nullptr, L"2"));
    EXPECT_FALSE(setAttributeText(made.root.get(), L"b", nullptr));
    EXPECT_EQ(text(getAttributeCopy(L"b", made.root.get())), L"1");
}

std::wstring find(const Document& made, const wchar_t* name, const wchar_t* id) {
    return show(findElementRecursive(name, L"Id", id, made.root.get()));
}

TEST(FindElementRecursiveTest, FindsAtAnyDepth) {
    const Document made(L"<r><a><b><c Id='1'/></b></a><d Id='2'/></r>");
    EXPECT_EQ(find(made, L"c", L"1"), L"c 1");
    EXPECT_EQ(find(made, L"d", L"2"), L"d 2");
    EXPECT_EQ(find(made, L"d", L"1"), L"<null>");
}

TEST(FindElementRecursiveTest, OuterElementComesBeforeInner) {
    const Document made(L"<r><x><a Id='1' n='outer'><a Id='1' n='inner'/></a></x></r>");
    const XmlHandlePtr found = findElementRecursive(L"a", L"Id", L"1", made.root.get());
    EXPECT_EQ(text(getAttributeCopy(L"n", found.get())), L"outer");
}

TEST(FindElementRecursiveTest, DescendantsComeBeforeSiblings) {
    const Document made(L"<r><x><y><a Id='1' n='deep'/></y></x><a Id='1' n='flat'/></r>");
    const XmlHandlePtr found = findElementRecursive(L"a", L"Id", L"1", made.root.get());
    EXPECT_EQ(text(getAttributeCopy(L"n", found.get())), L"deep");
}

TEST(FindElementRecursiveTest, AnotherValueDoesNotEndTheSearch) {
    const Document made(L"<r><a Id='other'><a><a Id='1'/></a></a></r>");
    EXPECT_EQ(find(made, L"a", L"1"), L"a 1");
}

TEST(FindElementRecursiveTest, StartAndItsSurroundingsAreNotSearched) {
    const Document made(L"<r><a Id='1'><b Id='2'/></a><a Id='3'/></r>");
    const XmlHandlePtr start = made.child();
    EXPECT_EQ(show(findElementRecursive(L"a", L"Id", L"1", start.get())), L"<null>");
    EXPECT_EQ(show(findElementRecursive(L"a", L"Id", L"3", start.get())), L"<null>");
    EXPECT_EQ(show(findElementRecursive(L"b", L"Id", L"2", start.get())), L"b 2");
}

TEST(FindElementRecursiveTest, ComparesExactly) {
    const Document made(L"<r><Ab Id='Cd' id='x'/><Ab Id='' n=''/></r>");
    EXPECT_EQ(find(made, L"Ab", L"Cd"), L"Ab Cd");
    EXPECT_EQ(find(made, L"Ab", L""), L"Ab ");
    EXPECT_EQ(find(made, L"ab", L"Cd"), L"<null>");
    EXPECT_EQ(find(made, L"A", L"Cd"), L"<null>");
    EXPECT_EQ(find(made, L"Ab", L"cd"), L"<null>");
    EXPECT_EQ(find(made, L"Ab", L"C"), L"<null>");
    EXPECT_EQ(show(findElementRecursive(L"Ab", L"ID", L"Cd", made.root.get())), L"<null>");
    EXPECT_EQ(show(findElementRecursive(L"Ab", L"id", L"x", made.root.get())), L"Ab Cd");
}

// An attribute that isn't there is no empty one.
TEST(FindElementRecursiveTest, AbsentAttributeEqualsNothing) {
    EXPECT_EQ(find(Document(L"<r><a/></r>"), L"a", L""), L"<null>");
}

TEST(FindElementRecursiveTest, NeedsAllItsArguments) {
    const Document made(L"<r><a Id='1'/></r>");
    const XmlHandle* start = made.root.get();
    const XmlHandle empty;
    EXPECT_EQ(findElementRecursive(nullptr, L"Id", L"1", start), nullptr);
    EXPECT_EQ(findElementRecursive(L"a", nullptr, L"1", start), nullptr);
    EXPECT_EQ(findElementRecursive(L"a", L"Id", nullptr, start), nullptr);
    EXPECT_EQ(findElementRecursive(L"a", L"Id", L"1", nullptr), nullptr);
    EXPECT_EQ(findElementRecursive(L"a", L"Id", L"1", &empty), nullptr);
    EXPECT_NE(findElementRecursive(L"a", L"Id", L"1", start), nullptr);
}

TEST(FindChildByAttributeTest, FindsTheFirstAmongTheDirectChildren) {
    const Document made(
        L"<r><b Id='1'><a Id='1' n='inner'/></b><a Id='2'/><a Id='1' n='first'/><a Id='1'/></r>");

    const XmlHandlePtr found = findChildByAttribute(L"a", L"Id", L"1", made.root.get());

    EXPECT_EQ(text(getAttributeCopy(L"n", found.get())), L"first");
    EXPECT_EQ(findChildByAttribute(L"a", L"Id", L"3", made.root.get()), nullptr);
    EXPECT_EQ(findChildByAttribute(L"a", L"n", L"inner", made.root.get()), nullptr);
}

TEST(FindChildByAttributeTest, NeedsAllItsArguments) {
    const Document made(L"<r><a Id='1'/></r>");
    EXPECT_EQ(findChildByAttribute(nullptr, L"Id", L"1", made.root.get()), nullptr);
    EXPECT_EQ(findChildByAttribute(L"a", nullptr, L"1", made.root.get()), nullptr);
    EXPECT_EQ(findChildByAttribute(L"a", L"Id", nullptr, made.root.get()), nullptr);
    EXPECT_EQ(findChildByAttribute(L"a", L"Id", L"1", nullptr), nullptr);
}

}  // namespace
