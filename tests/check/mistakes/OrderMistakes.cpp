// Mistakes in what is done when: the order of the steps, what install, upgrade and uninstall leave
// to each other, and what a machine must be spared.

#include "check/mistakes/Mistake.h"

namespace {

const Mistake mistakes[] = {
    // The order of the steps
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

}  // namespace

std::span<const Mistake> mistakesInOrder() {
    return mistakes;
}
