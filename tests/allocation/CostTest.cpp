// What visits and evaluations take from the heap, and how much of it a script holds. The figures
// are the same on every machine, and no greater than what is promised here; scripts/bench.sh tells
// them.

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <algorithm>
#include <set>
#include <string>

#include "FailingAllocation.h"
#include "elements/Vocabulary.h"
#include "endurance/AnsweringMachine.h"
#include "expression/CExpression.h"
#include "support/FakeFileCalls.h"
#include "support/ScriptTest.h"
#include "support/Sweep.h"
#include "support/Text.h"

namespace {

std::string repeated(const std::string& text, size_t times) {
    std::string all;
    for (size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

/// Eight directories, each inside the one before.
std::string directories(const std::string& first, const std::string& content) {
    return "<Directory Path='" + first + "'>" + repeated("<Directory Path='a'>", 7) + content +
           repeated("</Directory>", 8);
}

class SilentObserver final : public IterfaceObserver {
    void update(IterfaceProduct*) override {}
    ObserverAnswer askOnError(ErrorInfo*) override { return ANSWER_ABORT; }
};

class CostTest : public ScriptTest {
protected:
    bool runSilently() {
        context.runMode = RUNMODE_INSTALL;
        context.getProduct()->observer = &silent;
        return context.getProduct()->run(&context) == 0;
    }

    /// Tells the figure to whoever reads the report of the tests, and holds it against the promise.
    void expectAtMost(size_t promised, size_t figure) {
        RecordProperty("figure", std::to_string(figure));
        EXPECT_LE(figure, promised);
    }

    SilentObserver silent;
};

class VisitCostTest : public CostTest {
protected:
    /// The allocations that each further element adds to a run, in a product where elements stand
    /// in place of the "$".
    size_t allocationsOfEach(const std::string& element, const std::string& product) {
        const size_t place = product.find('$');
        const auto allocationsOfRun = [&](size_t count) {
            const std::string elements = repeated(element, count);
            context.unload();
            EXPECT_TRUE(loadProduct(std::string(product).replace(place, 1, elements)));
            // What is asked once is asked in the first run.
            EXPECT_TRUE(runSilently()) << narrow(context.getProduct()->errorInfo.message);
            const size_t before = allocationsSoFar().allocations;
            EXPECT_TRUE(runSilently());
            return allocationsSoFar().allocations - before;
        };
        return allocationsOfRun(2) - allocationsOfRun(1);
    }
};

TEST_F(VisitCostTest, CautionStaysWithinItsAllocations) {
    expectAtMost(6, allocationsOfEach(
                        "<Caution Title='Please wait a moment' On='install'/>",
                        "<InstallExecuteSequence><Fragment>$</Fragment></InstallExecuteSequence>"));
}

TEST_F(VisitCostTest, ConditionStaysWithinItsAllocations) {
    expectAtMost(12,
                 allocationsOfEach(
                     "<Condition Expression='OS_BIT E 64'/>",
                     "<InstallExecuteSequence><Fragment>$</Fragment></InstallExecuteSequence>"));
}

TEST_F(VisitCostTest, FileStaysWithinItsAllocations) {
    const FakeFind find([](auto...) { return INVALID_HANDLE_VALUE; });
    const FakeCreateDirectory create([](auto...) { return TRUE; });
    const FakeCopy copy([](auto...) { return TRUE; });
    expectAtMost(15,
                 allocationsOfEach(
                     "<File Name='greeter.exe' Source='payload\\greeter.exe'/>",
                     "<Directory Path='C:\\temz-tests'><Component Id='C'>$</Component></Directory>"
                     "<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature>"
                     "</InstallExecuteSequence>"));
}

// The component's path is that of its directory, which begins with that of another.
TEST_F(VisitCostTest, ReferenceOverTwoChainsOfDirectoriesStaysWithinItsAllocations) {
    expectAtMost(60,
                 allocationsOfEach(
                     "<ComponentRef Id='C'/>",
                     directories("C:\\a", "<Directory Id='D' Path='a'/>") +
                         directories("[D]", "<Component Id='C'/>") +
                         "<InstallExecuteSequence><Feature>$</Feature></InstallExecuteSequence>"));
}

/// What a further element of a kind adds to a run, on a machine that says yes to everything.
struct KindCost {
    const char* element;
    size_t promised;
};

const KindCost kindCosts[] = {
    {"<Feature/>", 1},
    {"<FeatureRef Id='OtherFeature'/>", 2},
    {"<Fragment On='install'/>", 2},
    {"<FragmentRef Id='OtherFragment'/>", 3},
    {"<Component On='install'/>", 3},
    {"<ComponentRef Id='OtherComponent'/>", 4},
    {"<Condition Expression='1'/>", 7},
    {"<CustomAction DllFile='C:\\temz-tests\\action.dll' DllEntry='act' Return='no'/>", 15},
    {"<File Name='greeter.exe' Source='payload\\greeter.exe'/>", 15},
    {"<Shortcut Name='Greeter' Description='Greets' Target='C:\\greeter.exe'/>", 21},
    {"<ShellExcute File='C:\\greeter.exe' Return='sync'/>", 4},
    {"<ServiceControl Name='greeting' Action='stop' Wait='no'/>", 4},
    {"<CopyFile DestinationName='a' SourceName='b'/>", 2},
    {"<FileSearch Name='greeter.exe' Path='C:\\temz-tests' Expression='1'/>", 11},
    {"<RegistryKey Root='HKEY_CURRENT_USER' Key='Software\\Greeter' Action='create'/>", 8},
    {"<RegistryValue Name='Greeting' Type='REG_SZ' Value='Hello, all'/>", 13},
    {"<RemoveDirectory Path='C:\\temz-tests\\greeter'/>", 11},
    {"<Caution Title='Please wait a moment'/>", 4},
};

std::string nameOf(const std::string& element) {
    return element.substr(1, element.find_first_of(" /") - 1);
}

class KindCostTest : public VisitCostTest, public testing::WithParamInterface<KindCost> {};

TEST_P(KindCostTest, StaysWithinItsAllocations) {
    Ledger ledger;
    const AnsweringMachine machine(ledger);
    const std::string name = nameOf(GetParam().element);
    std::string around = "<Condition Expression='1'>$</Condition>";
    if (name == "RegistryValue")
        around = "<RegistryKey Root='HKEY_CURRENT_USER' Key='K' Action='create'>$</RegistryKey>";
    expectAtMost(
        GetParam().promised,
        allocationsOfEach(
            GetParam().element,
            "<Feature Id='OtherFeature'/><Fragment Id='OtherFragment'/>"
            "<Component Id='OtherComponent'/>"
            "<Directory Id='APPLICATIONROOTDIRECTORY' Path='C:\\temz-tests'><Component Id='C'>" +
                around +
                "</Component></Directory><InstallExecuteSequence>"
                "<Feature><ComponentRef Id='C'/></Feature>"
                "</InstallExecuteSequence>"));
}

INSTANTIATE_TEST_SUITE_P(Each, KindCostTest, testing::ValuesIn(kindCosts),
                         [](const auto& info) { return nameOf(info.param.element); });

TEST(KindCostsTest, HaveEachKindThatARunVisits) {
    std::set<std::string> named;
    for (const KindCost& cost : kindCosts)
        named.insert(nameOf(cost.element));
    std::set<std::string> visited;
    for (const ElementKind* kind : motionKinds())
        visited.insert(narrow(kind->name));
    for (const ReferenceKind& reference : motionReferences())
        visited.insert(narrow(reference.name));
    visited.erase(narrow(installKind.name));  // of which a run visits one

    EXPECT_EQ(named, visited);
}

TEST_F(CostTest, EvaluationStaysWithinItsAllocations) {
    ASSERT_TRUE(loadProduct("",
                            "<Variable Id='Flag' Type='int' Value='0'/>"
                            "<Variable Id='Count' Type='int' Value='3'/>"));
    const size_t before = allocationsSoFar().allocations;
    EXPECT_TRUE(CExpression().evaluate(L"OS_BIT E 64 AND ( ! Flag OR Count GE 3 )", context));
    expectAtMost(21, allocationsSoFar().allocations - before);
}

/// A tenth of the elements are fragments that others refer to, and the rest their contents.
std::string fragments(size_t elements) {
    std::string all, references;
    for (size_t i = 0; i < elements / 10; ++i) {
        const std::string id = "Id='Fragment" + std::to_string(i) + "'";
        all += "<Fragment " + id + ">\n" + repeated("<Caution Title='Please wait'/>\n", 8) +
               "</Fragment>\n";
        references += "<FragmentRef " + id + "/>\n";
    }
    return all + "<InstallExecuteSequence>\n" + references + "</InstallExecuteSequence>\n";
}

// In thousandths of what the parser takes to load the same file. A run may add the table by which
// elements are found, which it leaves behind.
TEST_F(CostTest, LoadAndRunHoldLittleMoreThanTheParser) {
    const std::wstring path = folder.write(
        L"large.xml",
        "<Root><Product>" + fragments(sweepsAreWhole() ? 100'000 : 10'000) + "</Product></Root>");
    size_t byParser = 0;
    {
        const PeakWatch peak;
        TiXmlDocument document;
        ASSERT_TRUE(document.LoadFile(narrow(path).c_str()));
        byParser = peak.bytes();
    }

    const size_t before = liveBytes();
    const PeakWatch load;
    ASSERT_TRUE(context.load(path.c_str()));
    const size_t byLoad = load.bytes();
    const size_t loaded = liveBytes();
    const PeakWatch run;
    ASSERT_TRUE(runSilently());
    const size_t byRun = loaded - before + run.bytes();
    const size_t table = liveBytes() - loaded;

    expectAtMost(1020, std::max(byLoad, byRun - table) * 1000 / byParser);
}

}  // namespace
