#include <gmock/gmock.h>

#include <memory>
#include <new>
#include <optional>

#include "FailingAllocation.h"
#include "elements/ElementFactory.h"
#include "elements/raw_installerXML.h"
#include "engine/CContext.h"
#include "expression/CExpression.h"
#include "logging/Log.h"
#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/TestFolder.h"
#include "support/Text.h"
#include "system/Exhaustion.h"
#include "system/FileVersion.h"
#include "system/HexText.h"
#include "system/PathText.h"
#include "system/TextConversion.h"
#include "system/TextParsing.h"
#include "system/VersionCalls.h"

namespace {

constexpr char script[] =
    "<Root><Variable Id='V' Type='string' Value='v'/><Product>"
    "<Directory Id='D' Path='C:\\temz-tests'><Component Id='C'/></Directory>"
    "<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>"
    "<Fragment><Caution Title='[D]#V'/></Fragment></InstallExecuteSequence></Product></Root>";

TEST(AllocationTest, FactoryGivesNull) {
    const FailingAllocation failing;
    EXPECT_EQ(CreateContextObject(), nullptr);
}

TEST(AllocationTest, TextHelpersGiveNull) {
    const uint8_t byte = 1;
    std::unique_ptr<uint8_t[]> bytes;
    size_t count = 0;
    const wchar_t* const delimiters[] = {L"=", L"+", L"-", L"*"};
    const wchar_t* rest = nullptr;
    int32_t index = 0;

    const FailingAllocation failing;

    EXPECT_EQ(toWideText("a"), nullptr);
    EXPECT_EQ(toNarrowText(L"a"), nullptr);
    EXPECT_EQ(roundTripWideText(L"a"), nullptr);
    EXPECT_EQ(ansiToUtf8("a"), nullptr);
    EXPECT_EQ(joinPath(L"a", L"b"), nullptr);
    EXPECT_EQ(parentDirectory(L"a\\b"), nullptr);
    EXPECT_EQ(bytesToHexText(&byte, 1), nullptr);
    EXPECT_FALSE(hexTextToBytes("00", bytes, count));
    EXPECT_EQ(nextPiece(L"a", delimiters, 4, rest, index), nullptr);
}

// What is behind a block is looked at when it is released.
TEST(AllocationTest, TextHelpersStayWithinTheirBlocks) {
    const uint8_t data[] = {0x01, 0xAB, 0xFF};
    std::unique_ptr<uint8_t[]> bytes;
    size_t count = 0;
    const wchar_t* const delimiters[] = {L"=", L"+", L"-", L"*"};
    const wchar_t* rest = nullptr;
    int32_t index = 0;

    EXPECT_STREQ(toWideText("text").get(), L"text");
    EXPECT_STREQ(toNarrowText(L"text").get(), "text");
    EXPECT_STREQ(roundTripWideText(L"text").get(), L"text");
    EXPECT_STREQ(ansiToUtf8("text").get(), "text");
    EXPECT_STREQ(joinPath(L"text", L"text").get(), L"text\\text");
    EXPECT_STREQ(parentDirectory(L"text\\text").get(), L"text");
    EXPECT_STREQ(bytesToHexText(data, sizeof data).get(), "01ABFF");
    EXPECT_TRUE(hexTextToBytes("01ABFF", bytes, count));
    EXPECT_STREQ(nextPiece(L"text=", delimiters, 4, rest, index).get(), L"text");
}

TEST(AllocationTest, HandlesAreNull) {
    const TestFolder folder;
    const XmlDocumentPtr document = openDocument(folder.write(L"a.xml", script).c_str());
    const XmlHandlePtr root = getRootElement(*document);
    const XmlHandlePtr product = getFirstChildElementNamed(root.get(), L"Product");

    const FailingAllocation failing;

    EXPECT_EQ(getRootElement(*document), nullptr);
    EXPECT_EQ(getFirstChildElement(root.get()), nullptr);
    EXPECT_EQ(getNextSiblingElement(product.get()), nullptr);
    EXPECT_EQ(getParentNode(product.get()), nullptr);
    EXPECT_EQ(asElement(product.get()), nullptr);
    EXPECT_EQ(copyHandle(*product), nullptr);
    EXPECT_EQ(getElementName(product.get()), nullptr);
    EXPECT_EQ(findElementRecursive(L"Directory", L"Id", L"D", root.get()), nullptr);
}

TEST(AllocationTest, DocumentIsNullWhereverMemoryEnds) {
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.xml", script);

    bool failed = true;
    for (size_t succeeding = 0; failed; ++succeeding) {
        const FailingAllocation failing(succeeding);
        const XmlDocumentPtr document = openDocument(path.c_str());
        failed = failing.hasFailed();
        EXPECT_EQ(document == nullptr, failed) << succeeding;
    }
}

TEST(AllocationTest, ReferenceTellsThatMemoryIsShort) {
    const TestFolder folder;
    CContext context;
    ASSERT_TRUE(context.load(folder.write(L"a.xml", script).c_str()));
    ASSERT_NE(context.findElementById(L"Component", L"C"), nullptr);

    std::wstring message;
    try {
        const FailingAllocation failing(0, 1);
        createRefMotionElement(L"ComponentRef", L"C", context);
    } catch (const std::wstring& thrown) {
        message = thrown;
    }

    EXPECT_EQ(message, L"Insufficient memory.");
}

TEST(AllocationTest, ExpressionTellsThatMemoryIsShortWhereverItEnds) {
    const TestFolder folder;
    CContext context;
    ASSERT_TRUE(context.load(folder.write(L"a.xml", script).c_str()));
    CExpression expression;

    bool failed = true;
    for (size_t succeeding = 0; failed; ++succeeding) {
        std::wstring message;
        const FailingAllocation failing(succeeding, 1);
        try {
            EXPECT_TRUE(expression.evaluate(L"( 5 G 3 ) AND !!V", context));
        } catch (const std::wstring& thrown) {
            message = thrown;
        }
        failed = failing.hasFailed();
        EXPECT_EQ(message, failed ? L"Insufficient memory." : L"") << succeeding;
    }
}

TEST(AllocationTest, ExpressionReleasesWhatAFailureLeftOnItsStacks) {
    const TestFolder folder;
    CContext context;
    ASSERT_TRUE(context.load(folder.write(L"a.xml", script).c_str()));
    const size_t before = liveAllocations();
    {
        CExpression expression;
        expression.evaluate(L"1", context);
        const size_t whenUsed = liveAllocations();
        for (const wchar_t* failing : {L"( V AND ( 1 OR ! ! absent", L"1 )", L"1 AND 2 = 3 = 4"}) {
            EXPECT_THROW(expression.evaluate(failing, context), std::wstring);
            EXPECT_GT(liveAllocations(), whenUsed) << failing;
            expression.evaluate(L"1", context);
            EXPECT_EQ(liveAllocations(), whenUsed) << failing;
        }
    }
    EXPECT_EQ(liveAllocations(), before);
}

TEST(AllocationTest, LogLineIsWrittenWithoutMemory) {
    const LogFile log;
    std::optional<CLogLine> line(std::in_place);
    logWriter.open(ERROR, *line) << "kept";
    {
        const FailingAllocation failing;
        line.reset();
    }
    EXPECT_THAT(log.lines(), testing::ElementsAre("[ERROR] kept"));
}

TEST(AllocationTest, LogLineIsSilentlyWithoutThePiecesForWhichThereIsNoMemory) {
    const LogFile log;
    const std::string large(1000, 'x');
    const std::wstring wide(1000, L'x');
    std::optional<CLogLine> line(std::in_place);
    logWriter.open(ERROR, *line) << "kept";
    {
        const FailingAllocation failing;
        *line << large.c_str() << wide << 1;
    }
    line.reset();
    EXPECT_THAT(log.lines(), testing::ElementsAre("[ERROR] keptnull1"));
}

// Wherever memory ends, a load fails or tells so by std::bad_alloc, and the context can be used on.
TEST(AllocationTest, ContextSurvivesWhereverMemoryEnds) {
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.xml", script);
    CContext context;

    bool failed = true;
    for (size_t succeeding = 0; failed; ++succeeding) {
        bool loaded = false;
        const FailingAllocation failing(succeeding);
        try {
            loaded = context.load(path.c_str());
            context.runMode = RUNMODE_INSTALL;
            if (loaded)
                context.getProduct()->run(&context);
        } catch (const std::bad_alloc&) {
        }
        failed = failing.hasFailed();
        context.unload();
    }

    EXPECT_TRUE(context.load(path.c_str()));
    EXPECT_EQ(context.getProduct()->run(&context), 0);
}

TEST(AllocationTest, InsufficientMemoryIsSaidWithoutMemoryTimeAndAgain) {
    for (int i = 0; i < 3; ++i) {
        std::optional<FailingAllocation> failing(std::in_place);
        const InsufficientMemory message;
        failing.reset();
        EXPECT_EQ(message, std::wstring(L"Insufficient memory."));
    }
}

// What is behind the document can't be had in part.
TEST(AllocationTest, LoadThatRunsShortLeavesNothingAndSaysSo) {
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.xml", script);
    const size_t before = allocationsSoFar().allocations;
    ASSERT_TRUE(openDocument(path.c_str()));
    const size_t ofDocument = allocationsSoFar().allocations - before;
    CContext context;

    bool loaded = false;
    size_t succeeding = ofDocument;
    for (; !loaded && !HasFailure(); ++succeeding) {
        context.lastError.clear();
        bool threw = false;
        bool failed = false;
        {
            const FailingAllocation failing(succeeding);
            try {
                loaded = context.load(path.c_str());
            } catch (const std::bad_alloc&) {
                threw = true;
            }
            failed = failing.hasFailed();
        }
        EXPECT_NE(loaded, failed) << succeeding;
        EXPECT_TRUE(loaded || threw || !context.lastError.empty()) << succeeding;
        EXPECT_EQ(context.getProduct() != nullptr, loaded) << succeeding;
    }
    EXPECT_GT(succeeding, ofDocument + 10);
}

// What a host that forgets to unload gets: only the object itself and the long text are released.
TEST(AllocationTest, FreedContextLeavesItsScriptAllocated) {
    const TestFolder folder;
    IterfaceContext* context = CreateContextObject();
    ASSERT_TRUE(context->load(folder.write(L"a.xml", script).c_str()));
    context->lastError = L"a text that is too long to be kept within the string itself";
    const IterfaceProduct* const product = context->getProduct();
    const size_t before = liveAllocations();

    FreeContextObject(context);

    EXPECT_EQ(before - liveAllocations(), 2u);
    delete product;
}

TEST(AllocationTest, DestroyedContextUnloadsItsScript) {
    const TestFolder folder;
    const std::wstring path = folder.write(L"a.xml", "<Root><Product><Fragment/></Product></Root>");
    const size_t before = liveAllocations();
    {
        CContext context;
        ASSERT_TRUE(context.load(path.c_str()));
        ASSERT_GT(liveAllocations(), before);
    }
    EXPECT_EQ(liveAllocations(), before);
}

TEST(AllocationTest, VersionBlockThatCannotBeHadCountsAsUnreadable) {
    const LogFile log;
    const FakeCall<versionCalls, &VersionCalls::GetFileVersionInfoSizeW> size(
        [](auto...) { return 64; });
    const FakeCall<versionCalls, &VersionCalls::GetFileVersionInfoW> info(
        [](auto...) { return TRUE; });
    uint64_t version = 0;
    {
        const FailingAllocation failing(0, 1);
        EXPECT_FALSE(getFileVersion(L"a.dll", version));
    }

    EXPECT_EQ(info.count, 0);
    EXPECT_THAT(log.lines(), testing::ElementsAre("[WARNNING] Failed to GetFileVersionInfo"));
}

// A block that was read, but not as it should, is left to itself.
TEST(AllocationTest, VersionBlockIsReleasedOnlyAfterASuccess) {
    VS_FIXEDFILEINFO fixed{};
    BOOL readable = TRUE;
    BOOL hasRoot = TRUE;
    const FakeCall<versionCalls, &VersionCalls::GetFileVersionInfoSizeW> size(
        [](auto...) { return 64; });
    const FakeCall<versionCalls, &VersionCalls::GetFileVersionInfoW> info(
        [&](auto...) { return readable; });
    const FakeCall<versionCalls, &VersionCalls::VerQueryValueW> query(
        [&](const void*, const wchar_t*, void** root, UINT*) {
            *root = &fixed;
            return hasRoot;
        });
    const auto leftBehind = [] {
        uint64_t version = 0;
        const size_t before = liveAllocations();
        getFileVersion(L"a.dll", version);
        return liveAllocations() - before;
    };

    EXPECT_EQ(leftBehind(), 0u);
    hasRoot = FALSE;
    EXPECT_EQ(leftBehind(), 1u);
    readable = FALSE;
    EXPECT_EQ(leftBehind(), 1u);
}

class LeakTest : public testing::Test {
protected:
    /// What each further use of a script leaves allocated.
    size_t leftBy(const std::string& xml) {
        const std::wstring path = folder.write(L"a.xml", xml);
        use(path);
        const size_t before = liveAllocations();
        use(path);
        return liveAllocations() - before;
    }

    TestFolder folder;

private:
    void use(const std::wstring& path) {
        IterfaceContext* context = CreateContextObject();
        for (int pass = 0; pass < 2; ++pass) {
            if (!context->load(path.c_str()))
                continue;
            std::wstring directory;
            context->getProduct()->getDirectory(directory, L"D", context);
            context->getProduct()->getDirectory(directory, L"absent", context);
            context->runMode = RUNMODE_INSTALL;
            context->getProduct()->run(context);
            context->unload();
        }
        FreeContextObject(context);
    }
};

// The array that held the variables outlives the context, by design.
constexpr size_t variableArray = 1;

TEST_F(LeakTest, ScriptLeavesNothing) {
    EXPECT_EQ(leftBy("<Root><Product><Directory Id='D' Path='C:\\x'><Component Id='C'/></Directory>"
                     "<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>"
                     "</InstallExecuteSequence></Product></Root>"),
              variableArray);
}

TEST_F(LeakTest, ExpressionsLeaveNothingAlsoWhenTheyFail) {
    const std::string search =
        "<FileSearch Path='" + narrow(folder.path()) + "' Name='a.xml' Expression='";
    for (const std::string expression : {"1 E ( 0 OR 1 )", "1 E ( 0 OR", "1 E ( 0 OR Missing )"})
        for (const std::string& element :
             {"<Condition Expression='" + expression + "'/>", search + expression + "'/>"})
            EXPECT_EQ(leftBy("<Root><Product><InstallExecuteSequence><Fragment>" + element +
                             "</Fragment></InstallExecuteSequence></Product></Root>"),
                      variableArray)
                << element;
}

TEST_F(LeakTest, FailedLoadsLeaveNothing) {
    EXPECT_EQ(leftBy("<Root><Variable Id='V' Type='string'/><Product/></Root>"), variableArray);
    EXPECT_EQ(leftBy("<Root><Variable Id='V' Type='other' Value=''/></Root>"), variableArray);
    EXPECT_EQ(leftBy("<Root>"), 0u);
}

TEST_F(LeakTest, FailedRunsLeaveNothing) {
    EXPECT_EQ(leftBy("<Root><Product><Directory Id='D' Path='[D]'/><InstallExecuteSequence>"
                     "<Fragment><Caution Title='[D]'/></Fragment></InstallExecuteSequence>"
                     "</Product></Root>"),
              variableArray);
}

}  // namespace
