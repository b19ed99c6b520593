#include <windows.h>

#include "check/CCheckTest.h"

// Checks that look at more than the script itself.
using FolderChecksTest = CCheckTest;

namespace {

std::string product(std::string_view inDirectory, std::string_view inSequence = {}) {
    return "<Root><Product><Directory Id=\"R\" Path=\"C:\\x\">\n<Component Id=\"C\">" +
           std::string(inDirectory) +
           "</Component></Directory><InstallExecuteSequence><Feature>"
           "<ComponentRef Id=\"C\"/></Feature>" +
           std::string(inSequence) +
           "<Fragment On=\"uninstall\"><RemoveDirectory Path=\"[R]\"/></Fragment>"
           "</InstallExecuteSequence></Product></Root>";
}

constexpr std::string_view twoFiles = R"(<File Name="a" Source="files\a"/>
<File Name="b" Source="files\b"/>)";

constexpr std::string_view key =
    R"(<RegistryKey On="installupgrade" Action="create" Root="HKEY_CURRENT_USER" Key="Software\K"/>
<RegistryKey On="uninstall" Action="remove" Root="HKEY_CURRENT_USER" Key="Software\K"/>)";

constexpr std::string_view service =
    R"(<ServiceControl Name="S" Action="start" Wait="yes" On="installupgrade"/>
<ServiceControl Name="S" Action="stop" Wait="yes" On="uninstall"/>)";

constexpr std::string_view link = R"(<Shortcut Name="l" Description="" Target="C:\x\a"/>)";

}  // namespace

TEST_F(FolderChecksTest, SourcesStandInThePayloadAndAllOfItIsInstalled) {
    folder.write(L"files\\a", "");
    folder.write(L"files\\b", "");
    for (const wchar_t* payload : {L"", L"files", L"files\\"})
        EXPECT_EQ(findingsIn(product(twoFiles), {{}, folder.path(payload), {}}), "");
}

TEST_F(FolderChecksTest, AMissingSourceIsToldAtItsPlace) {
    folder.write(L"files\\a", "");
    EXPECT_EQ(findingsIn(product(twoFiles), {{}, folder.path(), {}}),
              "3:24 TZ521 `files\\b` isn't in the payload.\n");
}

TEST_F(FolderChecksTest, AFileThatNobodyInstallsIsToldOfTheWholeScript) {
    folder.write(L"files\\a", "");
    folder.write(L"files\\B", "");
    folder.write(L"files\\sub\\c", "");
    folder.write(L"temz.exe", "");
    EXPECT_EQ(findingsIn(product(twoFiles), {{}, folder.path(), {}}),
              "0:0 TZ522 No File installs `files\\sub\\c` of the payload.\n");
}

TEST_F(FolderChecksTest, AMissingSourceIsHeldForTheNearestFileOfThePayload) {
    folder.write(L"files\\a", "");
    for (const auto& [source, help] : {std::pair(R"(files\quite-another)", L"correct the "),
                                       std::pair(R"(files\aa)", L"did you mean `files\\a`?"),
                                       std::pair(R"(aside\a)", L"did you mean `files\\a`?")}) {
        const std::vector<Finding> findings =
            check(product(R"(<File Name="b" Source=")" + std::string(source) +
                          R"("/><File Name="a" Source="files\a"/>)"),
                  {{}, folder.path(), {}});
        ASSERT_EQ(findings.size(), 1U) << source;
        EXPECT_STREQ(findings[0].kind->code, L"TZ521");
        EXPECT_TRUE(findings[0].help.starts_with(help)) << narrow(findings[0].help);
    }
}

TEST_F(FolderChecksTest, AMissingSourceIsNamedWithThePayloadWhereItIs) {
    folder.write(L"files\\abcd", "");
    const std::vector<Finding> findings =
        check(product(R"(<File Name="b" Source="files\abce"/>)"), {{}, folder.path(L"files"), {}});
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].help, L"did you mean `files\\abcd`?");
}

TEST_F(FolderChecksTest, ASourceThatARunCanChangeIsNotLookedFor) {
    std::string script = product(R"(<File Name="b" Source="#V"/>)",
                                 R"(<Fragment><FileSearch Name="a" Path="C:\y" Expression="V = W"/>
</Fragment>)");
    script.insert(script.find("<Product>"), R"(<Variable Id="V" Type="string" Value="files\b"/>
<VariableConst Id="W" Type="string" Value="files\c"/>)");
    EXPECT_EQ(findingsIn(script, {{}, folder.makeDirectory(L"files"), {}}), "");
}

TEST_F(FolderChecksTest, AnUpgradeThatRemovesTheKeyAboveLeavesNone) {
    const auto creating = [](const std::string& name) {
        return R"(<RegistryKey On="installupgrade" Action="create" Root="HKEY_CURRENT_USER" Key=")" +
               name + R"("/>)";
    };
    const std::string removing =
        R"(<RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="Software\K"/>)";
    const std::wstring previous = folder.write(
        L"old.xml", product(std::string(twoFiles) + creating(R"(Software\K\Sub)") + removing));
    EXPECT_EQ(findingsIn(product(std::string(twoFiles) + removing + creating(R"(Software\K)")),
                         {{}, {}, previous}),
              "");
}

TEST_F(FolderChecksTest, TheScriptsThemselvesAreNoPayload) {
    folder.write(L"files\\a", "");
    folder.write(L"files\\b", "");
    const std::wstring previous = folder.write(L"old.xml", product(twoFiles));
    EXPECT_EQ(findingsIn(product(twoFiles), {{}, folder.path(), previous}), "");
}

TEST_F(FolderChecksTest, AReadOnlySourceCannotBeReplacedByAnUpgrade) {
    folder.write(L"files\\a", "");
    SetFileAttributesW(folder.write(L"files\\b", "").c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(findingsIn(product(twoFiles), {{}, folder.path(), {}}),
              "3:24 TZ523 `files\\b` is read-only or hidden, so an upgrade can't replace its "
              "copy.\n");
}

TEST_F(FolderChecksTest, AnUpgradeLeavesWhatOnlyTheVersionBeforeHas) {
    const std::string fragment = "<Fragment>" + std::string(service) + "</Fragment>";
    const std::wstring previous = folder.write(
        L"old.xml",
        product(std::string(twoFiles) + std::string(link) + std::string(key), fragment));
    EXPECT_EQ(findingsIn(product(twoFiles), {{}, {}, previous}),
              "0:0 TZ611 `C:\\x\\l.lnk` of the version before (line 3 of its script) is left by an "
              "upgrade.\n"
              "0:0 TZ612 `HKEY_CURRENT_USER\\Software\\K` of the version before (line 3 of its "
              "script) is left by an upgrade.\n"
              "0:0 TZ613 The service `S` of the version before (line 4 of its script) is left by "
              "an upgrade.\n");
    EXPECT_EQ(
        findingsIn(product(std::string(twoFiles) + std::string(link) + std::string(key), fragment),
                   {{}, {}, previous}),
        "");
}

TEST_F(FolderChecksTest, AnUpgradeThatEmptiesTheDirectoryLeavesNoFile) {
    const std::wstring previous = folder.write(L"old.xml", product(twoFiles));
    EXPECT_EQ(findingsIn(product("",
                                 "<Fragment On=\"upgrade\"><RemoveDirectory Path=\"[R]\"/>"
                                 "</Fragment>"),
                         {{}, {}, previous}),
              "");
}

TEST_F(FolderChecksTest, APreviousScriptThatCannotBeReadIsNoFinding) {
    CheckRequest request;
    request.script = folder.write(L"new.xml", product(twoFiles));
    for (const std::wstring& previous :
         {folder.path(L"missing.xml"), folder.write(L"broken.xml", "<Root>")}) {
        request.previous = previous;
        EXPECT_EQ(checkScript(request, [](const Finding&) {}), CheckEnd::notReadable);
    }
}

TEST_F(FolderChecksTest, APayloadThatCannotBeReadIsNoEmptyOne) {
    CheckRequest request;
    request.script = folder.write(L"new.xml", product(twoFiles));
    request.payload = folder.path(L"missing");
    EXPECT_EQ(checkScript(request, [](const Finding&) { ADD_FAILURE(); }), CheckEnd::notReadable);
}

TEST_F(FolderChecksTest, AShortcutThatIsNeverRemovedIsTold) {
    const std::string limited =
        "<Root><Product><Directory Id=\"R\" Path=\"C:\\x\">\n"
        "<Component Id=\"C\" On=\"install\">" +
        std::string(link) +
        "</Component></Directory><InstallExecuteSequence><Feature>"
        "<ComponentRef Id=\"C\"/></Feature></InstallExecuteSequence>"
        "</Product></Root>";
    EXPECT_EQ(findingsIn(limited), "2:32 TZ603 `C:\\x\\l.lnk` is never removed.\n");
}

TEST_F(FolderChecksTest, ACustomActionNeedsTheDirectoryThatItIsToldOf) {
    const std::string action =
        "<Fragment><CustomAction DllFile=\"C:\\x\\a.dll\" DllEntry=\"e\" "
        "Return=\"check\"/></Fragment>";
    EXPECT_EQ(findingsIn(product(twoFiles, action)),
              "3:133 TZ509 There is no `Directory` with the Id `APPLICATIONROOTDIRECTORY`, without "
              "which no function is called.\n");
}

TEST_F(FolderChecksTest, ADirectoryThatStaysIsToldOnceAndNotThoseOfOthers) {
    const auto script = [](const std::string& place) {
        return "<Root><Product><Directory Id=\"ProgramFilesFolder\"><Directory Id=\"V\" Path=\"" +
               place +
               "\">\n<Directory Id=\"P\" Path=\"Product\"><Component Id=\"C\">"
               "<File Name=\"a\" Source=\"a\"/></Component>"
               "<Directory Id=\"D\" Path=\"doc\"><Component Id=\"E\">"
               "<File Name=\"a\" Source=\"a\"/></Component></Directory></Directory>"
               "</Directory></Directory><InstallExecuteSequence><Feature>"
               "<ComponentRef Id=\"C\"/><ComponentRef Id=\"E\"/></Feature>"
               "</InstallExecuteSequence></Product></Root>";
    };
    for (const char* place : {"Works", "Common Files", "Common Files\\Works"})
        EXPECT_EQ(findingsIn(script(place)),
                  std::string("2:1 TZ609 `[ProgramFilesFolder]\\") + place +
                      "\\Product` stays after uninstall, empty or not.\n");
}

TEST_F(FolderChecksTest, AnOutermostDirectoryNeedsAWholePath) {
    const auto script = [](const std::string& directory) {
        return "<Root><Variable Id=\"V\" Type=\"string\" Value=\"\"/><Product>\n" + directory +
               "<Component Id=\"C\"><RegistryKey Action=\"create\" Root=\"HKEY_CURRENT_USER\" "
               "Key=\"Software\\K\"/></Component></Directory><InstallExecuteSequence><Feature>"
               "<ComponentRef Id=\"C\"/></Feature></InstallExecuteSequence></Product></Root>";
    };
    const auto told = [&](const std::string& directory) {
        std::string texts;
        for (const Finding& finding : check(script(directory)))
            if (narrow(finding.kind->code) == "TZ213")
                texts += narrow(finding.text);
        return texts;
    };
    for (const char* path : {"Works", "Works\\Lantern", "..\\Lantern"})
        EXPECT_EQ(told(std::string("<Directory Id=\"R\" Path=\"") + path + "\">"),
                  std::string("`") + path + "` is relative to the working directory.");
    for (const char* directory :
         {"<Directory Id=\"R\" Path=\"C:\\Works\">", "<Directory Id=\"R\" Path=\"\\\\s\\Works\">",
          "<Directory Id=\"R\" Path=\"[ProgramFilesFolder]Works\">",
          "<Directory Id=\"ProgramFilesFolder\" Path=\"Works\">",
          "<Directory Id=\"R\" Path=\"#V\">",
          "<Directory Id=\"ProgramFilesFolder\"><Directory Path=\"Works\"/>"})
        EXPECT_EQ(told(directory), "") << directory;
}
