// Mistakes about files, the registry and the payload.

#include "check/mistakes/Mistake.h"

namespace {

const Mistake mistakes[] = {
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
};

}  // namespace

std::span<const Mistake> mistakesInFiles() {
    return mistakes;
}
