#include "check/CPartsTest.h"

using ExpressionChecksTest = CPartsTest;

TEST_F(ExpressionChecksTest, AnExpressionIsNotJudgedByATextThatCanChange) {
    const Case cases[] = {
        {{.sequence = condition("[ProgramFilesFolder] E 1")},
         "TZ412 The path of `ProgramFilesFolder` is no variable of this script. -> correct the "
         "name, or define the variable.\n"},
        {{.sequence = condition("#V"), .changing = true}, ""},
        {{.component = file("a"), .on = R"( On="#V")", .changing = true}, ""},
    };
    expectTold(cases);
}

TEST_F(ExpressionChecksTest, AConditionThatIsTheSameEverywhereIsTold) {
    const Case cases[] = {
        {{.sequence = R"(<Fragment><Condition Expression="1 E 1"></Condition></Fragment>)"}, ""},
        {{.sequence = condition("1 E 1")},
         "TZ417 The condition is true on every machine. -> remove it, or ask for something that "
         "can differ.\n"},
        {{.sequence = condition("1 E 2")},
         "TZ417 The condition is false on every machine, so what stands in it is never done. -> "
         "remove it, or ask for something that can differ.\n"},
        {{.sequence = condition("! 0")},
         "TZ417 The condition is true on every machine. -> remove it, or ask for something that "
         "can differ.\n"},
        {{.sequence = condition("! 1")},
         "TZ417 The condition is false on every machine, so what stands in it is never done. -> "
         "remove it, or ask for something that can differ.\n"},
        {{.sequence = condition("N = 0"), .changing = true},
         "TZ417 The condition is false on every machine, so what stands in it is never done. -> "
         "remove it, or ask for something that can differ.\n"},
        {{.sequence = condition("N = 1"), .changing = true}, ""},
        {{.sequence = condition("1 E OS_MAJOR_VERSION")}, ""},
        {{.sequence = condition("OS_MAJOR_VERSION E 1")}, ""},
        {{.sequence = condition("OS_MAJOR_VERSION OR 1")},
         "TZ417 The condition is true on every machine. -> remove it, or ask for something that "
         "can differ.\n"},
        {{.sequence = condition("OS_MAJOR_VERSION AND 0")},
         "TZ417 The condition is false on every machine, so what stands in it is never done. -> "
         "remove it, or ask for something that can differ.\n"},
        {{.sequence = condition("BAD OR 1"), .changing = true},
         "TZ415 The Value of `BAD`, `bad`, is no integer. -> give it a decimal number without "
         "blanks.\n"},
        {{.sequence = condition("0 OR BAD"), .changing = true},
         "TZ415 The Value of `BAD`, `bad`, is no integer. -> give it a decimal number without "
         "blanks.\n"},
        {{.sequence = condition("1 OR BAD"), .changing = true},
         "TZ417 The condition is true on every machine. -> remove it, or ask for something that "
         "can differ.\n"},
        {{.component = file("a"),
          .sequence =
              R"(<Fragment On="install"><Fragment On="upgrade"><Condition Expression="1 E 1"><Caution Title="x"/></Condition></Fragment></Fragment>)"},
         ""},
        {{.sequence = condition("OS_MAJOR_VERSION OR 0")}, ""},
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
        {{.sequence = condition("= 1"), .changing = true},
         "TZ411 The expression can't begin with `=`. -> words such as AND stand in capitals and "
         "between blanks.\n"},
        {{.sequence = condition("N = = 1"), .changing = true},
         "TZ411 `=` can't stand behind `=`. -> compare by E.\n"},
        {{.sequence = condition("N E E 1"), .changing = true},
         "TZ411 `E` can't stand behind `E`. -> words such as AND stand in capitals and between "
         "blanks.\n"},
        {{.sequence = condition("N EQ 1"), .changing = true},
         "TZ411 `EQ` can't stand behind `N`. -> did you mean `E`?\n"},
        {{.sequence = condition("EQ N 1"), .changing = true},
         "TZ412 `EQ` is no variable of this script. -> did you mean `E`?\n"},
        {{.sequence = condition("N N"), .changing = true},
         "TZ411 `N` can't stand behind `N`. -> words such as AND stand in capitals and between "
         "blanks.\n"},
        {{.sequence = condition("N EE"), .changing = true},
         "TZ411 `EE` can't stand behind `N`. -> did you mean `LE`?\n"},
        {{.sequence = condition("V E 'abc'"), .changing = true},
         "TZ412 `'abc'` is no variable of this script. -> there are no literal texts: compare with "
         "a VariableConst, on one line.\n"},
        {{.sequence = condition("V E &#9;q"), .changing = true},
         "TZ412 `	q` is no variable of this script. -> there are no literal texts: compare "
         "with a VariableConst, on one line.\n"},
        {{.sequence = condition(") 1"), .changing = true},
         "TZ411 The expression can't begin with `)`. -> words such as AND stand in capitals and "
         "between blanks.\n"},
        {{.sequence = condition("1 )"), .changing = true},
         "TZ411 The `)` has no `(` in front of it. -> words such as AND stand in capitals and "
         "between blanks.\n"},
        {{.sequence = condition("( 1"), .changing = true},
         "TZ411 `(` has no counterpart. -> words such as AND stand in capitals and between "
         "blanks.\n"},
        {{.sequence = condition("N ("), .changing = true},
         "TZ411 `(` can't stand behind `N`. -> words such as AND stand in capitals and between "
         "blanks.\n"},
        {{.sequence = condition("N E -2147483648 OR N E 2147483647 OR N E -9999999999"),
          .changing = true},
         "TZ416 `-9999999999` counts as -2147483648. -> keep to the range of -2147483648 to "
         "2147483647.\n"},
        {{.sequence = condition("ANDD"), .changing = true},
         "TZ412 `ANDD` is no variable of this script. -> did you mean `AND`?\n"},
        {{.sequence = condition("N E ANDD"), .changing = true},
         "TZ412 `ANDD` is no variable of this script. -> did you mean `AND`?\n"},
        {{.sequence = condition("N E = 1"), .changing = true},
         "TZ411 `=` can't stand behind `E`. -> words such as AND stand in capitals and between "
         "blanks.\n"},
        {{.sequence = condition("1 ## 2"), .changing = true},
         "TZ411 `#` stands where a number or a variable must stand. -> put blanks around `#`.\n"},
        {{.sequence = condition("#W"), .changing = true},
         "TZ412 `w` is no variable of this script. -> did you mean `W`?\n"},
        {{.sequence = condition("[R] = #W"), .changing = true},
         "TZ412 `C:\\x\\` is no variable of this script. -> correct the name, or define the "
         "variable.\n"},
    };
    expectTold(cases);
}
