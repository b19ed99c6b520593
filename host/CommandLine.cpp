#include "CommandLine.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <iterator>
#include <string_view>
#include <vector>

#include "LoadedScript.h"

namespace {

struct Command {
    const wchar_t* word;
    const wchar_t* operand;  // what must follow; null for nothing
    const wchar_t* meaning;
    void (*take)(CommandLine& line, const std::wstring& operand);
};

template <temz_mode mode>
void takeRun(CommandLine& line, const std::wstring& operand) {
    line.verb = Verb::run;
    line.mode = mode;
    line.script = operand;
}

constexpr Command commands[] = {
    {L"install", L"SCRIPT", L"put the product of an install script on the machine",
     takeRun<TEMZ_INSTALL>},
    {L"upgrade", L"SCRIPT", L"bring an installed product up to the script's version",
     takeRun<TEMZ_UPGRADE>},
    {L"uninstall", L"SCRIPT", L"remove it", takeRun<TEMZ_UNINSTALL>},
    {L"plan", L"SCRIPT", L"show what a run of it would do here, and change nothing",
     [](CommandLine& line, const std::wstring& operand) {
         line.verb = Verb::plan;
         line.script = operand;
     }},
    {L"explain", L"CODE|TEXT", L"tell the cause of a code or a message, and what to do about it",
     [](CommandLine& line, const std::wstring& operand) {
         line.verb = Verb::explain;
         line.subject = operand;
     }},
    {L"help", L"[codes]", L"show this text, or the exit codes",
     [](CommandLine& line, const std::wstring& operand) {
         line.verb = operand == L"codes" ? Verb::helpCodes : Verb::help;
     }},
};

/// A number of no more digits than surely fit.
std::optional<unsigned> readNumber(std::wstring_view word, size_t maxDigits = 9) {
    if (word.empty() || word.size() > maxDigits ||
        word.find_first_not_of(L"0123456789") != std::wstring_view::npos)
        return std::nullopt;
    return static_cast<unsigned>(std::wcstoul(std::wstring(word).c_str(), nullptr, 10));
}

/// The system waits for less than 2^32 milliseconds.
std::optional<unsigned> readSeconds(std::wstring_view word) {
    return readNumber(word, 6);
}

/// "retry:N" or "retry:N,SECONDS", with an N from 1 on.
std::optional<ErrorPolicy> readRetry(std::wstring_view word) {
    constexpr std::wstring_view retry = L"retry:";
    if (!word.starts_with(retry))
        return std::nullopt;
    word.remove_prefix(retry.size());
    const size_t comma = word.find(L',');
    const std::optional<unsigned> count = readNumber(word.substr(0, comma));
    if (!count || *count == 0)
        return std::nullopt;
    ErrorPolicy policy{TEMZ_RETRY, *count, std::nullopt};
    if (comma != std::wstring_view::npos && !(policy.pause = readSeconds(word.substr(comma + 1))))
        return std::nullopt;
    return policy;
}

bool takePolicy(CommandLine& line, const std::wstring& value) {
    if (value == L"abort")
        line.onError = ErrorPolicy{TEMZ_ABORT, 0, std::nullopt};
    else if (value == L"ignore")
        line.onError = ErrorPolicy{TEMZ_IGNORE, 0, std::nullopt};
    else
        line.onError = readRetry(value);
    return line.onError.has_value();
}

bool takeWait(CommandLine& line, const std::wstring& value) {
    const std::optional<unsigned> seconds = readSeconds(value);
    line.waitSeconds = seconds.value_or(0);
    return seconds.has_value();
}

template <std::wstring CommandLine::*file>
bool takeFile(CommandLine& line, const std::wstring& value) {
    line.*file = value;
    return !value.empty();
}

bool takeMode(CommandLine& line, const std::wstring& value) {
    for (const temz_mode mode : {TEMZ_INSTALL, TEMZ_UNINSTALL, TEMZ_UPGRADE})
        if (value == modeWord(mode)) {
            line.mode = mode;
            return true;
        }
    return false;
}

bool takeAssumption(CommandLine& line, const std::wstring& value) {
    const size_t equals = value.find(L'=');
    if (equals == 0 || equals == std::wstring::npos)
        return false;
    line.assumptions.push_back({value.substr(0, equals), value.substr(equals + 1)});
    return true;
}

template <bool CommandLine::*flag>
bool takeFlag(CommandLine& line, const std::wstring& /*value*/) {
    return line.*flag = true;
}

template <Verb verb>
bool takeVerb(CommandLine& line, const std::wstring& /*value*/) {
    line.verb = verb;
    return true;
}

struct Option {
    std::array<const wchar_t*, 3> spellings;  // the first is the one that is told
    const wchar_t* value;                     // what it may be; null when the option has none
    const wchar_t* meaning;
    bool (*take)(CommandLine& line, const std::wstring& value);
    std::optional<Verb> onlyFor = {};  // the one kind of command that knows it
    bool repeatable = false;
};

constexpr Option options[] = {
    {{L"--on-error"},
     L"abort|ignore|retry:N[,SECONDS]",
     L"what to do when a vital action fails, in place of asking: end the run, go on without the\n"
     L"action, or try it again up to N times, each after a pause",
     takePolicy},
    {{L"--accept-ignored"},
     nullptr,
     L"end with success although vital actions were ignored",
     takeFlag<&CommandLine::acceptIgnored>},
    {{L"--quiet", L"/quiet", L"/S"},
     nullptr,
     L"ask nothing, and show failures only",
     takeFlag<&CommandLine::quiet>},
    {{L"--passive", L"/passive"},
     nullptr,
     L"ask nothing, and show the progress",
     takeFlag<&CommandLine::passive>},
    {{L"--log", L"/log"},
     L"FILE",
     L"append all that is done to a file",
     takeFile<&CommandLine::log>},
    {{L"--verbose"},
     nullptr,
     L"with every call to the system in the log",
     takeFlag<&CommandLine::verbose>},
    {{L"--json"},
     nullptr,
     L"show the run or plan as one JSON object a line",
     takeFlag<&CommandLine::json>},
    {{L"--wait"}, L"SECONDS", L"wait for another run on this machine to end", takeWait},
    {{L"--drop-pending"},
     nullptr,
     L"at uninstall, take back what still waits for a restart",
     takeFlag<&CommandLine::dropPending>},
    {{L"--plan"},
     L"FILE",
     L"hold each change against a plan that temz plan --out has kept, and end the run before\n"
     L"the first that isn't the next one in it",
     takeFile<&CommandLine::plan>,
     Verb::run},
    {{L"--mode"},
     L"install|uninstall|upgrade",
     L"which run to plan, if not an installation",
     takeMode,
     Verb::plan},
    {{L"--assume"},
     L"NAME=VALUE",
     L"plan with another value of a variable, such as OS_BIT=32; may stand more than once",
     takeAssumption,
     Verb::plan,
     true},
    {{L"--html"}, L"FILE", L"write the plan as a page", takeFile<&CommandLine::html>, Verb::plan},
    {{L"--out"},
     L"FILE",
     L"keep the plan, for temz install --plan",
     takeFile<&CommandLine::out>,
     Verb::plan},
    {{L"--version"}, nullptr, L"show the version", takeVerb<Verb::version>},
    {{L"--help", L"-h", L"/?"}, nullptr, L"show this text", takeVerb<Verb::help>},
};

bool equalIgnoringCase(std::wstring_view a, std::wstring_view b) {
    return a.size() == b.size() && _wcsnicmp(a.data(), b.data(), a.size()) == 0;
}

/// Switches with a slash may be written in any case, as is the custom.
const Option* findOption(std::wstring_view word) {
    const bool isSlash = word.starts_with(L'/');
    for (const Option& option : options)
        for (const wchar_t* spelling : option.spellings)
            if (spelling && (isSlash ? equalIgnoringCase(word, spelling) : word == spelling))
                return &option;
    return nullptr;
}

const Command* findCommand(const std::wstring& word) {
    const auto* found =
        std::find_if(std::begin(commands), std::end(commands),
                     [&word](const Command& command) { return word == command.word; });
    return found == std::end(commands) ? nullptr : found;
}

/// Goes through the arguments once. A failed step has its reason in `problem`.
class Reader {
public:
    Reader(int count, const wchar_t* const* arguments, std::wstring& problem)
        : rest(arguments + std::min(count, 1), arguments + count), problem(problem) {}

    std::optional<CommandLine> read() {
        while (next < rest.size())
            if (!readArgument(rest[next++]))
                return std::nullopt;
        if (line.verb == Verb::version || wantsHelp)
            return line;
        return readCommand() ? std::optional(line) : std::nullopt;
    }

private:
    bool refuse(const std::wstring& reason) {
        problem = reason;
        return false;
    }

    bool readArgument(const std::wstring& argument) {
        const size_t equals = argument.find(L'=');
        const std::wstring name = argument.substr(0, equals);
        const Option* option = findOption(name);
        if (option == nullptr) {
            if (argument.starts_with(L'-'))
                return refuse(argument + L" is no option.");
            words.push_back(argument);
            return true;
        }
        if (!option->repeatable && std::find(seen.begin(), seen.end(), option) != seen.end())
            return refuse(std::wstring(option->spellings[0]) + L" stands twice.");
        seen.push_back(option);
        std::wstring value;
        if (option->value == nullptr) {
            if (equals != std::wstring::npos)
                return refuse(name + L" takes no value.");
        } else if (equals != std::wstring::npos) {
            value = argument.substr(equals + 1);
        } else if (next < rest.size()) {
            value = rest[next++];
        } else {
            return refuse(name + L" needs a value: " + option->value + L".");
        }
        wantsHelp = wantsHelp || option->take == &takeVerb<Verb::help>;
        return option->take(line, value) ||
               refuse(name + L" can't be \"" + value + L"\", only " + option->value + L".");
    }

    bool readCommand() {
        if (words.empty())
            return refuse(L"The command is missing.");
        const Command* command = findCommand(words[0]);
        if (command == nullptr)
            return refuse(words[0] + L" is no command.");
        const bool optional = *command->operand == L'[';
        if (!optional && (words.size() == 1 || words[1].empty()))
            return refuse(std::wstring(L"The ") + command->operand + L" is missing.");
        if (words.size() > 2)
            return refuse(words[2] + L" is one argument too many.");
        if (optional && words.size() == 2 && L"[" + words[1] + L"]" != command->operand)
            return refuse(words[1] + L" is no topic of " + command->word + L".");
        command->take(line, words.size() > 1 ? words[1] : L"");
        for (const Option* option : seen)
            if (option->onlyFor && option->onlyFor != line.verb)
                return refuse(std::wstring(option->spellings[0]) + L" isn't for " + words[0] +
                              L".");
        return true;
    }

    const std::vector<std::wstring> rest;
    std::wstring& problem;
    size_t next = 0;
    CommandLine line;
    std::vector<std::wstring> words;
    std::vector<const Option*> seen;
    bool wantsHelp = false;
};

constexpr size_t meaningColumn = 24;

/// One entry of the usage, whose meaning may have several lines.
std::wstring entry(const std::wstring& name, const std::wstring& meaning) {
    std::wstring text = L"  " + name;
    text += text.size() < meaningColumn ? std::wstring(meaningColumn - text.size(), L' ')
                                        : L"\n" + std::wstring(meaningColumn, L' ');
    for (const wchar_t character : meaning) {
        text += character;
        if (character == L'\n')
            text.append(meaningColumn, L' ');
    }
    return text + L"\n";
}

}  // namespace

std::optional<CommandLine> readCommandLine(int count, const wchar_t* const* arguments,
                                           std::wstring& problem) {
    return Reader(count, arguments, problem).read();
}

std::wstring usage() {
    std::wstring text = L"Usage: temz COMMAND [OPTION]...\n\n";
    for (const Command& command : commands)
        text += entry(command.word + std::wstring(L" ") + command.operand, command.meaning);
    text += L"\n";
    for (const Option& option : options) {
        std::wstring name = option.spellings[0];
        if (option.value)
            name += std::wstring(L" ") + option.value;
        for (size_t i = 1; i < option.spellings.size() && option.spellings[i]; ++i)
            name += std::wstring(L", ") + option.spellings[i];
        text += entry(name, option.meaning);
    }
    return text + L"\ntemz help codes shows the exit codes.\n";
}
