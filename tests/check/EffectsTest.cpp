#include "check/CPartsTest.h"

using EffectsTest = CPartsTest;

TEST_F(EffectsTest, ServicesAreFollowedByTheNamesThatAreKnown) {
    const Case cases[] = {
        {{.sequence =
              R"(<Fragment><ServiceControl Name="#V" Action="start" Wait="no"/></Fragment>)",
          .changing = true},
         ""},
        {{.sequence =
              R"(<Fragment><ServiceControl Name="s" Action="start" Wait="no"/><ServiceControl Name="S" Action="start" Wait="no"/></Fragment>)"},
         "TZ608 The service `s` is neither stopped nor removed at uninstall. -> stop and remove it "
         "in a Fragment On=\"uninstall\".\n"},
        {{.sequence =
              R"(<Fragment><ServiceControl Name="s" Action="start" Wait="no"/><ServiceControl Name="s" Action="#V" Wait="no"/></Fragment>)",
          .changing = true},
         "TZ608 The service `s` is neither stopped nor removed at uninstall. -> stop and remove it "
         "in a Fragment On=\"uninstall\".\n"},
        {{.sequence =
              R"(<Fragment On="install"><ServiceControl Name="s" Action="start" Wait="no"/></Fragment><Fragment On="uninstall"><ServiceControl Name="s" Action="remove" Wait="no"/></Fragment>)"},
         "TZ709 The service `s` is removed without having been stopped. -> stop it before: a "
         "service that runs is only marked for removal.\n"},
    };
    expectTold(cases);
}

TEST_F(EffectsTest, WhatACommandNamesCountsAsDealtWith) {
    const Case cases[] = {
        {{.sequence =
              R"(<Feature><ComponentRef Id="D"/></Feature><Fragment On="uninstall"><ShellExcute File="C:\x\a.exe" ExeCommand="[ProgramFilesFolder] " Return="sync"/></Fragment>)",
          .product =
              R"(<Directory Id="Y" Path="C:\y"><Component Id="D"><File Name="a" Source="a"/></Component></Directory><Directory Id="BROKEN"/>)"},
         "TZ207 Nothing uses `Directory` `BROKEN`. -> remove it, or refer to it as [Id].\n"},
        {{.sequence =
              R"(<Feature><ComponentRef Id="D"/></Feature><Fragment On="uninstall"><ShellExcute File="C:\x\a.exe" ExeCommand="[ProgramFilesFolder] [Y]" Return="sync"/></Fragment>)",
          .product =
              R"(<Directory Id="Y" Path="C:\y"><Component Id="D"><File Name="a" Source="a"/></Component></Directory><Directory Id="BROKEN"/>)"},
         "TZ207 Nothing uses `Directory` `BROKEN`. -> remove it, or refer to it as [Id].\n"},
        {{.sequence =
              R"(<Feature><ComponentRef Id="D"/></Feature><Fragment On="uninstall"><ShellExcute File="C:\x\a.exe" ExeCommand="[ProgramFilesFolder] [BROKEN]" Return="sync"/></Fragment>)",
          .product =
              R"(<Directory Id="Y" Path="C:\y"><Component Id="D"><File Name="a" Source="a"/></Component></Directory><Directory Id="BROKEN"/>)"},
         "TZ407 `Directory` `BROKEN` has no `Path`, and no directory around it has a path. -> give "
         "the Directory a Path, or put it into one that has a path.\n"},
        {{.sequence =
              R"(<Feature><ComponentRef Id="D"/></Feature><Fragment On="uninstall"><ShellExcute File="C:\x\a.exe" ExeCommand="[Y]" Return="sync"/></Fragment>)",
          .product =
              R"(<Directory Id="Y" Path="#V"><Component Id="D"><File Name="a" Source="a"/></Component></Directory>)",
          .changing = true},
         ""},
    };
    expectTold(cases);
}

TEST_F(EffectsTest, OrderIsJudgedWhereBothHappen) {
    const Case cases[] = {
        {{.component = file("a.exe"),
          .sequence = R"(<Fragment On="upgrade"><RemoveDirectory Path="[R]"/></Fragment>)"},
         "TZ710 `C:\\x` holds what line 1 has just installed. -> limit it by On=\"uninstall\", or "
         "move it in front of what is installed.\n"},
        {{.component =
              R"(<Condition Expression="OS_MAJOR_VERSION E 6"><File Name="a.exe" Source="a"/></Condition>)",
          .sequence =
              R"(<Fragment On="upgrade"><Condition Expression="OS_MAJOR_VERSION E 10"><RemoveDirectory Path="[R]"/></Condition></Fragment>)"},
         ""},
        {{.component =
              R"(<Condition Expression="OS_MAJOR_VERSION E 6"><File Name="a.exe" Source="a"/></Condition>)",
          .sequence = R"(<Fragment On="upgrade"><RemoveDirectory Path="[R]"/></Fragment>)"},
         "TZ710 `C:\\x` holds what line 1 has just installed. -> limit it by On=\"uninstall\", or "
         "move it in front of what is installed.\n"},
        {{.component = file("a.exe"),
          .sequence =
              R"(<Fragment On="upgrade"><Condition Expression="OS_MAJOR_VERSION E 10"><RemoveDirectory Path="[R]"/></Condition></Fragment>)"},
         "TZ710 `C:\\x` holds what line 1 has just installed. -> limit it by On=\"uninstall\", or "
         "move it in front of what is installed.\n"},
        {{.component = file("a.exe"),
          .sequence = R"(<Fragment On="upgrade"><RemoveDirectory Path="[R]"/></Fragment>)",
          .on = R"( On="install")"},
         ""},
        {{.component = file("a"),
          .sequence =
              R"(<Fragment On="uninstall"><Condition Expression="OS_MAJOR_VERSION E 10"><RemoveDirectory Path="C:\x\y"/></Condition><ShellExcute File="C:\x\y\a.exe" ExeCommand="" Return="sync"/><RemoveDirectory Path="C:\x\z"/><ShellExcute File="C:\x\z\a.exe" ExeCommand="" Return="sync"/></Fragment>)"},
         "TZ525 `C:\\x\\z\\a.exe` has been removed by line 1 of the same uninstall. -> move the "
         "action in front of what removes the file, or limit it by On=\"installupgrade\".\n"},
        {{.sequence =
              R"(<Fragment On="install"><Condition Expression="OS_MAJOR_VERSION E 6"><ShellExcute File="[R]z.exe" ExeCommand="" Return="sync"/></Condition><ShellExcute File="[R]z.exe" ExeCommand="" Return="sync" Vital="no"/><ShellExcute File="[R]z.exe" ExeCommand="" Return="sync" Vital="yes"/></Fragment><Feature><ComponentRef Id="D"/></Feature>)",
          .product =
              R"(<DirectoryRef Id="R"><Component Id="D"><File Name="z.exe" Source="a"/></Component></DirectoryRef>)"},
         "TZ524 `C:\\x\\z.exe` is installed only by line 1, behind this. -> move the action behind "
         "the Component that installs the file.\n"},
        {{.sequence =
              R"(<Fragment On="install"><ShellExcute File="[R]z.exe" ExeCommand="" Return="sync"/></Fragment><Feature><ComponentRef Id="D"/></Feature>)",
          .product =
              R"(<DirectoryRef Id="R"><Component Id="D" On="upgrade"><File Name="z.exe" Source="a"/></Component></DirectoryRef>)"},
         ""},
        {{.component = file("a"),
          .sequence =
              R"(<Fragment On="uninstall"><Condition Expression="OS_MAJOR_VERSION E 10"><RemoveDirectory Path="C:\x\y"/><ShellExcute File="C:\x\y\a.exe" ExeCommand="" Return="sync"/></Condition></Fragment>)"},
         "TZ525 `C:\\x\\y\\a.exe` has been removed by line 1 of the same uninstall. -> move the "
         "action in front of what removes the file, or limit it by On=\"installupgrade\".\n"},
    };
    expectTold(cases);
}
