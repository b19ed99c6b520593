#include "engine/CContext.h"

#include <gmock/gmock.h>

#include <cstring>

#include "engine/CProductElement.h"
#include "support/ClassLayout.h"
#include "support/FakeCall.h"
#include "support/Heard.h"
#include "support/ScriptTest.h"
#include "system/TextCalls.h"

using testing::ElementsAre;

namespace {

class CContextTest : public ScriptTest {
protected:
    std::wstring variable(const wchar_t* name) {
        std::wstring value = L"untouched";
        context.getVariable(value, name);
        return value;
    }

    static constexpr char stringVariable[] = "<Variable Id='V' Type='string' Value='v'/>";
};

TEST_F(CContextTest, HasTheLayoutThatHostsAreBuiltWith) {
    EXPECT_EQ(slotOf(&IterfaceContext::load), 0u);
    EXPECT_EQ(slotOf(&IterfaceContext::unload), 1u);
    EXPECT_EQ(slotOf(&IterfaceContext::getProduct), 2u);
    EXPECT_EQ(slotOf(&IterfaceContext::getVariable), 3u);
    EXPECT_EQ(slotOf(&IterfaceContext::getReservedText), 4u);
    const IterfaceContext& shared = context;
    EXPECT_EQ(offsetIn(shared, shared.lastError), 8);
    EXPECT_EQ(offsetIn(shared, shared.runMode), 40);
    EXPECT_EQ(sizeof shared.runMode, 4u);
}

TEST_F(CContextTest, HoldsDocumentProductAndVariablesInTheOrderOfTheirMaking) {
    auto& document = memberAt<XmlDocumentPtr>(context, sizeof(IterfaceContext));
    auto& product = memberAt<CProductElement*>(context, sizeof(IterfaceContext) + 8);
    auto& variables = memberAt<std::vector<CVariablePtr>>(context, sizeof(IterfaceContext) + 16);
    EXPECT_EQ(document, nullptr);
    EXPECT_EQ(product, nullptr);
    EXPECT_TRUE(variables.empty());

    ASSERT_TRUE(loadProduct("", stringVariable));

    EXPECT_STREQ(getElementName(getRootElement(*document).get()).get(), L"Root");
    EXPECT_EQ(product, context.getProduct());
    std::vector<std::wstring> names;
    for (const CVariablePtr& made : variables)
        names.push_back(made->getName());
    EXPECT_THAT(names, ElementsAre(L"OS_BIT", L"OS_MAJOR_VERSION", L"OS_MINOR_VERSION", L"V"));
}

TEST_F(CContextTest, RunModesHaveTheNumbersThatHostsWrite) {
    EXPECT_EQ(RUNMODE_INSTALL, 0);
    EXPECT_EQ(RUNMODE_UNINSTALL, 1);
    EXPECT_EQ(RUNMODE_UPGRADE, 2);
}

TEST_F(CContextTest, GivesTheRunModeThatTheHostWrote) {
    context.runMode = 77;

    EXPECT_EQ(context.getRunMode(), 77);
}

TEST_F(CContextTest, BeginsWithTheRunModeThatItsMemoryHeld) {
    alignas(CContext) unsigned char memory[sizeof(CContext)];
    std::memset(memory, 0xA5, sizeof memory);
    auto* const made = new (memory) CContext;

    EXPECT_EQ(static_cast<uint32_t>(made->runMode), 0xA5A5A5A5);
    made->~CContext();
}

TEST_F(CContextTest, NothingThatIsDoneWithAScriptChangesTheRunMode) {
    constexpr char sequence[] =
        "<Directory Id='D' Path='C:\\d'/><InstallExecuteSequence><Fragment>"
        "<Caution Title='[D]'/></Fragment></InstallExecuteSequence>";
    std::wstring text;
    for (const int32_t mode : {77, -1, int32_t{RUNMODE_UNINSTALL}}) {
        context.runMode = mode;
        EXPECT_FALSE(load("<Root/>"));
        EXPECT_EQ(context.runMode, mode) << "after a failed load";
        EXPECT_TRUE(loadProduct(sequence, stringVariable));
        EXPECT_EQ(context.runMode, mode) << "after a load";
        EXPECT_TRUE(context.getVariable(text, L"V"));
        EXPECT_TRUE(context.getProduct()->getDirectory(text, L"D", &context));
        EXPECT_EQ(context.runMode, mode) << "after questions";
        EXPECT_EQ(context.getProduct()->run(&context), 0);
        EXPECT_EQ(context.runMode, mode) << "after a run";
        EXPECT_TRUE(context.unload());
        EXPECT_EQ(context.runMode, mode) << "after unload";
        EXPECT_TRUE(loadProduct(""));
        EXPECT_EQ(context.getProduct()->run(&context), -1);
        EXPECT_EQ(context.runMode, mode) << "after a failed run";
        context.unload();
    }
}

TEST_F(CContextTest, LastErrorIsHandedOutAsACopy) {
    context.lastError = L"failure";

    const std::wstring copy = context.getLastError();
    context.lastError = L"other";

    EXPECT_EQ(copy, L"failure");
}

TEST_F(CContextTest, FreshContextIsEmpty) {
    EXPECT_EQ(context.getProduct(), nullptr);
    EXPECT_EQ(context.getLastError(), L"");
    EXPECT_EQ(context.findVariable(L"OS_BIT"), nullptr);
}

TEST_F(CContextTest, FreshContextUnloadsToNothing) {
    context.lastError = L"before";

    EXPECT_TRUE(context.unload());
    EXPECT_TRUE(context.unload());

    EXPECT_EQ(context.getProduct(), nullptr);
    EXPECT_EQ(context.getLastError(), L"before");
}

TEST_F(CContextTest, LoadsAScriptWhateverItsRootIsCalled) {
    ASSERT_TRUE(load("<Anything><Product/></Anything>"));

    EXPECT_NE(context.getProduct(), nullptr);
    EXPECT_EQ(context.getLastError(), L"");
}

TEST_F(CContextTest, LoadsAScriptOnce) {
    ASSERT_TRUE(loadProduct("", stringVariable));
    IterfaceProduct* const product = context.getProduct();

    EXPECT_FALSE(loadProduct(""));

    EXPECT_EQ(context.getLastError(), L"It have already loaded.");
    EXPECT_EQ(context.getProduct(), product);
    EXPECT_EQ(variable(L"V"), L"v");
}

TEST_F(CContextTest, LoadedScriptStaysWhenTheNextOneIsMissing) {
    ASSERT_TRUE(loadProduct(""));

    EXPECT_FALSE(context.load(folder.path(L"absent.xml").c_str()));

    EXPECT_EQ(context.getLastError(), L"It have already loaded.");
    EXPECT_NE(context.getProduct(), nullptr);
}

TEST_F(CContextTest, FileThatCannotBeReadFailsWithoutAText) {
    context.lastError = L"before";

    EXPECT_FALSE(context.load(folder.path(L"absent.xml").c_str()));
    EXPECT_FALSE(load("<Root><Product>"));
    EXPECT_FALSE(load(""));

    EXPECT_EQ(context.getLastError(), L"before");
    EXPECT_EQ(context.getProduct(), nullptr);
}

TEST_F(CContextTest, UnreadableFileMakesNoVariables) {
    EXPECT_FALSE(load("<Root><Product>"));

    EXPECT_EQ(context.findVariable(L"OS_BIT"), nullptr);
}

TEST_F(CContextTest, DocumentWithoutARootFails) {
    EXPECT_FALSE(load("<?xml version='1.0'?><!-- nothing -->"));

    EXPECT_EQ(context.getLastError(), L"There is no root element.");
    EXPECT_EQ(context.getProduct(), nullptr);
    EXPECT_EQ(context.findVariable(L"OS_BIT"), nullptr);
}

TEST_F(CContextTest, ScriptNeedsAProductRightUnderItsRoot) {
    for (const char* script : {"<Root/>", "<Root><product/></Root>", "<Root><Products/></Root>",
                               "<Product/>", "<Root><Group><Product/></Group></Root>"}) {
        SCOPED_TRACE(script);
        context.lastError.clear();

        EXPECT_FALSE(load(script));

        EXPECT_EQ(context.getLastError(), L"There is no Product element.");
        EXPECT_EQ(context.getProduct(), nullptr);
    }
}

TEST_F(CContextTest, FaultOfAVariableIsToldBeforeThatOfTheProduct) {
    EXPECT_FALSE(load("<Root><Variable Id='V' Type='string'/></Root>"));

    EXPECT_EQ(context.getLastError(),
              L"Create Element error:(Variable,V) cant get the require explicit Valueattribute.");
}

TEST_F(CContextTest, FailedLoadTakesItsVariablesWithIt) {
    EXPECT_FALSE(load("<Root><Variable Id='V' Type='string' Value='v'/></Root>"));

    EXPECT_EQ(context.findVariable(L"OS_BIT"), nullptr);
    EXPECT_EQ(context.findVariable(L"V"), nullptr);
    EXPECT_EQ(context.getLastError(), L"There is no Product element.");
}

TEST_F(CContextTest, FailedLoadLeavesTheContextReadyForAnother) {
    EXPECT_FALSE(load("<Root/>"));

    EXPECT_TRUE(loadProduct("", stringVariable));

    EXPECT_EQ(variable(L"V"), L"v");
}

TEST_F(CContextTest, SuccessKeepsTheTextOfAnEarlierFailure) {
    EXPECT_FALSE(load("<Root/>"));
    EXPECT_TRUE(loadProduct("", stringVariable));
    EXPECT_EQ(variable(L"V"), L"v");

    EXPECT_EQ(context.getLastError(), L"There is no Product element.");
}

TEST_F(CContextTest, ProductThatCannotBeMadeFailsTheLoad) {
    FakeCall<textCalls, &TextCalls::MultiByteToWideChar> convert(
        [&](auto page, auto flags, const char* text, auto... rest) {
            return std::string_view(text) == "Product" ? 0
                                                       : convert.real(page, flags, text, rest...);
        });

    EXPECT_FALSE(loadProduct(""));

    EXPECT_EQ(context.getLastError(), L"Create Element error:Fail to get element name.");
    EXPECT_EQ(context.getProduct(), nullptr);
    EXPECT_EQ(context.findVariable(L"OS_BIT"), nullptr);
}

TEST_F(CContextTest, FirstOfSeveralProductsCounts) {
    constexpr char products[] =
        "<Root><Product><InstallExecuteSequence><Fragment><Caution Title='first'/></Fragment>"
        "</InstallExecuteSequence></Product>"
        "<Product><InstallExecuteSequence><Fragment><Caution Title='second'/></Fragment>"
        "</InstallExecuteSequence></Product></Root>";
    ASSERT_TRUE(load(products));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"first"));
}

TEST_F(CContextTest, OtherElementsUnderTheRootAreIgnored) {
    EXPECT_TRUE(load("<Root>text<Unknown/><!-- note --><File/><Product/><Caution/></Root>"));

    EXPECT_EQ(context.getLastError(), L"");
}

TEST_F(CContextTest, ProductMayComeBeforeItsVariables) {
    ASSERT_TRUE(load("<Root><Product/><Variable Id='V' Type='string' Value='v'/></Root>"));

    EXPECT_EQ(variable(L"V"), L"v");
}

TEST_F(CContextTest, ScriptWithoutASequenceLoads) {
    EXPECT_TRUE(load("<Root><Product/></Root>"));

    EXPECT_EQ(context.getLastError(), L"");
}

TEST_F(CContextTest, UnloadEmptiesTheContextButForItsLastError) {
    ASSERT_TRUE(loadProduct("", stringVariable));
    context.lastError = L"before";

    EXPECT_TRUE(context.unload());
    EXPECT_EQ(context.getProduct(), nullptr);
    EXPECT_EQ(context.findVariable(L"V"), nullptr);
    EXPECT_EQ(context.findVariable(L"OS_BIT"), nullptr);
    EXPECT_EQ(context.getLastError(), L"before");
    EXPECT_TRUE(context.unload());
}

TEST_F(CContextTest, LoadsOneScriptAfterTheOther) {
    ASSERT_TRUE(loadProduct("<Fragment Id='A'/>", stringVariable));
    ASSERT_NE(context.findElementById(L"Fragment", L"A"), nullptr);
    context.unload();

    ASSERT_TRUE(loadProduct("<Fragment Id='B'/>", "<Variable Id='W' Type='string' Value='w'/>"));

    EXPECT_EQ(context.findVariable(L"V"), nullptr);
    EXPECT_EQ(variable(L"W"), L"w");
    EXPECT_EQ(context.findElementById(L"Fragment", L"A"), nullptr);
    EXPECT_NE(context.findElementById(L"Fragment", L"B"), nullptr);
}

TEST_F(CContextTest, ReservedTextIsEmptyInAnyState) {
    EXPECT_EQ(context.getReservedText(), L"");
    EXPECT_FALSE(load("<Root/>"));
    EXPECT_EQ(context.getReservedText(), L"");
    ASSERT_TRUE(loadProduct("", stringVariable));
    EXPECT_EQ(context.getReservedText(), L"");
    context.unload();
    EXPECT_EQ(context.getReservedText(), L"");
}

TEST_F(CContextTest, UnknownVariableLeavesTheHostsText) {
    ASSERT_TRUE(loadProduct("", stringVariable));

    for (const wchar_t* name : {L"W", L"v", L"VV", L""}) {
        std::wstring value = L"untouched";
        EXPECT_FALSE(context.getVariable(value, name));
        EXPECT_EQ(value, L"untouched");
        EXPECT_EQ(context.getLastError(), name + std::wstring(L" variable is no exist."));
    }
}

TEST_F(CContextTest, FreshContextHasNoVariableToGive) {
    std::wstring value;

    EXPECT_FALSE(context.getVariable(value, L"OS_BIT"));

    EXPECT_EQ(context.getLastError(), L"OS_BIT variable is no exist.");
}

TEST_F(CContextTest, GivesAStringVariable) {
    ASSERT_TRUE(loadProduct("", "<VariableConst Id='V' Type='string' Value='a b'/>"));
    std::wstring value = L"old";

    EXPECT_TRUE(context.getVariable(value, L"V"));

    EXPECT_EQ(value, L"a b");
    EXPECT_EQ(context.getLastError(), L"");
}

TEST_F(CContextTest, IntegerVariablesHaveNoTextToGive) {
    ASSERT_TRUE(loadProduct("", "<Variable Id='N' Type='int' Value='7'/>"));

    for (const wchar_t* name : {L"N", L"OS_BIT", L"OS_MAJOR_VERSION", L"OS_MINOR_VERSION"}) {
        context.lastError.clear();
        std::wstring value = L"untouched";
        EXPECT_FALSE(context.getVariable(value, name));
        EXPECT_EQ(value, L"untouched");
        EXPECT_EQ(context.getLastError(), L"It doesn't support getString method.");
    }
}

TEST_F(CContextTest, DirectoriesAreAnsweredOnlyWhileAScriptIsLoaded) {
    std::wstring path;
    EXPECT_FALSE(context.getDirectory(path, L"D"));

    ASSERT_TRUE(loadProduct("<Directory Id='D' Path='C:\\a'/>"));

    EXPECT_TRUE(context.getDirectory(path, L"D"));
    EXPECT_EQ(path, L"C:\\a\\");
}

}  // namespace
