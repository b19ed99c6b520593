#include "check/CPartsTest.h"

using KeywordChecksTest = CPartsTest;

namespace {

/// A search for a file of at least this version.
Parts search(const std::string& version) {
    return {.sequence =
                R"(<Fragment><FileSearch Name="a" Path="C:\y" Expression="N = 1" MinVersion=")" +
                version + R"("/></Fragment>)",
            .changing = true};
}

Parts variable(const std::string& type, const std::string& value) {
    return {.component = file("a"),
            .variables = R"(<Variable Id="X" Type=")" + type + R"(" Value=")" + value + R"("/>)",
            .changing = true};
}

}  // namespace

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
        {search("#V"), ""},
        {search(""), ""},
        {search("1.2.3.4"), ""},
        {search("1.2.3.4.5"),
         "TZ329 `1.2.3.4.5` is no version. -> write up to four numbers with dots between them, "
         "such as 10.0.17763.\n"},
        {search("1..2"),
         "TZ329 `1..2` is no version. -> write up to four numbers with dots between them, such as "
         "10.0.17763.\n"},
        {search("99999"),
         "TZ329 `99999` is no version. -> write up to four numbers with dots between them, such as "
         "10.0.17763.\n"},
        {search("100000"),
         "TZ329 `100000` is no version. -> write up to four numbers with dots between them, such "
         "as 10.0.17763.\n"},
        {search("abc"),
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
        {variable("int", "99999999999"),
         "TZ416 `99999999999` counts as 2147483647. -> keep to the range of -2147483648 to "
         "2147483647.\n"},
        {variable("int", "-99999999999"),
         "TZ416 `-99999999999` counts as -2147483648. -> keep to the range of -2147483648 to "
         "2147483647.\n"},
        {variable("int", "2147483647"), ""},
        {variable("int", "-2147483648"), ""},
        {variable("string", "99999999999"), ""},
        {variable("string", "[ProgramFilesFolder]"),
         "TZ420 `[ProgramFilesFolder]` isn't replaced in the Value of a variable. -> write it "
         "where the value is used.\n"},
        {variable("string", "[R]"),
         "TZ420 `[R]` isn't replaced in the Value of a variable. -> write it where the value is "
         "used.\n"},
        {variable("string", "[NONE]"), ""},
        {variable("string", "#V"),
         "TZ420 `#V` isn't replaced in the Value of a variable. -> write it where the value is "
         "used.\n"},
        {variable("string", "#NONE"), ""},
        {variable("int", "1234567890"), ""},
    };
    expectTold(cases);
}
