#include "elements/CElement.h"

#include <gmock/gmock.h>

#include <type_traits>

#include "engine/CProductElement.h"
#include "support/ChildProcess.h"
#include "support/ClassLayout.h"
#include "support/LogFile.h"
#include "support/ProbeElement.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

constexpr bool required = true;
constexpr bool optional = false;

class CElementTest : public ScriptTest {
protected:
    /// Loads a script with this product and makes an element of the `E` with the id "e" in it.
    ProbeElement probe(std::string_view product, std::string_view variables = {}) {
        EXPECT_TRUE(loadProduct(product, variables));
        return ProbeElement(*context.findElementById(L"E", L"e"), context);
    }

    bool read(ProbeElement& element, std::vector<AttributeDeclaration> declared) {
        element.declare(std::move(declared));
        return element.readDeclaredAttributes(context, message);
    }

    bool resolve(ProbeElement& element, std::vector<AttributeDeclaration> derived) {
        element.derive(std::move(derived));
        return element.resolveDerivedAttributes(context, message);
    }

    std::wstring message;
};

// Construction

TEST_F(CElementTest, HasTheNameAndTheIdOfItsNode) {
    EXPECT_EQ(probe("<E Id='e'/>").describe(), L"(E,e)");
}

TEST_F(CElementTest, WithoutIdAttributeHasAnEmptyId) {
    ASSERT_TRUE(loadProduct("<Feature Id='f'><E/></Feature>"));
    const XmlHandlePtr feature = context.findElementById(L"Feature", L"f");

    const CElement element(*getFirstChildElement(feature.get()), context);

    EXPECT_EQ(element.describe(), L"(E,)");
}

TEST_F(CElementTest, NodeWithoutNameThrows) {
    const XmlDocumentPtr document = makeDocument();
    ASSERT_TRUE(parseDocument(*document, L"<Root/>"));
    const XmlHandlePtr documentNode = getParentNode(getRootElement(*document).get());

    EXPECT_EQ(thrownBy([&] { CElement(*documentNode, context); }),
              L"Can't obtain the name of the element");
}

TEST_F(CElementTest, ReferenceReachesTheElementOfThatNameAndId) {
    ASSERT_TRUE(
        loadProduct("<Feature Id='e'><Fragment><E Id='e' A='found'/></Fragment></Feature>"));

    ProbeElement element(L"E", L"e", context);

    EXPECT_EQ(element.describe(), L"(E,e)");
    EXPECT_TRUE(read(element, {{L"A", required}}));
    EXPECT_THAT(element.resolved(), ElementsAre(Pair(L"A", L"found")));
}

TEST_F(CElementTest, ReferenceToAnAbsentElementThrows) {
    ASSERT_TRUE(loadProduct("<E Id='other'/><Feature Id='e'/>"));

    EXPECT_EQ(thrownBy([&] { CElement(L"E", L"e", context); }),
              L"(E,e) element can't create(get the node is null).");
}

TEST_F(CElementTest, ReferenceReachesOnlyWhatStandsBelowTheProduct) {
    ASSERT_TRUE(load("<Root><E Id='e'/><Product Id='p'/></Root>"));

    EXPECT_EQ(thrownBy([&] { CElement(L"E", L"e", context); }),
              L"(E,e) element can't create(get the node is null).");
    EXPECT_EQ(thrownBy([&] { CElement(L"Product", L"p", context); }),
              L"(Product,p) element can't create(get the node is null).");
}

TEST_F(CElementTest, IdOf255CharactersFits) {
    const std::string id(255, 'i');
    ASSERT_TRUE(loadProduct("<Feature Id='f'><E Id='" + id + "'/></Feature>"));
    const XmlHandlePtr feature = context.findElementById(L"Feature", L"f");

    const CElement element(*getFirstChildElement(feature.get()), context);

    EXPECT_EQ(element.describe(), L"(E," + std::wstring(255, L'i') + L")");
}

TEST_F(CElementTest, LongerNameOrIdEndsTheProcess) {
    const std::string tooLong(256, 'x');
    ASSERT_TRUE(loadProduct("<Feature Id='f'><E Id='" + tooLong +
                            "'/></Feature>"
                            "<Feature Id='g'><" +
                            tooLong + "/></Feature>"));
    for (const wchar_t* parent : {L"f", L"g"}) {
        const XmlHandlePtr feature = context.findElementById(L"Feature", parent);
        const XmlHandlePtr node = getFirstChildElement(feature.get());
        EXPECT_EXIT(CElement(*node, context), endedByInvalidParameter(), "");
    }
}

// Only a reference's id can be that long, as no element of that id can be made from its node.
TEST_F(CElementTest, ReferenceCutsALongerIdToFit) {
    ASSERT_TRUE(loadProduct("<E Id='" + std::string(300, 'i') + "'/>"));

    const CElement element(L"E", std::wstring(300, L'i').c_str(), context);

    EXPECT_EQ(element.describe(), L"(E," + std::wstring(255, L'i') + L")");
}

TEST_F(CElementTest, BaseDeclaresNothingAndExpandsTexts) {
    ASSERT_TRUE(loadProduct("<E Id='e'/>"));
    const CElement element(L"E", L"e", context);
    std::vector<AttributeDeclaration> declared = {{L"A", required}};
    std::vector<AttributeDeclaration> derived = declared;
    AttributeRecord record;
    std::wstring value = L"own";

    element.getAttributes(declared);
    element.getDerivedAttributes(derived);

    EXPECT_THAT(declared, IsEmpty());
    EXPECT_THAT(derived, IsEmpty());
    EXPECT_TRUE(element.isExpandable());
    EXPECT_FALSE(element.isCumulativeAttribute(L"A"));
    EXPECT_FALSE(element.getDefaultAttribute(record, L"A"));
    EXPECT_FALSE(element.combineWithParent(L"above", value));
    EXPECT_EQ(value, L"own");
}

/// Shows where an element keeps its fields.
class OpenElement final : public CElement {
public:
    using CElement::attributes;
    using CElement::CElement;
    using CElement::id;
    using CElement::name;
    using CElement::node;
    using CElement::parent;
};

TEST_F(CElementTest, FieldsStandInOrderBehindTheTable) {
    ASSERT_TRUE(loadProduct("<E Id='e'/>"));
    const OpenElement element(L"E", L"e", context);

    EXPECT_EQ(offsetIn(element, element.name), 8);
    EXPECT_EQ(offsetIn(element, element.id), 520);
    EXPECT_EQ(offsetIn(element, element.attributes), 1032);
    EXPECT_EQ(offsetIn(element, element.parent), 1056);
    EXPECT_EQ(offsetIn(element, element.node), 1064);
    EXPECT_FALSE(std::has_virtual_destructor_v<CElement>);
}

TEST(CElementLayoutTest, OperationsHaveTheirSlots) {
    EXPECT_EQ(slotOf(&CElement::isExpandable), 0u);
    EXPECT_EQ(slotOf(&CElement::isCumulativeAttribute), 1u);
    EXPECT_EQ(slotOf(&CElement::combineWithParent), 2u);
    EXPECT_EQ(slotOf(&CElement::getAttributes), 3u);
    EXPECT_EQ(slotOf(&CElement::getDerivedAttributes), 4u);
    EXPECT_EQ(slotOf(&CElement::getDefaultAttribute), 5u);
    EXPECT_EQ(slotOf(&CElement::getAttribute), 6u);
    EXPECT_EQ(slotOf(&Extended<CElement>::next), 7u);
}

// fillAttributeRecord

TEST(AttributeRecordTest, HoldsNameAndValue) {
    AttributeRecord record;
    EXPECT_EQ(offsetIn(record, record.name), 0);
    EXPECT_EQ(offsetIn(record, record.value), 512);

    fillAttributeRecord(record, std::wstring(255, L'n').c_str(), L"value");

    EXPECT_EQ(record.name, std::wstring(255, L'n'));
    EXPECT_EQ(record.value, L"value");
}

TEST(AttributeDeclarationTest, HoldsNameAndDemand) {
    const AttributeDeclaration declaration = {L"A", required};
    EXPECT_EQ(offsetIn(declaration, declaration.name), 0);
    EXPECT_EQ(offsetIn(declaration, declaration.required), 512);
    EXPECT_EQ(sizeof declaration, 514u);
}

TEST(AttributeRecordTest, LongerNameEndsTheProcess) {
    AttributeRecord record;
    EXPECT_EXIT(fillAttributeRecord(record, std::wstring(256, L'n').c_str(), L"value"),
                endedByInvalidParameter(), "");
}

TEST(AttributeRecordTest, NullNameIsLoggedBeforeTheProcessEnds) {
    AttributeRecord record;
    const LogFile log;
    EXPECT_EXIT(fillAttributeRecord(record, nullptr, L"value"), endedByInvalidParameter(), "");

    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] .\\raw_installerXML 366 'name' Must be non NULL "
                                         "Must be non NULL!"));
}

TEST(AttributeRecordTest, NullValueIsLoggedBeforeTheProcessEnds) {
    AttributeRecord record;
    const LogFile log;
    EXPECT_EXIT(fillAttributeRecord(record, L"name", nullptr), endedByInvalidParameter(), "");

    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] .\\raw_installerXML 367 'valueText' Must be non "
                                         "NULL Must be non NULL!"));
}

TEST(AttributeRecordTest, BothNullPointersAreLogged) {
    AttributeRecord record;
    const LogFile log;
    EXPECT_EXIT(fillAttributeRecord(record, nullptr, nullptr), endedByInvalidParameter(), "");

    EXPECT_EQ(log.lines().size(), 2u);
}

// readDeclaredAttributes

TEST_F(CElementTest, ReadsWhatIsDeclaredInTheOrderOfDeclaration) {
    ProbeElement element = probe("<E Id='e' A='1' B='2' C='3' D=''/>");

    EXPECT_TRUE(read(element, {{L"C", optional}, {L"D", required}, {L"A", required}}));

    EXPECT_THAT(element.resolved(),
                ElementsAre(Pair(L"C", L"3"), Pair(L"D", L""), Pair(L"A", L"1")));
}

TEST_F(CElementTest, AbsentOptionalAttributeLeavesNoRecord) {
    ProbeElement element = probe("<E Id='e' B='2'/>");
    AttributeRecord record;

    EXPECT_TRUE(read(element, {{L"A", optional}, {L"B", optional}}));

    EXPECT_FALSE(element.getAttribute(L"A", record));
    EXPECT_THAT(element.resolved(), ElementsAre(Pair(L"B", L"2")));
}

TEST_F(CElementTest, AbsentRequiredAttributeFailsThoughTheParentHasIt) {
    ProbeElement element =
        probe("<Component Id='c' On='install'><E Id='e' A='1' on='x'/></Component>");

    EXPECT_FALSE(read(element, {{L"A", required}, {L"On", required}, {L"on", required}}));

    EXPECT_EQ(message, L"(E,e) cant get the require explicit Onattribute.");
    EXPECT_THAT(element.resolved(), ElementsAre(Pair(L"A", L"1")));
}

TEST_F(CElementTest, ReferencesInTextsAreReplaced) {
    ProbeElement element = probe("<Directory Id='D' Path='C:\\d'/><E Id='e' A='[D]#V'/>",
                                 "<Variable Id='V' Type='string' Value='v'/>");

    EXPECT_TRUE(read(element, {{L"A", required}}));

    EXPECT_THAT(element.resolved(), ElementsAre(Pair(L"A", L"C:\\d\\v")));
}

TEST_F(CElementTest, ReferenceThatCannotBeResolvedFails) {
    ProbeElement element = probe("<E Id='e' A='x[D]' B='2'/>");

    EXPECT_FALSE(read(element, {{L"A", optional}, {L"B", optional}}));

    EXPECT_EQ(message, L"[D] mismatch.");
    EXPECT_THAT(element.resolved(), IsEmpty());
}

TEST_F(CElementTest, TextsOfAnElementThatIsNotExpandableStayLiteral) {
    ProbeElement element = probe("<E Id='e' A='x[D]#V'/>");
    element.expandable = false;

    EXPECT_TRUE(read(element, {{L"A", required}}));

    EXPECT_THAT(element.resolved(), ElementsAre(Pair(L"A", L"x[D]#V")));
}

TEST_F(CElementTest, CumulativeAttributeIsJoinedWithTheParents) {
    ProbeElement element = probe(
        "<Component Id='c' On='above' SupportDelayInstall='yes'>"
        "<E Id='e' On='#V' SupportDelayInstall='no'/></Component>",
        "<Variable Id='V' Type='string' Value='own'/>");
    element.cumulative = L"On";

    EXPECT_TRUE(read(element, {{L"On", required}, {L"SupportDelayInstall", optional}}));

    EXPECT_THAT(element.resolved(),
                ElementsAre(Pair(L"On", L"above+own"), Pair(L"SupportDelayInstall", L"no")));
}

TEST_F(CElementTest, CumulativeAttributeKeepsItsTextWhereTheParentHasNone) {
    for (const char* product :
         {"<E Id='e' Path='own'/>", "<Component><E Id='e' Path='own'/></Component>",
          "<Unknown><E Id='e' Path='own'/></Unknown>"}) {
        SCOPED_TRACE(product);
        context.unload();
        ProbeElement element = probe(product);
        element.cumulative = L"Path";

        EXPECT_TRUE(read(element, {{L"Path", required}}));

        EXPECT_THAT(element.resolved(), ElementsAre(Pair(L"Path", L"own")));
        EXPECT_EQ(message, L"");
    }
}

TEST_F(CElementTest, ParentIsNotMadeForAnAttributeThatIsNotCumulative) {
    ProbeElement element = probe("<Component><E Id='e' On='own'/></Component>");

    EXPECT_TRUE(read(element, {{L"On", required}}));

    EXPECT_EQ(element.getParent(), nullptr);
}

// resolveDerivedAttributes

TEST_F(CElementTest, DerivedAttributeComesFromItselfThenTheDefaultThenTheParent) {
    ProbeElement parent = probe("<E Id='e'/>");
    parent.hold(L"Own", L"above");
    parent.hold(L"Default", L"above");
    parent.hold(L"Parent", L"above");
    ProbeElement element(L"E", L"e", context);
    element.setParent(&parent);
    element.hold(L"Own", L"own");
    element.defaults = {{L"Own", L"default"}, {L"Default", L"default"}};

    EXPECT_TRUE(
        resolve(element, {{L"Parent", required}, {L"Own", required}, {L"Default", required}}));

    EXPECT_THAT(element.resolved(), ElementsAre(Pair(L"Own", L"own"), Pair(L"Parent", L"above"),
                                                Pair(L"Default", L"default")));
}

TEST_F(CElementTest, OptionalDerivedAttributeMayBeMissing) {
    ProbeElement element = probe("<Component On='install'><E Id='e'/></Component>");

    EXPECT_TRUE(resolve(element, {{L"Absent", optional}, {L"On", optional}}));

    EXPECT_THAT(element.resolved(), ElementsAre(Pair(L"On", L"install")));
}

TEST_F(CElementTest, MissingRequiredDerivedAttributeFails) {
    ProbeElement element = probe("<Component On='install'><E Id='e'/></Component>");

    EXPECT_FALSE(resolve(element, {{L"Absent", required}, {L"On", optional}}));

    EXPECT_EQ(message, L"(E,e) can't get Absent attribute from  parent element.");
    EXPECT_THAT(element.resolved(), IsEmpty());
}

// getFromParent

TEST_F(CElementTest, AttributeIsTakenFromTheParentThatWasSet) {
    ProbeElement element = probe("<Component On='xml'><E Id='e'/></Component>");
    ProbeElement parent(L"E", L"e", context);
    parent.hold(L"On", L"set");
    element.setParent(&parent);
    AttributeRecord record;

    EXPECT_TRUE(element.getFromParent(record, L"On", context, message));

    EXPECT_EQ(record.name, std::wstring(L"On"));
    EXPECT_EQ(record.value, L"set");
    EXPECT_EQ(element.getParent(), &parent);
}

TEST_F(CElementTest, ParentIsMadeFromTheXmlOnceAndKept) {
    ProbeElement element = probe("<Component Id='c' On='xml'><E Id='e'/></Component>");
    AttributeRecord record;

    EXPECT_TRUE(element.getFromParent(record, L"On", context, message));
    const CElement* parent = element.getParent();
    EXPECT_FALSE(element.getFromParent(record, L"Absent", context, message));

    EXPECT_EQ(record.value, L"xml");
    ASSERT_NE(parent, nullptr);
    EXPECT_EQ(parent->describe(), L"(Component,c)");
    EXPECT_EQ(element.getParent(), parent);
}

TEST_F(CElementTest, ParentMadeFromTheXmlResolvesItsOwnAttributes) {
    ProbeElement element =
        probe("<Directory Path='C:\\d'><Component><E Id='e'/></Component></Directory>");
    AttributeRecord record;

    EXPECT_TRUE(element.getFromParent(record, L"Path", context, message));

    EXPECT_EQ(record.value, L"C:\\d");
}

TEST_F(CElementTest, OnlyTheParentItselfIsAsked) {
    ProbeElement element = probe(
        "<Component On='install'><Feature Id='f'><E Id='e'/></Feature>"
        "</Component>");
    AttributeRecord record;

    EXPECT_FALSE(element.getFromParent(record, L"On", context, message));

    EXPECT_EQ(message, L"(E,e) can't get On attribute from  parent element.");
}

TEST_F(CElementTest, ElementWithoutParentNodeGetsNothing) {
    ProbeElement element = probe("<E Id='e'/>");
    element.detach();
    AttributeRecord record;

    EXPECT_FALSE(element.getFromParent(record, L"Path", context, message));

    EXPECT_EQ(message, L"(E,e) can't get parent node when get the Path attribute.");
    EXPECT_EQ(element.getParent(), nullptr);
    EXPECT_EQ(element.getNode(), nullptr);
}

TEST_F(CElementTest, ParentThatCannotBeMadeGivesNothing) {
    for (const char* product : {"<Unknown Path='p'><E Id='e'/></Unknown>",
                                "<Component On='[D]'><E Id='e'/></Component>"}) {
        SCOPED_TRACE(product);
        context.unload();
        ProbeElement element = probe(product);
        AttributeRecord record;

        EXPECT_FALSE(element.getFromParent(record, L"Path", context, message));

        EXPECT_EQ(message, L"(E,e) can't create parent element when get the Path attribute.");
        EXPECT_EQ(element.getParent(), nullptr);
    }
}

// The document stands above the root, but no element is made of it.
TEST_F(CElementTest, RootElementHasNoParentElement) {
    ASSERT_TRUE(loadProduct("<E Id='e'/>"));
    const auto* product = static_cast<CProductElement*>(context.getProduct());
    ProbeElement element(*getParentNode(product->getNode()), context);
    AttributeRecord record;

    EXPECT_FALSE(element.getFromParent(record, L"Path", context, message));

    EXPECT_EQ(message, L"(Root,) can't create parent element when get the Path attribute.");
}

// getAttribute and updateAttribute

TEST_F(CElementTest, AttributeIsFoundByItsExactName) {
    ProbeElement element = probe("<E Id='e'/>");
    element.hold(L"Path", L"first");
    element.hold(L"Path", L"second");
    AttributeRecord record;

    for (const wchar_t* other : {L"path", L"Pat", L"Paths", L""})
        EXPECT_FALSE(element.getAttribute(other, record)) << other;
    EXPECT_TRUE(element.getAttribute(L"Path", record));

    EXPECT_EQ(record.name, std::wstring(L"Path"));
    EXPECT_EQ(record.value, L"first");
}

TEST_F(CElementTest, UpdateOverwritesTheAttributeOfThatNameInItsPlace) {
    ProbeElement element = probe("<E Id='e'/>");
    element.hold(L"A", L"1");
    element.hold(L"B", L"2");
    element.hold(L"C", L"3");

    EXPECT_TRUE(element.updateAttribute({L"B", L"new"}));

    EXPECT_THAT(element.resolved(),
                ElementsAre(Pair(L"A", L"1"), Pair(L"B", L"new"), Pair(L"C", L"3")));
}

TEST_F(CElementTest, UpdateAddsNoAttribute) {
    ProbeElement element = probe("<E Id='e'/>");
    element.hold(L"B", L"2");

    EXPECT_FALSE(element.updateAttribute({L"b", L"new"}));

    EXPECT_THAT(element.resolved(), ElementsAre(Pair(L"B", L"2")));
}

// getAttributesText

class AttributesTextTest : public CElementTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(loadProduct("<E Id='e'/>"));
        context.subject().setErrorInfo(ACTION_COPY_FILE, L"earlier", 5, L"earlier", L"earlier");
    }

    /// All that errorInfo holds once a fetch is over: code 1 and a message.
    void expectOnlyMessage(const std::wstring& expected) {
        const ErrorInfo& error = context.getProduct()->errorInfo;
        EXPECT_EQ(error.code, 1u);
        EXPECT_EQ(error.text1, std::wstring());
        EXPECT_EQ(error.text2, std::wstring());
        EXPECT_EQ(error.systemError, 0u);
        EXPECT_EQ(error.message, expected);
    }
};

constexpr AttributeDeclaration fetched[] = {{L"A", required}, {L"B", optional}, {L"C", required}};

TEST_F(AttributesTextTest, EachTextGetsItsAttribute) {
    ProbeElement element(L"E", L"e", context);
    element.hold(L"C", L"3");
    element.hold(L"B", L"");
    element.hold(L"A", L"1");
    std::wstring a, b = L"default", c;

    EXPECT_TRUE(element.getAttributesText({&a, &b, &c}, fetched, context));

    EXPECT_THAT((std::vector{a, b, c}), ElementsAre(L"1", L"", L"3"));
    expectOnlyMessage(L"");
}

TEST_F(AttributesTextTest, TextOfAnAbsentOptionalAttributeStays) {
    ProbeElement element(L"E", L"e", context);
    element.hold(L"A", L"1");
    element.hold(L"C", L"3");
    std::wstring a, b = L"default", c;

    EXPECT_TRUE(element.getAttributesText({&a, &b, &c}, fetched, context));

    EXPECT_THAT((std::vector{a, b, c}), ElementsAre(L"1", L"default", L"3"));
    expectOnlyMessage(L"");
}

TEST_F(AttributesTextTest, AbsentRequiredAttributeEndsTheFetch) {
    ProbeElement element(L"E", L"e", context);
    element.hold(L"B", L"2");
    element.hold(L"C", L"3");
    std::wstring a, b, c;

    EXPECT_FALSE(element.getAttributesText({&a, &b, &c}, fetched, context));

    EXPECT_THAT((std::vector{a, b, c}), ElementsAre(L"", L"", L""));
    expectOnlyMessage(L"(E,e) can't get A attribute.");
}

TEST_F(AttributesTextTest, TextsInFrontOfTheMissingOneHaveTheirAttributes) {
    ProbeElement element(L"E", L"e", context);
    element.hold(L"A", L"1");
    element.hold(L"B", L"2");
    std::wstring a, b = L"default", c = L"default";

    EXPECT_FALSE(element.getAttributesText({&a, &b, &c}, fetched, context));

    EXPECT_THAT((std::vector{a, b, c}), ElementsAre(L"1", L"2", L"default"));
    expectOnlyMessage(L"(E,e) can't get C attribute.");
}

TEST_F(AttributesTextTest, AnotherNumberOfTextsThanDeclarationsFails) {
    ProbeElement element(L"E", L"e", context);
    element.hold(L"A", L"1");
    std::wstring a, b, c, d;

    const std::initializer_list<std::wstring*> one = {&a};
    const std::initializer_list<std::wstring*> four = {&a, &b, &c, &d};
    const std::initializer_list<std::wstring*> none;
    for (const auto texts : {one, four, none}) {
        context.subject().setErrorInfo(ACTION_COPY_FILE, L"earlier", 5);
        EXPECT_FALSE(element.getAttributesText(texts, fetched, context));
        expectOnlyMessage(L"(E,e) getAttributesText params error.");
    }

    EXPECT_EQ(a, L"");
}

TEST_F(AttributesTextTest, MessageIsCutTo511Characters) {
    context.unload();
    const std::string id(255, 'i');
    ASSERT_TRUE(loadProduct("<E Id='" + id + "'/>"));
    ProbeElement element(L"E", std::wstring(255, L'i').c_str(), context);
    AttributeDeclaration declaration = {L"", required};
    std::fill_n(declaration.name, 255, L'n');
    std::wstring text;

    EXPECT_FALSE(element.getAttributesText({&text}, {&declaration, 1}, context));

    const std::wstring full = L"(E," + std::wstring(255, L'i') + L") can't get " +
                              std::wstring(255, L'n') + L" attribute.";
    expectOnlyMessage(full.substr(0, 511));
}

}  // namespace
