#include "motion/CCopyFileMtElement.h"

#include <gmock/gmock.h>

#include "elements/ElementFactory.h"
#include "engine/CContext.h"
#include "support/AllowedChildren.h"
#include "support/LogFile.h"
#include "support/ScriptTest.h"
#include "support/Text.h"
#include "support/Thrown.h"

using testing::IsEmpty;

namespace {

class CCopyFileMtElementTest : public ScriptTest {
protected:
    bool loadFragment(const std::string& children) {
        return loadProduct("<InstallExecuteSequence><Fragment Id='F'>" + children +
                           "</Fragment></InstallExecuteSequence>");
    }
};

TEST_F(CCopyFileMtElementTest, CopiesNothingAndTellsNobody) {
    const std::wstring source = folder.write(L"a.txt", "content");
    const std::wstring target = folder.path(L"b.txt");
    ASSERT_TRUE(loadFragment("<CopyFile DestinationName='" + narrow(target) + "' SourceName='" +
                             narrow(source) + "'/>"));
    const LogFile log;

    for (const int32_t mode : {0, 1, 2, 7})
        EXPECT_EQ(run(mode), 0) << mode;

    EXPECT_EQ(readFile(source), "content");
    EXPECT_FALSE(exists(target));
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CCopyFileMtElementTest, SucceedsWithoutASource) {
    ASSERT_TRUE(loadFragment("<CopyFile DestinationName='' SourceName='C:\\absent\\a.txt'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(CCopyFileMtElementTest, LeavesTheErrorRecordAlone) {
    ASSERT_TRUE(loadProduct("<CopyFile Id='C' DestinationName='d' SourceName='s'/>"));
    const XmlHandlePtr node = context.findElementById(L"CopyFile", L"C");
    const MotionElementPtr element = CreateMotionElement(node.get(), context, nullptr);
    context.subject().setErrorText(L"before");

    EXPECT_EQ(element->execute(context), 0);

    EXPECT_EQ(errorMessage(), L"before");
}

TEST_F(CCopyFileMtElementTest, CannotBeMadeWithoutBothNames) {
    struct Row {
        const char* element;
        const wchar_t* missing;
    };
    const Row rows[] = {{"<CopyFile Id='C' SourceName='s'/>", L"DestinationName"},
                        {"<CopyFile Id='C' DestinationName='d'/>", L"SourceName"},
                        {"<CopyFile Id='C'/>", L"DestinationName"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.element);
        context.unload();
        ASSERT_TRUE(loadFragment(row.element));

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(errorMessage(),
                  std::wstring(L"Create Motion Element error:(CopyFile,C) cant get the require "
                               L"explicit ") +
                      row.missing +
                      L"attribute.(Fragment,F) cann't create child element(CopyFile)");
    }
}

TEST_F(CCopyFileMtElementTest, DeclaresItsNamesAlone) {
    ASSERT_TRUE(loadProduct(
        "<CopyFile Id='C' DestinationName='d' SourceName='s' On='uninstall' Vital='no'/>"));
    const XmlHandlePtr node = context.findElementById(L"CopyFile", L"C");
    const MotionElementPtr element = CreateMotionElement(node.get(), context, nullptr);
    std::vector<AttributeDeclaration> declared(3);
    std::vector<AttributeDeclaration> derived(3);

    element->getAttributes(declared);
    element->getDerivedAttributes(derived);

    ASSERT_EQ(declared.size(), 2u);
    EXPECT_STREQ(declared[0].name, L"DestinationName");
    EXPECT_TRUE(declared[0].required);
    EXPECT_STREQ(declared[1].name, L"SourceName");
    EXPECT_TRUE(declared[1].required);
    EXPECT_THAT(derived, IsEmpty());
    context.runMode = RUNMODE_INSTALL;
    EXPECT_TRUE(element->passesOnFilter(context));
    EXPECT_TRUE(element->isVital(context));
}

TEST_F(CCopyFileMtElementTest, HoldsNothing) {
    ASSERT_TRUE(loadFragment(
        "<CopyFile Id='C' DestinationName='d' SourceName='s'><Caution Title='a'/></CopyFile>"));
    const CCopyFileMtElement element(*context.findElementById(L"CopyFile", L"C"), context);

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(), L"(CopyFile,C) has a illegal child element(Caution)");
    EXPECT_THAT(allowedChildren(element), IsEmpty());
}

TEST_F(CCopyFileMtElementTest, StandsForNoOtherElement) {
    ASSERT_TRUE(loadProduct("<File Id='F'/>"));
    const XmlHandlePtr node = context.findElementById(L"File", L"F");

    EXPECT_EQ(thrownBy([&] { CCopyFileMtElement(*node, context); }),
              L"Failed to create element (File,F)");
}

}  // namespace
