#include "elements/Vocabulary.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <typeinfo>

#include "elements/ElementFactory.h"
#include "support/AllowedChildren.h"
#include "support/ProbeElement.h"
#include "support/ScriptTest.h"
#include "system/TextConversion.h"

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::EndsWith;
using testing::Pair;
using testing::UnorderedElementsAreArray;

namespace {

/// The name of an element in a script, and of the class that stands for it.
using NamedClass = std::pair<std::wstring, std::string>;

const NamedClass motionElements[] = {{L"InstallExecuteSequence", "CInstallMtElement"},
                                     {L"Fragment", "CFragmentMtElement"},
                                     {L"Feature", "CFeatureMtElement"},
                                     {L"Component", "CComponentMtElement"},
                                     {L"Condition", "CConditionMtElement"},
                                     {L"CustomAction", "CCustomActionMtElement"},
                                     {L"File", "CFileMtElement"},
                                     {L"Shortcut", "CShortcutMtElement"},
                                     {L"ShellExcute", "CShellExcuteMtElement"},
                                     {L"ServiceControl", "CServiceControlMtElement"},
                                     {L"CopyFile", "CCopyFileMtElement"},
                                     {L"FileSearch", "CFileSearchMtElement"},
                                     {L"RegistryKey", "CRegistryKeyMtElement"},
                                     {L"RegistryValue", "CRegistryValueMtElement"},
                                     {L"RemoveDirectory", "CRemoveDirectoryMtElement"},
                                     {L"Caution", "CCautionMtElement"}};

const NamedClass motionReferenceElements[] = {{L"FragmentRef", "CFragmentMtElement"},
                                              {L"FeatureRef", "CFeatureMtElement"},
                                              {L"ComponentRef", "CComponentMtElement"}};

const NamedClass lookedUpElements[] = {{L"Directory", "CDirectoryElement"},
                                       {L"Product", "CProductElement"},
                                       {L"Variable", "CVariableElement"},
                                       {L"VariableConst", "CVariableElement"}};

/// An element that isn't named here holds no other.
const std::map<std::wstring, std::vector<std::wstring>> nestings = {
    {L"InstallExecuteSequence",
     {L"Feature", L"FeatureRef", L"Fragment", L"FragmentRef", L"Condition"}},
    {L"Feature", {L"Feature", L"Condition", L"ComponentRef", L"Component"}},
    {L"Fragment",
     {L"Fragment", L"FragmentRef", L"Condition", L"CustomAction", L"ShellExcute", L"ServiceControl",
      L"FileSearch", L"CopyFile", L"RemoveDirectory", L"Caution"}},
    {L"Component",
     {L"File", L"Shortcut", L"RegistryKey", L"RegistryValue", L"Condition", L"CustomAction",
      L"ShellExcute", L"ServiceControl", L"FileSearch", L"CopyFile", L"RemoveDirectory",
      L"Caution"}},
    {L"Condition",
     {L"Condition", L"Feature", L"Fragment", L"CustomAction", L"ShellExcute", L"ServiceControl",
      L"FileSearch", L"CopyFile", L"FeatureRef", L"FragmentRef", L"Component", L"ComponentRef",
      L"File", L"Shortcut", L"RegistryKey", L"RegistryValue", L"RemoveDirectory", L"Caution"}},
    {L"RegistryKey", {L"RegistryKey", L"RegistryValue", L"Condition"}},
};

std::vector<std::wstring> childrenOf(const wchar_t* parent) {
    const auto found = nestings.find(parent);
    return found == nestings.end() ? std::vector<std::wstring>() : found->second;
}

/// The kind of that name, null for an element whose class isn't there yet.
const ElementKind* findMotionKind(const std::wstring& name) {
    for (const ElementKind* kind : motionKinds())
        if (name == kind->name)
            return kind;
    return nullptr;
}

std::vector<NamedClass> namesOf(std::span<const ElementKind* const> kinds) {
    std::vector<NamedClass> names;
    for (const ElementKind* kind : kinds)
        names.push_back({kind->name, kind->className});
    return names;
}

std::string className(const CElement& element) {
    return typeid(element).name();
}

class VocabularyTest : public ScriptTest {
protected:
    /// Loads a script whose product holds an element of that name with the id "x" and all
    /// attributes that its kind declares.
    XmlHandlePtr loadNode(const wchar_t* name,
                          std::span<const AttributeDeclaration> declared = {}) {
        const std::string narrow = toNarrowText(name).get();
        std::string attributes = " Id='x'";
        for (const AttributeDeclaration& attribute : declared)
            attributes += std::string(" ") + toNarrowText(attribute.name).get() + "='x'";
        context.unload();
        EXPECT_TRUE(loadProduct("<" + narrow + attributes + "/>"));
        return context.findElementById(name, L"x");
    }

    /// An element of that kind below a parent that has all that the kind wants of one.
    MotionElementPtr make(const ElementKind& kind) {
        const XmlHandlePtr node = loadNode(kind.name, kind.declared);
        parent = std::make_unique<ProbeElement>(*node, context);
        for (const AttributeDeclaration& attribute : kind.derived)
            parent->hold(attribute.name, L"x");
        return CreateMotionElement(node.get(), context, parent.get());
    }

private:
    std::unique_ptr<ProbeElement> parent;
};

TEST_F(VocabularyTest, HasOnlyMotionElementsOfTheLanguageInItsOrder) {
    auto row = std::begin(motionElements);
    for (const NamedClass& kind : namesOf(motionKinds())) {
        row = std::find(row, std::end(motionElements), kind);
        ASSERT_NE(row, std::end(motionElements)) << testing::PrintToString(kind);
        ++row;
    }
}

TEST_F(VocabularyTest, HasTheElementsThatAreLookedUp) {
    EXPECT_THAT(namesOf(lookedUpKinds()), ElementsAreArray(lookedUpElements));
}

TEST_F(VocabularyTest, ReferencesStandForTheirKinds) {
    std::vector<NamedClass> references;
    for (const ReferenceKind& reference : motionReferences())
        references.push_back({reference.name, reference.target->className});

    EXPECT_THAT(references, ElementsAreArray(motionReferenceElements));
    EXPECT_EQ(directoryReference.name, std::wstring_view(L"DirectoryRef"));
    EXPECT_EQ(directoryReference.target, &directoryKind);
}

TEST_F(VocabularyTest, EveryMotionElementIsMadeAsItsClassOrIsUndefined) {
    for (const auto& [name, expectedClass] : motionElements) {
        SCOPED_TRACE(expectedClass);
        if (const ElementKind* kind = findMotionKind(name)) {
            const MotionElementPtr element = make(*kind);
            ASSERT_NE(element, nullptr) << toNarrowText(getLastCreateError().c_str()).get();
            EXPECT_THAT(className(*element), EndsWith(expectedClass));
            EXPECT_EQ(element->describe(), L"(" + name + L",x)");
        } else {
            EXPECT_EQ(CreateMotionElement(loadNode(name.c_str()).get(), context, nullptr), nullptr);
            EXPECT_EQ(getLastCreateError(),
                      L"Create Motion Element error:" + name + L" element name is undefined.");
        }
    }
}

TEST_F(VocabularyTest, EveryReferenceIsMadeAsTheClassOfItsDefinition) {
    for (const ReferenceKind& reference : motionReferences()) {
        const std::string name = toNarrowText(reference.name).get();
        const std::string target = toNarrowText(reference.target->name).get();
        SCOPED_TRACE(name);
        context.unload();
        ASSERT_TRUE(loadProduct("<" + target + " Id='x'/><" + name + " Id='x'/>"));
        const XmlHandlePtr node = context.findElementById(reference.name, L"x");

        const MotionElementPtr element = CreateMotionElement(node.get(), context, nullptr);

        ASSERT_NE(element, nullptr);
        EXPECT_THAT(className(*element), EndsWith(reference.target->className));
        EXPECT_EQ(element->describe(), std::wstring(L"(") + reference.target->name + L",x)");
    }
}

TEST_F(VocabularyTest, EveryElementThatIsLookedUpIsMadeAsItsClass) {
    for (const ElementKind* kind : lookedUpKinds()) {
        SCOPED_TRACE(kind->className);
        const XmlHandlePtr node = loadNode(kind->name, kind->declared);

        const ElementPtr element = CreateElement(node.get(), context);

        ASSERT_NE(element, nullptr) << toNarrowText(getLastCreateError().c_str()).get();
        EXPECT_THAT(className(*element), EndsWith(kind->className));
        EXPECT_EQ(element->describe(), std::wstring(L"(") + kind->name + L",x)");
    }
}

TEST_F(VocabularyTest, ElementsHoldTheChildrenTheyMayAndNoOthers) {
    for (const ElementKind* kind : motionKinds()) {
        SCOPED_TRACE(kind->className);
        const MotionElementPtr element = make(*kind);
        ASSERT_NE(element, nullptr);

        EXPECT_THAT(allowedChildren(*element), UnorderedElementsAreArray(childrenOf(kind->name)));
    }
}

TEST_F(VocabularyTest, OnKeywordsPassInTheirModes) {
    std::vector<std::pair<std::wstring, std::string>> passing;
    for (const OnKeyword& keyword : onKeywords()) {
        std::string modes;
        for (const int32_t mode : {-1, 0, 1, 2, 3, 32, 33})
            if (keyword.passesIn(mode))
                modes += " " + std::to_string(mode);
        passing.emplace_back(keyword.word, modes);
    }

    EXPECT_THAT(passing, ElementsAre(Pair(L"install", " 0"), Pair(L"uninstall", " 1"),
                                     Pair(L"upgrade", " 2"), Pair(L"installupgrade", " 0 2")));
}

}  // namespace
