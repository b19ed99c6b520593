// Years of use: what stays of thousands of loads, runs and unloads in one process is what is named
// here, and nothing else.

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

#include "elements/raw_installerXML.h"
#include "endurance/AnsweringMachine.h"
#include "endurance/Uses.h"
#include "engine/CContext.h"
#include "expression/CVariableElement.h"
#include "logging/IterfaceObserver.h"
#include "logging/IterfaceProduct.h"
#include "support/Sweep.h"
#include "support/TestFolder.h"
#include "support/Text.h"

namespace {

/// A part of a script, and what stays of it when it is used in all modes.
struct Part {
    const char* name;
    Holdings stays;
    std::string variables;
    std::string definitions;
    std::string sequence;
};

void PrintTo(const Part& part, std::ostream* out) {
    *out << part.name;
}

/// The bytes of a text that is too long to stand in its string, with the terminator.
constexpr int64_t textBytes(int64_t characters) {
    return (characters + 1) * static_cast<int64_t>(sizeof(wchar_t));
}

std::string component(const std::string& id, const std::string& elements) {
    return "<Directory Id='Of" + id + "' Path='C:\\temz none'><Component Id='" + id +
           "' SupportDelayInstall='yes'>" + elements + "</Component></Directory>";
}
std::string feature(const std::string& id) {
    return "<Feature><ComponentRef Id='" + id + "'/></Feature>";
}

/// All that is meant to stay, and below it what isn't.
const std::vector<Part> parts = {
    {"TheElementOfAVariable",
     {{"block", modes* elementBlocks}, {"byte", modes* elementBytes}},
     "<Variable Id='Name' Type='string' Value='v'/>",
     "",
     "<Condition Expression='Name E Name'/>"},
    {"TheElementOfAConstant",
     {{"block", modes* elementBlocks}, {"byte", modes* elementBytes}},
     "<VariableConst Id='Constant' Type='int' Value='7'/>",
     "",
     "<Condition Expression='Constant E 7'/>"},
    {"TheElementsOfVariablesWithTheirTexts",
     {{"block", modes * 2 * (elementBlocks + 1)},
      {"byte", modes * 2 * (elementBytes + textBytes(20))}},
     "<Variable Id='Long' Type='string' Value='a text of 20 letters'/>"
     "<Variable Id='Assigned' Type='string' Value=''/>",
     "",
     "<Condition Expression='Assigned = Long'/>"},
    {"TheBlockOfAVersionThatCannotBeRead",
     {{"block", modes}, {"byte", modes* AnsweringMachine::versionBlock}},
     "",
     "",
     "<Fragment><FileSearch Name='torn.exe' Path='C:\\temz none' Expression='1' "
     "MinVersion='1.0'/></Fragment>"},
    {"TheBlockOfAVersionThatSaysNothing",
     {{"block", modes}, {"byte", modes* AnsweringMachine::versionBlock}},
     "",
     "",
     "<Fragment><FileSearch Name='mute.exe' Path='C:\\temz none' Expression='1' "
     "MinVersion='1.0'/></Fragment>"},
    {"TheHandlesOfAKeyThatIsMade",
     {{"registry key", modes * 2}},
     "",
     component("MakesKeys",
               "<RegistryKey Root='HKEY_CURRENT_USER' Key='temz none' Action='create'>"
               "<RegistryValue Name='number' Type='REG_DWORD' Value='70000'/>"
               "<RegistryKey Key='inner' Action='create'/></RegistryKey>"),
     feature("MakesKeys")},
    {"TheHandlesOfAServiceThatHasStoppedAlready",
     {{"service handle", modes * 2}},
     "",
     "",
     "<Fragment><ServiceControl Name='stopped' Action='stop' Wait='yes'/></Fragment>"},
    {"TheLinkObjectThatHasNoWayToWriteAFile",
     {{"link object", 2}},  // an uninstall makes none
     "",
     component("MakesNoLink", "<Shortcut Name='l' Description='' Target='C:\\unwritable.exe'/>"),
     feature("MakesNoLink")},

    {"NothingOfAVariableOfAnUnknownType",
     {},
     "<Variable Id='Unknown' Type='unknown' Value='a text of 20 letters'/>",
     "",
     ""},
    {"NothingOfFiles",
     {},
     "",
     component("CopiesFiles",
               "<File Name='killed.exe' Source='a' KillProcess='yes'/>"
               "<File Name='b' Source='denied'/><File Name='c' Source='denied' Vital='no' "
               "SupportDelayInstall='no'/>"),
     feature("CopiesFiles")},
    {"NothingOfLinks",
     {},
     "",
     component("MakesLinks",
               "<Shortcut Name='a' Description='' Target='C:\\temz none\\a.exe' "
               "IcoFile='C:\\temz none\\a.ico'/>"),
     feature("MakesLinks")},
    {"NothingOfKeysThatGo",
     {},
     "",
     component("RemovesKeys",
               "<RegistryKey Root='HKEY_CURRENT_USER' Key='temz none' Action='remove'/>"),
     feature("RemovesKeys")},
    {"NothingOfServicesThatRun",
     {},
     "",
     "",
     "<Fragment><ServiceControl Name='running' Action='stop' Wait='yes'/>"
     "<ServiceControl Name='stopped' Action='start' Wait='no'/>"
     "<ServiceControl Name='running' Action='remove' Wait='no'/></Fragment>"},
    {"NothingOfProgramsAndActions",
     {},
     "",
     "<Directory Id='APPLICATIONROOTDIRECTORY' Path='C:\\temz none'/>",
     "<Fragment><ShellExcute File='C:\\temz none\\a.exe' Return='sync' ExeCommand='/a'/>"
     "<CustomAction DllFile='a.dll' DllEntry='act' Return='check'/>"
     "<CustomAction DllFile='a.dll' DllEntry='missing' Return='check'/>"
     "<CopyFile DestinationName='a' SourceName='b'/><Caution Title='a caution of some length'/>"
     "<RemoveDirectory Path='C:\\temz none'/></Fragment>"},
    {"NothingOfReferencesAndDecisions",
     {},
     "",
     "<Directory Id='D' Path='C:\\temz none'><Directory Id='E' Path='e'/></Directory>"
     "<DirectoryRef Id='E'><Directory Id='F' Path='f'><Component Id='C'>"
     "<File Name='x' Source='[F]y'/></Component></Directory></DirectoryRef>"
     "<Fragment Id='Last'><Caution Title='[F] at the end of all'/></Fragment>"
     "<Feature Id='All'><Condition Expression='OS_BIT E 64 AND ( ! 0 OR 3 GE 3 )'>"
     "<FeatureRef Id='One'/></Condition></Feature>"
     "<Feature Id='One'><ComponentRef Id='C'/></Feature>",
     "<FeatureRef Id='All'/><FragmentRef Id='Last'/><Fragment><FileSearch Name='a' "
     "Path='[WindowsFolder]' MinVersion='1.0' Expression='1 E 2'/></Fragment>"},
};

class EnduranceTest : public testing::Test {
protected:
    std::wstring write(const std::vector<Part>& parts) const {
        std::string variables;
        std::string definitions;
        std::string sequence;
        for (const Part& part : parts) {
            variables += part.variables;
            definitions += part.definitions;
            sequence += part.sequence;
        }
        return folder.write(L"script.xml", "<Script>" + variables + "<Product>" + definitions +
                                               "<InstallExecuteSequence>" + sequence +
                                               "</InstallExecuteSequence></Product></Script>");
    }

    /// By how much what is held grows while something is done.
    template <class Deed>
    Holdings growthBy(Deed deed) {
        machine.settleLink();
        const Books before = ledger.books();
        deed();
        machine.settleLink();
        return ledger.books() - before;
    }

    const TestFolder folder;
    Ledger ledger;
    AnsweringMachine machine{ledger};
    const CallWrapper<Ledger> wrapper{ledger};
    CContext context;
};

class PartTest : public EnduranceTest, public testing::WithParamInterface<Part> {};

TEST_P(PartTest, IsAllThatStays) {
    constexpr int rounds = 200;
    const std::wstring script = write({GetParam()});
    useInAllModes(context, script);

    EXPECT_EQ(growthBy([&] {
                  for (int round = 0; round < rounds; ++round)
                      useInAllModes(context, script);
              }),
              GetParam().stays * rounds);
}

INSTANTIATE_TEST_SUITE_P(, PartTest, testing::ValuesIn(parts),
                         [](const auto& info) { return info.param.name; });

// With the parts alone it makes more than ten thousand uses in the process; whole, as many again of
// all of them together.
TEST_F(EnduranceTest, LeavesOfAllPartsTogetherWhatEachOfThemLeaves) {
    const int rounds = 3334 / static_cast<int>(sweepStride(10));
    const std::wstring script = write(parts);
    Holdings expected;
    for (const Part& part : parts)
        for (const auto& [name, count] : part.stays* rounds)
            expected[name] += count;
    useInAllModes(context, script);

    EXPECT_EQ(growthBy([&] {
                  for (int round = 0; round < rounds; ++round)
                      useInAllModes(context, script);
              }),
              expected);
}

constexpr int contexts = 100;

TEST_F(EnduranceTest, LeavesOfAContextTheRoomForItsVariables) {
    const std::wstring script = write({});
    use(context, script, RUNMODE_INSTALL);
    constexpr int64_t room = 4;  // which grows by doubling, for the three of every script

    EXPECT_EQ(growthBy([&] {
                  for (int i = 0; i < contexts; ++i) {
                      IterfaceContext* const made = CreateContextObject();
                      use(*made, script, RUNMODE_INSTALL);
                      FreeContextObject(made);
                  }
              }),
              (Holdings{{"block", 1}, {"byte", room * sizeof(CVariablePtr)}} * contexts));
}

TEST_F(EnduranceTest, LeavesOfAContextThatIsFreedLoadedAllThatItHasLoaded) {
    const std::wstring script = write(parts);
    const Holdings loaded = growthBy([&] { EXPECT_TRUE(context.load(script.c_str())); });
    EXPECT_GT(loaded.at("block"), 100);

    EXPECT_EQ(growthBy([&] {
                  for (int i = 0; i < contexts; ++i) {
                      IterfaceContext* const made = CreateContextObject();
                      made->load(script.c_str());
                      FreeContextObject(made);
                  }
              }),
              loaded * contexts);
}

TEST_F(EnduranceTest, LeavesNothingOfLoadsThatFail) {
    for (const std::string xml :
         {"", "<Script>", "<Script/>", "<Script><Product Id='[none]'/><Unfinished></Script>",
          "<Script><Variable Id='No type' Value='a text of 20 letters'/><Product/></Script>"}) {
        SCOPED_TRACE(xml);
        const std::wstring script = folder.write(L"script.xml", xml);
        EXPECT_FALSE(context.load(script.c_str()));

        EXPECT_EQ(growthBy([&] {
                      for (int i = 0; i < contexts; ++i)
                          context.load(script.c_str());
                  }),
                  Holdings());
    }
}

/// Ends each run at its first failure, by an exception if it is told so.
class Ender final : public IterfaceObserver {
public:
    explicit Ender(bool throws) : throws(throws) {}

    void update(IterfaceProduct*) override {}
    ObserverAnswer askOnError(ErrorInfo*) override {
        if (throws)
            throw 0;
        return ANSWER_ABORT;
    }

private:
    const bool throws;
};

TEST_F(EnduranceTest, LeavesNothingOfRunsThatEndEarly) {
    const std::wstring script = folder.write(
        L"script.xml",
        "<Script><Product>" +
            component("C",
                      "<Condition Expression='1'><File Name='a' Source='denied'/></Condition>") +
            "<Feature Id='F'><ComponentRef Id='C'/></Feature><InstallExecuteSequence>"
            "<FeatureRef Id='F'/></InstallExecuteSequence></Product></Script>");
    ASSERT_TRUE(context.load(script.c_str()));
    context.runMode = RUNMODE_INSTALL;
    for (const bool throws : {false, true}) {
        Ender ender(throws);
        context.getProduct()->observer = &ender;
        int ends = 0;
        const auto run = [&] {
            try {
                ends += context.getProduct()->run(&context) == ERROR_ACCESS_DENIED;
            } catch (int) {
                ++ends;
            }
        };
        run();

        EXPECT_EQ(growthBy([&] {
                      for (int i = 0; i < contexts; ++i)
                          run();
                  }),
                  Holdings());
        EXPECT_EQ(ends, contexts + 1);
    }
}

}  // namespace
