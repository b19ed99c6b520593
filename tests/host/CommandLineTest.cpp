#include "host/CommandLine.h"

#include <gmock/gmock.h>

#include <vector>

namespace {

using Arguments = std::vector<const wchar_t*>;

std::optional<CommandLine> read(Arguments arguments, std::wstring& problem) {
    arguments.insert(arguments.begin(), L"temz.exe");
    return readCommandLine(static_cast<int>(arguments.size()), arguments.data(), problem);
}

/// A command line that is right.
CommandLine accepted(const Arguments& arguments) {
    std::wstring problem;
    const auto command = read(arguments, problem);
    EXPECT_TRUE(command) << problem;
    EXPECT_EQ(problem, L"");
    return command.value_or(CommandLine{});
}

/// Why a command line is wrong.
std::wstring refusal(const Arguments& arguments) {
    std::wstring problem;
    EXPECT_FALSE(read(arguments, problem));
    return problem;
}

/// An installation with these options.
CommandLine install(const Arguments& options) {
    Arguments arguments{L"install", L"a.xml"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return accepted(arguments);
}

TEST(CommandLineTest, TellsWhetherAWrongOneWantsJson) {
    const wchar_t* arguments[] = {L"temz.exe", L"instal", L"a.xml", L"--json"};
    EXPECT_TRUE(wantsJson(4, arguments));
    EXPECT_FALSE(wantsJson(3, arguments));
    EXPECT_FALSE(wantsJson(0, arguments));
}

TEST(CommandLineTest, TellsWhichCommandAWrongOneNames) {
    const wchar_t* arguments[] = {L"plan", L"--frobnicate", L"check", L"plan"};
    EXPECT_EQ(namedVerb(4, arguments), Verb::check);
    EXPECT_EQ(namedVerb(2, arguments), std::nullopt);
}

TEST(CommandLineTest, NamesTheModeAndTheScript) {
    const struct {
        const wchar_t* word;
        temz_mode mode;
    } modes[] = {
        {L"install", TEMZ_INSTALL}, {L"uninstall", TEMZ_UNINSTALL}, {L"upgrade", TEMZ_UPGRADE}};
    for (const auto& [word, mode] : modes) {
        const CommandLine command = accepted({word, L"a script.xml"});

        EXPECT_EQ(command.verb, Verb::run);
        EXPECT_EQ(command.mode, mode);
        EXPECT_EQ(command.script, L"a script.xml");
    }
}

TEST(CommandLineTest, AsksForTheSchemaAndWhereItGoes) {
    EXPECT_EQ(accepted({L"schema"}).verb, Verb::schema);
    EXPECT_EQ(accepted({L"schema"}).out, L"");
    EXPECT_EQ(accepted({L"schema", L"--out", L"a.xsd"}).out, L"a.xsd");
    EXPECT_EQ(refusal({L"schema", L"a.xml"}), L"a.xml is one argument too many.");
}

TEST(CommandLineTest, TakesAnAssumptionWithANameAndAValueOnly) {
    const CommandLine plan = accepted({L"plan", L"a.xml", L"--assume", L"A=b=c"});
    ASSERT_EQ(plan.assumptions.size(), 1u);
    EXPECT_EQ(plan.assumptions[0].name, L"A");
    EXPECT_EQ(plan.assumptions[0].value, L"b=c");
    for (const wchar_t* assumption : {L"A", L"=b"})
        EXPECT_EQ(refusal({L"plan", L"a.xml", L"--assume", assumption}),
                  std::wstring(L"--assume can't be \"") + assumption + L"\", only NAME=VALUE.");
}

TEST(CommandLineTest, ShowsTheHelpWhateverElseIsAskedFor) {
    EXPECT_EQ(accepted({L"--help", L"--quiet"}).verb, Verb::help);
}

TEST(CommandLineTest, AsksForDraftsOfScripts) {
    const CommandLine product =
        accepted({L"new", L"--name", L"My Product", L"--payload=files", L"--out", L"a.xml"});
    EXPECT_EQ(product.verb, Verb::draftProduct);
    EXPECT_EQ(product.name, L"My Product");
    EXPECT_EQ(product.payload, L"files");
    EXPECT_EQ(product.out, L"a.xml");
    EXPECT_EQ(refusal({L"new", L"--payload=files"}), L"--name is missing.");
    EXPECT_EQ(refusal({L"new", L"--name=a"}), L"--payload is missing.");

    const CommandLine part = accepted({L"harvest", L"files"});
    EXPECT_EQ(part.verb, Verb::draftPart);
    EXPECT_EQ(part.payload, L"files");
    EXPECT_EQ(refusal({L"harvest"}), L"The DIR is missing.");
}

TEST(CommandLineTest, VerifiesOnlyWhereThatIsMeant) {
    const CommandLine command = accepted(
        {L"verify", L"new.xml", L"--on-this-machine", L"--upgrade-from", L"old.xml", L"--json"});
    EXPECT_EQ(command.verb, Verb::verify);
    EXPECT_EQ(command.script, L"new.xml");
    EXPECT_EQ(command.upgradeFrom, L"old.xml");
    EXPECT_TRUE(command.json);
    EXPECT_EQ(refusal({L"verify", L"new.xml"}), L"--on-this-machine is missing.");
}

TEST(CommandLineTest, IsPlainWithoutOptions) {
    const CommandLine command = accepted({L"install", L"a.xml"});

    EXPECT_FALSE(command.onError);
    EXPECT_FALSE(command.quiet || command.passive || command.json || command.verbose);
    EXPECT_FALSE(command.acceptIgnored || command.dropPending);
    EXPECT_EQ(command.log, L"");
    EXPECT_EQ(command.waitSeconds, 0u);
}

TEST(CommandLineTest, TellsWhatIsDoneAboutAFailure) {
    const struct {
        const wchar_t* value;
        temz_answer answer;
        unsigned retries;
        std::optional<unsigned> pause;
    } policies[] = {
        {L"abort", TEMZ_ABORT, 0, {}},
        {L"ignore", TEMZ_IGNORE, 0, {}},
        {L"retry:1", TEMZ_RETRY, 1, {}},
        {L"retry:010", TEMZ_RETRY, 10, {}},
        {L"retry:999999999", TEMZ_RETRY, 999'999'999, {}},
        {L"retry:3,0", TEMZ_RETRY, 3, 0},
        {L"retry:3,20", TEMZ_RETRY, 3, 20},
    };
    for (const auto& [value, answer, retries, pause] : policies) {
        const std::wstring joined = std::wstring(L"--on-error=") + value;
        for (const CommandLine& command :
             {install({joined.c_str()}), install({L"--on-error", value})}) {
            ASSERT_TRUE(command.onError) << value;
            EXPECT_EQ(command.onError->answer, answer) << value;
            EXPECT_EQ(command.onError->retries, retries) << value;
            EXPECT_EQ(command.onError->pause, pause) << value;
        }
    }
}

TEST(CommandLineTest, RefusesAnyOtherPolicy) {
    for (const wchar_t* value :
         {L"", L"Abort", L"retry", L"retry:", L"retry:0", L"retry:-1", L"retry:1x", L"retry: 1",
          L"retry:1000000000", L"retry:1,", L"retry:1,x", L"retry:1,2,3", L"ignore:1"})
        EXPECT_EQ(refusal({L"install", L"a.xml", L"--on-error", value}),
                  std::wstring(L"--on-error can't be \"") + value +
                      L"\", only abort|ignore|retry:N[,SECONDS].");
}

TEST(CommandLineTest, HasAllSpellingsOfTheSwitches) {
    const struct {
        const wchar_t* spelling;
        bool CommandLine::*flag;
    } switches[] = {
        {L"--quiet", &CommandLine::quiet},
        {L"/quiet", &CommandLine::quiet},
        {L"/QUIET", &CommandLine::quiet},
        {L"/S", &CommandLine::quiet},
        {L"/s", &CommandLine::quiet},
        {L"--passive", &CommandLine::passive},
        {L"/passive", &CommandLine::passive},
        {L"--json", &CommandLine::json},
        {L"--accept-ignored", &CommandLine::acceptIgnored},
        {L"--drop-pending", &CommandLine::dropPending},
    };
    for (const auto& [spelling, flag] : switches) {
        EXPECT_TRUE(install({spelling}).*flag) << spelling;
        for (const auto& other : switches)
            EXPECT_EQ(install({spelling}).*other.flag, other.flag == flag) << spelling;
    }
}

TEST(CommandLineTest, ShowsCallsWhereThereIsAPlaceForThem) {
    EXPECT_TRUE(install({L"--verbose", L"--log", L"a.log"}).verbose);
    EXPECT_TRUE(install({L"--json", L"--verbose"}).verbose);
    EXPECT_EQ(refusal({L"install", L"a.xml", L"--verbose"}),
              L"--verbose needs --log or --json, where the calls are shown.");
}

TEST(CommandLineTest, TakesAColonInFrontOfAValueBehindASlashAlone) {
    EXPECT_EQ(refusal({L"install", L"a.xml", L"--log:a.log"}), L"--log:a.log is no option.");
    EXPECT_EQ(refusal({L"install", L"a.xml", L"/log:"}), L"/log can't be \"\", only FILE.");
    EXPECT_EQ(refusal({L"install", L"a.xml", L"/quiet:yes"}), L"/quiet takes no value.");
}

TEST(CommandLineTest, DistinguishesCaseBehindDashes) {
    EXPECT_EQ(refusal({L"install", L"a.xml", L"--Quiet"}), L"--Quiet is no option.");
}

TEST(CommandLineTest, TakesALogAndAWait) {
    EXPECT_EQ(install({L"--log", L"a b.log"}).log, L"a b.log");
    EXPECT_EQ(install({L"--log=a=b.log"}).log, L"a=b.log");
    EXPECT_EQ(install({L"/log", L"a.log"}).log, L"a.log");
    EXPECT_EQ(install({L"/LOG", L"a.log"}).log, L"a.log");
    EXPECT_EQ(install({L"/log=C:\\a.log"}).log, L"C:\\a.log");
    EXPECT_EQ(install({L"/Log:C:\\a=b.log"}).log, L"C:\\a=b.log");
    EXPECT_EQ(install({L"--wait", L"60"}).waitSeconds, 60u);
    EXPECT_EQ(install({L"--wait=60"}).waitSeconds, 60u);
}

TEST(CommandLineTest, WaitsNoLongerThanTheSystemCan) {
    EXPECT_EQ(install({L"--wait", L"999999"}).waitSeconds, 999'999u);
    EXPECT_EQ(install({L"--on-error", L"retry:1,999999"}).onError->pause, 999'999u);
    EXPECT_EQ(refusal({L"install", L"a.xml", L"--wait", L"1000000"}),
              L"--wait can't be \"1000000\", only SECONDS.");
    EXPECT_NE(refusal({L"install", L"a.xml", L"--on-error", L"retry:1,1000000"}), L"");
}

TEST(CommandLineTest, TakesOptionsAnywhere) {
    const Arguments orders[] = {{L"--on-error", L"ignore", L"upgrade", L"a.xml"},
                                {L"upgrade", L"--on-error", L"ignore", L"a.xml"},
                                {L"upgrade", L"a.xml", L"--on-error", L"ignore"}};
    for (const auto& order : orders) {
        const CommandLine command = accepted(order);

        EXPECT_EQ(command.mode, TEMZ_UPGRADE);
        EXPECT_EQ(command.script, L"a.xml");
        EXPECT_TRUE(command.onError);
    }
}

TEST(CommandLineTest, HasCommandsThatRunNothing) {
    EXPECT_EQ(accepted({L"help"}).verb, Verb::help);
    EXPECT_EQ(accepted({L"help", L"codes"}).verb, Verb::helpCodes);
    EXPECT_EQ(accepted({L"explain", L"1603"}).verb, Verb::explain);
    EXPECT_EQ(accepted({L"explain", L"1603"}).subject, L"1603");
    EXPECT_EQ(accepted({L"explain", L"-1073740777"}).subject, L"-1073740777");
}

TEST(CommandLineTest, ShowsHelpOrVersionWhateverElseIsThere) {
    for (const wchar_t* option : {L"--help", L"-h", L"/?"}) {
        EXPECT_EQ(accepted({option}).verb, Verb::help) << option;
        EXPECT_EQ(accepted({L"install", option}).verb, Verb::help) << option;
        EXPECT_EQ(accepted({L"install", L"a.xml", option}).verb, Verb::help) << option;
    }
    EXPECT_EQ(accepted({L"--version"}).verb, Verb::version);
    EXPECT_EQ(accepted({L"install", L"a.xml", L"--version"}).verb, Verb::version);
}

TEST(CommandLineTest, ChecksAScriptWithOptionsOfItsOwn) {
    const CommandLine plain = accepted({L"check", L"a.xml"});
    EXPECT_EQ(plain.verb, Verb::check);
    EXPECT_EQ(plain.script, L"a.xml");
    EXPECT_EQ(plain.payload + plain.previous + plain.sarif, L"");
    EXPECT_FALSE(plain.warningsAsErrors || plain.json);

    const CommandLine command =
        accepted({L"check", L"a.xml", L"--payload", L"p", L"--previous=b.xml", L"--sarif", L"s",
                  L"--ignore", L"TZ101", L"--warnings-as-errors", L"--ignore=TZ203", L"--json"});
    EXPECT_EQ(command.payload, L"p");
    EXPECT_EQ(command.previous, L"b.xml");
    EXPECT_EQ(command.sarif, L"s");
    EXPECT_THAT(command.ignored, testing::ElementsAre(L"TZ101", L"TZ203"));
    EXPECT_TRUE(command.warningsAsErrors && command.json);
}

TEST(CommandLineTest, KnowsTheTopicsOfHelp) {
    EXPECT_EQ(accepted({L"help"}).verb, Verb::help);
    EXPECT_EQ(accepted({L"help", L"codes"}).verb, Verb::helpCodes);
    EXPECT_EQ(accepted({L"help", L"findings"}).verb, Verb::helpFindings);
}

TEST(CommandLineTest, TellsWhatIsWrong) {
    const struct {
        Arguments arguments;
        const wchar_t* problem;
    } lines[] = {
        {{}, L"The command is missing."},
        {{L"--quiet"}, L"The command is missing."},
        {{L"remove", L"a.xml"}, L"remove is no command."},
        {{L"Install", L"a.xml"}, L"Install is no command."},
        {{L"install"}, L"The SCRIPT is missing."},
        {{L"install", L""}, L"The SCRIPT is missing."},
        {{L"explain"}, L"The CODE|TEXT is missing."},
        {{L"install", L"a.xml", L"b.xml"}, L"b.xml is one argument too many."},
        {{L"install", L"a.xml", L"--force"}, L"--force is no option."},
        {{L"install", L"a.xml", L"--quiet=1"}, L"--quiet takes no value."},
        {{L"install", L"a.xml", L"/S", L"--quiet"}, L"--quiet stands twice."},
        {{L"install", L"a.xml", L"--wait", L"x"}, L"--wait can't be \"x\", only SECONDS."},
        {{L"install", L"a.xml", L"--log="}, L"--log can't be \"\", only FILE."},
        {{L"install", L"a.xml", L"--log"}, L"--log needs a value: FILE."},
        {{L"help", L"code"}, L"code is no topic of help."},
        {{L"check"}, L"The SCRIPT is missing."},
        {{L"check", L"a.xml", L"--log", L"x"}, L"--log is no option of check."},
        {{L"check", L"a.xml", L"--ignore="}, L"--ignore can't be \"\", only TZ...."},
        {{L"check", L"a.xml", L"--ignore", L"tz101"}, L"--ignore can't be \"tz101\", only TZ...."},
        {{L"install", L"a.xml", L"--payload", L"p"}, L"--payload is no option of install."},
        {{L"help", L"--json"}, L"--json is no option of help."},
    };
    for (const auto& [arguments, problem] : lines)
        EXPECT_EQ(refusal(arguments), problem);
}

TEST(CommandLineTest, ReadsNothingWhereThereIsNotEvenAProgram) {
    std::wstring problem;
    EXPECT_FALSE(readCommandLine(0, nullptr, problem));
    EXPECT_EQ(problem, L"The command is missing.");
}

TEST(UsageTest, HasALineForEachCommandAndOption) {
    const std::wstring text = usage();

    for (const wchar_t* line :
         {L"\n  install SCRIPT        put", L"\n  upgrade SCRIPT ", L"\n  uninstall SCRIPT ",
          L"\n  check SCRIPT          tell", L"\n  explain CODE|TEXT     tell",
          L"\n  help [codes|findings] show", L"\n  new                   make",
          L"\n  harvest DIR           make", L"\n  verify SCRIPT         install",
          L"\n  schema                show",
          L"\n  --on-error abort|ignore|retry:N[,SECONDS]\n                        what",
          L"\n  --quiet, /quiet, /S   ask", L"\n  --log FILE, /log      append",
          L"\n  --help, -h, /?        show"})
        EXPECT_NE(text.find(line), std::wstring::npos) << line;
}

}  // namespace
