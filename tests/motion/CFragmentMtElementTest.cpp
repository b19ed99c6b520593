#include "motion/CFragmentMtElement.h"

#include <gmock/gmock.h>

#include "elements/ElementFactory.h"
#include "engine/CContext.h"
#include "support/AllowedChildren.h"
#include "support/Heard.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CFragmentMtElementTest : public ScriptTest {
protected:
    /// Loads a script with this sequence, and with definitions that stand before it.
    bool loadSequence(std::string_view sequence, std::string_view definitions = {}) {
        return loadProduct(std::string(definitions) + "<InstallExecuteSequence>" +
                           std::string(sequence) + "</InstallExecuteSequence>");
    }
};

TEST_F(CFragmentMtElementTest, HoldsFragmentsConditionsAndActionsOutsideComponents) {
    ASSERT_TRUE(loadProduct("<Fragment Id='F'/>"));
    const CFragmentMtElement element(L"Fragment", L"F", context);

    EXPECT_THAT(allowedChildren(element),
                ElementsAre(L"Caution", L"Condition", L"CopyFile", L"CustomAction", L"FileSearch",
                            L"Fragment", L"FragmentRef", L"ServiceControl", L"ShellExcute",
                            L"RemoveDirectory"));
}

TEST_F(CFragmentMtElementTest, StandsForNoOtherElement) {
    ASSERT_TRUE(loadProduct("<Feature Id='F'/>"));
    const XmlHandlePtr node = context.findElementById(L"Feature", L"F");
    constexpr wchar_t message[] = L"Failed to create element(Feature) in Fragment";

    EXPECT_EQ(thrownBy([&] { CFragmentMtElement(*node, context); }), message);
    EXPECT_EQ(thrownBy([&] { CFragmentMtElement(L"Feature", L"F", context); }), message);
}

TEST_F(CFragmentMtElementTest, DeclaresOnAlone) {
    ASSERT_TRUE(loadProduct("<Fragment Id='F'/>"));
    const CFragmentMtElement element(L"Fragment", L"F", context);
    std::vector<AttributeDeclaration> declared(3);
    std::vector<AttributeDeclaration> derived(3);

    element.getAttributes(declared);
    element.getDerivedAttributes(derived);

    ASSERT_EQ(declared.size(), 1u);
    EXPECT_STREQ(declared[0].name, L"On");
    EXPECT_FALSE(declared[0].required);
    EXPECT_THAT(derived, IsEmpty());
}

TEST_F(CFragmentMtElementTest, OnLimitsItWithAllItsChildren) {
    ASSERT_TRUE(loadSequence(
        "<Fragment On='uninstall'><Caution Title='a'/><Fragment><Caution Title='b'/></Fragment>"
        "<Illegal/></Fragment><Fragment On='installupgrade'><Caution Title='c'/></Fragment>"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    EXPECT_EQ(run(RUNMODE_UNINSTALL), -1);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"c", L"c", L"a", L"b"));
}

TEST_F(CFragmentMtElementTest, OnOfAChildCountsBesideItsOwn) {
    ASSERT_TRUE(
        loadSequence("<Fragment On='installupgrade'><Caution On='install' Title='a'/>"
                     "<Caution On='upgrade' Title='b'/><Caution On='uninstall' Title='c'/>"
                     "</Fragment>"));

    for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UNINSTALL, RUNMODE_UPGRADE})
        EXPECT_EQ(run(mode), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a", L"b"));
}

TEST_F(CFragmentMtElementTest, OnMayReferToAVariable) {
    ASSERT_TRUE(
        load("<Root><Variable Id='Mode' Type='string' Value='upgrade'/><Product>"
             "<InstallExecuteSequence><Fragment On='#Mode'><Caution Title='a'/></Fragment>"
             "</InstallExecuteSequence></Product></Root>"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(observer.updates, IsEmpty());

    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a"));
}

TEST_F(CFragmentMtElementTest, DividesItsShareAmongFragmentsAndActions) {
    ASSERT_TRUE(
        loadSequence("<Fragment/><Fragment><Caution Title='a'/>"
                     "<Fragment><Caution Title='b'/><Caution Title='c'/></Fragment></Fragment>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardProgress(observer), ElementsAre(50u, 75u, 87u));
}

TEST_F(CFragmentMtElementTest, RefusesWhatBelongsToComponents) {
    for (const std::string name : {"File", "Shortcut", "RegistryKey", "RegistryValue", "Component",
                                   "ComponentRef", "Feature", "FeatureRef"}) {
        ASSERT_TRUE(loadSequence("<Fragment Id='F'><Caution Title='a'/><" + name +
                                 " Id='G'/><Caution Title='b'/></Fragment>"));
        observer.updates.clear();
        EXPECT_EQ(run(), -1);
        EXPECT_EQ(errorMessage(), L"(Fragment,F) has a illegal child element(" +
                                      std::wstring(name.begin(), name.end()) + L")");
        EXPECT_THAT(heardTitles(observer), ElementsAre(L"a"));
        context.unload();
    }
}

TEST_F(CFragmentMtElementTest, DefinitionOutsideTheSequenceRunsOnlyWhenReferredTo) {
    constexpr char definitions[] =
        "<Fragment Id='A'><Caution Title='a'/></Fragment>"
        "<Directory Id='D' Path='C:\\'><Fragment Id='B'><Caution "
        "Title='b'/></Fragment></Directory>";
    ASSERT_TRUE(loadSequence("<FragmentRef Id='B'/>", definitions));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"b"));
}

TEST_F(CFragmentMtElementTest, RunsOncePerReference) {
    ASSERT_TRUE(loadSequence("<FragmentRef Id='F'/><Fragment><FragmentRef Id='F'/></Fragment>",
                             "<Fragment Id='F'><Caution Title='a'/></Fragment>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 50u));
}

TEST_F(CFragmentMtElementTest, DefinitionInTheSequenceRunsInItsPlaceToo) {
    ASSERT_TRUE(
        loadSequence("<Fragment Id='F'><Caution Title='a'/></Fragment>"
                     "<FragmentRef Id='F'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 50u));
}

TEST_F(CFragmentMtElementTest, OnOfTheDefinitionCountsAndNotTheReferences) {
    ASSERT_TRUE(loadSequence("<FragmentRef Id='A' On='uninstall'/><FragmentRef Id='B'/>",
                             "<Fragment Id='A'><Caution Title='a'/></Fragment>"
                             "<Fragment Id='B' On='uninstall'><Caution Title='b'/></Fragment>"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a"));
}

TEST_F(CFragmentMtElementTest, ChildrenOfAReferenceAreIgnored) {
    ASSERT_TRUE(loadSequence("<FragmentRef Id='F'><Illegal/></FragmentRef>",
                             "<Fragment Id='F'><Caution Title='a'/></Fragment>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a"));
}

TEST_F(CFragmentMtElementTest, ReferenceIsTheDefinitionWithoutAParent) {
    ASSERT_TRUE(
        loadProduct("<Fragment Id='F' On='upgrade'/>"
                    "<Feature Id='P'><FragmentRef Id='F' On='install'/></Feature>"));
    const XmlHandlePtr above = context.findElementById(L"Feature", L"P");
    const XmlHandlePtr reference = getFirstChildElement(above.get());
    const MotionElementPtr parent = CreateMotionElement(above.get(), context, nullptr);
    AttributeRecord on;

    const MotionElementPtr made = CreateMotionElement(reference.get(), context, parent.get());

    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->describe(), L"(Fragment,F)");
    EXPECT_EQ(made->getParent(), nullptr);
    ASSERT_TRUE(made->getAttribute(L"On", on));
    EXPECT_EQ(on.value, L"upgrade");
}

}  // namespace
