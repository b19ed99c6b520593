#include "check/CPartsTest.h"

using RegistryChecksTest = CPartsTest;

namespace {

/// A key that is made, with a value of these attributes in it, and removed at uninstall.
Parts value(const std::string& attributes, bool changing = false) {
    return {
        .component = R"(<RegistryKey Action="create" Root="HKEY_CURRENT_USER" Key="K">)"
                     R"(<RegistryValue Name="N" )" +
                     attributes + "/></RegistryKey>",
        .sequence = R"(<Feature><ComponentRef Id="U"/></Feature>)",
        .product =
            R"(<DirectoryRef Id="R"><Component Id="U" On="uninstall"><RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="K"/></Component></DirectoryRef>)",
        .on = R"( On="installupgrade")",
        .changing = changing};
}

}  // namespace

TEST_F(RegistryChecksTest, ANumberOfTheRegistryIsWrittenInDigits) {
    const Case cases[] = {
        {value(R"(Type="REG_DWORD" Value="0x1g")"),
         "TZ502 `0x1g` is no decimal number. -> write digits alone, with a minus sign in front if "
         "need be.\n"},
        {value(R"(Type="REG_DWORD" Value="0x1FFFFFFFF")"),
         "TZ502 `0x1FFFFFFFF` is no decimal number. -> write digits alone, with a minus sign in "
         "front if need be.\n"},
        {value(R"(Type="REG_DWORD" Value="0x")"),
         "TZ502 `0x` is no decimal number. -> write digits alone, with a minus sign in front if "
         "need be.\n"},
        {value(R"(Type="REG_DWORD" Value="0X1F")"),
         "TZ502 `0X1F` is no decimal number. -> write digits alone: 31.\n"},
        {value(R"(Type="REG_DWORD" Value="1x34")"),
         "TZ502 `1x34` is no decimal number. -> write digits alone, with a minus sign in front if "
         "need be.\n"},
        {value(R"(Value="1")"), "TZ301 `RegistryValue` has no `Type`. -> add the attribute.\n"},
        {value(R"(Type="#V" Value="x")", true), ""},
        {value(R"(Type="REG_DWORD" Value="#V")", true), ""},
        {value(R"(Type="REG_DWORD" Value="2147483647")"), ""},
        {value(R"(Type="REG_DWORD" Value="-2147483648")"), ""},
        {value(R"(Type="REG_DWORD" Value="-9999999999")"),
         "TZ503 `-9999999999` is written as -2147483648. -> beyond 2147483647 write the negative "
         "number of the same bits.\n"},
        {value(R"(Type="REG_DWORD" Value="[ProgramFilesFolder]")"), ""},
        {value(R"(Type="REG_DOWRD" Value="x")"),
         "TZ327 `REG_DOWRD` is no word of `Type`. -> did you mean `REG_DWORD`?\n"},
        {value(R"(Type="REG_DWORD" Value="01z")"),
         "TZ502 `01z` is no decimal number. -> write digits alone, with a minus sign in front if "
         "need be.\n"},
    };
    expectTold(cases);
}

TEST_F(RegistryChecksTest, KeysAreReadByWhatTheyDo) {
    const Case cases[] = {
        {{.component =
              R"(<RegistryKey Action="create" Root="HKEY_CURRENT_USER" Key="HKEY_CURRENT_USER"/>)",
          .on = R"( On="uninstall")"},
         "TZ510 `HKEY_CURRENT_USER` is taken for a key below `HKEY_CURRENT_USER`. -> name the root "
         "in Root alone.\n"},
        {{.component =
              R"(<RegistryKey Action="create" Root="HKEY_CURRENT_USER" Key="HKEY_CURRENT_USER\A"/>)",
          .on = R"( On="uninstall")"},
         "TZ510 `HKEY_CURRENT_USER` is taken for a key below `HKEY_CURRENT_USER`. -> name the root "
         "in Root alone.\n"},
        {{.component =
              R"(<RegistryKey Action="create" Root="HKEY_CURRENT_USER" Key="HKEY_CURRENT_USERS"/>)",
          .on = R"( On="uninstall")"},
         ""},
        {{.component =
              R"(<RegistryKey Root="HKEY_CURRENT_USER" Key="K"><RegistryValue Name="N" Type="REG_SZ" Value="1"/></RegistryKey>)"},
         "TZ301 `RegistryKey` has no `Action`. -> add the attribute.\n"},
        {{.component =
              R"(<RegistryKey Root="HKEY_CURRENT_USER" Key="K"><Condition Expression="OS_MAJOR_VERSION E 6"><RegistryValue Name="N" Type="REG_SZ" Value="1"/></Condition></RegistryKey>)"},
         "TZ301 `RegistryKey` has no `Action`. -> add the attribute.\n"},
        {{.component =
              R"(<RegistryKey Action="#V" Root="HKEY_CURRENT_USER" Key="K"><Condition Expression="OS_MAJOR_VERSION E 6"><RegistryValue Name="N" Type="REG_SZ" Value="1"/></Condition></RegistryKey>)",
          .on = R"( On="uninstall")",
          .changing = true},
         ""},
        {{.component =
              R"(<RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="K"><Condition Expression="OS_MAJOR_VERSION E 6"><RegistryValue Name="N" Type="REG_SZ" Value="1"/></Condition></RegistryKey>)",
          .on = R"( On="uninstall")"},
         "TZ607 `HKEY_CURRENT_USER\\K` is removed, but never made. -> nothing, if the program "
         "makes it by itself.\n"
         "TZ506 The key of this `RegistryValue` has just been removed. -> remove the element: the "
         "value goes with its key.\n"},
        {{.component = R"(<RegistryKey Action="create" Root="HKEY_CURRENT_USER" Key="#V"/>)",
          .on = R"( On="uninstall")",
          .changing = true},
         ""},
        {{.component = R"(<RegistryKey Action="create" Root="HKEY_CURRENT_USER" Key="A\B"/>)",
          .sequence = R"(<Feature><ComponentRef Id="U"/></Feature>)",
          .product =
              R"(<DirectoryRef Id="R"><Component Id="U" On="uninstall"><RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="A"/></Component></DirectoryRef>)",
          .on = R"( On="installupgrade")"},
         ""},
        {{.component =
              R"(<RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="A\B"/><RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="A\C"/><RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="A"/>)",
          .sequence = R"(<Feature><ComponentRef Id="D"/></Feature>)",
          .product =
              R"(<DirectoryRef Id="R"><Component Id="D" On="installupgrade"><RegistryKey Action="create" Root="HKEY_CURRENT_USER" Key="A"/><RegistryKey Action="create" Root="HKEY_CURRENT_USER" Key="A"/></Component></DirectoryRef>)",
          .on = R"( On="uninstall")"},
         ""},
        {{.component = R"(<RegistryKey Action="create" Root="HKEY_CURRENT_USER" Key="A\B"/>)",
          .sequence = R"(<Feature><ComponentRef Id="U"/></Feature>)",
          .product =
              R"(<DirectoryRef Id="R"><Component Id="U" On="uninstall"><RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="A\B\C"/></Component></DirectoryRef><DirectoryRef Id="R"><Component Id="U3" On="uninstall"><RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="A"/></Component></DirectoryRef>)",
          .on = R"( On="installupgrade")"},
         "TZ207 Nothing reaches `Component` `U3`. -> refer to it by `ComponentRef` in the "
         "sequence.\n"},
        {{.component = R"(<RegistryKey Action="create" Root="HKEY_CURRENT_USER" Key="A\B"/>)",
          .sequence = R"(<Feature><ComponentRef Id="U"/></Feature>)",
          .product =
              R"(<DirectoryRef Id="R"><Component Id="U" On="uninstall"><RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="A\B"/><RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="A\B\C"/><RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="A"/><RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="Z"/></Component></DirectoryRef>)",
          .on = R"( On="installupgrade")"},
         "TZ607 `HKEY_CURRENT_USER\\Z` is removed, but never made. -> nothing, if the program "
         "makes it by itself.\n"},
        {{.component = R"(<RegistryKey Action="create" Root="HKEY_NONE" Key="A"/>)",
          .on = R"( On="uninstall")"},
         "TZ326 `HKEY_NONE` is no word of `Root`. -> use `HKEY_CLASSES_ROOT`, `HKEY_CURRENT_USER`, "
         "`HKEY_LOCAL_MACHINE`, `HKEY_USERS`, `HKEY_CURRENT_CONFIG`.\n"},
        {{.component = R"(<RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="K"/>)",
          .on = R"( On="upgrade")"},
         ""},
        {{.component =
              R"(<RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="A\B"/><RegistryKey Action="remove" Root="HKEY_CURRENT_USER" Key="A"/>)",
          .on = R"( On="uninstall")"},
         "TZ607 `HKEY_CURRENT_USER\\A\\B` is removed, but never made. -> nothing, if the program "
         "makes it by itself.\n"
         "TZ607 `HKEY_CURRENT_USER\\A` is removed, but never made. -> nothing, if the program "
         "makes it by itself.\n"},
    };
    expectTold(cases);
}
