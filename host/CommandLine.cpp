#include "CommandLine.h"

#include <algorithm>
#include <cwchar>
#include <string_view>
#include <vector>

const wchar_t usage[] =
    L"Usage: temz install|uninstall|upgrade SCRIPT [--on-error=abort|ignore|retry:N]\n"
    L"\n"
    L"  --on-error   what to do when a vital action fails, in place of asking: end the run, go on\n"
    L"               without the action, or try it again up to N times before the run ends\n"
    L"  -h, --help   show this text\n"
    L"\n"
    L"Exit codes: 0 done, 3010 done and a restart is needed, 1602 ended by the user, 1603 failed,\n"
    L"1619 script can't be opened, 1620 script can't be loaded, 1639 wrong command line.\n";

namespace {

std::optional<RunMode> readMode(std::wstring_view word) {
    if (word == L"install")
        return RUNMODE_INSTALL;
    if (word == L"uninstall")
        return RUNMODE_UNINSTALL;
    if (word == L"upgrade")
        return RUNMODE_UPGRADE;
    return std::nullopt;
}

/// A number from 1 on, of no more digits than surely fit.
std::optional<unsigned> readCount(std::wstring_view word) {
    constexpr size_t maxDigits = 9;
    if (word.size() > maxDigits || word.find_first_not_of(L"0123456789") != std::wstring_view::npos)
        return std::nullopt;
    const auto number = std::wcstoul(std::wstring(word).c_str(), nullptr, 10);
    return number > 0 ? std::optional<unsigned>(number) : std::nullopt;
}

std::optional<ErrorPolicy> readPolicy(std::wstring_view word) {
    constexpr std::wstring_view retry = L"retry:";
    if (word == L"abort")
        return ErrorPolicy{ANSWER_ABORT};
    if (word == L"ignore")
        return ErrorPolicy{ANSWER_IGNORE};
    if (!word.starts_with(retry))
        return std::nullopt;
    const std::optional<unsigned> count = readCount(word.substr(retry.size()));
    return count ? std::optional(ErrorPolicy{ANSWER_RETRY, *count}) : std::nullopt;
}

}  // namespace

std::optional<CommandLine> readCommandLine(int count, const wchar_t* const* arguments,
                                           std::wstring& problem) {
    const auto refuse = [&problem](const std::wstring& reason) {
        problem = reason;
        return std::nullopt;
    };
    constexpr std::wstring_view onError = L"--on-error=";
    CommandLine command;
    std::vector<std::wstring> words;
    for (int i = 1; i < count; ++i) {
        const std::wstring argument = arguments[i];
        if (!argument.starts_with(L'-'))
            words.push_back(argument);
        else if (!argument.starts_with(onError))
            return refuse(argument + L" is no option.");
        else if (command.onError)
            return refuse(L"--on-error stands twice.");
        else if (!(command.onError = readPolicy(argument.substr(onError.size()))))
            return refuse(argument + L" is none of abort, ignore and retry:N.");
    }
    if (words.empty())
        return refuse(L"The mode is missing.");
    const std::optional<RunMode> mode = readMode(words[0]);
    if (!mode)
        return refuse(words[0] + L" is no mode.");
    if (words.size() == 1 || words[1].empty())
        return refuse(L"The script is missing.");
    if (words.size() > 2)
        return refuse(words[2] + L" is one argument too many.");
    command.mode = *mode;
    command.script = words[1];
    return command;
}

bool asksForHelp(int count, const wchar_t* const* arguments) {
    return std::any_of(arguments, arguments + count, [](const std::wstring_view argument) {
        return argument == L"-h" || argument == L"--help";
    });
}
