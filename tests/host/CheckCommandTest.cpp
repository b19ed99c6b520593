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
