#include "check/CPartsTest.h"

using StructureChecksTest = CPartsTest;

TEST_F(StructureChecksTest, AnElementInTheWrongPlaceIsToldWhereItMayStand) {
    const Case cases[] = {
        {{.sequence = R"(<Feature><InstallExecuteSequence/></Feature>)"},
         "TZ203 `InstallExecuteSequence` is no element that may stand in `Feature`. -> correct its "
         "name, or move it to an element that may hold it.\n"},
        {{.sequence =
              R"(<Feature><File Name="a" Source="a"/><Condition Expression="OS_MAJOR_VERSION E 6"><File Name="b" Source="a"/></Condition></Feature>)"},
         "TZ203 `File` is no element that may stand in `Feature`. -> a `File` may stand in "
         "`Component`, `Condition`.\n"
         "TZ214 `File` stands in no `Directory`, so it has no place to go to. -> define the "
         "Component in a Directory and refer to it by ComponentRef.\n"},
    };
    expectTold(cases);
}

TEST_F(StructureChecksTest, AnElementIsJudgedByTheSurestWayToIt) {
    const Case cases[] = {
        {{.sequence =
              R"(<Feature><Condition Expression="OS_MAJOR_VERSION E 6"><ComponentRef Id="D"/></Condition><ComponentRef Id="D"/></Feature>)",
          .product =
              R"(<DirectoryRef Id="R"><Component Id="D"><File Name="a"/></Component></DirectoryRef>)"},
         "TZ301 `File` has no `Source`. -> add the attribute.\n"},
        {{.sequence = R"(<Fragment Id="F"><Caution Title="x"/></Fragment><FragmentRef Id="F"/>)"},
         ""},
        {{.component = file("a"), .on = R"( On="")"}, ""},
    };
    expectTold(cases);
}

TEST_F(StructureChecksTest, ADirectoryIsMadeFromThoseAroundIt) {
    const Case cases[] = {
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory Id="A" Path="[B]a"><Component Id="E"><File Name="a" Source="a"/></Component></Directory><Directory Id="B" Path="[A]b"/>)"},
         "TZ217 `Directory` `B` needs itself to be made, by way of `Directory` `A`. -> take the "
         "reference out of one of their texts.\n"},
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory Id="A" Path="[A]"><Directory Path="in"><Component Id="E"><File Name="a" Source="a"/></Component></Directory></Directory>)"},
         "TZ217 `Directory` `A` needs itself to be made. -> take the reference to it out of its "
         "own text.\n"},
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory Id="A" Path="[NONE]"><Directory Path="in"><Component Id="E"><File Name="a" Source="a"/></Component></Directory></Directory>)"},
         "TZ704 `C:\\x` is beside what the product installs. -> make sure that it is the product's "
         "alone.\n"},
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory Id="A" Path="[A2]"><Directory Id="A2" Path="in"><Component Id="E"><File Name="a" Source="a"/></Component></Directory></Directory>)"},
         "TZ217 `Directory` `A` needs itself to be made, by way of `Directory` `A2`. -> take the "
         "reference out of one of their texts.\n"},
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory Path=""><Directory Path="C:\y"><Component Id="E"><File Name="a" Source="a"/></Component></Directory></Directory>)"},
         "TZ609 `C:\\y` stays after uninstall, empty or not. -> remove it by a RemoveDirectory "
         "On=\"uninstall\" at the end of the sequence.\n"
         "TZ704 `C:\\x` is beside what the product installs. -> make sure that it is the product's "
         "alone.\n"},
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory Path="C:\y"><Directory Path="b"><Component Id="E"><File Name="a" Source="a"/></Component></Directory></Directory>)"},
         "TZ609 `C:\\y\\b` stays after uninstall, empty or not. -> remove it by a RemoveDirectory "
         "On=\"uninstall\" at the end of the sequence.\n"
         "TZ704 `C:\\x` is beside what the product installs. -> make sure that it is the product's "
         "alone.\n"},
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory Path="C:\q"><Component Id="E"><File Name="a" Source="a"/></Component></Directory>)"},
         "TZ609 `C:\\q` stays after uninstall, empty or not. -> remove it by a RemoveDirectory "
         "On=\"uninstall\" at the end of the sequence.\n"
         "TZ704 `C:\\x` is beside what the product installs. -> make sure that it is the product's "
         "alone.\n"},
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory Id="ProgramFileFolder" Path="rel"><Component Id="E"><File Name="a" Source="a"/></Component></Directory>)"},
         "TZ213 `ProgramFileFolder` is no folder of the system. -> did you mean "
         "`ProgramFilesFolder`?\n"},
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory Id="ProgramFileFolder"><Component Id="E"><File Name="a" Source="a"/></Component></Directory>)"},
         "TZ407 `Directory` `ProgramFileFolder` has no `Path`, and no directory around it has a "
         "path. -> did you mean `ProgramFilesFolder`?\n"
         "TZ213 `ProgramFileFolder` is no folder of the system, so what stands in it goes to a "
         "path relative to the working directory. -> did you mean `ProgramFilesFolder`?\n"},
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory><Component Id="E"><File Name="a" Source="a"/></Component></Directory>)"},
         "TZ407 `Directory` has no `Path`, and no directory around it has a path. -> give the "
         "Directory a Path, or put it into one that has a path.\n"},
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory Path="\y"><Component Id="E"><File Name="a" Source="a"/></Component></Directory>)"},
         "TZ609 `\\y` stays after uninstall, empty or not. -> remove it by a RemoveDirectory "
         "On=\"uninstall\" at the end of the sequence.\n"
         "TZ704 `C:\\x` is beside what the product installs. -> make sure that it is the product's "
         "alone.\n"},
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory Path="C:\y"><Directory Path="[ProgramFilesFolder]a"><Component Id="E"><File Name="a" Source="a"/></Component></Directory></Directory>)"},
         "TZ609 `c:\\y\\[programfilesfolder]` stays after uninstall, empty or not. -> remove it by "
         "a RemoveDirectory On=\"uninstall\" at the end of the sequence.\n"
         "TZ514 `[ProgramFilesFolder]a` is put behind the path of the directory around it all the "
         "same. -> move the Directory directly into the Product.\n"
         "TZ704 `C:\\x` is beside what the product installs. -> make sure that it is the product's "
         "alone.\n"},
    };
    expectTold(cases);
}

TEST_F(StructureChecksTest, WhatNothingReachesIsTold) {
    const Case cases[] = {
        {{.product = R"(<Directory Id="Q"/>)"},
         "TZ207 Nothing uses `Directory` `Q`. -> remove it, or refer to it as [Id].\n"},
        {{.product = R"(<Directory Path="C:\q"/>)"},
         "TZ207 Nothing uses `Directory`. -> remove it, or refer to it as [Id].\n"},
        {{.product =
              R"(<Directory Id="R" Path="C:\z"><Component Id="C"><File Name="a" Source="a"/></Component></Directory>)"},
         "TZ211 `Directory` `R` is hidden by the one in line 1. -> give it an Id of its own.\n"
         "TZ211 `Component` `C` is hidden by the one in line 1. -> is `ComponentRef` meant "
         "there?\n"},
        {{.product = R"(<Fragment Id="F"><Caution Title="x"/></Fragment>)"},
         "TZ207 Nothing reaches `Fragment` `F`. -> refer to it by `FragmentRef` in the "
         "sequence.\n"},
        {{.product = R"(<Directory Path="C:\q"><Directory Id="IN" Path="in"/></Directory>)"},
         "TZ207 Nothing uses `Directory` `IN`. -> remove it, or refer to it as [Id].\n"},
        {{.component = file("a"),
          .sequence = removal("[IN]"),
          .product = R"(<Directory Id="Q" Path="C:\q"><Directory Id="IN" Path="in"/></Directory>)"},
         "TZ704 `C:\\q\\in` is beside what the product installs. -> make sure that it is the "
         "product's alone.\n"},
        {{.sequence = R"(<Feature><ComponentRef Id="E"/></Feature>)",
          .product =
              R"(<Directory Path="C:\p"><Directory Id="Z" Path="in"/></Directory><Directory Path="C:\q"><Component Id="E"><File Name="a" Source="a"/></Component></Directory>)"},
         "TZ207 Nothing uses `Directory` `Z`. -> remove it, or refer to it as [Id].\n"},
    };
    expectTold(cases);
}

TEST_F(StructureChecksTest, NamespacesOfXmlAreNobodysAttributes) {
    const Case cases[] = {
        {{.component = file("a", R"( xmlns="x" x:y="z" odd="1")")},
         "TZ311 `odd` is never read on a `File`. -> correct its name, remove it, or put it where "
         "it is read.\n"},
    };
    expectTold(cases);
}
