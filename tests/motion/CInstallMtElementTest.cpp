#include "motion/CInstallMtElement.h"

#include <gmock/gmock.h>

#include "engine/CContext.h"
#include "support/AllowedChildren.h"
#include "support/Heard.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CInstallMtElementTest : public ScriptTest {
protected:
    bool loadSequence(std::string_view attributes, std::string_view children) {
        return loadProduct("<InstallExecuteSequence " + std::string(attributes) + ">" +
                           std::string(children) + "</InstallExecuteSequence>");
    }
};

TEST_F(CInstallMtElementTest, HoldsGroupsAndConditions) {
    const XmlDocumentPtr document = makeDocument();
    ASSERT_TRUE(parseDocument(*document, L"<InstallExecuteSequence/>"));
    const CInstallMtElement element(*getRootElement(*document), context);

    EXPECT_THAT(allowedChildren(element),
                ElementsAre(L"Condition", L"Feature", L"FeatureRef", L"Fragment", L"FragmentRef"));
}

TEST_F(CInstallMtElementTest, StandsForNoOtherElement) {
    const XmlDocumentPtr document = makeDocument();
    ASSERT_TRUE(parseDocument(*document, L"<Feature Id='F'/>"));
    const XmlHandlePtr node = getRootElement(*document);

    EXPECT_EQ(thrownBy([&] { CInstallMtElement(*node, context); }),
              L"Create element error:Feature element is not InstallExecuteSequence");
}

TEST_F(CInstallMtElementTest, EmptyOneSucceedsInSilence) {
    ASSERT_TRUE(loadSequence("", ""));

    for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UNINSTALL, RUNMODE_UPGRADE})
        EXPECT_EQ(run(mode), 0);

    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CInstallMtElementTest, HasNoModesOfItsOwn) {
    ASSERT_TRUE(loadSequence("On='uninstall' Vital='no' Path='[none]'",
                             "<Fragment><Caution Title='a'/></Fragment>"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"a"));
}

TEST_F(CInstallMtElementTest, RefusesActionsAndComponents) {
    for (const std::string name : {"Component", "ComponentRef", "Caution", "File", "Directory",
                                   "InstallExecuteSequence", "fragment"}) {
        ASSERT_TRUE(loadSequence("Id='S'", "<" + name + " Id='X' Title='a'/>"));
        EXPECT_EQ(run(), -1);
        EXPECT_EQ(errorMessage(), L"(InstallExecuteSequence,S) has a illegal child element(" +
                                      std::wstring(name.begin(), name.end()) + L")");
        context.unload();
    }
    EXPECT_THAT(observer.updates, IsEmpty());
}

}  // namespace
