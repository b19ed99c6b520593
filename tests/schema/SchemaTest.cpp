#include "author/schema/Schema.h"

#include <gmock/gmock.h>

#include <set>

#include "ReferencePage.h"
#include "author/schema/AttributeWords.h"
#include "author/schema/ElementTexts.h"
#include "author/schema/ScriptGrammar.h"
#include "elements/Vocabulary.h"
#include "support/ScriptTest.h"
#include "support/Text.h"

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

using Name = std::pair<std::wstring, std::wstring>;

/// A file of the tree, of which a copy lies beside the test program.
std::string treeFile(const std::wstring& name) {
    return readFile(testProgramDirectory() + L"\\" + name);
}

std::set<Name> names() {
    std::set<Name> all;
    for (const ElementShape& shape : scriptShapes()) {
        all.insert({shape.element, L""});
        for (const ElementShape::Attribute& attribute : shape.attributes)
            all.insert({shape.element, attribute.name});
    }
    return all;
}

/// The children of a shape, and the shapes that they have there.
std::vector<std::wstring> childShapes(const std::wstring& name) {
    std::vector<std::wstring> shapes;
    for (const ElementShape& shape : scriptShapes())
        if (shape.name == name)
            for (const ElementShape::Child& child : shape.children)
                shapes.push_back(child.shape);
    return shapes;
}

TEST(Schema, IsWhatStandsInTheTree) {
    EXPECT_EQ(treeFile(L"install.xsd"), narrow(scriptSchema()))
        << "scripts/write-tables.sh brings it up to date.";
}

TEST(ReferencePage, HasTheTextsOfTheTables) {
    const std::string page = treeFile(L"script-reference.md");
    EXPECT_EQ(page, renewedPage(page)) << "scripts/write-tables.sh brings it up to date.";
}

TEST(ReferencePage, TellsOfEachElementThatARunVisits) {
    const std::string page = treeFile(L"script-reference.md");
    for (const ElementKind* kind : motionKinds())
        EXPECT_NE(page.find("\n### `" + narrow(kind->name) + "`\n"), std::string::npos)
            << narrow(kind->name);
}

TEST(ElementTexts, AreThereForEachElementAndAttribute) {
    for (const auto& [element, attribute] : names())
        EXPECT_NE(textOf(element, attribute), L"") << narrow(element) << " " << narrow(attribute);
}

TEST(ElementTexts, AreForNothingElse) {
    const std::set<Name> known = names();
    for (const ElementText& text : elementTexts())
        EXPECT_TRUE(known.contains({text.element, text.attribute}))
            << narrow(text.element) << " " << narrow(text.attribute);
    EXPECT_EQ(textOf(L"File", L"Nothing"), L"");
}

TEST(ElementTexts, StandOncePerElementAndAttribute) {
    std::set<Name> seen;
    for (const ElementText& text : elementTexts())
        EXPECT_TRUE(seen.insert({text.element, text.attribute}).second)
            << narrow(text.element) << " " << narrow(text.attribute);
}

TEST(ElementTexts, HaveTheirPlaceholdersFilledIn) {
    for (const auto& [element, attribute] : names())
        EXPECT_EQ(textOf(element, attribute).find_first_of(L"{}"), std::wstring::npos)
            << narrow(element) << " " << narrow(attribute);
    EXPECT_EQ(textOf(L"RegistryKey", L"Action"), L"`create` or `remove`");
    EXPECT_EQ(textOf(L"ComponentRef", L"Id"), L"the `Id` of the `Component` that it stands for");
}

TEST(AttributeWords, AreForAttributesThatThereAre) {
    const std::set<Name> known = names();
    std::set<const WordList*> used;
    for (const auto& [element, attribute] : known)
        used.insert(wordsOf(element, attribute));
    for (const WordList* list : wordLists())
        EXPECT_TRUE(used.contains(list)) << narrow(list->name);
}

TEST(ScriptGrammar, HasEachElementOfTheEngine) {
    std::set<std::wstring> elements;
    for (const ElementShape& shape : scriptShapes())
        elements.insert(shape.element);
    for (const auto kinds : {motionKinds(), lookedUpKinds()})
        for (const ElementKind* kind : kinds)
            EXPECT_TRUE(elements.contains(kind->name)) << narrow(kind->name);
    for (const ReferenceKind& reference : motionReferences())
        EXPECT_TRUE(elements.contains(reference.name)) << narrow(reference.name);
    EXPECT_TRUE(elements.contains(directoryReference.name));
}

TEST(ScriptGrammar, AllowsNoChildThatTheEngineDoesNot) {
    for (const ElementShape& shape : scriptShapes())
        for (const ElementKind* kind : motionKinds())
            for (const ElementShape::Child& child : shape.children)
                EXPECT_TRUE(shape.element != kind->name || kind->allowsChild(child.name.c_str()))
                    << narrow(shape.name);
}

TEST(ScriptGrammar, LeavesOutOnlyWhatLacksItsSurroundings) {
    EXPECT_THAT(childShapes(L"RegistryKey"),
                ElementsAre(L"RegistryKey.Root", L"RegistryValue", L"Condition.Key.Root"));
    EXPECT_THAT(childShapes(L"Component.Path"),
                ElementsAre(L"File", L"Shortcut", L"RegistryKey", L"Condition.Path",
                            L"CustomAction", L"ShellExcute", L"ServiceControl", L"FileSearch",
                            L"CopyFile", L"RemoveDirectory", L"Caution"));
    EXPECT_THAT(
        childShapes(L"Component"),
        ElementsAre(L"RegistryKey", L"Condition", L"CustomAction", L"ShellExcute",
                    L"ServiceControl", L"FileSearch", L"CopyFile", L"RemoveDirectory", L"Caution"));
    EXPECT_THAT(childShapes(L"Directory"), ElementsAre(L"Directory", L"DirectoryRef", L"Fragment",
                                                       L"Feature", L"Component.Path"));
    EXPECT_THAT(childShapes(L"Condition.Path"),
                AllOf(Contains(L"File"), Not(Contains(L"RegistryValue"))));
    EXPECT_THAT(childShapes(L"Condition.Key.Root"),
                AllOf(Contains(L"RegistryValue"), Not(Contains(L"File"))));
    EXPECT_THAT(childShapes(L"File"), IsEmpty());
}

using SchemaInScriptTest = ScriptTest;

TEST_F(SchemaInScriptTest, CanBeNamedByTheRoot) {
    ASSERT_TRUE(
        load("<Script xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
             "xsi:noNamespaceSchemaLocation='install.xsd'><Product>"
             "<InstallExecuteSequence><Fragment><Caution Title='done'/></Fragment>"
             "</InstallExecuteSequence></Product></Script>"));
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(observer.updates.size(), 1u);
}

}  // namespace
