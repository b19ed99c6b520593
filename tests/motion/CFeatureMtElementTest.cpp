#include "motion/CFeatureMtElement.h"

#include <gmock/gmock.h>

#include "engine/CContext.h"
#include "support/AllowedChildren.h"
#include "support/Heard.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CFeatureMtElementTest : public ScriptTest {
protected:
    /// Loads a script with this sequence, and with definitions that stand before it.
    bool loadSequence(std::string_view sequence, std::string_view definitions = {}) {
        return loadProduct(std::string(definitions) + "<InstallExecuteSequence>" +
                           std::string(sequence) + "</InstallExecuteSequence>");
    }
};

TEST_F(CFeatureMtElementTest, HoldsFeaturesComponentsAndConditions) {
    ASSERT_TRUE(loadProduct("<Feature Id='F'/>"));
    const CFeatureMtElement element(L"Feature", L"F", context);

    EXPECT_THAT(allowedChildren(element),
                ElementsAre(L"Component", L"ComponentRef", L"Condition", L"Feature"));
}

TEST_F(CFeatureMtElementTest, StandsForNoOtherElement) {
    ASSERT_TRUE(loadProduct("<Fragment Id='F'/>"));
    const XmlHandlePtr node = context.findElementById(L"Fragment", L"F");
    constexpr wchar_t message[] = L"Failed to create element(Fragment) in Feature";

    EXPECT_EQ(thrownBy([&] { CFeatureMtElement(*node, context); }), message);
    EXPECT_EQ(thrownBy([&] { CFeatureMtElement(L"Fragment", L"F", context); }), message);
}

TEST_F(CFeatureMtElementTest, ReadsNoAttributes) {
    ASSERT_TRUE(loadProduct("<Feature Id='F' On='uninstall' Vital='no' Path='[none]'/>"));
    CFeatureMtElement element(L"Feature", L"F", context);
    std::wstring message;
    AttributeRecord record;

    EXPECT_TRUE(element.readDeclaredAttributes(context, message));
    EXPECT_TRUE(element.resolveDerivedAttributes(context, message));

    for (const wchar_t* name : {L"On", L"Vital", L"Path", L"Id"})
        EXPECT_FALSE(element.getAttribute(name, record));
}

TEST_F(CFeatureMtElementTest, RunsInAllModesWhateverItsOnSays) {
    ASSERT_TRUE(loadSequence(
        "<Feature On='uninstall'><Component><Caution Title='a'/></Component></Feature>"));

    for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UNINSTALL, RUNMODE_UPGRADE})
        EXPECT_EQ(run(mode), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a", L"a", L"a"));
}

TEST_F(CFeatureMtElementTest, DividesItsShareAmongFeaturesAndComponents) {
    ASSERT_TRUE(
        loadSequence("<Feature/><Feature>"
                     "<Feature><Component><Caution Title='a'/></Component></Feature>"
                     "<Component><Caution Title='b'/><Caution Title='c'/></Component>"
                     "</Feature>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a", L"b", L"c"));
    EXPECT_THAT(heardProgress(observer), ElementsAre(50u, 75u, 87u));
}

TEST_F(CFeatureMtElementTest, RefusesReferencesToFeaturesAndFragmentsOfAnyForm) {
    for (const std::string name : {"FeatureRef", "Fragment", "FragmentRef", "File", "Caution"}) {
        ASSERT_TRUE(loadSequence("<Feature Id='F'><" + name + " Id='G'/></Feature>",
                                 "<Feature Id='G'/><Fragment Id='G'/>"));
        EXPECT_EQ(run(), -1);
        EXPECT_EQ(errorMessage(), L"(Feature,F) has a illegal child element(" +
                                      std::wstring(name.begin(), name.end()) + L")");
        context.unload();
    }
}

TEST_F(CFeatureMtElementTest, DefinitionOutsideTheSequenceRunsOnlyWhenReferredTo) {
    constexpr char definitions[] =
        "<Feature Id='A'><Component><Caution Title='a'/></Component></Feature>"
        "<Feature Id='B'><Component><Caution Title='b'/></Component></Feature>";
    ASSERT_TRUE(loadSequence("<FeatureRef Id='B'/>", definitions));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"b"));
}

TEST_F(CFeatureMtElementTest, DefinitionInTheSequenceRunsInItsPlaceAndOnceForEachReference) {
    ASSERT_TRUE(
        loadSequence("<FeatureRef Id='F'/>"
                     "<Feature Id='F'><Component><Caution Title='a'/></Component></Feature>"
                     "<FeatureRef Id='F'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardProgress(observer), ElementsAre(0u, 33u, 66u));
}

TEST_F(CFeatureMtElementTest, ReferenceToNothingFails) {
    ASSERT_TRUE(loadSequence("<FeatureRef Id='F'/>", "<Fragment Id='F'/>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(),
              L"Create Motion Element error:"
              L"(Feature,F) element can't create(get the node is null)."
              L"(InstallExecuteSequence,) cann't create child element(FeatureRef)");
    EXPECT_THAT(observer.updates, IsEmpty());
}

}  // namespace
