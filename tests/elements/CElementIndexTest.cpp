#include "elements/CElementIndex.h"

#include "support/ScriptTest.h"
#include "support/VisitedNodes.h"

namespace {

/// A script in which ids come more than once, are missing or empty, and belong to several names.
constexpr wchar_t crowded[] =
    L"<Root Id='root'><!-- <A Id='comment'/> -->"
    L"<A Id='1' Place='first'><A Id='1' Place='inner'/><B Id='deep'><C Id='deeper'/></B></A>"
    L"<B Id='1'/><A Id='2'/>text"
    L"<A Id='1' Place='last'/><B><A Id='nested'/></B><A/><C Id=''/><C id='lower'/>"
    L"<Outer Id='same'><Inner><Outer Id='same'/></Inner></Outer>"
    L"<AB Id='C'/><b Id='low'/><A Id=' 1'/></Root>";

constexpr const wchar_t* askedNames[] = {L"A",     L"B", L"C",      L"AB", L"Outer",
                                         L"Inner", L"b", L"Absent", L"",   L"Root"};
constexpr const wchar_t* askedIds[] = {L"1",    L"2",       L"deep", L"deeper", L"nested", L"same",
                                       L"C",    L"BC",      L"low",  L"lower",  L"Low",    L" 1",
                                       L"root", L"comment", L"",     L"absent"};

class CElementIndexTest : public testing::Test {
protected:
    CElementIndexTest() { EXPECT_TRUE(parseDocument(*document, crowded)); }

    static TiXmlNode* nodeOf(const XmlHandlePtr& handle) { return handle ? handle->node : nullptr; }

    /// Asks for every name with every id; each answer must be that of the search.
    void expectAnswersOfTheSearch(const XmlHandle* start) {
        for (const wchar_t* name : askedNames)
            for (const wchar_t* id : askedIds)
                EXPECT_EQ(nodeOf(index.find(name, id, start)),
                          nodeOf(findElementRecursive(name, L"Id", id, start)))
                    << "name " << name << ", id " << id;
    }

    std::wstring placeOf(const wchar_t* name, const wchar_t* id, const XmlHandle* start) {
        std::wstring place;
        getAttributeText(index.find(name, id, start).get(), L"Place", place);
        return place;
    }

    const XmlDocumentPtr document = makeDocument();
    CElementIndex index;
};

TEST_F(CElementIndexTest, AnswersWhatTheSearchInDocumentOrderAnswers) {
    expectAnswersOfTheSearch(getRootElement(*document).get());
}

TEST_F(CElementIndexTest, AnswersForAnyStart) {
    const XmlHandlePtr root = getRootElement(*document);
    expectAnswersOfTheSearch(getParentNode(root.get()).get());
    index.clear();
    expectAnswersOfTheSearch(getFirstChildElement(root.get()).get());
    index.clear();
    expectAnswersOfTheSearch(getFirstChildElementNamed(root.get(), L"AB").get());
}

TEST_F(CElementIndexTest, OfElementsWithOneIdFindsTheFirst) {
    EXPECT_EQ(placeOf(L"A", L"1", getRootElement(*document).get()), L"first");
}

TEST_F(CElementIndexTest, DoesNotFindTheStart) {
    const XmlHandlePtr root = getRootElement(*document);
    const XmlHandlePtr start = getFirstChildElement(root.get());

    EXPECT_EQ(index.find(L"Root", L"root", root.get()), nullptr);
    index.clear();
    EXPECT_EQ(placeOf(L"A", L"1", start.get()), L"inner");
}

TEST_F(CElementIndexTest, MissingArgumentFindsNothing) {
    const XmlHandlePtr root = getRootElement(*document);

    EXPECT_EQ(index.find(nullptr, L"1", root.get()), nullptr);
    EXPECT_EQ(index.find(L"A", nullptr, root.get()), nullptr);
    EXPECT_EQ(index.find(L"A", L"1", nullptr), nullptr);

    EXPECT_NE(index.find(L"A", L"1", root.get()), nullptr);
}

TEST_F(CElementIndexTest, EachAnswerIsAHandleOfItsOwn) {
    const XmlHandlePtr root = getRootElement(*document);

    const XmlHandlePtr first = index.find(L"A", L"2", root.get());
    const XmlHandlePtr second = index.find(L"A", L"2", root.get());

    EXPECT_NE(first, second);
    EXPECT_EQ(nodeOf(first), nodeOf(second));
}

TEST_F(CElementIndexTest, LooksAtTheDocumentOnce) {
    const XmlHandlePtr root = getRootElement(*document);
    index.find(L"A", L"1", root.get());
    const uint64_t visited = nodesVisited();

    index.find(L"A", L"nested", root.get());
    index.find(L"A", L"absent", root.get());

    EXPECT_EQ(nodesVisited(), visited);
}

TEST_F(CElementIndexTest, ClearedItAnswersForAnotherDocument) {
    index.find(L"A", L"1", getRootElement(*document).get());
    const XmlDocumentPtr other = makeDocument();
    ASSERT_TRUE(parseDocument(*other, L"<Root><A Id='1' Place='other'/></Root>"));
    const XmlHandlePtr otherRoot = getRootElement(*other);

    index.clear();

    EXPECT_EQ(placeOf(L"A", L"1", otherRoot.get()), L"other");
    EXPECT_EQ(index.find(L"A", L"2", otherRoot.get()), nullptr);
}

class ElementByIdTest : public ScriptTest {
protected:
    std::wstring pathOf(const wchar_t* id) {
        std::wstring path;
        getAttributeText(context.findElementById(L"Directory", id).get(), L"Path", path);
        return path;
    }

    /// How many nodes are looked at in a run with so many references to as many components.
    uint64_t visitedInRun(int count) {
        std::string components, references;
        for (int i = 0; i < count; ++i) {
            const std::string id = "Id='C" + std::to_string(i) + "'/>";
            components += "<Component " + id;
            references += "<ComponentRef " + id;
        }
        EXPECT_TRUE(loadProduct("<InstallExecuteSequence><Feature>" + references +
                                "</Feature></InstallExecuteSequence>"
                                "<Directory Id='D' Path='d'>" +
                                components + "</Directory>"));
        const uint64_t before = nodesVisited();
        EXPECT_EQ(run(), 0);
        context.unload();
        return nodesVisited() - before;
    }
};

TEST_F(ElementByIdTest, AnswersForTheScriptThatIsLoaded) {
    EXPECT_EQ(context.findElementById(L"Directory", L"D"), nullptr);
    ASSERT_TRUE(loadProduct("<Directory Id='D' Path='old'/><Directory Id='gone'/>"));
    EXPECT_EQ(pathOf(L"D"), L"old");
    context.unload();
    EXPECT_EQ(context.findElementById(L"Directory", L"D"), nullptr);
    ASSERT_TRUE(loadProduct("<Directory Id='new' Path='added'/><Directory Id='D' Path='new'/>"));

    EXPECT_EQ(pathOf(L"D"), L"new");
    EXPECT_EQ(pathOf(L"new"), L"added");
    EXPECT_EQ(context.findElementById(L"Directory", L"gone"), nullptr);
}

TEST_F(ElementByIdTest, ElementsOutsideTheProductAreNotFound) {
    ASSERT_TRUE(
        load("<Root><Directory Id='D'/><Product/><Product><Directory Id='E'/></Product>"
             "</Root>"));

    EXPECT_EQ(context.findElementById(L"Directory", L"D"), nullptr);
    EXPECT_EQ(context.findElementById(L"Directory", L"E"), nullptr);
}

TEST_F(ElementByIdTest, WorkOfARunGrowsAsItsReferencesDo) {
    const uint64_t few = visitedInRun(1'000);
    const uint64_t many = visitedInRun(10'000);

    EXPECT_GE(few, 1'000u);
    EXPECT_LE(many, 11 * few);
}

}  // namespace
