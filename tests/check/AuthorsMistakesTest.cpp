// Mistakes that authors of scripts make, one at a time, in a script that is right.

#include <algorithm>
#include <ostream>
#include <regex>
#include <set>

#include "check/CCheckTest.h"

namespace {

/// One mistake: `find` stands in mistakes.xml, and the author wrote `instead`.
struct Mistake {
    std::string what;
    std::string find;
    std::string instead;  ///< with { } around what must be marked
    const char* code;
    std::string help = {};  ///< a part of the help that must be given
    /// What must be marked when it isn't in `instead`: a part of the script that stands there once,
    /// with { } in it. Without both the finding is about the file as a whole.
    std::string at = {};
    std::set<std::string> alsoErrors = {};  ///< codes of the errors that come of it
    size_t times = 1;                       ///< how often `find` stands there, and all are changed
};

void PrintTo(const Mistake& mistake, std::ostream* out) {
    *out << mistake.what;
}

const std::string longText(512, 'x');

const Mistake mistakes[] = {
    // XML and encoding
    {"an element isn't closed",
     "                <ComponentRef Id=\"NoKeys\"/>\n            </Feature>\n",
     "                <ComponentRef Id=\"NoKeys\"/>\n", "TZ101", "`Feature` of line 91",
     "{<}/InstallExecuteSequence>"},
    {"an end tag is misspelt", "</DirectoryRef>", "{<}/Directoryref>", "TZ101"},
    {"a quotation mark is forgotten", R"(Name="lantern.ico" Source="payload\lantern.ico")",
     R"(Name="lantern.ico Source="payload{\}lantern.ico")", "TZ101"},
    {"an attribute stands there twice", R"(<Component Id="Keys" On="installupgrade")",
     R"(<Component Id="Keys" On="install" {O}n="upgrade")", "TZ101", "`On` stands there twice"},
    {"another encoding is declared", R"(encoding="UTF-8")", R"(encoding="{ISO-8859-1}")", "TZ103",
     "UTF-8"},
    {"no encoding is declared", R"(<?xml version="1.0" encoding="UTF-8"?>)",
     R"(<?xml version="1.0"?>)", "TZ104", "UTF-8", "{Schöne Grüße 🏮 from #COMPANY}"},
    {"an umlaut of another code page", R"(Description="Lights the lantern")",
     "Description=\"Z\xFCndet an\"", "TZ105", "UTF-8", "{Z\xFCndet an}"},

    {"a bare ampersand", "Lights the lantern", "Lights the lantern {&} more", "TZ106", "&amp;"},
    {"a bare angle", "Lights the lantern", "Lights {<}the> lantern", "TZ106", "&lt;"},

    // Elements, where they stand and what refers to them
    {"a misspelt element", R"(<File Name="lantern.ico")", R"({<Fille} Name="lantern.ico")", "TZ203",
     "`File`"},
    {"an element in lower case", R"(<File Name="lantern.ico")", R"({<file} Name="lantern.ico")",
     "TZ203", "`File`"},
    {"an element spelt as the dictionary does", "<ShellExcute", "{<ShellExecute}", "TZ203",
     "`ShellExcute`"},
    {"letters swapped in a value", R"(<RegistryValue Name="Width")",
     R"({<RegistryVlaue} Name="Width")", "TZ203", "`RegistryValue`"},
    {"an element as another installer calls it", R"(<RemoveDirectory Path="[MENU]"/>)",
     R"({<RemoveFolder} Path="[MENU]"/>)", "TZ203"},
    {"a file in a fragment", R"(<FileSearch Name="licence.key")",
     "{<File} Name=\"a.txt\" Source=\"payload\\manual.txt\"/>\n<FileSearch Name=\"licence.key\"",
     "TZ203", "`Component`"},
    {"a fragment in a feature", R"(<ComponentRef Id="Menu"/>)",
     R"({<FragmentRef} Id="StopSync"/><ComponentRef Id="Menu"/>)", "TZ203"},
    {"a component in the sequence itself", R"(<FeatureRef Id="Documentation"/>)",
     R"({<ComponentRef} Id="Manual"/>)", "TZ203", "`Feature`"},
    {"a reference to a feature in a feature", R"(<ComponentRef Id="Menu"/>)",
     R"({<FeatureRef} Id="Documentation"/><ComponentRef Id="Menu"/>)", "TZ203"},
    {"a directory in a feature", R"(<ComponentRef Id="Menu"/>)",
     R"({<Directory} Id="MORE" Path="more"/><ComponentRef Id="Menu"/>)", "TZ203"},
    {"a condition in a service", R"(Action="stop" Wait="yes"/>)",
     R"(Action="stop" Wait="yes">{<Condition} Expression="MODERN E 1"/></ServiceControl>)",
     "TZ203"},
    {"a variable among the steps", R"(<FragmentRef Id="StopSync"/>)",
     R"({<Variable} Id="LATE" Type="int" Value="1"/><FragmentRef Id="StopSync"/>)", "TZ203"},
    {"a misspelt directory",
     R"(<Directory Id="DATA")",
     R"({<Directroy} Id="DATA")",
     "TZ204",
     "`Directory`",
     "",
     {"TZ209", "TZ214", "TZ401"}},
    {"a variable in lower case",
     R"(<Variable Id="MODERN")",
     R"({<variable} Id="MODERN")",
     "TZ204",
     "`Variable`",
     "",
     {"TZ412"}},
    {"a misspelt sequence",
     "InstallExecuteSequence>",
     "InstallExecutionSequence>",
     "TZ204",
     "`InstallExecuteSequence`",
     "{<InstallExecutionSequence}",
     {"TZ205"},
     2},
    {"a product without a sequence",
     "InstallExecuteSequence>",
     "InstallExecutionSequence>",
     "TZ205",
     "`InstallExecutionSequence`",
     "{<Product}",
     {},
     2},
    {"a misspelt product", "Product", "Prodcut", "TZ201", "`Prodcut`", "{<Prodcut} Id=", {}, 2},
    {"a second product", "</Script>",
     R"({<Product} Id="More"><InstallExecuteSequence/></Product></Script>)", "TZ202"},
    {"a sequence of its own for uninstall", "    </Product>",
     "{<InstallExecuteSequence}><Fragment On=\"uninstall\"/></InstallExecuteSequence></Product>",
     "TZ206"},
    {"a component that nobody refers to", R"(<ComponentRef Id="Menu"/>)", "", "TZ207", "",
     R"({<Component} Id="Menu")"},
    {"a fragment that nobody refers to", R"(<FeatureRef Id="Documentation"/>)", "", "TZ207", "",
     R"({<Feature} Id="Documentation")"},
    {"a reference without an id", R"(<ComponentRef Id="Menu"/>)", "{<ComponentRef}/>", "TZ208"},
    {"an id in capitals",
     R"(<ComponentRef Id="Menu"/>)",
     R"(<ComponentRef {ID}="Menu"/>)",
     "TZ311",
     "`Id`",
     "",
     {"TZ208"}},
    {"a misspelt reference", R"(<ComponentRef Id="Program"/>)", R"(<ComponentRef Id="{Porgram}"/>)",
     "TZ209", "`Program`"},
    {"a reference in another case", R"(<ComponentRef Id="Menu"/>)",
     R"(<ComponentRef Id="{menu}"/>)", "TZ209", "`Menu`"},
    {"a reference of the wrong kind", R"(<FeatureRef Id="Documentation"/>)",
     R"(<FragmentRef Id="{Documentation}"/>)", "TZ209", "`FeatureRef`"},
    {"a reference to a directory that isn't there",
     R"(<DirectoryRef Id="DATA">)",
     R"(<DirectoryRef Id="{DATEN}">)",
     "TZ209",
     "`DATA`",
     "",
     {"TZ214"}},
    {"a fragment that refers to itself", R"(<ServiceControl Name="#SERVICE" Action="stop")",
     "<FragmentRef Id=\"{StopSync}\"/>\n<ServiceControl Name=\"#SERVICE\" Action=\"stop\"",
     "TZ210"},
    {"two fragments that refer to each other", R"(<ServiceControl Name="#SERVICE" Action="stop")",
     "<Fragment><Condition Expression=\"MODERN E 1\"><FragmentRef Id=\"{StopSync}\"/></Condition>"
     "</Fragment><ServiceControl Name=\"#SERVICE\" Action=\"stop\"",
     "TZ210"},
    {"a component copied with its id", R"(<Component Id="NoKeys" On="uninstall">)",
     "<Component Id=\"{Keys}\" On=\"upgrade\"/>\n<Component Id=\"NoKeys\" On=\"uninstall\">",
     "TZ211"},
    {"a component in place of a reference to it", R"(<ComponentRef Id="Menu"/>)",
     R"(<Component Id="{Menu}"/>)", "TZ211", "`ComponentRef`"},
    {"a condition around a definition",
     "<Component Id=\"Manual\">\n"
     "                            <File Name=\"manual.txt\" Source=\"payload\\manual.txt\" "
     "Vital=\"no\"/>\n"
     "                        </Component>",
     "{<Condition} Expression=\"MODERN E 1\">\n<Component Id=\"Manual\">\n"
     "<File Name=\"manual.txt\" Source=\"payload\\manual.txt\" Vital=\"no\"/>\n"
     "</Component></Condition>",
     "TZ212",
     "",
     "",
     {"TZ214"}},
    {"a folder without its s", R"(<Directory Id="ProgramFilesFolder">)",
     R"(<Directory Id="{ProgramFileFolder}">)", "TZ213", "`ProgramFilesFolder`"},
    {"a folder in another case", R"(<Directory Id="ProgramMenuFolder">)",
     R"(<Directory Id="{programMenuFolder}">)", "TZ213", "`ProgramMenuFolder`"},
    {"a component with files in a feature", R"(<ComponentRef Id="Menu"/>)",
     "<Component Id=\"Late\">{<File} Name=\"a.txt\" Source=\"payload\\manual.txt\"/></Component>\n"
     "<ComponentRef Id=\"Menu\"/>",
     "TZ214"},
    {"a file in a component outside the directories",
     R"(<Component Id="Keys" On="installupgrade">)",
     "<Component Id=\"Keys\" On=\"installupgrade\">\n"
     "{<File} Name=\"a.txt\" Source=\"payload\\manual.txt\"/>",
     "TZ214"},
    {"a variable in the product", R"(<DirectoryRef Id="DATA">)",
     R"({<Variable} Id="LATE" Type="int" Value="1"/><DirectoryRef Id="DATA">)", "TZ215"},
    {"a directory in terms of itself", R"(<Directory Id="DOC" Path="doc">)",
     R"({<Directory} Id="DOC" Path="[DOC]doc">)", "TZ217"},

    // Attributes and their words
    {"a file without a source", R"(<File Name="lantern.ico" Source="payload\lantern.ico"/>)",
     R"({<File} Name="lantern.ico"/>)", "TZ301"},
    {"a shortcut without a description",
     R"(<Shortcut Name="#PRODUCT" Description="Lights the lantern")",
     R"({<Shortcut} Name="#PRODUCT")", "TZ301"},
    {"a removal that doesn't say whether to wait",
     R"(<ServiceControl Name="#SERVICE" Action="remove" Wait="no"/>)",
     R"({<ServiceControl} Name="#SERVICE" Action="remove"/>)", "TZ301"},
    {"an action that doesn't say what its number means",
     R"(<ShellExcute File="[APPLICATIONROOTDIRECTORY]sync.exe" ExeCommand="register"
                             Return="sync")",
     R"({<ShellExcute} File="[APPLICATIONROOTDIRECTORY]sync.exe" ExeCommand="register")", "TZ301"},
    {"an inner key without an action", R"(<RegistryKey Action="create" Key="Window">)",
     R"({<RegistryKey} Key="Window">)", "TZ301"},
    {"a variable without a type",
     R"(<Variable Id="EDITION" Type="string" Value="free"/>)",
     R"({<Variable} Id="EDITION" Value="free"/>)",
     "TZ301",
     "",
     "",
     {"TZ412"}},
    {"an integer variable without a value",
     R"(<Variable Id="MODERN" Type="int" Value="0"/>)",
     R"({<Variable} Id="MODERN" Type="int"/>)",
     "TZ301",
     "",
     "",
     {"TZ415"}},
    {"a condition without an expression", R"(<Condition Expression="HAS_SETTINGS E 0">)",
     "{<Condition}>", "TZ301"},
    {"an attribute in lower case",
     R"(<Condition Expression="HAS_SETTINGS E 0">)",
     R"(<Condition {expression}="HAS_SETTINGS E 0">)",
     "TZ311",
     "`Expression`",
     "",
     {"TZ301"}},
    {"a misspelt attribute", R"(KillProcess="yes")", R"({KillProces}="yes")", "TZ311",
     "`KillProcess`"},
    {"a mode on a file", R"(<File Name="lantern.ico")",
     R"(<File {On}="install" Name="lantern.ico")", "TZ311", R"(<Component On="install">)"},
    {"a mode on a search", R"(<FileSearch Name="licence.key")",
     R"(<FileSearch {On}="install" Name="licence.key")", "TZ311"},
    {"a mode on a feature", R"(<Feature Id="Main">)", R"(<Feature Id="Main" {On}="install">)",
     "TZ311"},
    {"a mode on a reference", R"(<ComponentRef Id="Keys"/>)",
     R"(<ComponentRef Id="Keys" {On}="install"/>)", "TZ311"},
    {"a shortcut that may fail", "Description=\"Lights the lantern\"",
     "Description=\"Lights the lantern\" {Vital}=\"no\"", "TZ311"},
    {"a custom action that may fail", R"(Title="Putting out the light")",
     R"(Title="Putting out the light" {Vital}="no")", "TZ311"},
    {"a path on a component", R"(<Component Id="Settings" )",
     R"(<Component Id="Settings" {Path}="C:\Lantern" )", "TZ311", "Directory"},
    {"a default value of an expression", R"(<FileSearch Name="licence.key")",
     R"(<FileSearch {Default}="0" Name="licence.key")", "TZ311"},
    {"a name on a directory", R"(<Directory Id="DOC" Path="doc">)",
     R"(<Directory Id="DOC" {Name}="doc">)", "TZ311", "`Path`"},
    {"a file in a reference", R"(<ComponentRef Id="Menu"/>)",
     R"(<ComponentRef Id="Menu">{<File} Name="a.txt" Source="payload\manual.txt"/></ComponentRef>)",
     "TZ312"},
    {"a window that is to be seen", R"(Title="Registering the service")",
     R"({Show}="yes" Title="Registering the service")", "TZ313"},
    {"a key that may fail", R"(<RegistryKey Action="create" Key="Window">)",
     R"(<RegistryKey Action="create" Key="Window" {Vital}="no">)", "TZ313"},
    {"a mode with a capital", R"(<Fragment Id="Register" On="install">)",
     R"(<Fragment Id="Register" On="{Install}">)", "TZ321", "`install`"},
    {"a misspelt mode", R"(<Fragment Id="Leave" On="uninstall">)",
     R"(<Fragment Id="Leave" On="{uninstal}">)", "TZ321", "`uninstall`"},
    {"two modes", R"(<Component Id="Keys" On="installupgrade">)",
     R"(<Component Id="Keys" On="{install,upgrade}">)", "TZ321", "`installupgrade`"},
    {"a vital action in capitals", R"(Title="Registering the service" Vital="yes")",
     R"(Title="Registering the service" Vital="{YES}")", "TZ322", "`yes`"},
    {"a delay with a capital", R"(<Component Id="Program" SupportDelayInstall="yes">)",
     R"(<Component Id="Program" SupportDelayInstall="{Yes}">)", "TZ322", "`yes`"},
    {"a misspelt check", R"(Return="check")", R"(Return="{chek}")", "TZ322", "`check`"},
    {"a word that means the opposite", R"(Return="sync")", R"(Return="{async}")", "TZ323",
     "`sync`"},
    {"a check with a capital", R"(Return="check")", R"(Return="{Check}")", "TZ322", "`check`"},
    {"a truth in place of yes", R"(KillProcess="yes")", R"(KillProcess="{true}")", "TZ322",
     "`yes`"},
    {"a wait of seconds", R"(Action="start" Wait="yes")", R"(Action="start" Wait="{30}")", "TZ323",
     "`yes`"},
    {"a program waited for in other words", R"(Return="sync")", R"(Return="{yes}")", "TZ322",
     "`sync`"},
    {"another element's word for a return", R"(Return="check")", R"(Return="{sync}")", "TZ322",
     "`check`"},
    {"a return that nobody knows", R"(Return="check")", R"(Return="{sometimes}")", "TZ323",
     "`check`"},
    {"no word for a return", R"(Return="check")", R"(Return="{}")", "TZ323", "`check`"},
    {"a version with a letter", R"(MinVersion="6.1")", R"(MinVersion="{v6.1}")", "TZ329"},
    {"a version of five numbers", R"(MinVersion="6.1")", R"(MinVersion="{6.1.0.0.1}")", "TZ329"},
    {"a version with a sign", R"(MinVersion="6.1")", R"(MinVersion="{6.1+}")", "TZ329"},
    {"a version of too large a number", R"(MinVersion="6.1")", R"(MinVersion="{6.1.70000}")",
     "TZ329"},
    {"an action on a service with a capital", R"(Action="stop")", R"(Action="{Stop}")", "TZ324",
     "`stop`"},
    {"a restart of a service", R"(Action="start" Wait="yes")", R"(Action="{restart}" Wait="yes")",
     "TZ324", "`start`"},
    {"an action on a key with a capital", R"(<RegistryKey Action="create" Key="Window">)",
     R"(<RegistryKey Action="{Create}" Key="Window">)", "TZ325", "`create`"},
    {"a deletion of a key", R"(Action="remove" Root)", R"(Action="{delete}" Root)", "TZ325",
     "`remove`"},
    {"a root in short", R"(Action="create" Root="HKEY_LOCAL_MACHINE")",
     R"(Action="create" Root="{HKLM}")", "TZ326", "`HKEY_LOCAL_MACHINE`"},
    {"a misspelt root", R"(Action="remove" Root="HKEY_LOCAL_MACHINE")",
     R"(Action="remove" Root="{HKEY_LOCALMACHINE}")", "TZ326", "`HKEY_LOCAL_MACHINE`"},
    {"a type of value that can't be written", R"(Type="REG_SZ")", R"(Type="{REG_EXPAND_SZ}")",
     "TZ327"},
    {"a type of value in short", R"(Type="REG_DWORD")", R"(Type="{DWORD}")", "TZ327",
     "`REG_DWORD`"},
    {"a type of variable with a capital",
     R"(<Variable Id="COMPANY" Type="string")",
     R"(<Variable Id="COMPANY" Type="{String}")",
     "TZ328",
     "`string`",
     "",
     {"TZ403"}},
    {"a long type of variable",
     R"(<Variable Id="MODERN" Type="int")",
     R"(<Variable Id="MODERN" Type="{integer}")",
     "TZ328",
     "`int`",
     "",
     {"TZ412"}},
    {"a type of truth",
     R"(<Variable Id="MODERN" Type="int" Value="0"/>)",
     R"(<Variable Id="MODERN" Type="{bool}" Value="false"/>)",
     "TZ328",
     "`int`",
     "",
     {"TZ412"}},

    // Texts, variables and expressions
    {"a directory that isn't there", R"(Path="[APPLICATIONROOTDIRECTORY]cache")",
     R"(Path="{[ROOT]}cache")", "TZ401"},
    {"a misspelt directory in a text", R"(Path="[MENU]")", R"(Path="{[MENUE]}")", "TZ401",
     "`[MENU]`"},
    {"a misspelt folder in a text", R"(Path="[System32Folder]")", R"(Path="{[SystemFolder]}")",
     "TZ401", "`[System32Folder]`"},
    {"a directory under a shorter name", R"(Path="[MENU]")", R"(Path="{[APPLICATIONROOTDIR]}x")",
     "TZ401", "`[APPLICATIONROOTDIRECTORY]`"},
    {"a bracket that isn't closed", R"(IcoFile="[APPLICATIONROOTDIRECTORY]lantern.ico")",
     R"(IcoFile="{[APPLICATIONROOTDIRECTORY\lantern.ico}")", "TZ402"},
    {"a bracket that isn't opened", R"(Path="[MENU]")", R"(Path="MENU{]}")", "TZ402"},
    {"a list in brackets", R"(Title="Clearing up")", R"(Title="Clearing up {[1/3]}")", "TZ401"},
    {"a misspelt variable in a text", R"(<Directory Id="MENU" Path="#COMPANY">)",
     R"(<Directory Id="MENU" Path="{#COMPANIE}">)", "TZ403", "`#COMPANY`"},
    {"a number in a text", R"(Title="Clearing up")", R"(Title="Clearing up, {#1}")", "TZ403"},
    {"an integer variable in a text", R"(Title="Clearing up")", R"(Title="Clearing up {#MODERN}")",
     "TZ404"},
    {"the bits of the machine in a path", R"(<Directory Id="DOC" Path="doc">)",
     R"(<Directory Id="DOC" Path="{#OS_BIT}">)", "TZ404"},
    {"a language with a sharp", R"(Title="Clearing up")", R"(Title="Clearing up C{#}")", "TZ405",
     "##"},
    {"text behind a variable", R"(from #COMPANY")", R"(from {#COMPANY and others}")", "TZ406"},
    {"a path behind a variable", R"(<Directory Id="MENU" Path="#COMPANY">)",
     R"(<Directory Id="MENU" Path="{#COMPANY\Lantern}">)", "TZ406", "Directory"},
    {"a directory in place of a reference to it",
     "DirectoryRef",
     "Directory",
     "TZ407",
     "",
     "{<Directory} Id=\"DATA\">",
     {},
     2},
    {"two signs for equality", "MODERN E 1 OR", "MODERN ={=} 1 OR", "TZ411", "by E"},
    {"a sign for inequality", "MODERN NE 1", "MODERN {!}= 1", "TZ411", "by NE"},
    {"a sign for greater", "OS_MAJOR_VERSION GE LEAST_VERSION",
     "OS_MAJOR_VERSION {&gt;}= LEAST_VERSION", "TZ411", "`G"},
    {"an and in lower case", "PAID AND (", "PAID {and} (", "TZ411", "`AND`"},
    {"an or of C", "1 OR !", "1 {||} !", "TZ411", "`OR`"},
    {"a sign that is none", "1 OR !", "1 {~} !", "TZ411", "words such as AND"},
    {"a blank forgotten", "HAS_SETTINGS E 0", "HAS_SETTINGS {E0}", "TZ411"},
    {"a parenthesis right behind a word", "PAID AND (", "PAID {AND}(", "TZ411"},
    {"a parenthesis that isn't closed", "HAS_SETTINGS E 0", "{(} HAS_SETTINGS E 0", "TZ411"},
    {"a parenthesis that isn't opened", "HAS_SETTINGS E 0", "HAS_SETTINGS E 0 {)}", "TZ411"},
    {"an operator at the end", "MODERN NE 1", "MODERN NE{}", "TZ411"},
    {"an empty expression", R"(Expression="HAS_SETTINGS E 0")", R"(Expression="{}")", "TZ411"},
    {"a misspelt variable in an expression", "MODERN NE 1", "{MODREN} NE 1", "TZ412", "`MODERN`"},
    {"a variable in another case", "HAS_SETTINGS E 0", "{Has_Settings} E 0", "TZ412",
     "`HAS_SETTINGS`"},
    {"a text in an expression", "EDITION E PAID", "EDITION E {'paid'}", "TZ412"},
    {"a sum", "MODERN NE 1", "MODERN NE {LEAST_VERSION-9}", "TZ412"},
    {"a text compared with a number", "EDITION E PAID", "EDITION {E} 1", "TZ413"},
    {"a text for an integer", "EDITION = PAID", "EDITION {=} 1", "TZ413"},
    {"an assignment in place of a comparison", "HAS_SETTINGS E 0", "OS_BIT {=} 64", "TZ414",
     "by E"},
    {"an assignment to a const", "MODERN = 1", "LEAST_VERSION {=} 11", "TZ414"},
    {"an assignment to a number", "MODERN = 1", "1 {=} MODERN", "TZ414"},
    {"an integer in words", R"(Id="MODERN" Type="int" Value="0")",
     R"(Id="MODERN" Type="int" Value="{no}")", "TZ415"},
    {"a version for an integer", R"(Value="10")", R"(Value="{10.0}")", "TZ415"},
    {"an integer of 33 bits", R"(Value="10")", R"(Value="{4294967296}")", "TZ416"},
    {"a number of 33 bits in a condition", "HAS_SETTINGS E 0", "HAS_SETTINGS E {4294967296}",
     "TZ416"},
    {"a condition of numbers", "HAS_SETTINGS E 0", "{1 E 1}", "TZ417"},
    {"a condition of constants", "HAS_SETTINGS E 0", "{LEAST_VERSION GE 10}", "TZ417"},
    {"a variable that nothing reads", R"(<Variable Id="MODERN")",
     "{<Variable} Id=\"MODE\" Type=\"int\" Value=\"0\"/>\n<Variable Id=\"MODERN\"", "TZ418"},
    {"a variable declared twice", R"(<VariableConst Id="PAID")",
     "<Variable Id=\"{EDITION}\" Type=\"string\" Value=\"\"/>\n<VariableConst Id=\"PAID\"",
     "TZ419"},
    {"a variable named as a built-in one", R"(<Variable Id="MODERN")",
     "<Variable Id=\"{OS_BIT}\" Type=\"int\" Value=\"0\"/>\n<Variable Id=\"MODERN\"", "TZ419"},
    {"a directory in the value of a variable", R"(Value="LanternSync")",
     R"(Value="{[DATA]}LanternSync")", "TZ420"},
    {"an environment variable in a path", R"(<Directory Id="COMPANY_DIR" Path="#COMPANY">)",
     R"(<Directory Id="COMPANY_DIR" Path="{%ProgramFiles%}\Works">)", "TZ421",
     "`[ProgramFilesFolder]`"},
    {"an environment variable in a source",
     R"(Source="payload\manual.txt")",
     R"(Source="{%BUILD%}\manual.txt")",
     "TZ421",
     "folder word",
     "",
     {"TZ521"}},
    {"a caution like a licence", R"(Title="Clearing up")", "Title=\"{" + longText + "}\"", "TZ431"},
    {"a condition over a page", "HAS_SETTINGS E 0",
     "{HAS_SETTINGS E 0" + std::string(500, ' ') + "}", "TZ431"},
    {"a long id", R"(<Fragment Id="Survey">)", "<Fragment Id=\"{" + longText + "}\">", "TZ432"},
    {"a program far down", R"(File="[APPLICATIONROOTDIRECTORY]sync.exe")",
     "File=\"{[APPLICATIONROOTDIRECTORY]" + std::string(475, 'x') + ".exe}\"", "TZ433"},

    // Files, the registry and the payload
    {"a value without a key", R"(<Component Id="NoKeys" On="uninstall">)",
     "<Component Id=\"NoKeys\" On=\"uninstall\">\n"
     "{<RegistryValue} Name=\"Gone\" Type=\"REG_SZ\" Value=\"1\"/>",
     "TZ501"},
    {"a value in a feature", R"(<Condition Expression="HAS_SETTINGS E 0">)",
     "<Condition Expression=\"HAS_SETTINGS E 0\">\n"
     "{<RegistryValue} Name=\"Gone\" Type=\"REG_SZ\" Value=\"1\"/>",
     "TZ501"},
    {"a number of hex digits", R"(Value="640")", R"(Value="{0x280}")", "TZ502",
     "digits alone: 640"},
    {"a number with its unit", R"(Value="640")", R"(Value="{640px}")", "TZ502"},
    {"an empty number", R"(Value="640")", R"(Value="{}")", "TZ502"},
    {"a number of 32 bits without a sign", R"(Value="640")", R"(Value="{4294967295}")", "TZ503"},
    {"an empty key removed",
     "<RegistryKey Action=\"remove\" Root=\"HKEY_LOCAL_MACHINE\"\n"
     "                         Key=\"Software\\Example Works\\Lantern\"/>",
     R"(<RegistryKey Action="remove" Root="HKEY_LOCAL_MACHINE" Key="{}"/>)", "TZ504"},
    {"a key without a root", R"(<RegistryKey Action="remove" Root="HKEY_LOCAL_MACHINE")",
     R"({<RegistryKey} Action="remove")", "TZ505", "root keys"},
    {"a value in a key that is removed", R"(Key="Software\Example Works\Lantern"/>)",
     "Key=\"Software\\Example Works\\Lantern\">\n"
     "{<RegistryValue} Name=\"Folder\" Type=\"REG_SZ\" Value=\"\"/></RegistryKey>",
     "TZ506"},
    {"a root in the key", R"(Key="Software\Example Works\Lantern"/>)",
     R"(Key="{HKEY_LOCAL_MACHINE}\Software\Example Works\Lantern"/>)", "TZ510", "Root"},
    {"an empty program", R"(File="[APPLICATIONROOTDIRECTORY]sync.exe")", R"(File="{}")", "TZ507"},
    {"a failure that nobody sees", R"(Type="REG_MULTI_SZ" Value="none" Vital="no")",
     R"(Type="REG_DWORD" Value="{none}" Vital="no")", "TZ508"},
    {"a custom action without its directory",
     "APPLICATIONROOTDIRECTORY",
     "ROOT",
     "TZ509",
     "this Id",
     "{<CustomAction}",
     {},
     8},
    {"a name beyond what Windows makes", R"(Name="lantern.ico")",
     "Name=\"{" + std::string(260, 'x') + "}\"", "TZ511"},
    {"a shortcut with a sentence for a name", R"(Name="#PRODUCT" Desc)",
     "Name=\"{" + std::string(260, 'x') + "}\" Desc", "TZ512"},
    {"a shortcut named as its file", R"(Name="#PRODUCT" Desc)", R"(Name="{Lantern.lnk}" Desc)",
     "TZ519", ".lnk"},
    {"a name that is long on some machines", R"(Name="lantern.ico")",
     "Name=\"{" + std::string(200, 'x') + "}\"", "TZ513"},
    {"a directory with a sentence for a name", R"(Path="[MENU]")",
     "Path=\"{[DATA]" + std::string(250, 'x') + "}\"", "TZ512"},
    {"a question as a name", R"(Name="lantern.ico")", R"(Name="{how?.txt}")", "TZ514"},
    {"a shortcut with a bar in its name", R"(Name="#PRODUCT" Desc)",
     R"(Name="{Lantern | Sync}" Desc)", "TZ515"},
    {"a drive below another directory", R"(<Directory Id="COMPANY_DIR" Path="#COMPANY">)",
     R"(<Directory Id="COMPANY_DIR" Path="{C:\Lanterns}">)", "TZ514"},
    {"a pattern in place of a directory", R"(Path="[MENU]")",
     R"(Path="{[APPLICATIONROOTDIRECTORY]*.log}")", "TZ514"},
    {"a name with a colon", R"(Name="manual.txt")", R"(Name="{Lantern: manual.txt}")", "TZ515"},
    {"a name of a device", R"(Name="manual.txt")", R"(Name="{aux.txt}")", "TZ515"},
    {"a name with a dot at its end", R"(Name="manual.txt")", R"(Name="{manual.}")", "TZ515"},
    {"a copied line", R"(<File Name="action.dll")", R"(<File Name="{lantern.ico}")", "TZ516"},
    {"a copied line in another case", R"(<File Name="action.dll")", R"(<File Name="{Lantern.ico}")",
     "TZ517"},
    {"a source of the author's machine", R"(Source="payload\lantern.ico")",
     R"(Source="{C:\build\lantern.ico}")", "TZ518"},
    {"a misspelt source", R"(Source="payload\manual.txt")", R"(Source="{payload\manuel.txt}")",
     "TZ521", R"(payload\manual.txt)"},
    {"a source without its folder", R"(Source="payload\manual.txt")", R"(Source="{manual.txt}")",
     "TZ521", R"(payload\manual.txt)"},
    {"a file forgotten", R"(<File Name="manual.txt" Source="payload\manual.txt" Vital="no"/>)", "",
     "TZ522", "", ""},

    {"a program started at uninstall, too", R"(<Fragment Id="Register" On="install">)",
     R"(<Fragment Id="Register">)", "TZ525", "On=\"installupgrade\"",
     R"(<ShellExcute File="{[APPLICATIONROOTDIRECTORY]sync.exe}")"},
    {"a program started before it is there", R"(<Fragment Id="Leave" On="uninstall">)",
     "<Fragment On=\"install\"><ShellExcute File=\"{[DOC]manual.txt}\" Return=\"no\"/></Fragment>\n"
     "<Fragment Id=\"Leave\" On=\"uninstall\">",
     "TZ524", "behind"},
    {"a library in a directory that has been removed", R"(<RemoveDirectory Path="[MENU]"/>)",
     "<RemoveDirectory Path=\"[MENU]\"/>\n<CustomAction DllFile=\"{[DOC]action.dll}\" "
     "DllEntry=\"Late\" Return=\"check\"/>",
     "TZ525", "in front of"},

    // What install, upgrade and uninstall leave to each other
    {"files that stay", R"(<RemoveDirectory Path="[APPLICATIONROOTDIRECTORY]" Vital="no"/>)", "",
     "TZ601", "", R"({<File} Name="settings.ini")"},
    {"files that are put there once",
     "<DirectoryRef Id=\"DATA\">\n            <Component Id=\"Settings\" On=\"installupgrade\">",
     "<DirectoryRef Id=\"COMPANY_DIR\">\n            <Component Id=\"Settings\" On=\"install\">",
     "TZ602", "", R"({<File} Name="settings.ini")"},
    {"a shortcut that stays",
     "<Directory Id=\"MENU\" Path=\"#COMPANY\">\n                <Component Id=\"Menu\">",
     "<Directory Id=\"MENU\" Path=\"#COMPANY\"/>\n"
     "<Directory Id=\"DesktopFolder\"><Component Id=\"Menu\" On=\"installupgrade\">",
     "TZ603", "", "{<Shortcut}"},
    {"a key that stays", R"(<ComponentRef Id="NoKeys"/>)", "", "TZ604", "",
     R"({<RegistryKey} Action="create" Root)"},
    {"a key made at uninstall", R"(<Component Id="Keys" On="installupgrade">)",
     R"(<Component Id="Keys">)", "TZ605", "", R"({<RegistryKey} Action="create" Root)"},
    {"a file that is only removed", R"(<Component Id="Manual">)",
     R"(<Component Id="Manual" On="uninstall">)", "TZ606", "", R"({<File} Name="manual.txt")"},
    {"another key removed than was made", R"(Key="Software\Example Works\Lantern"/>)",
     R"(Key="Software\Example Works\Lanthorn"/>)", "TZ607", "",
     R"({<RegistryKey} Action="remove")"},
    {"another service started than is stopped",
     R"(<ServiceControl Name="#SERVICE" Action="start" Wait="yes")",
     R"({<ServiceControl} Name="LanternUpdate" Action="start" Wait="yes")", "TZ608"},
    {"a directory that stays", R"(<RemoveDirectory Path="[MENU]"/>)", "", "TZ609", "[MENU]",
     "{<Directory} Id=\"MENU\""},
    {"a service removed while it runs", R"(<FragmentRef Id="StopSync"/>)", "", "TZ709", "",
     R"(<ServiceControl Name="{#SERVICE}" Action="remove")"},
    {"a file renamed from one version to the next", R"(<File Name="manual.txt")",
     R"(<File Name="manual.html")", "TZ611", "", ""},
    {"a key renamed from one version to the next", R"(Key="Window")", R"(Key="Windows")", "TZ612",
     "", ""},
    {"a service renamed from one version to the next", R"(Value="LanternSync")",
     R"(Value="LanternSync2")", "TZ613", "", ""},

    // Dangers
    {"the programs of the machine removed", R"(Path="[MENU]")", R"(Path="{[ProgramFilesFolder]}")",
     "TZ701"},
    {"a drive removed", R"(Path="[MENU]")", R"(Path="{C:\}")", "TZ702"},
    {"the company's directory removed", R"(Path="[MENU]")", R"(Path="{[COMPANY_DIR]}")", "TZ703"},
    {"a neighbour's directory removed", R"(Path="[MENU]")", R"(Path="{[COMPANY_DIR]Common}")",
     "TZ704"},
    {"the keys of all programs removed", R"(Key="Software\Example Works\Lantern"/>)",
     R"(Key="{Software}"/>)", "TZ705"},
    {"a library without its path", R"(DllFile="[APPLICATIONROOTDIRECTORY]action.dll")",
     R"(DllFile="{action.dll}")", "TZ706", "[APPLICATIONROOTDIRECTORY]action.dll"},
    {"a program without its path", R"(File="[APPLICATIONROOTDIRECTORY]sync.exe")",
     R"(File="{cmd.exe}")", "TZ707", "[System32Folder]cmd.exe"},
    {"a directory emptied again", R"(<RemoveDirectory Path="[MENU]"/>)",
     R"(<RemoveDirectory Path="[MENU]"/></Fragment>
<Fragment On="upgrade"><RemoveDirectory Path="{[DOC]}"/>)",
     "TZ710", "On=\"uninstall\""},
    {"a package that is no program", R"(File="[APPLICATIONROOTDIRECTORY]sync.exe")",
     R"(File="{[APPLICATIONROOTDIRECTORY]sync.msi}")", "TZ708", "msiexec.exe"},
    {"a program with its arguments", R"(sync.exe" ExeCommand="register")", R"(sync.exe register")",
     "TZ708", "`ExeCommand`", R"({[APPLICATIONROOTDIRECTORY]sync.exe register})"},
};

/// The script that is right; it stands beside the test program.
const std::string& rightScript() {
    static const std::string script = readFile(testProgramDirectory() + L"\\mistakes.xml");
    return script;
}

size_t occurrences(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

std::string replaced(std::string text, const std::string& part, const std::string& by) {
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + by.size()))
        text.replace(at, part.size(), by);
    return text;
}

/// UTF-16 units of a text in UTF-8. A byte that is none of UTF-8 counts as a character.
uint32_t unitsIn(std::string_view text) {
    uint32_t units = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if ((byte & 0xC0) != 0x80)
            units += byte >= 0xF0 && byte < 0xF8 ? 2 : 1;
    }
    return units;
}

/// A script with a mistake, and where it is.
struct Broken {
    std::string script;
    Place place;
};

/// Takes the braces out of a script and tells the place that they were around; of a script without
/// braces none.
Broken withoutBraces(const std::string& script) {
    const size_t open = script.find('{');
    const size_t close = script.find('}');
    if (open == std::string::npos)
        return {script, {}};
    const size_t lineStart = script.rfind('\n', open) + 1;
    const std::string_view text = script;
    return {script.substr(0, open) + script.substr(open + 1, close - open - 1) +
                script.substr(close + 1),
            {static_cast<uint32_t>(std::count(script.begin(), script.begin() + open, '\n') + 1),
             unitsIn(text.substr(lineStart, open - lineStart)) + 1,
             unitsIn(text.substr(open + 1, close - open - 1))}};
}

Broken broken(const Mistake& mistake) {
    EXPECT_EQ(occurrences(rightScript(), mistake.find), mistake.times) << mistake.find;
    std::string script = replaced(rightScript(), mistake.find, mistake.instead);
    if (!mistake.at.empty()) {
        const std::string unmarked = withoutBraces(mistake.at).script;
        EXPECT_EQ(occurrences(script, unmarked), 1u) << unmarked;
        script = replaced(script, unmarked, mistake.at);
    }
    return withoutBraces(script);
}

/// A setup as the script installs it, with its version before.
class SetupToCheck : public CCheckTest {
protected:
    SetupToCheck() {
        request.previous = folder.write(L"previous.xml", rightScript());
        request.payload = folder.makeDirectory(L"setup");
        const std::regex source("Source=\"([^\"]*)\"");
        for (std::sregex_iterator found(rightScript().begin(), rightScript().end(), source), end;
             found != end; ++found) {
            const std::string name = (*found)[1];
            folder.write(L"setup\\" + std::wstring(name.begin(), name.end()), name);
        }
    }

    CheckRequest request;
};

class AuthorsMistakesTest : public SetupToCheck, public testing::WithParamInterface<Mistake> {};
using RightScriptTest = SetupToCheck;

/// One mistake and all that is told for it: of what comes of a mistake nothing is.
struct Alone {
    std::string what;
    std::string find;
    std::string instead;
    std::string codes;
};

void PrintTo(const Alone& mistake, std::ostream* out) {
    *out << mistake.what;
}

const Alone alone[] = {
    {"a misspelt product", "Product", "Prodcut", "TZ201 "},
    {"a component that nobody refers to", R"(<ComponentRef Id="Menu"/>)", "", "TZ207 "},
    {"a misspelt reference", R"(<ComponentRef Id="Program"/>)", R"(<ComponentRef Id="Porgram"/>)",
     "TZ207 TZ209 "},
    {"a misspelt mode", R"(<Component Id="Program" )", R"(<Component Id="Program" On="instal" )",
     "TZ321 "},
    {"a fault in the one expression that reads a variable", "EDITION E PAID", "EDITION E 1",
     "TZ413 "},
    {"an integer in words that is read twice", R"(Id="MODERN" Type="int" Value="0")",
     R"(Id="MODERN" Type="int" Value="no")", "TZ415 "},
    {"a root in short above another key", R"(Action="create" Root="HKEY_LOCAL_MACHINE")",
     R"(Action="create" Root="HKLM")", "TZ326 "},
    {"a key that stays with those in it", R"(<ComponentRef Id="NoKeys"/>)", "", "TZ604 TZ207 "},
    {"a key made at uninstall with those in it", R"(<Component Id="Keys" On="installupgrade">)",
     R"(<Component Id="Keys">)", "TZ605 "},
    {"a path on a component", R"(<Component Id="Settings" )",
     R"(<Component Id="Settings" Path="C:\Lantern" )", "TZ311 "},
    {"a misspelt source", R"(Source="payload\manual.txt")", R"(Source="payload\manuel.txt")",
     "TZ521 "},
    {"a source of the author's machine", R"(Source="payload\lantern.ico")",
     R"(Source="C:\build\lantern.ico")", "TZ518 "},
    {"a program started behind a condition that may know of it",
     R"(<Fragment Id="Leave" On="uninstall">)",
     R"(<Condition Expression="HAS_SETTINGS E 1"><ShellExcute File="[DATA]..\sync.exe" Return="no"/>
        <ShellExcute File="[APPLICATIONROOTDIRECTORY]sync.exe" Return="no"/></Condition>
        <Fragment Id="Leave" On="uninstall">)",
     ""},
};

class AloneTest : public SetupToCheck, public testing::WithParamInterface<Alone> {};

/// A finding on a line, as an editor reads it.
std::string line(const Finding& finding) {
    return std::to_string(finding.place.line) + ":" + std::to_string(finding.place.column) + "+" +
           std::to_string(finding.place.length) + " " + narrow(finding.kind->code) + " " +
           narrow(finding.text) + " help: " + narrow(finding.help) + "\n";
}

std::string lines(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings)
        text += line(finding);
    return text;
}

/// Letters alone, as names of tests are made of: "a misspelt element" is AMisspeltElement.
template <class Row>
std::string testName(const testing::TestParamInfo<Row>& mistake) {
    std::string name;
    bool capital = true;
    for (const char letter : mistake.param.what) {
        if (isalnum(static_cast<unsigned char>(letter)))
            name += capital ? static_cast<char>(toupper(letter)) : letter;
        capital = letter == ' ' || letter == '-';
    }
    return name;
}

}  // namespace

TEST_F(RightScriptTest, HasNothingThatIsFound) {
    EXPECT_EQ(lines(check(rightScript(), request)), "");
}

TEST_P(AuthorsMistakesTest, IsFoundWithItsPlaceAndItsRemedy) {
    const Mistake& mistake = GetParam();
    const auto [script, place] = broken(mistake);
    const std::vector<Finding> findings = check(script, request);
    SCOPED_TRACE(lines(findings));

    const auto found = std::find_if(findings.begin(), findings.end(), [&](const Finding& finding) {
        return narrow(finding.kind->code) == mistake.code && finding.place == place;
    });
    ASSERT_NE(found, findings.end()) << mistake.code << " isn't told at " << place.line << ":"
                                     << place.column << "+" << place.length;
    EXPECT_FALSE(found->help.empty()) << "A finding tells how it is mended.";
    EXPECT_NE(narrow(found->help).find(mistake.help), std::string::npos) << mistake.help;

    std::set<std::string> errors;
    for (const Finding& finding : findings)
        if (finding.kind->severity == Severity::error)
            errors.insert(narrow(finding.kind->code));
    errors.erase(mistake.code);
    EXPECT_EQ(errors, mistake.alsoErrors);
}

INSTANTIATE_TEST_SUITE_P(Of, AuthorsMistakesTest, testing::ValuesIn(mistakes), testName<Mistake>);

TEST_P(AloneTest, IsToldWithoutWhatComesOfIt) {
    const std::vector<Finding> findings =
        check(replaced(rightScript(), GetParam().find, GetParam().instead), request);
    std::string codes;
    for (const Finding& finding : findings)
        codes += narrow(finding.kind->code) + " ";
    EXPECT_EQ(codes, GetParam().codes) << lines(findings);
}

INSTANTIATE_TEST_SUITE_P(Of, AloneTest, testing::ValuesIn(alone), testName<Alone>);

// Those that a change of one place in this script can't bring about have tests of their own.
TEST(AuthorsMistakes, AreOfEveryKindThatIsToldButForThoseTestedElsewhere) {
    std::set<std::string> codes{"TZ102", "TZ216", "TZ523"};
    for (const Mistake& mistake : mistakes)
        codes.insert(mistake.code);
    for (const FindingKind& kind : findingKinds())
        EXPECT_TRUE(codes.contains(narrow(kind.code))) << narrow(kind.code);
}

TEST_F(RightScriptTest, EndsHalfWayWhereWhatIsUsedIsGoneOrCannotBeMade) {
    const auto endsRun = [this](const std::string& find, const std::string& instead) {
        for (const Finding& finding : check(replaced(rightScript(), find, instead), request))
            if (finding.endsRun)
                return narrow(finding.kind->code);
        return std::string();
    };
    EXPECT_EQ(endsRun(R"(Name="lantern.ico")", "Name=\"" + std::string(260, 'x') + "\""), "TZ511");
    EXPECT_EQ(endsRun(R"(<Fragment Id="Farewell" On="uninstall">)",
                      R"(<Fragment Id="Farewell" On="uninstall"><CustomAction DllEntry="Late"
                         DllFile="[APPLICATIONROOTDIRECTORY]action.dll" Return="check"/>)"),
              "TZ525");
    EXPECT_EQ(endsRun(R"(<Fragment Id="Survey">)",
                      R"(<Fragment On="install"><CustomAction DllEntry="Early"
                         DllFile="[APPLICATIONROOTDIRECTORY]action.dll" Return="check"/></Fragment>
                         <Fragment Id="Survey">)"),
              "")
        << "The file may be there from an install before.";
}

TEST_F(RightScriptTest, IsToldOfItsFaultsInWholeSentences) {
    const auto textOf = [this](const std::string& find, const std::string& instead) {
        return narrow(check(replaced(rightScript(), find, instead), request).front().text);
    };
    EXPECT_EQ(
        textOf(R"(<Directory Id="DOC" Path="doc">)", R"(<Directory Id="DOC" Path="[DOC]doc">)"),
        "`Directory` `DOC` needs itself to be made.");
    EXPECT_EQ(textOf(R"(Value="640")", R"(Value="")"), "An empty text is no decimal number.");
    EXPECT_EQ(
        textOf(R"(<Directory Id="ProgramMenuFolder">)", R"(<Directory Id="ProgramMenusFolder">)"),
        "`ProgramMenusFolder` is no folder of the system, so what stands in it goes to a path "
        "relative to the working directory.");
}
