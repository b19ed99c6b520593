// The same on the machine itself, which tells what it holds for the process.

#include <gmock/gmock.h>
#include <windows.h>

#include <string>

#include "endurance/Ledger.h"
#include "endurance/ProcessSize.h"
#include "endurance/Uses.h"
#include "engine/CContext.h"
#include "support/PayloadFolder.h"
#include "support/Requirements.h"
#include "support/TestFolder.h"
#include "support/TestKey.h"

namespace {

class RealMachineTest : public testing::Test {
protected:
    void SetUp() override { REQUIRES_WINE("installs a service, counts blocks in heaps"); }

    std::wstring write(const std::string& elements, const std::string& sequence,
                       const std::string& variables = {}) const {
        return folder.write(
            L"script.xml",
            "<Script>" + variables + "<Product><Directory Id='APPLICATIONROOTDIRECTORY' Path='" +
                narrow(folder.path(L"app")) + "'><Component Id='C'>" + elements +
                "</Component></Directory><InstallExecuteSequence><Feature><ComponentRef Id='C'/>"
                "</Feature>" +
                sequence + "</InstallExecuteSequence></Product></Script>");
    }

    /// By how much the process has grown when a script is used so many times, and in all modes;
    /// what the first times need is left out.
    Holdings growthByUses(int64_t uses, const std::wstring& script) {
        for (int round = 0; round < 5; ++round)
            useInAllModes(context, script);
        return growthBy([&] {
            for (int64_t use = 0; use < uses; use += modes)
                useInAllModes(context, script);
        });
    }

    template <class Deed>
    static Holdings growthBy(Deed deed) {
        const ProcessSize before;
        deed();
        return ProcessSize() - before;
    }

    /// Of what is quick, and of what takes its time.
    static constexpr int64_t many = 201;
    static constexpr int64_t few = 21;

    const TestFolder folder;
    const PayloadFolder payload;
    const std::string source = narrow(payload.write(L"a.txt", "a"));
    CContext context;
};

TEST_F(RealMachineTest, HoldsNothingForFiles) {
    const std::wstring script =
        write("<File Name='a.txt' Source='" + source +
                  "' KillProcess='yes'/><File Name='b.txt' Source='none'/>",
              "<Fragment><FileSearch Name='notepad.exe' Path='[WindowsFolder]' MinVersion='0.1' "
              "Expression='1'/><RemoveDirectory Path='" +
                  narrow(folder.path(L"app")) + "'/></Fragment>");

    EXPECT_EQ(growthByUses(many, script), Holdings());
}

TEST_F(RealMachineTest, HoldsNothingForLinks) {
    const std::wstring script =
        write("<Shortcut Name='a' Description='' Target='C:\\windows\\notepad.exe'/>", "");

    EXPECT_EQ(growthByUses(few, script), Holdings());
}

TEST_F(RealMachineTest, HoldsNothingForActionsAndPrograms) {
    const std::wstring script =
        write("",
              "<Fragment><CustomAction DllFile='temz_test_actions.dll' DllEntry='countCalls' "
              "Return='ignore'/><ShellExcute File='C:\\windows\\system32\\cmd.exe' "
              "ExeCommand='/c exit' Return='sync'/></Fragment>");

    EXPECT_EQ(growthByUses(few, script), Holdings());
}

TEST_F(RealMachineTest, HoldsAHandleForEachKeyThatIsMade) {
    const TestKey key;
    const std::string attributes =
        "<RegistryKey Root='HKEY_CURRENT_USER' Key='" + narrow(key.path(L"a")) + "' Action=";
    const std::wstring script = write(
        attributes + "'create'><RegistryValue Name='n' Type='REG_DWORD' Value='1'/></RegistryKey>" +
            attributes + "'remove'/>",
        "");

    EXPECT_EQ(growthByUses(many, script), (Holdings{{"handle", many}}));
}

TEST_F(RealMachineTest, HoldsTheHandlesOfAServiceThatHasStoppedAlready) {
    constexpr wchar_t service[] = L"BITS";  // which Wine has, and never starts by itself
    const auto open = [&] {
        const SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
        EXPECT_NE(OpenServiceW(manager, service, SERVICE_STOP), nullptr);
    };
    open();
    const Holdings twoHandles = growthBy(open);
    ASSERT_THAT(twoHandles, testing::Not(testing::IsEmpty()));
    const std::wstring script = write("", "<Fragment><ServiceControl Name='" + narrow(service) +
                                              "' Action='stop' Wait='yes'/></Fragment>");

    EXPECT_EQ(growthByUses(many, script), twoHandles * many);
}

TEST_F(RealMachineTest, HoldsTheElementOfAVariable) {
    const std::wstring script = write("", "", "<Variable Id='V' Type='int' Value='1'/>");

    constexpr int64_t guards = elementBlocks * guardSize;
    EXPECT_EQ(growthByUses(many, script),
              (Holdings{{"block", elementBlocks}, {"byte", elementBytes + guards}} * many));
}

}  // namespace
