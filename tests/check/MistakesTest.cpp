#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "check/CCheckTest.h"

namespace {

/// A script as authors write them, without any fault.
constexpr std::string_view good = R"XML(<?xml version="1.0"?>
<Script>
    <Variable Id="COMPANY" Type="string" Value="Lantern Works"/>
    <VariableConst Id="PRODUCT" Type="string" Value="Lantern"/>
    <VariableConst Id="SERVICE" Type="string" Value="LanternSync"/>
    <Variable Id="MODERN" Type="int" Value="0"/>
    <Variable Id="LEVEL" Type="int" Value="3"/>

    <Product Id="Lantern">
        <Directory Id="ProgramFilesFolder">
            <Directory Id="VENDOR" Path="#COMPANY">
                <Directory Id="APPLICATIONROOTDIRECTORY" Path="#PRODUCT">
                    <Component Id="Program" SupportDelayInstall="yes">
                        <File Name="lantern.exe" Source="payload\lantern.exe" KillProcess="yes"/>
                        <File Name="sync.dll" Source="payload\sync.dll"/>
                        <File Name="readme.txt" Source="payload\readme.txt" Vital="no"/>
                    </Component>
                    <Component Id="Tools">
                        <File Name="tools.exe" Source="payload\tools.exe"/>
                    </Component>
                    <Directory Id="DATA" Path="data"/>
                </Directory>
            </Directory>
        </Directory>
        <Directory Id="ProgramMenuFolder">
            <Directory Id="MENU" Path="#COMPANY">
                <Component Id="Menu">
                    <Shortcut Name="#PRODUCT" Description="The lantern" WorkingDirectory="[DATA]"
                              Target="[APPLICATIONROOTDIRECTORY]lantern.exe"/>
                </Component>
            </Directory>
        </Directory>
        <Component Id="Settings" On="installupgrade">
            <RegistryKey Action="create" Root="HKEY_LOCAL_MACHINE" Key="Software\Lantern Works">
                <RegistryKey Action="create" Key="Lantern">
                    <RegistryValue Name="Folder" Type="REG_SZ" Value="[DATA]"/>
                    <RegistryValue Name="Level" Type="REG_DWORD" Value="3"/>
                </RegistryKey>
            </RegistryKey>
        </Component>
        <Component Id="NoSettings" On="uninstall">
            <RegistryKey Action="remove" Root="HKEY_LOCAL_MACHINE"
                         Key="Software\Lantern Works\Lantern"/>
        </Component>
        <Fragment Id="StopService">
            <ServiceControl Name="#SERVICE" Action="stop" Wait="yes"/>
        </Fragment>
        <Feature Id="Extras">
            <Condition Expression="MODERN E 1 AND ! ( LEVEL L 2 )">
                <ComponentRef Id="Tools"/>
            </Condition>
        </Feature>

        <InstallExecuteSequence>
            <Fragment Id="Survey">
                <FileSearch Name="kernel32.dll" Path="[System32Folder]" MinVersion="6.1"
                            Expression="MODERN = 1"/>
                <Condition Expression="LEVEL = MODERN"/>
            </Fragment>
            <FragmentRef Id="StopService"/>
            <Fragment Id="Leave" On="uninstall">
                <ServiceControl Name="#SERVICE" Action="remove" Wait="no"/>
                <CustomAction DllFile="[APPLICATIONROOTDIRECTORY]sync.dll" DllEntry="Farewell"
                              Return="check" Title="Saying goodbye"/>
            </Fragment>
            <Feature Id="Main">
                <ComponentRef Id="Program"/>
                <ComponentRef Id="Menu"/>
                <ComponentRef Id="Settings"/>
                <ComponentRef Id="NoSettings"/>
            </Feature>
            <FeatureRef Id="Extras"/>
            <Fragment Id="Start" On="installupgrade">
                <ShellExcute File="[System32Folder]sc.exe" Return="sync"
                             ExeCommand="create LanternSync"/>
                <ServiceControl Name="#SERVICE" Action="start" Wait="yes"/>
            </Fragment>
            <Fragment Id="End" On="uninstall">
                <RemoveDirectory Path="[DATA]cache"/>
                <RemoveDirectory Path="[MENU]"/>
                <Caution Title="Your notes stay in [DATA]"/>
            </Fragment>
        </InstallExecuteSequence>
    </Product>
</Script>
)XML";

/// One mistake: what stands in place of what, and what a check says of it, and where.
struct Mistake {
    const char* code;
    std::string_view from;
    std::string_view to;
    std::string_view at;    ///< the finding stands where this does in the script with the mistake
    std::string_view text;  ///< a part of what it tells
    std::string_view help;  ///< a part of how it is mended
};

void PrintTo(const Mistake& mistake, std::ostream* stream) {
    *stream << mistake.code << " for " << mistake.to;
}

const std::string longText(600, 'x');
const std::string longName(300, 'n');
const std::string longCaution = "<Caution Title=\"" + longText + "\"/>";
const std::string longFragment = "<Fragment Id=\"" + longName + "\" On=\"uninstall\">";
const std::string longRemoval = "<RemoveDirectory Path=\"[DATA]" + longName + "\"/>";
const std::string longShortcut = "<Shortcut Name=\"" + longName + "\"";
const std::string longFile = "<File Name=\"" + longName + "\" Source=\"payload\\sync.dll\"/>";
const std::string longKey = "Key=\"Software\\" + longText + "\"";
const std::string likelyLong = "<Caution Title=\"[DATA]" + std::string(470, 'x') + "\"/>";
const std::string likelyLongFile =
    "<File Name=\"" + std::string(200, 'n') + "\" Source=\"payload\\sync.dll\"/>";

const Mistake mistakes[] = {
    // XML and encoding
    {"TZ101", "</Feature>\n            <FeatureRef", "</Featur>\n            <FeatureRef", "", "",
     ""},
    {"TZ101", "Wait=\"no\"/>", "Wait=\"no/>", "", "", ""},
    {"TZ101", "Name=\"Level\"", "Name=\"Level\" Name=\"Level\"", "", "", ""},
    {"TZ104", "Saying goodbye", "Ad\xC3\xA9", "Ad\xC3\xA9", "declares no encoding", "UTF-8"},
    {"TZ105", "Saying goodbye", "Ad\xE9le!", "Ad\xE9le!", "isn't UTF-8", ""},

    // structure and references
    {"TZ201", "<Product Id=\"Lantern\">", "<Prodct Id=\"Lantern\">", "", "", ""},
    {"TZ202", "</Product>", "</Product><Product Id=\"B\"/>", "<Product Id=\"B\"", "never counts",
     ""},
    {"TZ203", "<File Name=\"tools.exe\"", "<Fille Name=\"tools.exe\"", "<Fille",
     "`Fille` is no element that may stand in `Component`.", "did you mean `File`?"},
    {"TZ203", "<FragmentRef Id=\"StopService\"/>", "<ComponentRef Id=\"Program\"/>",
     "<ComponentRef Id=\"Program\"/>\n            <Fragment Id=\"Leave\"",
     "`ComponentRef` is no element that may stand in `InstallExecuteSequence`.",
     "may stand in `Feature`"},
    {"TZ203", "<Caution Title=\"Your", "<File Name=\"a\" Source=\"a\"/><Caution Title=\"Your",
     "<File Name=\"a\"", "in `Fragment`", "`Component`, `Condition`"},
    {"TZ204", "<Directory Id=\"DATA\"", "<Directry Id=\"DATA\"", "<Directry", "means nothing in",
     "did you mean `Directory`?"},
    {"TZ204", "<Variable Id=\"LEVEL\"", "<Varible Id=\"LEVEL\"", "<Varible", "means nothing in",
     "did you mean `Variable`?"},
    {"TZ205", "InstallExecuteSequence>", "InstallExcuteSequence>", "<Product Id",
     "no run can begin", "is `InstallExcuteSequence` meant"},
    {"TZ206", "</InstallExecuteSequence>", "</InstallExecuteSequence><InstallExecuteSequence/>",
     "<InstallExecuteSequence/>", "never run", ""},
    {"TZ207", "<ComponentRef Id=\"Menu\"/>", "", "<Component Id=\"Menu\"", "Nothing reaches",
     "ComponentRef"},
    {"TZ208", "<FragmentRef Id=\"StopService\"/>", "<FragmentRef/>", "<FragmentRef/>",
     "has no `Id`", ""},
    {"TZ209", "<ComponentRef Id=\"Tools\"/>", "<ComponentRef Id=\"Toools\"/>", "Toools",
     "There is no `Component` with the Id `Toools`", "did you mean `Tools`?"},
    {"TZ209", "<FeatureRef Id=\"Extras\"/>", "<FeatureRef Id=\"extras\"/>", "extras",
     "There is no `Feature`", "did you mean `Extras`?"},
    {"TZ210", "<Fragment Id=\"StopService\">",
     "<Fragment Id=\"StopService\"><FragmentRef Id=\"StopService\"/>",
     "StopService\"/>\n            <ServiceControl", "reference to itself", ""},
    {"TZ211", "<Component Id=\"Tools\">", "<Component Id=\"Program\">",
     "Program\">\n                        <File Name=\"tools", "is hidden by the one in line 13",
     ""},
    {"TZ212",
     "<Fragment Id=\"StopService\">\n            <ServiceControl Name=\"#SERVICE\" Action=\"stop\" "
     "Wait=\"yes\"/>\n        </Fragment>",
     "<Condition Expression=\"MODERN E 1\"><Fragment Id=\"StopService\">\n            "
     "<ServiceControl Name=\"#SERVICE\" Action=\"stop\" Wait=\"yes\"/>\n        "
     "</Fragment></Condition>",
     "<Condition Expression=\"MODERN E 1\"><", "never evaluated", "around the reference"},
    {"TZ213", "<Directory Id=\"ProgramMenuFolder\">",
     "<Directory Id=\"ProgramMenufolder\" Path=\"C:\\x\">", "ProgramMenufolder",
     "is no folder of the system", "did you mean `ProgramMenuFolder`?"},
    {"TZ214", "<ComponentRef Id=\"Program\"/>",
     "<ComponentRef Id=\"Program\"/><Component><File Name=\"a\" Source=\"a\"/></Component>",
     "<File Name=\"a\"", "stands in no `Directory`", "define the Component in a Directory"},
    {"TZ215", "<Product Id=\"Lantern\">",
     "<Product Id=\"Lantern\"><Variable Id=\"X\" Type=\"int\" Value=\"1\"/>", "<Variable Id=\"X\"",
     "isn't seen here", "root element"},
    {"TZ217", "Path=\"data\"", "Path=\"[DATA]data\"", "<Directory Id=\"DATA\"", "needs itself", ""},

    // attributes and keywords
    {"TZ301", "Source=\"payload\\tools.exe\"", "", "<File Name=\"tools.exe\"", "has no `Source`",
     ""},
    {"TZ301", "<FileSearch Name", "<FileSearch name", "<FileSearch", "has no `Name`",
     "is `name` meant as `Name`?"},
    {"TZ301", "Description=\"The lantern\"", "", "<Shortcut", "has no `Description`", ""},
    {"TZ301", "Action=\"stop\" Wait=\"yes\"", "Action=\"stop\"", "<ServiceControl", "has no `Wait`",
     ""},
    {"TZ301", "<Condition Expression=\"LEVEL = MODERN\"/>", "<Condition/>", "<Condition/>",
     "has no `Expression`", ""},
    {"TZ301", "Type=\"int\" Value=\"3\"", "Type=\"int\"", "<Variable Id=\"LEVEL\"",
     "has no `Value`", ""},
    {"TZ311", "<File Name=\"tools.exe\"", "<File On=\"uninstall\" Name=\"tools.exe\"",
     "On=\"uninstall\" Name", "`On` is never read on a `File`.",
     "limit the component around it: <Component On=\"uninstall\">."},
    {"TZ311", "<Shortcut Name", "<Shortcut Vital=\"no\" Name", "Vital=\"no\" Name",
     "`Vital` is never read on a `Shortcut`.", "always vital"},
    {"TZ311", "<Component Id=\"Tools\">", "<Component Id=\"Tools\" Path=\"[DATA]\">",
     "Path=\"[DATA]\">", "`Path` is never read on a `Component`.", "Directory"},
    {"TZ311", "<FeatureRef Id=\"Extras\"/>", "<FeatureRef Id=\"Extras\" On=\"install\"/>",
     "On=\"install\"/>", "`On` is never read on a `FeatureRef`.", "put it on the `Feature`"},
    {"TZ311", "KillProcess=\"yes\"", "KilProcess=\"yes\"", "KilProcess", "never read",
     "did you mean `KillProcess`?"},
    {"TZ312", "<FeatureRef Id=\"Extras\"/>", "<FeatureRef Id=\"Extras\"><Feature/></FeatureRef>",
     "<Feature/>", "never read", "put it into the `Feature`"},
    {"TZ313", "Return=\"sync\"", "Return=\"sync\" Show=\"no\"", "Show", "no effect", ""},
    {"TZ321", "On=\"installupgrade\">\n            <Reg",
     "On=\"InstallUpgrade\">\n            <Reg", "InstallUpgrade", "names no mode",
     "did you mean `installupgrade`?"},
    {"TZ321", "<Fragment Id=\"End\" On=\"uninstall\">", "<Fragment Id=\"End\" On=\"remove\">",
     "remove\">", "names no mode", ""},
    {"TZ322", "Action=\"stop\" Wait=\"yes\"", "Action=\"stop\" Wait=\"Yes\"", "Yes",
     "counts as `no`", "did you mean `yes`?"},
    {"TZ322", "Return=\"sync\"", "Return=\"Sync\"", "Sync\"\n", "counts as `no`",
     "did you mean `sync`?"},
    {"TZ322", "Return=\"check\"", "Return=\"chek\"", "chek", "counts as `no`",
     "did you mean `check`?"},
    {"TZ322", "Vital=\"no\"", "Vital=\"true\"", "true", "counts as `no`", "did you mean `yes`?"},
    {"TZ323", "Return=\"sync\"", "Return=\"async\"", "async", "counts as `no`", "`sync`"},
    {"TZ324", "Action=\"start\"", "Action=\"Start\"", "Start\" W", "nothing is done",
     "did you mean `start`?"},
    {"TZ325", "<RegistryKey Action=\"create\" Root", "<RegistryKey Action=\"Create\" Root",
     "Create\" Root", "no word of `Action`", "did you mean `create`?"},
    {"TZ326", "\"HKEY_LOCAL_MACHINE\" Key=\"Software\\Lantern Works\"",
     "\"HKLM\" Key=\"Software\\Lantern Works\"", "HKLM", "no word of `Root`",
     "`HKEY_LOCAL_MACHINE`"},
    {"TZ327", "Type=\"REG_DWORD\"", "Type=\"REG_QWORD\"", "REG_QWORD", "no word of `Type`",
     "did you mean `REG_DWORD`?"},
    {"TZ328", "<Variable Id=\"LEVEL\" Type=\"int\"", "<Variable Id=\"LEVEL\" Type=\"Int\"",
     "Int\" V", "there is no variable `LEVEL`", "did you mean `int`?"},

    // texts, variables and expressions
    {"TZ401", "Path=\"[DATA]cache\"", "Path=\"[DAATA]cache\"", "[DAATA]",
     "no `Directory` with the Id `DAATA`", "did you mean `[DATA]`?"},
    {"TZ401", "[System32Folder]sc.exe", "[System32folder]sc.exe", "[System32folder]",
     "no folder word", "did you mean `[System32Folder]`?"},
    {"TZ402", "Path=\"[DATA]cache\"", "Path=\"[DATA\\cache\"", "[DATA\\cache", "don't match", ""},
    {"TZ402", "stay in [DATA]", "stay in DATA]", "]\"/>\n            </Fragment>\n        </Inst",
     "don't match", ""},
    {"TZ403", "Path=\"#PRODUCT\"", "Path=\"#PRODCUT\"", "#PRODCUT", "no variable `PRODCUT`",
     "did you mean `#PRODUCT`?"},
    {"TZ404", "Title=\"Your notes stay in [DATA]\"", "Title=\"Version #LEVEL\"", "#LEVEL",
     "is an integer", ""},
    {"TZ405", "Title=\"Saying goodbye\"", "Title=\"Number #\"", "#\"", "names nothing", "##"},
    {"TZ406", "Path=\"#PRODUCT\"", "Path=\"#PRODUCT 2\"", "#PRODUCT 2", "as a whole for the name",
     "ends only at the next"},
    {"TZ407",
     "<Directory Id=\"ProgramMenuFolder\">\n            <Directory Id=\"MENU\" Path=\"#COMPANY\">",
     "<Directory Id=\"Menus\">\n            <Directory Id=\"MENU\">", "<Directory Id=\"Menus\"",
     "has no `Path`", ""},
    {"TZ411", "MODERN E 1 AND", "MODERN == 1 AND", "= 1 AND", "can't stand behind `=`",
     "compare by E"},
    {"TZ411", "( LEVEL L 2 )", "( LEVEL L 2", "( LEVEL", "no counterpart", ""},
    {"TZ411", "MODERN E 1 AND", "MODERN E 1 and", "and !", "can't stand behind `1`",
     "did you mean `AND`?"},
    {"TZ411", "LEVEL = MODERN", " ", "\"/>\n            </Fragment>\n            <FragmentRef",
     "is empty", ""},
    {"TZ412", "Expression=\"MODERN = 1\"", "Expression=\"MODREN = 1\"", "MODREN", "is no variable",
     "did you mean `MODERN`?"},
    {"TZ413", "MODERN E 1 AND", "PRODUCT E 1 AND", "E 1 AND", "can't be compared", ""},
    {"TZ413", "LEVEL = MODERN", "LEVEL = PRODUCT", "= PRODUCT", "can't be assigned", ""},
    {"TZ414", "LEVEL = MODERN", "OS_BIT = MODERN", "= MODERN", "is constant", "compare by E"},
    {"TZ415", "Type=\"int\" Value=\"0\"", "Type=\"int\" Value=\"none\"", "MODERN E",
     "is no integer", ""},
    {"TZ416", "LEVEL L 2", "LEVEL L 4294967296", "4294967296", "counts as 2147483647", ""},
    {"TZ417", "MODERN E 1 AND ! ( LEVEL L 2 )", "1 E 1", "1 E 1", "true on every machine", ""},
    {"TZ418", "<Product Id", "<Variable Id=\"X\" Type=\"int\" Value=\"1\"/><Product Id",
     "<Variable Id=\"X\"", "Nothing reads the variable `X`", ""},
    {"TZ419", "<Variable Id=\"LEVEL\"", "<Variable Id=\"OS_BIT\"", "OS_BIT", "built-in", ""},
    {"TZ420", "Value=\"Lantern\"", "Value=\"[VENDOR]\"", "[VENDOR]\"", "isn't replaced", ""},
    {"TZ431", "<Caution Title=\"Your notes stay in [DATA]\"/>", longCaution, longText,
     "has at least 600", ""},
    {"TZ432", "<Fragment Id=\"End\" On=\"uninstall\">", longFragment, longName,
     "has 300 characters", ""},
    {"TZ433", "<Caution Title=\"Your notes stay in [DATA]\"/>", likelyLong, "[DATA]xx", "may have",
     ""},

    // files, registry and paths
    {"TZ501", "<ComponentRef Id=\"Tools\"/>",
     "<ComponentRef Id=\"Tools\"/><RegistryValue Name=\"a\" Type=\"REG_SZ\" Value=\"b\"/>",
     "<RegistryValue Name=\"a\"", "must stand in a `RegistryKey`", ""},
    {"TZ502", "Type=\"REG_DWORD\" Value=\"3\"", "Type=\"REG_DWORD\" Value=\"0x3\"", "0x3",
     "is no decimal number", ""},
    {"TZ503", "Type=\"REG_DWORD\" Value=\"3\"", "Type=\"REG_DWORD\" Value=\"4294967295\"",
     "4294967295", "is written as 2147483647", ""},
    {"TZ504", "Key=\"Software\\Lantern Works\\Lantern\"", "Key=\"\"",
     "\"/>\n        </Component>\n        <Fragment", "An empty `Key`", ""},
    {"TZ505", "<RegistryKey Action=\"create\" Root=\"HKEY_LOCAL_MACHINE\"",
     "<RegistryKey Action=\"create\"", "<RegistryKey Action=\"create\" Key=\"Software",
     "has no `Root`", ""},
    {"TZ506", "<RegistryKey Action=\"create\" Key=\"Lantern\">",
     "<RegistryKey Action=\"remove\" Key=\"Lantern\">", "<RegistryValue Name=\"Folder\"",
     "just been removed", ""},
    {"TZ507", "File=\"[System32Folder]sc.exe\"", "File=\"\"", "\" Return=\"sync\"",
     "The `File` is empty", ""},
    {"TZ508", "Type=\"REG_DWORD\" Value=\"3\"", "Type=\"REG_DWORD\" Value=\"three\" Vital=\"no\"",
     "three", "Vital hides it", ""},
    {"TZ511", "<File Name=\"sync.dll\" Source=\"payload\\sync.dll\"/>", longFile, longName,
     "Windows makes files of up to 259", ""},
    {"TZ512", "<Shortcut Name=\"#PRODUCT\"", longShortcut, longName, "The process would end", ""},
    {"TZ512", "<RemoveDirectory Path=\"[DATA]cache\"/>", longRemoval, "[DATA]nn",
     "The process would end", ""},
    {"TZ513", "<File Name=\"sync.dll\" Source=\"payload\\sync.dll\"/>", likelyLongFile, "nnn",
     "may have", ""},
    {"TZ514", "<File Name=\"tools.exe\"", "<File Name=\"tools?.exe\"", "tools?.exe",
     "Windows refuses", ""},
    {"TZ515", "<File Name=\"tools.exe\"", "<File Name=\"con.exe\"", "con.exe", "name of a device",
     ""},
    {"TZ515", "<File Name=\"tools.exe\"", "<File Name=\"tools.\"", "tools.\"",
     "ends in a blank or a dot", ""},
    {"TZ516", "<File Name=\"sync.dll\"", "<File Name=\"lantern.exe\"",
     "lantern.exe\" Source=\"payload\\sync.dll\"", "is installed by line 14, too", ""},
    {"TZ517", "<File Name=\"sync.dll\"", "<File Name=\"Lantern.exe\"",
     "Lantern.exe\" Source=\"payload\\sync.dll\"", "nothing but case", ""},
    {"TZ518", "Source=\"payload\\sync.dll\"", "Source=\"C:\\payload\\sync.dll\"", "C:\\payload",
     "all the same", ""},

    // balance
    {"TZ601", "<Component Id=\"Tools\">", "<Component Id=\"Tools\" On=\"installupgrade\">",
     "<File Name=\"tools.exe\"", "is never removed", ""},
    {"TZ602", "<Component Id=\"Tools\">", "<Component Id=\"Tools\" On=\"install\">",
     "<File Name=\"tools.exe\"", "stays for good", ""},
    {"TZ604", "<ComponentRef Id=\"NoSettings\"/>", "",
     "<RegistryKey Action=\"create\" Key=\"Lantern\"", "is never removed", "On=\"uninstall\""},
    {"TZ605", "<Component Id=\"Settings\" On=\"installupgrade\">", "<Component Id=\"Settings\">",
     "", "", ""},
    {"TZ606", "<Component Id=\"Tools\">", "<Component Id=\"Tools\" On=\"uninstall\">",
     "<File Name=\"tools.exe\"", "never installed", ""},
    {"TZ607", "Key=\"Software\\Lantern Works\\Lantern\"", "Key=\"Software\\Lanterns\"",
     "<RegistryKey Action=\"remove\"", "never made", ""},
    {"TZ608", "<ServiceControl Name=\"#SERVICE\" Action=\"start\"",
     "<ServiceControl Name=\"Other\" Action=\"start\"", "<ServiceControl Name=\"Other\"",
     "neither stopped nor removed", ""},

    // dangers
    {"TZ701", "Path=\"[DATA]cache\"", "Path=\"[ProgramFilesFolder]\"", "[ProgramFilesFolder]",
     "folder of the system", ""},
    {"TZ702", "Path=\"[DATA]cache\"", "Path=\"C:\\\"", "C:\\", "whole drive", ""},
    {"TZ703", "Path=\"[DATA]cache\"", "Path=\"[VENDOR]\"", "[VENDOR]\"",
     "above what the product installs", ""},
    {"TZ704", "Path=\"[DATA]cache\"", "Path=\"[ProgramFilesFolder]Other\"",
     "[ProgramFilesFolder]Other", "beside", ""},
    {"TZ705", "Key=\"Software\\Lantern Works\\Lantern\"", "Key=\"Software\\Classes\"",
     "Software\\Classes", "belongs to others", ""},
    {"TZ706", "[APPLICATIONROOTDIRECTORY]sync.dll", "sync.dll", "sync.dll\" DllEntry",
     "without its path", ""},
    {"TZ707", "[System32Folder]sc.exe", "sc.exe", "sc.exe", "without its path", ""},
    {"TZ708", "[System32Folder]sc.exe", "[DATA]setup.msi", "[DATA]setup.msi", "is no program", ""},
    {"TZ709", "<FragmentRef Id=\"StopService\"/>", "", "", "", ""},
};

std::string replaced(std::string_view text, std::string_view from, std::string_view to) {
    std::string result(text);
    const size_t start = result.find(from);
    EXPECT_NE(start, std::string::npos) << from;
    if (start != std::string::npos)
        result.replace(start, from.size(), to);
    // What renames an element renames its end tag, too.
    if (to.starts_with("<Prodct"))
        result.replace(result.find("</Product>"), 10, "</Prodct>");
    if (from == "InstallExecuteSequence>")
        result.replace(result.rfind(from), from.size(), to);
    return result;
}

Place placeIn(const std::string& script, size_t offset) {
    const auto before = std::string_view(script).substr(0, offset);
    const size_t lineStart = before.rfind('\n') + 1;
    return {static_cast<uint32_t>(std::count(before.begin(), before.end(), '\n') + 1),
            static_cast<uint32_t>(offset - lineStart + 1), 0};
}

class MistakesTest : public CCheckTest, public testing::WithParamInterface<Mistake> {};

}  // namespace

TEST_F(CCheckTest, AGoodScriptHasNoFinding) {
    EXPECT_EQ(findingsIn(good), "");
}

TEST_P(MistakesTest, IsFoundAtItsPlaceWithARemedy) {
    const Mistake& mistake = GetParam();
    const std::string script = replaced(good, mistake.from, mistake.to);
    const std::vector<Finding> findings = check(script);
    std::string all;
    for (const Finding& finding : findings) {
        all += std::to_string(finding.place.line) + ":" + std::to_string(finding.place.column) +
               " " + narrow(finding.kind->code) + " " + narrow(finding.text) + " -- " +
               narrow(finding.help) + "\n";
    }
    const auto fits = [&](const Finding& finding) {
        if (narrow(finding.kind->code) != mistake.code ||
            narrow(finding.text).find(mistake.text) == std::string::npos ||
            narrow(finding.help).find(mistake.help) == std::string::npos)
            return false;
        if (mistake.at.empty())
            return true;
        const size_t at = script.find(mistake.at);
        EXPECT_NE(at, std::string::npos) << mistake.at;
        const Place place = placeIn(script, at);
        return finding.place.line == place.line && finding.place.column == place.column;
    };
    EXPECT_TRUE(std::any_of(findings.begin(), findings.end(), fits)) << all;
}

// Those that a change of one place in this script can't bring about have tests of their own.
TEST(Mistakes, AreOfEveryKindThatIsToldButForThoseTestedElsewhere) {
    std::set<std::string> codes{"TZ102", "TZ103", "TZ216", "TZ509", "TZ521", "TZ522",
                                "TZ523", "TZ603", "TZ611", "TZ612", "TZ613"};
    for (const Mistake& mistake : mistakes)
        codes.insert(mistake.code);
    for (const FindingKind& kind : findingKinds())
        EXPECT_TRUE(codes.contains(narrow(kind.code))) << narrow(kind.code);
}

INSTANTIATE_TEST_SUITE_P(Typical, MistakesTest, testing::ValuesIn(mistakes));
