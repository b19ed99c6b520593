#include "elements/ElementFactory.h"

#include <gmock/gmock.h>

#include "engine/CProductElement.h"
#include "logging/IterfaceObserver.h"
#include "motion/CCautionMtElement.h"
#include "motion/CComponentMtElement.h"
#include "motion/CConditionMtElement.h"
#include "motion/CCopyFileMtElement.h"
#include "motion/CFeatureMtElement.h"
#include "motion/CFileMtElement.h"
#include "motion/CFileSearchMtElement.h"
#include "motion/CFragmentMtElement.h"
#include "motion/CInstallMtElement.h"
#include "support/ChildProcess.h"
#include "support/Heard.h"
#include "support/ProbeElement.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

using testing::ElementsAre;
using testing::Pair;

namespace {

/// A product with an element of that name that can't be made, and why not.
struct Fault {
    const char* product;
    const wchar_t* name;
    const wchar_t* message;
};

class ElementFactoryTest : public ScriptTest {
protected:
    /// The element of that name with the id "x".
    XmlHandlePtr nodeOf(const wchar_t* name) { return context.findElementById(name, L"x"); }

    /// Why CreateElement can't make the element; "<made>" when it can.
    std::wstring elementError(const XmlHandle* node) {
        return CreateElement(node, context) ? L"<made>" : getLastCreateError();
    }
    std::wstring motionError(const XmlHandle* node) {
        return CreateMotionElement(node, context, nullptr) ? L"<made>" : getLastCreateError();
    }

    std::wstring attributeOf(const CElement& element, const wchar_t* name) {
        AttributeRecord record;
        return element.getAttribute(name, record) ? record.value : L"<none>";
    }
};

// What no element is made of

TEST_F(ElementFactoryTest, NullNodeIsReported) {
    EXPECT_EQ(elementError(nullptr), L"Create Element error:The parameter node is NULL.");
    EXPECT_EQ(motionError(nullptr), L"Create Motion Element error:The parameter node is NULL.");
}

TEST_F(ElementFactoryTest, NodeThatIsNoElementIsReported) {
    const XmlDocumentPtr document = makeDocument();
    ASSERT_TRUE(parseDocument(*document, L"<Root/>"));
    const XmlHandlePtr node = getParentNode(getRootElement(*document).get());

    EXPECT_EQ(elementError(node.get()), L"Create Element error:Fail to get element name.");
    EXPECT_EQ(motionError(node.get()), L"Create Motion Element error:Fail to get element name.");
}

TEST_F(ElementFactoryTest, NamesThatOnlyComeNearOneAreUndefined) {
    for (const std::string name :
         {"file", "FILE", "Fil", "Files", "FileX", "Featur", "Componentref", "ComponentRefs",
          "ShellExecute", "directory", "Directorys", "directoryRef", "variable", "VariableConsts",
          "product", "Root", "InstallSequence"}) {
        SCOPED_TRACE(name);
        context.unload();
        ASSERT_TRUE(loadProduct("<" + name + " Id='x' Path='p' Name='n' Source='s'/>"));
        const std::wstring wide(name.begin(), name.end());
        const XmlHandlePtr node = nodeOf(wide.c_str());

        EXPECT_EQ(motionError(node.get()),
                  L"Create Motion Element error:" + wide + L" element name is undefined.");
        EXPECT_EQ(elementError(node.get()), L"Create Element error:Create Motion Element error:" +
                                                wide + L" element name is undefined.");
    }
}

TEST_F(ElementFactoryTest, ElementsThatAreLookedUpAreNoMotionElements) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='x' Path='p'/><DirectoryRef Id='x'/><Product Id='x'/>"
                    "<Variable Id='x' Type='int' Value='1'/>"
                    "<VariableConst Id='x' Type='int' Value='1'/>"));
    for (const std::wstring name :
         {L"Directory", L"DirectoryRef", L"Product", L"Variable", L"VariableConst"}) {
        const XmlHandlePtr node = nodeOf(name.c_str());
        EXPECT_EQ(motionError(node.get()),
                  L"Create Motion Element error:" + name + L" element name is undefined.");
        EXPECT_EQ(elementError(node.get()), L"<made>");
    }
}

TEST_F(ElementFactoryTest, FaultOfAnAttributeIsReported) {
    const Fault faults[] = {
        {"<File Id='x' Source='s'/>", L"File",
         L"Create Motion Element error:(File,x) cant get the require explicit Nameattribute."},
        {"<Component><File Id='x' Name='n' Source='s'/></Component>", L"File",
         L"Create Motion Element error:(File,x) can't get Path attribute from  parent element."},
        {"<Fragment Id='x' On='[D]'/>", L"Fragment", L"Create Motion Element error:[D] mismatch."},
        {"<Variable Id='x' Type='int'/>", L"Variable",
         L"(Variable,x) cant get the require explicit Valueattribute."},
        {"<Directory Id='x'/>", L"Directory",
         L"(Directory,x) can't get Path attribute from  parent element."},
        {"<Directory Id='x' Path=']'/>", L"Directory", L"] can't be the first"},
    };
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.product);
        context.unload();
        ASSERT_TRUE(loadProduct(fault.product));

        EXPECT_EQ(elementError(nodeOf(fault.name).get()),
                  std::wstring(L"Create Element error:") + fault.message);
    }
}

TEST_F(ElementFactoryTest, LastErrorOfAProcessIsEmptyAtFirst) {
    inFreshProcess([] { EXPECT_EQ(getLastCreateError(), L""); });
}

TEST_F(ElementFactoryTest, LastErrorStaysThroughLaterSuccesses) {
    ASSERT_TRUE(loadProduct("<Feature Id='x'/>"));
    CreateElement(nullptr, context);

    EXPECT_NE(CreateElement(nodeOf(L"Feature").get(), context), nullptr);
    EXPECT_NE(CreateMotionElement(nodeOf(L"Feature").get(), context, nullptr), nullptr);

    EXPECT_EQ(getLastCreateError(), L"Create Element error:The parameter node is NULL.");
}

// Parents

TEST_F(ElementFactoryTest, ParentThatIsGivenBecomesTheElementsParent) {
    ASSERT_TRUE(loadProduct("<Component Id='x'/><File Id='x' Name='n' Source='s'/>"));
    ProbeElement parent(*nodeOf(L"Component"), context);
    parent.hold(L"Path", L"given");

    const MotionElementPtr file = CreateMotionElement(nodeOf(L"File").get(), context, &parent);

    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->getParent(), &parent);
    EXPECT_EQ(attributeOf(*file, L"Path"), L"given");
}

TEST_F(ElementFactoryTest, WithoutAGivenParentTheXmlParentIsAsked) {
    ASSERT_TRUE(
        loadProduct("<Directory Path='d'><Component Id='x'><File Id='x' Name='n' Source='s'/>"
                    "</Component></Directory>"));

    const MotionElementPtr file = CreateMotionElement(nodeOf(L"File").get(), context, nullptr);
    const ElementPtr same = CreateElement(nodeOf(L"File").get(), context);

    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->getParent()->describe(), L"(Component,x)");
    EXPECT_EQ(attributeOf(*file, L"Path"), L"d");
    ASSERT_NE(same, nullptr);
    EXPECT_EQ(attributeOf(*same, L"Path"), L"d");
}

TEST_F(ElementFactoryTest, ReferenceTakesNoGivenParent) {
    ASSERT_TRUE(
        loadProduct("<Feature Id='x'/><FeatureRef Id='x'/>"
                    "<Fragment Id='x'/><FragmentRef Id='x'/>"));
    ProbeElement parent(*nodeOf(L"Feature"), context);
    for (const wchar_t* name : {L"FeatureRef", L"FragmentRef"}) {
        const MotionElementPtr made = CreateMotionElement(nodeOf(name).get(), context, &parent);
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(made->getParent(), nullptr);
    }
}

TEST_F(ElementFactoryTest, ComponentRefTakesThePathOfTheDirectoryThatHoldsTheDefinition) {
    ASSERT_TRUE(
        loadProduct("<Directory Path='here'><ComponentRef Id='x' Path='own'/></Directory>"
                    "<Directory Id='x' Path='there'><Component Id='x'/></Directory>"));
    ProbeElement parent(*nodeOf(L"Directory"), context);
    parent.hold(L"Path", L"given");

    const MotionElementPtr component =
        CreateMotionElement(nodeOf(L"ComponentRef").get(), context, &parent);

    ASSERT_NE(component, nullptr);
    EXPECT_EQ(attributeOf(*component, L"Path"), L"there");
    EXPECT_EQ(component->getParent()->describe(), L"(Directory,x)");
}

// References

TEST_F(ElementFactoryTest, BrokenReferencesAreReported) {
    const Fault faults[] = {
        {"<ComponentRef Id='x'/>", L"ComponentRef",
         L"(Component,x) element can't create(get the node is null)."},
        {"<FeatureRef Id='x'/><Feature Id='X'/>", L"FeatureRef",
         L"(Feature,x) element can't create(get the node is null)."},
        {"<FragmentRef Id='x'/><Feature Id='x'/><Fragment/>", L"FragmentRef",
         L"(Fragment,x) element can't create(get the node is null)."},
        {"<FragmentRef Id='x'/><Fragment Id='x' On='[D]'/>", L"FragmentRef", L"[D] mismatch."},
        {"<DirectoryRef Id='x'/>", L"DirectoryRef", L"DirectoryRef element name is undefined."},
        {"<DirectoryRef Id='x'/><Component Id='x'/>", L"DirectoryRef",
         L"DirectoryRef element name is undefined."},
    };
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.product);
        context.unload();
        ASSERT_TRUE(loadProduct(fault.product));
        const XmlHandlePtr node = nodeOf(fault.name);

        EXPECT_EQ(motionError(node.get()),
                  std::wstring(L"Create Motion Element error:") + fault.message);
        EXPECT_EQ(
            elementError(node.get()),
            std::wstring(L"Create Element error:Create Motion Element error:") + fault.message);
    }
}

TEST_F(ElementFactoryTest, ReferencesWithoutIdAreReported) {
    ASSERT_TRUE(
        loadProduct("<Feature Id='x'><ComponentRef/></Feature><Fragment Id='x'><FeatureRef/>"
                    "</Fragment><Component Id='x'><FragmentRef/></Component>"));
    for (const wchar_t* holder : {L"Feature", L"Fragment", L"Component"}) {
        const XmlHandlePtr node = getFirstChildElement(nodeOf(holder).get());
        EXPECT_EQ(motionError(node.get()),
                  L"Create Motion Element error:The name or id is NULL in createRefMotionElement.");
    }
}

TEST_F(ElementFactoryTest, DirectoryRefWithoutIdIsUndefined) {
    ASSERT_TRUE(loadProduct("<Feature Id='x'><DirectoryRef/></Feature><Directory Path='p'/>"));
    const XmlHandlePtr node = getFirstChildElement(nodeOf(L"Feature").get());

    EXPECT_EQ(elementError(node.get()),
              L"Create Element error:Create Motion Element error:DirectoryRef element name is "
              L"undefined.");
}

TEST_F(ElementFactoryTest, DirectoryRefStandsForTheDirectoryInItsPlace) {
    ASSERT_TRUE(
        loadProduct("<Directory Path='here'><DirectoryRef Id='x' Path='own'/></Directory>"
                    "<Directory Path='there'><Directory Id='x' Path='d'/></Directory>"));

    const ElementPtr directory = CreateElement(nodeOf(L"DirectoryRef").get(), context);

    ASSERT_NE(directory, nullptr);
    EXPECT_EQ(directory->describe(), L"(Directory,x)");
    EXPECT_EQ(attributeOf(*directory, L"Path"), L"there\\d");
}

TEST_F(ElementFactoryTest, AttributesOfAReferenceAreIgnored) {
    ASSERT_TRUE(loadProduct("<FragmentRef Id='x' On='uninstall'/><Fragment Id='x' On='install'/>"));

    const MotionElementPtr made =
        CreateMotionElement(nodeOf(L"FragmentRef").get(), context, nullptr);

    ASSERT_NE(made, nullptr);
    EXPECT_EQ(attributeOf(*made, L"On"), L"install");
}

TEST_F(ElementFactoryTest, ChildrenOfAReferenceAreIgnored) {
    ASSERT_TRUE(
        loadProduct("<InstallExecuteSequence><FragmentRef Id='x'><Caution Title='not'/><Bad/>"
                    "</FragmentRef></InstallExecuteSequence>"
                    "<Fragment Id='x'><Caution Title='defined'/></Fragment>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"defined"));
}

TEST_F(ElementFactoryTest, OfTwoDefinitionsWithOneIdTheFirstIsUsed) {
    ASSERT_TRUE(
        loadProduct("<Feature Id='x'/><Directory Id='x' Path='p'>"
                    "<Fragment Id='x'><Caution Title='first'/></Fragment></Directory>"
                    "<Fragment Id='x'><Caution Title='second'/></Fragment>"
                    "<InstallExecuteSequence><FragmentRef Id='x'/></InstallExecuteSequence>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"first"));
}

// No bound is set to a walk in circles: only what the walk meets ends it, here another run mode.
TEST_F(ElementFactoryTest, FragmentThatRefersToItselfIsWalkedAgainAndAgain) {
    class EndingObserver final : public IterfaceObserver {
    public:
        explicit EndingObserver(CContext& context) : context(context) {}
        void update(IterfaceProduct*) override {
            if (++updates == 300)
                context.runMode = RUNMODE_UNINSTALL;
        }
        ObserverAnswer askOnError(ErrorInfo*) override { return ANSWER_ABORT; }

        CContext& context;
        int updates = 0;
    };
    ASSERT_TRUE(
        loadProduct("<InstallExecuteSequence><Fragment Id='x' On='install'>"
                    "<Caution Title='again'/><FragmentRef Id='x'/></Fragment>"
                    "</InstallExecuteSequence>"));
    EndingObserver ending(context);
    context.runMode = RUNMODE_INSTALL;
    context.getProduct()->observer = &ending;

    EXPECT_EQ(context.getProduct()->run(&context), 0);

    EXPECT_EQ(ending.updates, 300);
}

TEST_F(ElementFactoryTest, DirectoryInAFeatureIsRejectedBeforeItIsMade) {
    ASSERT_TRUE(
        loadProduct("<InstallExecuteSequence><Feature Id='f'><Directory Id='x' Path='p'/>"
                    "</Feature></InstallExecuteSequence>"));
    CreateElement(nullptr, context);

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(), L"(Feature,f) has a illegal child element(Directory)");
    EXPECT_EQ(getLastCreateError(), L"Create Element error:The parameter node is NULL.");
}

// The steps of the factories

TEST_F(ElementFactoryTest, RefMotionElementNeedsNameAndId) {
    const std::wstring message = L"The name or id is NULL in createRefMotionElement.";
    EXPECT_EQ(thrownBy([&] { createRefMotionElement(nullptr, L"x", context); }), message);
    EXPECT_EQ(thrownBy([&] { createRefMotionElement(L"FeatureRef", nullptr, context); }), message);
}

TEST_F(ElementFactoryTest, RefMotionElementOfAnotherNameIsUndefined) {
    ASSERT_TRUE(loadProduct("<Feature Id='x'/><Directory Id='x' Path='p'/>"));
    for (const std::wstring name :
         {L"Feature", L"DirectoryRef", L"featureRef", L"FeatureRefs", L""})
        EXPECT_EQ(thrownBy([&] { createRefMotionElement(name.c_str(), L"x", context); }),
                  name + L" element undefined.");
}

TEST_F(ElementFactoryTest, RefMotionElementOfAnUnknownIdThrows) {
    ASSERT_TRUE(loadProduct("<Feature Id='x'/>"));

    EXPECT_EQ(thrownBy([&] { createRefMotionElement(L"FeatureRef", L"y", context); }),
              L"(Feature,y) element can't create(get the node is null).");
}

TEST_F(ElementFactoryTest, DirectoryRefElementKeepsItsReasonWithoutAPrefix) {
    ASSERT_TRUE(loadProduct("<Directory Id='x' Path='p'/>"));

    EXPECT_EQ(createDirectoryRefElement(L"DirectoryRef", L"y", context), nullptr);

    EXPECT_EQ(getLastCreateError(), L"(Directory,y) element can't create(get the node is null).");
}

TEST_F(ElementFactoryTest, DirectoryRefElementOfAnotherNameIsNull) {
    ASSERT_TRUE(loadProduct("<Directory Id='x' Path='p'/>"));
    CreateElement(nullptr, context);

    EXPECT_EQ(createDirectoryRefElement(L"Directory", L"x", context), nullptr);
    EXPECT_EQ(createDirectoryRefElement(L"FeatureRef", L"x", context), nullptr);

    EXPECT_EQ(getLastCreateError(), L"Create Element error:The parameter node is NULL.");
}

TEST_F(ElementFactoryTest, FinishingNothingDoesNothing) {
    ElementPtr element;
    MotionElementPtr motionElement;

    finishElement(&element, context);
    finishElement(&motionElement, context);
    finishElement(static_cast<ElementPtr*>(nullptr), context);
    finishElement(static_cast<MotionElementPtr*>(nullptr), context);

    EXPECT_EQ(element, nullptr);
    EXPECT_EQ(motionElement, nullptr);
}

class FinishElementTest : public ElementFactoryTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(loadProduct("<Feature><E Id='x' A='1'/></Feature>"));
        destroyed = 0;
        probe = new ProbeElement(L"E", L"x", context);
        element = ElementPtr(probe, {[](CElement* made) {
                                 ++destroyed;
                                 delete static_cast<ProbeElement*>(made);
                             }});
    }

    static inline int destroyed = 0;
    ProbeElement* probe = nullptr;
    ElementPtr element;
};

TEST_F(FinishElementTest, ReadsDeclaredAndThenDerivedAttributes) {
    probe->declare({{L"A", true}});
    probe->derive({{L"A", true}, {L"B", true}});
    probe->defaults = {{L"A", L"default"}, {L"B", L"default"}};

    finishElement(&element, context);

    ASSERT_EQ(element.get(), probe);
    EXPECT_THAT(probe->resolved(), ElementsAre(Pair(L"A", L"1"), Pair(L"B", L"default")));
}

TEST_F(FinishElementTest, MissingDeclaredAttributeDestroysTheElement) {
    probe->declare({{L"Absent", true}});
    probe->derive({{L"B", true}});

    EXPECT_EQ(thrownBy([&] { finishElement(&element, context); }),
              L"(E,x) cant get the require explicit Absentattribute.");

    EXPECT_EQ(element, nullptr);
    EXPECT_EQ(destroyed, 1);
}

TEST_F(FinishElementTest, MissingDerivedAttributeDestroysTheElement) {
    probe->declare({{L"A", true}});
    probe->derive({{L"B", true}});

    EXPECT_EQ(thrownBy([&] { finishElement(&element, context); }),
              L"(E,x) can't get B attribute from  parent element.");

    EXPECT_EQ(element, nullptr);
    EXPECT_EQ(destroyed, 1);
}

// The guards of the constructors

class ElementGuardTest : public ElementFactoryTest {
protected:
    void SetUp() override { ASSERT_TRUE(loadProduct("<Feature Id='x'/><Fragment Id='x'/>")); }

    /// What an element of this class throws that is made from the node of a `Fragment`.
    template <class Element>
    std::wstring thrownForFragment() {
        return thrownBy([&] { Element(*nodeOf(L"Fragment"), context); });
    }
};

TEST_F(ElementGuardTest, SequenceRejectsAnotherElement) {
    EXPECT_EQ(thrownForFragment<CInstallMtElement>(),
              L"Create element error:Fragment element is not InstallExecuteSequence");
}

TEST_F(ElementGuardTest, ContainersRejectAnotherElement) {
    EXPECT_EQ(thrownForFragment<CFeatureMtElement>(),
              L"Failed to create element(Fragment) in Feature");
    EXPECT_EQ(thrownBy([&] { CFeatureMtElement(L"Fragment", L"x", context); }),
              L"Failed to create element(Fragment) in Feature");
    EXPECT_EQ(thrownBy([&] { CFragmentMtElement(*nodeOf(L"Feature"), context); }),
              L"Failed to create element(Feature) in Fragment");
    EXPECT_EQ(thrownBy([&] { CFragmentMtElement(L"Feature", L"x", context); }),
              L"Failed to create element(Feature) in Fragment");
    EXPECT_EQ(thrownForFragment<CConditionMtElement>(),
              L"Failed to create element(Fragment) in Condition");
}

TEST_F(ElementGuardTest, ActionsRejectAnotherElement) {
    EXPECT_EQ(thrownForFragment<CFileMtElement>(), L"Failed to create element (Fragment,x)");
    EXPECT_EQ(thrownForFragment<CCautionMtElement>(), L"Failed to create element (Fragment,x)");
    EXPECT_EQ(thrownForFragment<CCopyFileMtElement>(), L"Failed to create element (Fragment,x)");
    EXPECT_EQ(thrownForFragment<CFileSearchMtElement>(), L"Failed to create element (Fragment,x)");
}

TEST_F(ElementGuardTest, ComponentTakesAnyElement) {
    EXPECT_EQ(thrownForFragment<CComponentMtElement>(), L"<nothing>");
}

}  // namespace
