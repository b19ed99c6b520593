#include "check/CPartsTest.h"

using FileChecksTest = CPartsTest;

TEST_F(FileChecksTest, NamesOfFilesAreReadAsWindowsReadsThem) {
    const Case cases[] = {
        {{.component = file("abc1.txt")}, ""},
        {{.component = file("com1.txt")},
         "TZ515 `com1.txt` is the name of a device. -> choose another name.\n"},
        {{.component = file("com0.txt")}, ""},
        {{.component = file(R"(.\..\a\\b)")},
         "TZ703 `C:\\x` is above what the product installs, and may hold others. -> remove the "
         "product's own directory alone.\n"},
        {{.component = file("manual ")},
         "TZ515 `manual ` ends in a blank or a dot, which Windows drops. -> choose another "
         "name.\n"},
        {{.component = file(R"(in\manual.)")},
         "TZ515 `manual.` ends in a blank or a dot, which Windows drops. -> choose another name.\n"
         "TZ703 `C:\\x` is above what the product installs, and may hold others. -> remove the "
         "product's own directory alone.\n"},
        {{.component = file("[ProgramFilesFolder]a?.txt")},
         "TZ703 `C:\\x` is above what the product installs, and may hold others. -> remove the "
         "product's own directory alone.\n"},
        {{.component = file("a?", R"( Vital="#V")"), .changing = true},
         "TZ514 `a?` has a character that Windows refuses. -> take < > | \" * ? out of it.\n"},
        {{.component = file("a?"), .on = R"( On="uninstall")"},
         "TZ606 `C:\\x\\a?` is removed, but never installed. -> nothing, if the program makes it "
         "by itself.\n"},
        {{.component = R"(<Shortcut Name="l" Description="" Target="C:\x\a"/>)",
          .on = R"( On="uninstall")"},
         "TZ606 `C:\\x\\l.lnk` is removed, but never installed. -> nothing, if the program makes "
         "it by itself.\n"},
    };
    expectTold(cases);
}

TEST_F(FileChecksTest, AFileWhosePlaceStandsInACircleIsChecked) {
    const std::string component = "<Component Id=\"F\">" + file("a?") + "</Component>";
    const auto scriptWith = [](const std::string& circle) {
        return Parts{.sequence = R"(<Feature><ComponentRef Id="F"/></Feature>)", .product = circle};
    };
    const std::string fileTold =
        "TZ514 `a?` has a character that Windows refuses. -> take < > | \" * ? out of it.\n";
    const std::string removalTold =
        "TZ704 `C:\\x` is beside what the product installs. -> make sure that it is the product's "
        "alone.\n";
    const Case cases[] = {
        {scriptWith(R"(<DirectoryRef Id="WindowsFolder"><Directory Id="WindowsFolder">)" +
                    component + "</Directory></DirectoryRef>"),
         fileTold + removalTold},
        {scriptWith(R"(<DirectoryRef Id="WindowsFolder"><Directory Id="WindowsFolder">)"
                    R"(<Directory Path="in">)" +
                    component + "</Directory></Directory></DirectoryRef>"),
         R"(TZ609 `[WindowsFolder]\in` stays after uninstall, empty or not. -> remove it by a )"
         "RemoveDirectory On=\"uninstall\" at the end of the sequence.\n" +
             fileTold + removalTold},
        {scriptWith(R"(<ComponentRef Id="F"><Directory Id="WindowsFolder">)" + component +
                    "</Directory></ComponentRef>"),
         "TZ204 `ComponentRef` means nothing in `Product` and is passed over. -> put it into an "
         "element that may hold it.\n"
         "TZ312 What stands in a `ComponentRef` is never read. -> put it into the `Component` that "
         "it refers to.\n" +
             fileTold},
        {scriptWith(R"(<ComponentRef Id="F"><RemoveDirectory Path="C:\y">)" + component +
                    "</RemoveDirectory></ComponentRef>"),
         "TZ204 `ComponentRef` means nothing in `Product` and is passed over. -> put it into an "
         "element that may hold it.\n"
         "TZ204 `RemoveDirectory` means nothing in `ComponentRef` and is passed over. -> put it "
         "into an element that may hold it.\n"
         "TZ312 What stands in a `ComponentRef` is never read. -> put it into the `Component` that "
         "it refers to.\n" +
             fileTold},
        {scriptWith(R"(<DirectoryRef Id="D"><Odd><Directory Id="D" Path="C:\d">)" + component +
                    "</Directory></Odd></DirectoryRef>"),
         "TZ204 `Odd` means nothing in `DirectoryRef` and is passed over. -> correct its name, or "
         "move it to where it has one.\n" +
             fileTold},
    };
    expectTold(cases);
}

TEST_F(FileChecksTest, AWholePathIsFoundWhereverItIsPutBehindAnother) {
    const struct {
        std::string start;
        std::string end;
        bool isFound;
    } places[] = {
        {"", "", true},
        {R"(<Directory Id="X">)", "</Directory>", true},
        {R"(<Directory Path="in">)", "</Directory>", true},
        {R"(<Directory Id="WindowsFolder">)", "</Directory>", false},
        {R"(<RemoveDirectory Path="C:\y">)", "</RemoveDirectory>", false},
    };
    for (const auto& [start, end, isFound] : places) {
        const std::string all =
            told({.sequence = R"(<Feature><ComponentRef Id="F"/></Feature>)",
                  .product = R"(<Directory Path="C:\a"><Directory Path="C:\b">)" + start +
                             R"(<Component Id="F">)" + file("f") + "</Component>" + end +
                             "</Directory></Directory>"});
        EXPECT_EQ(all.find("TZ514 `C:\\b` is put behind") != std::string::npos, isFound)
            << start << "\n"
            << all;
    }
}

TEST_F(FileChecksTest, AServiceIsNamedWithoutAPath) {
    const Case cases[] = {
        {{.sequence =
              R"(<Fragment On="uninstall"><ServiceControl Name="a/b" Action="stop" Wait="no"/></Fragment>)"},
         "TZ514 `a/b` can't be the name of a service. -> services are named without a path.\n"},
        {{.sequence =
              R"(<Fragment On="uninstall"><ServiceControl Name="a/b" Action="stpo" Wait="no"/></Fragment>)"},
         "TZ324 `stpo` is no word of `Action`, so nothing is done. -> did you mean `stop`?\n"},
    };
    expectTold(cases);
}

TEST_F(FileChecksTest, AFileWhoseProgramIsEndedHasAShorterName) {
    const Case cases[] = {
        {{.component =
              R"(<File Name="in\)" + std::string(260, 'a') + R"(" Source="a" KillProcess="yes"/>)"},
         "TZ511 The path has at least 268 characters; Windows makes files of up to 259. -> shorten "
         "it.\n"
         "TZ512 The text has at least 260 characters; there is room for 259. The process would "
         "end. -> shorten it.\n"
         "TZ703 `C:\\x` is above what the product installs, and may hold others. -> remove the "
         "product's own directory alone.\n"},
        {{.component =
              R"(<File Name="in\)" + std::string(260, 'a') + R"(" Source="a" KillProcess="no"/>)"},
         "TZ511 The path has at least 268 characters; Windows makes files of up to 259. -> shorten "
         "it.\n"
         "TZ703 `C:\\x` is above what the product installs, and may hold others. -> remove the "
         "product's own directory alone.\n"},
        {{.component =
              R"(<File Name=")" + std::string(260, 'a') + R"(" Source="a" KillProcess="yes"/>)"},
         "TZ511 The path has at least 265 characters; Windows makes files of up to 259. -> shorten "
         "it.\n"
         "TZ512 The text has at least 260 characters; there is room for 259. The process would "
         "end. -> shorten it.\n"},
        {{.component =
              R"(<File Name=")" + std::string(260, 'a') + R"(" Source="a" KillProcess="#V"/>)",
          .changing = true},
         "TZ511 The path has at least 265 characters; Windows makes files of up to 259. -> shorten "
         "it.\n"},
        {{.component = file("#V", R"( KillProcess="yes")"), .changing = true}, ""},
        {{.component = file("[ProgramFilesFolder]a", R"( KillProcess="yes")")},
         "TZ703 `C:\\x` is above what the product installs, and may hold others. -> remove the "
         "product's own directory alone.\n"},
    };
    expectTold(cases);
}

TEST_F(FileChecksTest, TheDirectoryThatActionsAreToldOfHasAPath) {
    const Case cases[] = {
        {{.sequence =
              R"(<Fragment><CustomAction DllFile="C:\a.dll" DllEntry="e" Return="no"/></Fragment>)",
          .product = R"(<Directory Id="APPLICATIONROOTDIRECTORY"/>)"},
         "TZ207 Nothing uses `Directory` `APPLICATIONROOTDIRECTORY`. -> remove it, or refer to it "
         "as [Id].\n"
         "TZ407 `Directory` `APPLICATIONROOTDIRECTORY` has no `Path`, and no directory around it "
         "has a path. -> give the Directory a Path, or put it into one that has a path.\n"},
        {{.sequence =
              R"(<Fragment><CustomAction DllFile="C:\a.dll" DllEntry="e" Return="no"/></Fragment>)",
          .product = R"(<Directory Id="APPLICATIONROOTDIRECTORY" Path=""/>)"},
         "TZ207 Nothing uses `Directory` `APPLICATIONROOTDIRECTORY`. -> remove it, or refer to it "
         "as [Id].\n"
         "TZ509 The path of `APPLICATIONROOTDIRECTORY` is empty. -> define it, or give the "
         "product's Directory this Id.\n"},
        {{.sequence =
              R"(<Fragment><CustomAction DllFile="C:\a.dll" DllEntry="e" Return="no"/></Fragment>)",
          .product = R"(<Directory Id="APPLICATIONROOTDIRECTORY" Path="C:\y"/>)"},
         "TZ207 Nothing uses `Directory` `APPLICATIONROOTDIRECTORY`. -> remove it, or refer to it "
         "as [Id].\n"},
        {{.sequence =
              R"(<Fragment><CustomAction DllFile="C:\a.dll" DllEntry="e" Return="no"/></Fragment>)",
          .product = R"(<Directory Id="APPLICATIONROOTDIRECTORY" Path="[NONE]"/>)"},
         "TZ207 Nothing uses `Directory` `APPLICATIONROOTDIRECTORY`. -> remove it, or refer to it "
         "as [Id].\n"
         "TZ401 There is no `Directory` with the Id `NONE`, and it is no folder word. -> correct "
         "the name, or define a Directory with this Id.\n"},
    };
    expectTold(cases);
}

TEST_F(FileChecksTest, OnlyWhatCanBeAnEnvironmentVariableIsTold) {
    const Case cases[] = {
        {{.sequence = removal(R"(C:\%1%)")}, ""},
        {{.sequence = removal(R"(C:\%%)")}, ""},
        {{.sequence = removal(R"(C:\%a b%)")}, ""},
        {{.sequence = removal(R"(C:\%A_B(x86)%)")},
         "TZ421 `%A_B(x86)%` isn't replaced. -> use a folder word such as [ProgramFilesFolder], or "
         "the Id of a Directory.\n"},
        {{.sequence = removal(R"(C:\%windir%)")},
         "TZ421 `%windir%` isn't replaced. -> did you mean `[WindowsFolder]`?\n"},
    };
    expectTold(cases);
}

TEST_F(FileChecksTest, TwoFilesInOnePlaceAreToldWhereBothArePutThere) {
    const Case cases[] = {
        {{.component =
              R"(<Condition Expression="OS_MAJOR_VERSION E 6"><File Name="a" Source="a"/></Condition><File Name="a" Source="a"/>)"},
         "TZ516 `C:\\x\\a` is installed by line 1, too. -> give them different names, or "
         "conditions that exclude each other.\n"},
        {{.component =
              R"(<File Name="a" Source="a"/><Condition Expression="OS_MAJOR_VERSION E 6"><File Name="a" Source="a"/></Condition>)"},
         "TZ516 `C:\\x\\a` is installed by line 1, too. -> give them different names, or "
         "conditions that exclude each other.\n"},
        {{.component =
              R"(<Condition Expression="OS_MAJOR_VERSION E 6"><File Name="a" Source="a"/><File Name="a" Source="a"/></Condition>)"},
         "TZ516 `C:\\x\\a` is installed by line 1, too. -> give them different names, or "
         "conditions that exclude each other.\n"},
        {{.component =
              R"(<Condition Expression="OS_MAJOR_VERSION E 0"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 1"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 2"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 3"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 4"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 5"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 6"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 7"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 8"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 9"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 10"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 11"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 12"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 13"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 14"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 15"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 16"><File Name="a" Source="a"/></Condition><Condition Expression="OS_MAJOR_VERSION E 17"><File Name="a" Source="a"/></Condition>)"},
         ""},
        {{.component = file("a"),
          .sequence = R"(<Feature><ComponentRef Id="D"/></Feature>)",
          .product =
              R"(<DirectoryRef Id="R"><Component Id="D" On="upgrade"><File Name="a" Source="a"/></Component></DirectoryRef>)",
          .on = R"( On="install")"},
         ""},
        {{.component = file("a"),
          .sequence = R"(<Feature><ComponentRef Id="D"/></Feature>)",
          .product =
              R"(<DirectoryRef Id="R"><Component Id="D" On="upgrade"><File Name="a" Source="a"/></Component></DirectoryRef>)",
          .on = R"( On="installupgrade")"},
         "TZ516 `C:\\x\\a` is installed by line 1, too. -> give them different names, or "
         "conditions that exclude each other.\n"},
    };
    expectTold(cases);
}

TEST_F(FileChecksTest, ASourceOfAnotherMachineIsTold) {
    const Case cases[] = {
        {{.component = R"(<File Name="a" Source="\\server\a"/>)", .changing = true},
         "TZ518 `\\\\server\\a` is put behind the directory of the host program all the same. -> "
         "name the file relative to the directory of the host program.\n"},
        {{.component = R"(<File Name="a" Source="[ProgramFilesFolder]b"/>)", .changing = true},
         "TZ518 `[ProgramFilesFolder]\\b` is put behind the directory of the host program all the "
         "same. -> name the file relative to the directory of the host program.\n"},
        {{.component = R"(<File Name="a" Source="#V"/>)", .changing = true}, ""},
        {{.component = R"(<File Name="a" Source="in:b"/>)", .changing = true},
         "TZ518 `in:b` is put behind the directory of the host program all the same. -> name the "
         "file relative to the directory of the host program.\n"},
        {{.component = R"(<File Name="a" Source="[R]b"/>)", .changing = true},
         "TZ518 `C:\\x\\b` is put behind the directory of the host program all the same. -> name "
         "the file relative to the directory of the host program.\n"},
        {{.component = R"(<File Name="a" Source="[Y]b"/>)",
          .product = R"(<Directory Id="Y" Path="#V"/>)",
          .changing = true},
         ""},
    };
    expectTold(cases);
}
