#include "check/CPartsTest.h"

using ExpressionChecksTest = CPartsTest;

TEST_F(ExpressionChecksTest, AnExpressionIsNotJudgedByATextThatCanChange) {
    const Case cases[] = {
        {{.sequence =
              R"(<Fragment><Condition Expression="[ProgramFilesFolder] E 1"><Caution Title="x"/></Condition></Fragment>)"},
         "TZ412 The path of `ProgramFilesFolder` is no variable of this script. -> correct the "
         "name, or define the variable.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="#V"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         ""},
        {{.component = R"(<File Name="a" Source="a"/>)", .on = R"( On="#V")", .changing = true},
         ""},
    };
    expectTold(cases);
}

TEST_F(ExpressionChecksTest, AConditionThatIsTheSameEverywhereIsTold) {
    const Case cases[] = {
        {{.sequence = R"(<Fragment><Condition Expression="1 E 1"></Condition></Fragment>)"}, ""},
        {{.sequence =
              R"(<Fragment><Condition Expression="1 E 1"><Caution Title="x"/></Condition></Fragment>)"},
         "TZ417 The condition is true on every machine. -> remove it, or ask for something that "
         "can differ.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="1 E 2"><Caution Title="x"/></Condition></Fragment>)"},
         "TZ417 The condition is false on every machine, so what stands in it is never done. -> "
         "remove it, or ask for something that can differ.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="! 0"><Caution Title="x"/></Condition></Fragment>)"},
         "TZ417 The condition is true on every machine. -> remove it, or ask for something that "
         "can differ.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="! 1"><Caution Title="x"/></Condition></Fragment>)"},
         "TZ417 The condition is false on every machine, so what stands in it is never done. -> "
         "remove it, or ask for something that can differ.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="N = 0"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ417 The condition is false on every machine, so what stands in it is never done. -> "
         "remove it, or ask for something that can differ.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="N = 1"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         ""},
        {{.sequence =
              R"(<Fragment><Condition Expression="1 E OS_MAJOR_VERSION"><Caution Title="x"/></Condition></Fragment>)"},
         ""},
        {{.sequence =
              R"(<Fragment><Condition Expression="OS_MAJOR_VERSION E 1"><Caution Title="x"/></Condition></Fragment>)"},
         ""},
        {{.sequence =
              R"(<Fragment><Condition Expression="OS_MAJOR_VERSION OR 1"><Caution Title="x"/></Condition></Fragment>)"},
         "TZ417 The condition is true on every machine. -> remove it, or ask for something that "
         "can differ.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="OS_MAJOR_VERSION AND 0"><Caution Title="x"/></Condition></Fragment>)"},
         "TZ417 The condition is false on every machine, so what stands in it is never done. -> "
         "remove it, or ask for something that can differ.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="BAD OR 1"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ415 The Value of `BAD`, `bad`, is no integer. -> give it a decimal number without "
         "blanks.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="0 OR BAD"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ415 The Value of `BAD`, `bad`, is no integer. -> give it a decimal number without "
         "blanks.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="1 OR BAD"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ417 The condition is true on every machine. -> remove it, or ask for something that "
         "can differ.\n"},
        {{.component = R"(<File Name="a" Source="a"/>)",
          .sequence =
              R"(<Fragment On="install"><Fragment On="upgrade"><Condition Expression="1 E 1"><Caution Title="x"/></Condition></Fragment></Fragment>)"},
         ""},
        {{.sequence =
              R"(<Fragment><Condition Expression="OS_MAJOR_VERSION OR 0"><Caution Title="x"/></Condition></Fragment>)"},
         ""},
        {{.sequence =
              R"(<Fragment><FileSearch Name="a" Path="C:\y" Expression="B = 1"/><Condition Expression="B OR 1"><Caution Title="x"/></Condition></Fragment>)",
          .variables = R"(<Variable Id="B" Type="int" Value="bad"/>)"},
         "TZ415 The Value of `B`, `bad`, is no integer. -> give it a decimal number without "
         "blanks.\n"},
    };
    expectTold(cases);
}

TEST_F(ExpressionChecksTest, ABrokenExpressionIsToldByWhatBreaksIt) {
    const Case cases[] = {
        {{.sequence =
              R"(<Fragment><Condition Expression="= 1"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ411 The expression can't begin with `=`. -> words such as AND stand in capitals and "
         "between blanks.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="N = = 1"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ411 `=` can't stand behind `=`. -> compare by E.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="N E E 1"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ411 `E` can't stand behind `E`. -> words such as AND stand in capitals and between "
         "blanks.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="N EQ 1"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ411 `EQ` can't stand behind `N`. -> did you mean `E`?\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="EQ N 1"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ412 `EQ` is no variable of this script. -> did you mean `E`?\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="N N"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ411 `N` can't stand behind `N`. -> words such as AND stand in capitals and between "
         "blanks.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="N EE"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ411 `EE` can't stand behind `N`. -> did you mean `LE`?\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="V E 'abc'"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ412 `'abc'` is no variable of this script. -> there are no literal texts: compare with "
         "a VariableConst, on one line.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="V E &#9;q"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ412 `	q` is no variable of this script. -> there are no literal texts: compare "
         "with a VariableConst, on one line.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression=") 1"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ411 The expression can't begin with `)`. -> words such as AND stand in capitals and "
         "between blanks.\n"},
        {{.sequence =
              R"x(<Fragment><Condition Expression="1 )"><Caution Title="x"/></Condition></Fragment>)x",
          .changing = true},
         "TZ411 The `)` has no `(` in front of it. -> words such as AND stand in capitals and "
         "between blanks.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="( 1"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ411 `(` has no counterpart. -> words such as AND stand in capitals and between "
         "blanks.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="N ("><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ411 `(` can't stand behind `N`. -> words such as AND stand in capitals and between "
         "blanks.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="N E -2147483648 OR N E 2147483647 OR N E -9999999999"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ416 `-9999999999` counts as -2147483648. -> keep to the range of -2147483648 to "
         "2147483647.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="ANDD"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ412 `ANDD` is no variable of this script. -> did you mean `AND`?\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="N E ANDD"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ412 `ANDD` is no variable of this script. -> did you mean `AND`?\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="N E = 1"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ411 `=` can't stand behind `E`. -> words such as AND stand in capitals and between "
         "blanks.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="1 ## 2"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ411 `#` stands where a number or a variable must stand. -> put blanks around `#`.\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="#W"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ412 `w` is no variable of this script. -> did you mean `W`?\n"},
        {{.sequence =
              R"(<Fragment><Condition Expression="[R] = #W"><Caution Title="x"/></Condition></Fragment>)",
          .changing = true},
         "TZ412 `C:\\x\\` is no variable of this script. -> correct the name, or define the "
         "variable.\n"},
    };
    expectTold(cases);
}
