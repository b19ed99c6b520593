#include "CommandLine.h"

#include <cwchar>
#include <string_view>
#include <vector>

const wchar_t usage[] =
    L"Usage: temz install|uninstall|upgrade SCRIPT [--on-error=abort|ignore|retry:N]\n"
    L"\n"
    L"  --on-error   what to do when a vital action fails, in place of asking: end the run, go on\n"
    L"               without the action, or try it again up to N times before the run ends\n"
    L"\n"
    L"Exit codes: 0 done, 3010 done and a restart is needed, 1602 ended by the user, 1603 failed,\n"
    L"1619 script can't be opened, 1620 script can't be loaded, 1639 wrong command line.\n";

namespace {

constexpr size_t retryDigits = 9;  // what surely fits the counter

std::optional<RunMode> readMode(std::wstring_view word) {
    if (word == L"install")
        return RUNMODE_INSTALL;
    if (word == L"uninstall")
        return RUNMODE_UNINSTALL;
    if (word == L"upgrade")
        return RUNMODE_UPGRADE;
    return std::nullopt;
}

std::optional<ErrorPolicy> readPolicy(std::wstring_view word) {
    constexpr std::wstring_view retry = L"retry:";
    if (word == L"abort")
        return ErrorPolicy{ANSWER_ABORT};
    if (word == L"ignore")
        return ErrorPolicy{ANSWER_IGNORE};
    if (!word.starts_with(retry))
        return std::nullopt;
    const std::wstring number(word.substr(retry.size()));
    if (number.empty() || number.size() > retryDigits ||
        number.find_first_not_of(L"0123456789") != std::wstring::npos)
        return std::nullopt;
    return ErrorPolicy{ANSWER_RETRY,
                       static_cast<unsigned>(std::wcstoul(number.c_str(), nullptr, 10))};
}

}  // namespace

std::optional<CommandLine> readCommandLine(int count, const wchar_t* const* arguments) {
    constexpr std::wstring_view onError = L"--on-error=";
    CommandLine command;
    std::vector<std::wstring_view> words;
    for (int i = 1; i < count; ++i) {
        const std::wstring_view argument = arguments[i];
        if (argument.starts_with(onError)) {
            const auto policy = readPolicy(argument.substr(onError.size()));
            if (!policy || command.onError)
                return std::nullopt;
            command.onError = policy;
        } else if (argument.starts_with(L"--")) {
            return std::nullopt;
        } else {
            words.push_back(argument);
        }
    }
    if (words.size() != 2 || words[1].empty())
        return std::nullopt;
    const std::optional<RunMode> mode = readMode(words[0]);
    if (!mode)
        return std::nullopt;
    command.mode = *mode;
    command.script = words[1];
    return command;
}
