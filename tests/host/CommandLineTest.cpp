#include "host/CommandLine.h"

#include <gmock/gmock.h>

#include <vector>

namespace {

std::optional<CommandLine> read(std::vector<const wchar_t*> arguments) {
    std::wstring problem;
    arguments.insert(arguments.begin(), L"temz.exe");
    const auto command =
        readCommandLine(static_cast<int>(arguments.size()), arguments.data(), problem);
    EXPECT_EQ(problem, L"");
    return command;
}

TEST(CommandLineTest, NamesTheModeAndTheScript) {
    const struct {
        const wchar_t* word;
        RunMode mode;
    } modes[] = {{L"install", RUNMODE_INSTALL},
                 {L"uninstall", RUNMODE_UNINSTALL},
                 {L"upgrade", RUNMODE_UPGRADE}};
    for (const auto& [word, mode] : modes) {
        const auto command = read({word, L"a script.xml"});

        ASSERT_TRUE(command) << word;
        EXPECT_EQ(command->mode, mode);
        EXPECT_EQ(command->script, L"a script.xml");
        EXPECT_FALSE(command->onError);
    }
}

TEST(CommandLineTest, TellsWhatIsDoneAboutAFailure) {
    const struct {
        const wchar_t* option;
        ObserverAnswer answer;
        unsigned retries;
    } policies[] = {{L"--on-error=abort", ANSWER_ABORT, 0},
                    {L"--on-error=ignore", ANSWER_IGNORE, 0},
                    {L"--on-error=retry:1", ANSWER_RETRY, 1},
                    {L"--on-error=retry:010", ANSWER_RETRY, 10},
                    {L"--on-error=retry:999999999", ANSWER_RETRY, 999'999'999}};
    for (const auto& [option, answer, retries] : policies) {
        const auto command = read({L"install", L"a.xml", option});

        ASSERT_TRUE(command && command->onError) << option;
        EXPECT_EQ(command->onError->answer, answer);
        EXPECT_EQ(command->onError->retries, retries);
    }
}

TEST(CommandLineTest, TakesTheOptionAnywhere) {
    const wchar_t* const option = L"--on-error=ignore";
    const std::vector<const wchar_t*> orders[] = {{option, L"upgrade", L"a.xml"},
                                                  {L"upgrade", option, L"a.xml"},
                                                  {L"upgrade", L"a.xml", option}};
    for (const auto& order : orders) {
        const auto command = read(order);

        ASSERT_TRUE(command);
        EXPECT_EQ(command->mode, RUNMODE_UPGRADE);
        EXPECT_EQ(command->script, L"a.xml");
        EXPECT_TRUE(command->onError);
    }
}

}  // namespace
