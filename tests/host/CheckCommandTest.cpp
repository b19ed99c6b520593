#include <gmock/gmock.h>

#include "SetupTest.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace {

using CheckCommandTest = SetupTest;

TEST_F(CheckCommandTest, TellsOfAWrongCommandLineInItsOwnJson) {
    const ProgramRun run = temz(L"check --json");

    EXPECT_EQ(run.exitCode, 1639u);
    EXPECT_THAT(run.output, StartsWith(R"({"event":"start","schema":"temz-check-1",)"));
    EXPECT_THAT(run.output,
                HasSubstr(R"({"event":"problem","text":"The SCRIPT is missing."})"
                          "\n"
                          R"({"event":"end","exitCode":1639,"errors":0,"warnings":0,"notes":0})"));
    EXPECT_EQ(run.error, "temz: The SCRIPT is missing. See temz help.\n");
}

/// A script with an element that there isn't, which each command of a check is about.
constexpr char faulty[] =
    "<Script><Product><InstallExecuteSequence><Fragment On='install'>\n"
    "  <Cautoin Title='a'/></Fragment></InstallExecuteSequence></Product></Script>";

TEST_F(CheckCommandTest, TellsWhatItFindsInJsonAndWritesItAsSarif) {
    ship(L"a.xml", faulty);

    const ProgramRun run = temz(L"check a.xml --json --sarif a.sarif");

    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_THAT(run.output, HasSubstr(R"({"event":"finding","severity":"error","code":"TZ203",)"
                                      R"("endsRun":)"));
    EXPECT_THAT(run.output, HasSubstr(R"("file":"a.xml","line":2,"column":3,"length":8,)"));
    EXPECT_THAT(run.output, HasSubstr(R"("source":"  <Cautoin Title='a'/>)"));
    EXPECT_THAT(run.output, HasSubstr(R"({"event":"end","exitCode":1,"errors":1,)"));
    EXPECT_THAT(readFile(setup(L"a.sarif")), HasSubstr(R"("results":[{"ruleId":"TZ203",)"));
    EXPECT_EQ(run.error, "");
}

TEST_F(CheckCommandTest, TakesWarningsForErrorsWhereItIsTo) {
    ship(L"a.xml",
         "<Script><Product><InstallExecuteSequence><Fragment On='never'><Caution "
         "Title='a'/></Fragment></InstallExecuteSequence></Product></Script>");

    const ProgramRun lenient = temz(L"check a.xml");
    const ProgramRun strict = temz(L"check a.xml --warnings-as-errors");

    EXPECT_THAT(lenient.output, HasSubstr(": warning TZ"));
    EXPECT_THAT(strict.output, testing::Not(HasSubstr(": warning TZ")));
    EXPECT_EQ(strict.exitCode, 1u);
}

TEST_F(CheckCommandTest, NamesThePayloadThatCannotBeRead) {
    ship(L"a.xml", faulty);

    const ProgramRun run = temz(L"check a.xml --payload nowhere");

    EXPECT_EQ(run.exitCode, 2u);
    EXPECT_EQ(run.error, "temz: " + utf8(setup(L"nowhere")) +
                             " can't be read: " + systemError(ERROR_PATH_NOT_FOUND) + "\n");
    EXPECT_EQ(run.output, "");
}

TEST_F(CheckCommandTest, NamesTheScriptOfTheVersionBeforeThatCannotBeOpened) {
    ship(L"a.xml", faulty);

    const ProgramRun run = temz(L"check a.xml --previous nowhere.xml");

    EXPECT_EQ(run.exitCode, 2u);
    EXPECT_EQ(run.error,
              "temz: nowhere.xml can't be opened: " + systemError(ERROR_FILE_NOT_FOUND) + "\n");
}

TEST_F(CheckCommandTest, ListsTheKindsOfFindings) {
    const ProgramRun run = temz(L"help findings");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_THAT(run.output, HasSubstr("\nTZ203  error: "));
}

TEST_F(CheckCommandTest, LeavesTheJsonOfOtherCommandsToThem) {
    const std::pair<const wchar_t*, const char*> schemas[] = {
        {L"plan --json", "temz-plan-1"},
        {L"verify install.xml --json", "temz-verify-1"},
        {L"install --json", "temz-run-1"},
        {L"frobnicate --json", "temz-run-1"},
    };
    for (const auto& [command, schema] : schemas) {
        const ProgramRun run = temz(command);
        EXPECT_EQ(run.exitCode, 1639u) << utf8(command);
        EXPECT_THAT(run.output, HasSubstr(schema)) << utf8(command);
    }
}

}  // namespace
