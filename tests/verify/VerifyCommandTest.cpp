// temz verify with products that clean up behind them, and with such that don't.

#include <gmock/gmock.h>
#include <windows.h>

#include "SetupTest.h"
#include "support/LockedFile.h"
#include "support/Requirements.h"
#include "support/Restart.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr DWORD machineDiffers = 1;

class VerifyCommandTest : public SetupTest {
protected:
    void SetUp() override { REQUIRES_WINE("installs products"); }

    ProgramRun verify(const std::wstring& arguments = L"install.xml") const {
        return temz(L"verify --on-this-machine " + arguments);
    }

    /// Writes install.xml, whose product lies in app(), holds the components, and runs them all,
    /// and behind them what else stands in the sequence.
    void writeProduct(const std::string& components, const std::string& sequence = {},
                      const std::wstring& name = L"install.xml") const {
        ship(name, "<Script><Product><Directory Id='APP' Path='" + utf8(folder.path(L"app")) +
                       "'>" + components +
                       "</Directory><InstallExecuteSequence><Feature><ComponentRef Id='A'/>"
                       "<ComponentRef Id='B'/></Feature>" +
                       sequence +
                       "<Fragment On='uninstall'><RemoveDirectory Path='[APP]'/></Fragment>"
                       "</InstallExecuteSequence></Product></Script>");
    }

    static std::string component(const std::string& id, const std::string& elements,
                                 const std::string& attributes = {}) {
        return "<Component Id='" + id + "' " + attributes + ">" + elements + "</Component>";
    }

    static std::string shellExcute(const std::string& program, const std::string& arguments) {
        return "<ShellExcute File='[System32Folder]" + program + "' ExeCommand='" + arguments +
               "' Return='sync'/>";
    }

    /// The line that tells of something.
    static std::string told(const std::string& kind, const std::string& name,
                            const std::string& detail) {
        std::string line = "    " + kind;
        line.resize(14, ' ');
        return line + name + "  (" + detail + ")\n";
    }
};

TEST_F(VerifyCommandTest, FindsAProductThatLeavesNothing) {
    ship(L"a.txt", "a");
    writeProduct(component("A", file("a.txt") + "<RegistryKey Action='create' "
                                                "Root='HKEY_LOCAL_MACHINE' Key='Software\\TemzV' "
                                                "On='install'/>") +
                 component("B",
                           "<Shortcut Name='s' Description='' Target='[APP]a.txt'/>"
                           "<RegistryKey Action='remove' Root='HKEY_LOCAL_MACHINE' "
                           "Key='Software\\TemzV' On='uninstall'/>"));

    const ProgramRun run = verify();

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.error, "");
    EXPECT_THAT(run.output, HasSubstr("New on the machine: file 1, directory 1, link 1, key 1.\n"));
    EXPECT_THAT(run.output, EndsWith("--- the machine, compared with before the install\n"
                                     "It is as it was.\n"));
}

TEST_F(VerifyCommandTest, FindsFilesAndKeysThatStay) {
    ship(L"a.txt", "a");
    writeProduct(component("A", file("a.txt"), "On='install'") +
                 component("B",
                           "<RegistryKey Action='create' Root='HKEY_CURRENT_USER' "
                           "Key='Software\\TemzVerify' On='install'><RegistryValue "
                           "Name='n' Type='REG_DWORD' Value='1'/></RegistryKey>"));
    std::string script = readFile(setup(L"install.xml"));
    script.erase(script.find("<RemoveDirectory"),
                 std::string("<RemoveDirectory Path='[APP]'/>").size());
    ship(L"install.xml", script);

    const ProgramRun run = verify();

    EXPECT_EQ(run.exitCode, machineDiffers);
    EXPECT_THAT(
        run.output,
        EndsWith("Left behind:\n" + told("file", utf8(app(L"a.txt")), "since the install") +
                 told("directory", utf8(folder.path(L"app")), "since the install") +
                 told("key", "HKEY_CURRENT_USER\\Software\\TemzVerify", "since the install") +
                 told("value", "HKEY_CURRENT_USER\\Software\\TemzVerify: n", "since the install")));
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\TemzVerify");
}

TEST_F(VerifyCommandTest, FindsWhatWasThereAndIsNotPutBack) {
    ship(L"replaced.txt", "new");
    ship(L"taken.txt", "new");
    const std::wstring kept = folder.write(L"kept\\replaced.txt", "the user's");
    const std::wstring taken = folder.write(L"kept\\taken.txt", "the user's");
    writeProduct("<Directory Path='..\\kept'>" +
                 component("A", file("replaced.txt"), "On='install'") +
                 component("B", file("taken.txt")) + "</Directory>");

    const ProgramRun run = verify();

    EXPECT_EQ(run.exitCode, machineDiffers);
    EXPECT_THAT(run.output,
                EndsWith("Changed:\n" + told("file", utf8(kept), "size 10 -> 3") +
                         "No longer there:\n" + told("file", utf8(taken), "since the uninstall")));
}

TEST_F(VerifyCommandTest, FindsAServiceThatStays) {
    writeProduct(component("A", "") + component("B", ""),
                 "<Fragment On='install'>" +
                     shellExcute("sc.exe", "create TemzVerifyLeft binPath= C:\\none.exe") +
                     "</Fragment>");

    const ProgramRun run = verify();

    EXPECT_EQ(run.exitCode, machineDiffers);
    EXPECT_THAT(run.output, HasSubstr(told("service", "TemzVerifyLeft", "since the install")));
    EXPECT_THAT(run.output, HasSubstr("HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\"
                                      "TemzVerifyLeft: ImagePath"));
    writeSequence("<ServiceControl Name='TemzVerifyLeft' Action='remove' Wait='no'/>");
    EXPECT_EQ(temz(L"install install.xml").exitCode, 0u);
}

TEST_F(VerifyCommandTest, FindsWhatWaitsForARestart) {
    const TakesBackReplacements taken;
    ship(L"a.txt", "new");
    const std::wstring held = folder.write(L"app\\a.txt", "old");
    const LockedFile lock(held);
    const std::string delayed = file("a.txt", "SupportDelayInstall='yes' Vital='no'");
    writeProduct(component("A", delayed) + component("B", ""));
    std::string script = readFile(setup(L"install.xml"));
    script.erase(script.find("<RemoveDirectory"),
                 std::string("<RemoveDirectory Path='[APP]'/>").size());
    ship(L"install.xml", script);

    const ProgramRun run = verify();

    EXPECT_EQ(run.exitCode, machineDiffers);
    const std::string staged = utf8(held) + "!@#$%";
    EXPECT_THAT(run.output,
                EndsWith("Left behind:\n" + told("file", staged, "since the install") +
                         told("restart", "\\??\\" + staged + " becomes !\\??\\" + utf8(held),
                              "since the install")));
}

TEST_F(VerifyCommandTest, UpgradesFromTheVersionBeforeWithTheProgramBesideIt) {
    ship(L"old\\a.txt", "old");
    ship(L"old\\dropped.txt", "old");
    ship(L"a.txt", "new");
    for (const wchar_t* program : {L"temz.exe", L"TEMZC.dll"})
        std::filesystem::copy_file(setup(program), setup(std::wstring(L"old\\") + program));
    writeProduct(component("A", file("a.txt")) + component("B", file("dropped.txt")), "",
                 L"old\\install.xml");
    writeProduct(component("A", file("a.txt")) + component("B", ""));

    const ProgramRun run = verify(L"install.xml --upgrade-from old\\install.xml");

    EXPECT_EQ(run.exitCode, 0u) << run.output;
    EXPECT_THAT(run.output, HasSubstr("--- install " + utf8(setup(L"old\\install.xml"))));
    EXPECT_THAT(run.output, HasSubstr("--- upgrade " + utf8(setup(L"install.xml"))));
    EXPECT_THAT(run.output, HasSubstr("New on the machine: file 2, directory 1.\n"));
}

TEST_F(VerifyCommandTest, RemovesAndTellsOfWhatHasFailed) {
    ship(L"a.txt", "a");
    writeProduct(component("A", file("a.txt") + file("missing.txt")) + component("B", ""));

    const ProgramRun run = verify();

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_THAT(run.output, HasSubstr("Exit code 1603\n"));
    EXPECT_THAT(run.output, EndsWith("It is as it was.\n"));
    EXPECT_THAT(run.error, EndsWith("temz: A run has failed.\n"));
}

TEST_F(VerifyCommandTest, DoesNothingUnlessItIsToldThatItMay) {
    ship(L"a.txt", "a");
    writeProduct(component("A", file("a.txt"), "On='install'") + component("B", ""));

    const ProgramRun run = temz(L"verify install.xml");

    EXPECT_EQ(run.exitCode, 1639u);
    EXPECT_THAT(run.error, HasSubstr("temz: --on-this-machine is missing. See temz help.\n"));
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(VerifyCommandTest, NeedsTheScriptsToBeThere) {
    EXPECT_EQ(verify(L"absent.xml").exitCode, 1619u);
    writeProduct(component("A", "") + component("B", ""));
    const ProgramRun run = verify(L"install.xml --upgrade-from=absent.xml");
    EXPECT_EQ(run.exitCode, 1619u);
    EXPECT_THAT(run.error, HasSubstr("absent.xml can't be opened: "));
    EXPECT_THAT(run.output, Not(HasSubstr("---")));
}

TEST_F(VerifyCommandTest, TellsAsJsonTooThatAScriptIsNotThere) {
    const ProgramRun run = verify(L"absent.xml --json");

    EXPECT_EQ(run.exitCode, 1619u);
    EXPECT_THAT(run.output, testing::StartsWith("{\"event\":\"start\",\"schema\":"));
    EXPECT_THAT(run.output, HasSubstr("}\n{\"event\":\"end\",\"exitCode\":1619,"));
    EXPECT_THAT(run.output, HasSubstr("\"reason\":\"absent.xml can't be opened: "));
    EXPECT_THAT(run.error, testing::StartsWith("temz: absent.xml can't be opened: "));
}

}  // namespace
