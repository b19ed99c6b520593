#include "check/CPartsTest.h"

using KeywordChecksTest = CPartsTest;

TEST_F(KeywordChecksTest, AWordThatIsNoneIsTold) {
    const Case cases[] = {
        {{.component = file("a", R"( Vital="#V")"), .changing = true}, ""},
        {{.component = file("a", R"( Vital="asyes")"), .changing = true},
         "TZ323 `asyes` is no word of `Vital` and counts as `no`. -> the word with a meaning is "
         "`yes`.\n"},
        {{.component = file("a", R"( Vital="")"), .changing = true},
         "TZ323 An empty text is no word of `Vital` and counts as `no`. -> the word with a meaning "
         "is `yes`.\n"},
        {{.component = file("a", R"( Vital="YES")"), .changing = true},
         "TZ322 `YES` is no word of `Vital` and counts as `no`. -> did you mean `yes`?\n"},
        {{.component = file("a", R"( Vital="on")"), .changing = true},
         "TZ322 `on` is no word of `Vital` and counts as `no`. -> did you mean `yes`?\n"},
        {{.component = file("a", R"( SupportDelayInstall="true")")},
         "TZ322 `true` is no word of `SupportDelayInstall` and counts as `no`. -> did you mean "
         "`yes`?\n"},
        {{.sequence =
              R"(<Fragment><FileSearch Name="a" Path="C:\y" Expression="N = 1" MinVersion="#V"/></Fragment>)",
          .changing = true},
         ""},
        {{.sequence =
              R"(<Fragment><FileSearch Name="a" Path="C:\y" Expression="N = 1" MinVersion=""/></Fragment>)",
          .changing = true},
         ""},
        {{.sequence =
              R"(<Fragment><FileSearch Name="a" Path="C:\y" Expression="N = 1" MinVersion="1.2.3.4"/></Fragment>)",
          .changing = true},
         ""},
        {{.sequence =
              R"(<Fragment><FileSearch Name="a" Path="C:\y" Expression="N = 1" MinVersion="1.2.3.4.5"/></Fragment>)",
          .changing = true},
         "TZ329 `1.2.3.4.5` is no version. -> write up to four numbers with dots between them, "
         "such as 10.0.17763.\n"},
        {{.sequence =
              R"(<Fragment><FileSearch Name="a" Path="C:\y" Expression="N = 1" MinVersion="1..2"/></Fragment>)",
          .changing = true},
         "TZ329 `1..2` is no version. -> write up to four numbers with dots between them, such as "
         "10.0.17763.\n"},
        {{.sequence =
              R"(<Fragment><FileSearch Name="a" Path="C:\y" Expression="N = 1" MinVersion="99999"/></Fragment>)",
          .changing = true},
         "TZ329 `99999` is no version. -> write up to four numbers with dots between them, such as "
         "10.0.17763.\n"},
        {{.sequence =
              R"(<Fragment><FileSearch Name="a" Path="C:\y" Expression="N = 1" MinVersion="100000"/></Fragment>)",
          .changing = true},
         "TZ329 `100000` is no version. -> write up to four numbers with dots between them, such "
         "as 10.0.17763.\n"},
        {{.sequence =
              R"(<Fragment><FileSearch Name="a" Path="C:\y" Expression="N = 1" MinVersion="abc"/></Fragment>)",
          .changing = true},
         "TZ329 `abc` is no version. -> write up to four numbers with dots between them, such as "
         "10.0.17763.\n"},
        {{.sequence =
              R"(<Fragment On="uninstall"><ServiceControl Name="s" Action="#V" Wait="no"/></Fragment>)",
          .changing = true},
         ""},
        {{.component = file("a", R"( Vital="yess")")},
         "TZ322 `yess` is no word of `Vital` and counts as `no`. -> did you mean `yes`?\n"},
    };
    expectTold(cases);
}

TEST_F(KeywordChecksTest, AValueOfAVariableIsReadAsItStands) {
    const Case cases[] = {
        {{.component = file("a"),
          .variables = R"(<Variable Id="X" Type="int" Value="99999999999"/>)",
          .changing = true},
         "TZ416 `99999999999` counts as 2147483647. -> keep to the range of -2147483648 to "
         "2147483647.\n"},
        {{.component = file("a"),
          .variables = R"(<Variable Id="X" Type="int" Value="-99999999999"/>)",
          .changing = true},
         "TZ416 `-99999999999` counts as -2147483648. -> keep to the range of -2147483648 to "
         "2147483647.\n"},
        {{.component = file("a"),
          .variables = R"(<Variable Id="X" Type="int" Value="2147483647"/>)",
          .changing = true},
         ""},
        {{.component = file("a"),
          .variables = R"(<Variable Id="X" Type="int" Value="-2147483648"/>)",
          .changing = true},
         ""},
        {{.component = file("a"),
          .variables = R"(<Variable Id="X" Type="string" Value="99999999999"/>)",
          .changing = true},
         ""},
        {{.component = file("a"),
          .variables = R"(<Variable Id="X" Type="string" Value="[ProgramFilesFolder]"/>)",
          .changing = true},
         "TZ420 `[ProgramFilesFolder]` isn't replaced in the Value of a variable. -> write it "
         "where the value is used.\n"},
        {{.component = file("a"),
          .variables = R"(<Variable Id="X" Type="string" Value="[R]"/>)",
          .changing = true},
         "TZ420 `[R]` isn't replaced in the Value of a variable. -> write it where the value is "
         "used.\n"},
        {{.component = file("a"),
          .variables = R"(<Variable Id="X" Type="string" Value="[NONE]"/>)",
          .changing = true},
         ""},
        {{.component = file("a"),
          .variables = R"(<Variable Id="X" Type="string" Value="#V"/>)",
          .changing = true},
         "TZ420 `#V` isn't replaced in the Value of a variable. -> write it where the value is "
         "used.\n"},
        {{.component = file("a"),
          .variables = R"(<Variable Id="X" Type="string" Value="#NONE"/>)",
          .changing = true},
         ""},
        {{.component = file("a"),
          .variables = R"(<Variable Id="X" Type="int" Value="1234567890"/>)",
          .changing = true},
         ""},
    };
    expectTold(cases);
}
