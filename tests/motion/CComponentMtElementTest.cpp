#include "motion/CComponentMtElement.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "elements/ElementFactory.h"
#include "engine/CContext.h"
#include "support/AllowedChildren.h"
#include "support/Heard.h"
#include "support/ScriptTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CComponentMtElementTest : public ScriptTest {
protected:
    /// Loads a script with this feature, and with definitions that stand before it.
    bool loadFeature(std::string_view children, std::string_view definitions = {}) {
        return loadProduct(std::string(definitions) + "<InstallExecuteSequence><Feature Id='F'>" +
                           std::string(children) + "</Feature></InstallExecuteSequence>");
    }

    /// The component "C" of the loaded script, as a reference makes it.
    MotionElementPtr makeByReference() {
        MotionElementPtr made = createRefMotionElement(L"ComponentRef", L"C", context);
        finishElement(&made, context);
        return made;
    }

    /// An attribute of an element; "<none>" when it has none.
    static std::wstring attribute(const CElement& element, const wchar_t* name) {
        AttributeRecord record;
        return element.getAttribute(name, record) ? record.value : L"<none>";
    }
};

TEST_F(CComponentMtElementTest, HoldsWhatTouchesTheMachine) {
    ASSERT_TRUE(loadProduct("<Component Id='C'/>"));
    const CComponentMtElement element(L"Component", L"C", context);

    EXPECT_THAT(allowedChildren(element),
                ElementsAre(L"Caution", L"Condition", L"CopyFile", L"CustomAction", L"File",
                            L"FileSearch", L"RegistryKey", L"RegistryValue", L"ServiceControl",
                            L"ShellExcute", L"Shortcut", L"RemoveDirectory"));
}

TEST_F(CComponentMtElementTest, DoesNotMindTheNameOfItsNode) {
    ASSERT_TRUE(loadProduct("<Other Id='C'/>"));
    const CComponentMtElement element(L"Other", L"C", context);

    EXPECT_EQ(element.describe(), L"(Other,C)");
}

TEST_F(CComponentMtElementTest, DeclaresOnAndDelayAndDerivesItsPath) {
    ASSERT_TRUE(loadProduct("<Component Id='C'/>"));
    const CComponentMtElement element(L"Component", L"C", context);
    std::vector<AttributeDeclaration> declared(3);
    std::vector<AttributeDeclaration> derived(3);

    element.getAttributes(declared);
    element.getDerivedAttributes(derived);

    ASSERT_EQ(declared.size(), 2u);
    EXPECT_STREQ(declared[0].name, L"On");
    EXPECT_FALSE(declared[0].required);
    EXPECT_STREQ(declared[1].name, L"SupportDelayInstall");
    EXPECT_FALSE(declared[1].required);
    ASSERT_EQ(derived.size(), 1u);
    EXPECT_STREQ(derived[0].name, L"Path");
    EXPECT_FALSE(derived[0].required);
}

TEST_F(CComponentMtElementTest, ReferenceTakesThePathFromWhereTheDefinitionStands) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='A' Path='C:\\a'><Directory Id='B' Path='b'>"
                    "<Component Id='C'/></Directory></Directory>"));

    const MotionElementPtr component = makeByReference();

    EXPECT_EQ(attribute(*component, L"Path"), L"C:\\a\\b");
    ASSERT_NE(component->getParent(), nullptr);
    EXPECT_EQ(component->getParent()->describe(), L"(Directory,B)");
}

TEST_F(CComponentMtElementTest, ReferenceTakesThePathFromAReferenceToADirectoryToo) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='A' Path='C:\\a'/>"
                    "<DirectoryRef Id='A'><Component Id='C'/></DirectoryRef>"));

    EXPECT_EQ(attribute(*makeByReference(), L"Path"), L"C:\\a");
}

TEST_F(CComponentMtElementTest, PathWrittenOnItIsNotRead) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='A' Path='C:\\a'><Component Id='C' Path='C:\\c'/>"
                    "</Directory>"));
    EXPECT_EQ(attribute(*makeByReference(), L"Path"), L"C:\\a");
    context.unload();

    ASSERT_TRUE(loadProduct("<Component Id='C' Path='[none]'/>"));
    EXPECT_EQ(attribute(*makeByReference(), L"Path"), L"<none>");
}

TEST_F(CComponentMtElementTest, HasNeitherVitalNorOtherAttributes) {
    ASSERT_TRUE(loadProduct("<Component Id='C' Vital='no' Title='a' SupportDelayInstall='yes'/>"));

    const MotionElementPtr component = makeByReference();

    EXPECT_EQ(attribute(*component, L"Vital"), L"<none>");
    EXPECT_EQ(attribute(*component, L"Title"), L"<none>");
    EXPECT_EQ(attribute(*component, L"SupportDelayInstall"), L"yes");
    EXPECT_EQ(attribute(*component, L"On"), L"<none>");
}

TEST_F(CComponentMtElementTest, OneThatTheWalkMeetsAsksTheElementAboveForItsPath) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='A' Path='C:\\a'><Feature Id='F'><Component Id='C'/>"
                    "</Feature></Directory>"));
    const XmlHandlePtr above = context.findElementById(L"Feature", L"F");
    const MotionElementPtr feature = CreateMotionElement(above.get(), context, nullptr);

    const MotionElementPtr component =
        CreateMotionElement(getFirstChildElement(above.get()).get(), context, feature.get());

    ASSERT_NE(component, nullptr);
    EXPECT_EQ(component->getParent(), feature.get());
    EXPECT_EQ(attribute(*component, L"Path"), L"<none>");
}

TEST_F(CComponentMtElementTest, FileWithoutAPathFailsWhenItsTurnComes) {
    ASSERT_TRUE(
        loadFeature("<Component Id='C'><Caution Title='a'/>"
                    "<File Name='n' Source='s'/></Component>"));

    EXPECT_EQ(run(), -1);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a"));
    EXPECT_EQ(errorMessage(),
              L"Create Motion Element error:"
              L"(File,) can't get Path attribute from  parent element."
              L"(Component,C) cann't create child element(File)");
}

TEST_F(CComponentMtElementTest, FilesLandInTheDirectoryOfTheDefinition) {
    const std::wstring file = folder.write(L"sub\\file.txt", "x");
    const std::string path = std::filesystem::path(folder.path()).string();
    ASSERT_TRUE(loadFeature("<ComponentRef Id='C'/>",
                            "<Directory Id='A' Path='" + path +
                                "'><Directory Id='B' Path='sub'><Component Id='C'>"
                                "<File Name='file.txt' Source='unused'/>"
                                "</Component></Directory></Directory>"));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_FALSE(exists(file));
}

TEST_F(CComponentMtElementTest, HandsPathAndDelayDownToItsFiles) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='A' Path='C:\\a'>"
                    "<Component Id='C' SupportDelayInstall='yes'>"
                    "<File Name='n' Source='s'/>"
                    "<File Name='n' Source='s' SupportDelayInstall='no'/>"
                    "</Component></Directory>"));
    const MotionElementPtr component = makeByReference();
    const XmlHandlePtr node = context.findElementById(L"Component", L"C");
    const XmlHandlePtr first = getFirstChildElement(node.get());
    const XmlHandlePtr second = getNextSiblingElement(first.get());

    const MotionElementPtr taking = CreateMotionElement(first.get(), context, component.get());
    const MotionElementPtr keeping = CreateMotionElement(second.get(), context, component.get());

    EXPECT_EQ(attribute(*taking, L"Path"), L"C:\\a");
    EXPECT_EQ(attribute(*taking, L"SupportDelayInstall"), L"yes");
    EXPECT_EQ(attribute(*keeping, L"Path"), L"C:\\a");
    EXPECT_EQ(attribute(*keeping, L"SupportDelayInstall"), L"no");
}

TEST_F(CComponentMtElementTest, OnLimitsItAndEachChildHasItsOwnBesides) {
    ASSERT_TRUE(
        loadFeature("<Component On='uninstall'><Caution Title='a'/>"
                    "<Caution Title='b' On='install'/><Caution Title='c' On='uninstall'/>"
                    "</Component><Component><Caution Title='d'/></Component>"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(heardTitles(observer), ElementsAre(L"d"));

    observer.updates.clear();
    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a", L"c", L"d"));
}

TEST_F(CComponentMtElementTest, DividesItsShareAmongItsChildren) {
    ASSERT_TRUE(
        loadFeature("<Component/><Component><Caution Title='a'/><Caution Title='b'/>"
                    "<Caution Title='c'/><Caution Title='d'/></Component>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardProgress(observer), ElementsAre(50u, 62u, 75u, 87u));
}

TEST_F(CComponentMtElementTest, EmptyOneSucceedsInSilence) {
    ASSERT_TRUE(loadFeature("<Component/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_EQ(errorMessage(), L"") << "that it finds no path is no failure";
}

TEST_F(CComponentMtElementTest, RefusesGroupsAndComponents) {
    for (const std::string name : {"Feature", "FeatureRef", "Fragment", "FragmentRef", "Component",
                                   "ComponentRef", "Directory"}) {
        ASSERT_TRUE(loadFeature("<Component Id='C'><" + name + " Id='C'/></Component>"));
        EXPECT_EQ(run(), -1);
        EXPECT_EQ(errorMessage(), L"(Component,C) has a illegal child element(" +
                                      std::wstring(name.begin(), name.end()) + L")");
        context.unload();
    }
}

TEST_F(CComponentMtElementTest, ReferenceToNothingFails) {
    ASSERT_TRUE(loadFeature("<ComponentRef Id='C'/>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(),
              L"Create Motion Element error:"
              L"(Component,C) element can't create(get the node is null)."
              L"(Feature,F) cann't create child element(ComponentRef)");
}

}  // namespace
