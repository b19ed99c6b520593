#include "CommandLine.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <iterator>
#include <string_view>
#include <vector>

#include "Findings.h"
#include "LoadedScript.h"

namespace {

struct Command {
    Verb verb;
    const wchar_t* word;
    const wchar_t* operand;  // what must follow; in brackets, what may; null for nothing
    const wchar_t* meaning;
    void (*take)(CommandLine& line, const std::wstring& operand);
    std::array<const wchar_t*, 2> needs = {};  // options that must be there
};

template <temz_mode mode>
void takeRun(CommandLine& line, const std::wstring& operand) {
    line.mode = mode;
    line.script = operand;
}

template <std::wstring CommandLine::*text>
void takeOperand(CommandLine& line, const std::wstring& operand) {
    line.*text = operand;
}

void takeNothing(CommandLine& /*line*/, const std::wstring& /*operand*/) {}

struct Topic {
    const wchar_t* word;
    Verb verb;
};
constexpr Topic topics[] = {{L"codes", Verb::helpCodes}, {L"findings", Verb::helpFindings}};

const Topic* findTopic(const std::wstring& word) {
    const auto* found = std::find_if(std::begin(topics), std::end(topics),
                                     [&word](const Topic& topic) { return word == topic.word; });
    return found == std::end(topics) ? nullptr : found;
}

void takeTopic(CommandLine& line, const std::wstring& operand) {
    if (const Topic* topic = findTopic(operand))
        line.verb = topic->verb;
}

constexpr Command commands[] = {
    {Verb::run, L"install", L"SCRIPT", L"put the product of an install script on the machine",
     takeRun<TEMZ_INSTALL>},
    {Verb::run, L"upgrade", L"SCRIPT", L"bring an installed product up to the script's version",
     takeRun<TEMZ_UPGRADE>},
    {Verb::run, L"uninstall", L"SCRIPT", L"remove it", takeRun<TEMZ_UNINSTALL>},
    {Verb::plan, L"plan", L"SCRIPT", L"show what a run of it would do here, and change nothing",
     takeOperand<&CommandLine::script>},
    {Verb::check, L"check", L"SCRIPT",
     L"tell what is wrong with an install script, and run nothing",
     takeOperand<&CommandLine::script>},
    {Verb::verify,
     L"verify",
     L"SCRIPT",
     L"install and remove the product, and tell what isn't as it was before",
     takeOperand<&CommandLine::script>,
     {L"--on-this-machine"}},
    {Verb::draftProduct,
     L"new",
     nullptr,
     L"make a script that installs a folder as a product",
     takeNothing,
     {L"--name", L"--payload"}},
    {Verb::draftPart, L"harvest", L"DIR", L"make the part of a script that installs a folder",
     takeOperand<&CommandLine::payload>},
    {Verb::schema, L"schema", nullptr, L"show the XML Schema of scripts, for editors", takeNothing},
    {Verb::explain, L"explain", L"CODE|TEXT",
     L"tell the cause of a code or a message, and what to do about it",
     takeOperand<&CommandLine::subject>},
    {Verb::help, L"help", L"[codes|findings]",
     L"show this text, the exit codes, or what a check can find", takeTopic},
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

template <std::wstring CommandLine::*text>
bool takeText(CommandLine& line, const std::wstring& value) {
    line.*text = value;
    return !value.empty();
}

bool takeIgnored(CommandLine& line, const std::wstring& value) {
    bool known = false;
    forEachFindingKind([&](const temz_finding_kind& kind) { known = known || value == kind.code; });
    line.ignored.push_back(value);
    return known;
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

/// The commands that know an option.
constexpr unsigned verbBit(Verb verb) {
    return 1U << static_cast<unsigned>(verb);
}
constexpr unsigned runs = verbBit(Verb::run);
constexpr unsigned plans = verbBit(Verb::plan);
constexpr unsigned checks = verbBit(Verb::check);
constexpr unsigned verifies = verbBit(Verb::verify);
constexpr unsigned givesText =
    verbBit(Verb::draftProduct) | verbBit(Verb::draftPart) | verbBit(Verb::schema);
constexpr unsigned repeatable = 1U << 31;  // the option may stand several times
constexpr unsigned anything = repeatable - 1;

struct Option {
    unsigned verbs;
    std::array<const wchar_t*, 3> spellings;  // the first is the one that is told
    const wchar_t* value;                     // what it may be; null when the option has none
    const wchar_t* meaning;
    bool (*take)(CommandLine& line, const std::wstring& value);
};

constexpr Option options[] = {
    {runs,
     {L"--on-error"},
     L"abort|ignore|retry:N[,SECONDS]",
     L"what to do when a vital action fails, in place of asking: end the run, go on without the\n"
     L"action, or try it again up to N times, each after a pause",
     takePolicy},
    {runs,
     {L"--accept-ignored"},
     nullptr,
     L"end with success although vital actions were ignored",
     takeFlag<&CommandLine::acceptIgnored>},
    {runs,
     {L"--quiet", L"/quiet", L"/S"},
     nullptr,
     L"ask nothing, and show failures only",
     takeFlag<&CommandLine::quiet>},
    {runs,
     {L"--passive", L"/passive"},
     nullptr,
     L"ask nothing, and show the progress",
     takeFlag<&CommandLine::passive>},
    {runs,
     {L"--log", L"/log"},
     L"FILE",
     L"append all that is done to a file",
     takeText<&CommandLine::log>},
    {runs,
     {L"--verbose"},
     nullptr,
     L"with every call to the system in the log, or in JSON",
     takeFlag<&CommandLine::verbose>},
    {runs | plans | checks | verifies,
     {L"--json"},
     nullptr,
     L"show everything as one JSON object a line",
     takeFlag<&CommandLine::json>},
    {runs, {L"--wait"}, L"SECONDS", L"wait for another run on this machine to end", takeWait},
    {runs,
     {L"--drop-pending"},
     nullptr,
     L"at uninstall, take back what still waits for a restart",
     takeFlag<&CommandLine::dropPending>},
    {runs | plans,
     {L"--no-check"},
     nullptr,
     L"start without checking the script first",
     takeFlag<&CommandLine::noCheck>},
    {runs,
     {L"--plan"},
     L"FILE",
     L"hold each change against a plan that temz plan --out has kept, and end the run before\n"
     L"the first that isn't the next one in it",
     takeText<&CommandLine::plan>},
    {plans,
     {L"--mode"},
     L"install|uninstall|upgrade",
     L"which run to plan, if not an installation",
     takeMode},
    {plans | repeatable,
     {L"--assume"},
     L"NAME=VALUE",
     L"plan with another value of a variable, such as OS_BIT=32; may stand several times",
     takeAssumption},
    {plans, {L"--html"}, L"FILE", L"write the plan as a page", takeText<&CommandLine::html>},
    {checks | verbBit(Verb::draftProduct),
     {L"--payload"},
     L"DIR",
     L"the folder that the sources of files stand in",
     takeText<&CommandLine::payload>},
    {checks,
     {L"--previous"},
     L"SCRIPT",
     L"tell what an upgrade leaves of the version before",
     takeText<&CommandLine::previous>},
    {checks | repeatable,
     {L"--ignore"},
     L"TZ...",
     L"leave out a finding; may stand several times",
     takeIgnored},
    {checks,
     {L"--warnings-as-errors"},
     nullptr,
     L"count warnings as errors",
     takeFlag<&CommandLine::warningsAsErrors>},
    {checks,
     {L"--sarif"},
     L"FILE",
     L"write the findings as SARIF 2.1, for code-review systems",
     takeText<&CommandLine::sarif>},
    {verifies,
     {L"--on-this-machine"},
     nullptr,
     L"yes, this is a machine on which to try a product out",
     takeFlag<&CommandLine::onThisMachine>},
    {verifies,
     {L"--upgrade-from"},
     L"SCRIPT",
     L"first install the version of this script, then upgrade",
     takeText<&CommandLine::upgradeFrom>},
    {verbBit(Verb::draftProduct),
     {L"--name"},
     L"NAME",
     L"how the product is called",
     takeText<&CommandLine::name>},
    {plans | givesText,
     {L"--out"},
     L"FILE",
     L"write to a file, in place of showing it; of a plan, what temz install --plan wants",
     takeText<&CommandLine::out>},
    {anything, {L"--version"}, nullptr, L"show the version", takeVerb<Verb::version>},
    {anything, {L"--help", L"-h", L"/?"}, nullptr, L"show this text", takeVerb<Verb::help>},
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
        // "/log:FILE" is as customary as "/log=FILE".
        const size_t equals = argument.find_first_of(argument.starts_with(L'/') ? L":=" : L"=");
        const std::wstring name = argument.substr(0, equals);
        const Option* option = findOption(name);
        if (option == nullptr) {
            // A status of the system's, as the shell shows it, is a number below zero.
            if (argument.starts_with(L'-') && !readNumber(argument.substr(1), 10))
                return refuse(argument + L" is no option.");
            words.push_back(argument);
            return true;
        }
        if (!(option->verbs & repeatable) &&
            std::find(seen.begin(), seen.end(), option) != seen.end())
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
        if (!option->take(line, value))
            return refuse(name + L" can't be \"" + value + L"\", only " + option->value + L".");
        return true;
    }

    bool readCommand() {
        if (words.empty())
            return refuse(L"The command is missing.");
        const Command* command = findCommand(words[0]);
        if (command == nullptr)
            return refuse(words[0] + L" is no command.");
        const bool takesNone = command->operand == nullptr;
        const bool optional = takesNone || *command->operand == L'[';
        if (!optional && (words.size() == 1 || words[1].empty()))
            return refuse(std::wstring(L"The ") + command->operand + L" is missing.");
        if (const size_t most = takesNone ? 1 : 2; words.size() > most)
            return refuse(words[most] + L" is one argument too many.");
        if (optional && words.size() == 2 && findTopic(words[1]) == nullptr)
            return refuse(words[1] + L" is no topic of " + command->word + L".");
        for (const wchar_t* need : command->needs)
            if (need && std::find(seen.begin(), seen.end(), findOption(need)) == seen.end())
                return refuse(std::wstring(need) + L" is missing.");
        line.verb = command->verb;
        command->take(line, words.size() > 1 ? words[1] : L"");
        for (const Option* option : seen)
            if (!(option->verbs & verbBit(line.verb)))
                return refuse(std::wstring(option->spellings[0]) + L" is no option of " +
                              command->word + L".");
        if (line.verb == Verb::run && line.verbose && line.log.empty() && !line.json)
            return refuse(L"--verbose needs --log or --json, where the calls are shown.");
        if (!line.assumptions.empty() && !line.out.empty())
            return refuse(
                L"--out keeps a plan for a run on this machine, and --assume tells of "
                L"another one.");
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

std::wstring entry(const Option& option) {
    std::wstring name = option.spellings[0];
    if (option.value)
        name += std::wstring(L" ") + option.value;
    for (size_t i = 1; i < option.spellings.size() && option.spellings[i]; ++i)
        name += std::wstring(L", ") + option.spellings[i];
    return entry(name, option.meaning);
}

/// The words of all commands of a verb, as "install, upgrade".
std::wstring wordsOf(Verb verb) {
    std::wstring words;
    for (const Command& command : commands)
        if (command.verb == verb)
            words += (words.empty() ? L"" : L", ") + std::wstring(command.word);
    return words;
}

/// The options that a verb knows, under its commands' words; empty when it has none of its own.
std::wstring optionsOf(Verb verb) {
    std::wstring text;
    for (const Option& option : options)
        if (option.verbs != anything && option.verbs & verbBit(verb))
            text += entry(option);
    return text.empty() ? text : L"\n" + wordsOf(verb) + L":\n" + text;
}

}  // namespace

std::optional<CommandLine> readCommandLine(int count, const wchar_t* const* arguments,
                                           std::wstring& problem) {
    return Reader(count, arguments, problem).read();
}

bool wantsJson(int count, const wchar_t* const* arguments) {
    return std::any_of(arguments, arguments + count, [](const wchar_t* argument) {
        return std::wstring_view(argument) == L"--json";
    });
}

std::optional<Verb> namedVerb(int count, const wchar_t* const* arguments) {
    for (int i = 1; i < count; ++i)
        if (const Command* command = findCommand(arguments[i]))
            return command->verb;
    return std::nullopt;
}

std::wstring usage() {
    std::wstring text = L"Usage: temz COMMAND [OPTION]...\n\n";
    for (const Command& command : commands)
        text += entry(
            command.operand ? command.word + std::wstring(L" ") + command.operand : command.word,
            command.meaning);
    for (const Option& option : options)
        if (option.verbs == anything)
            text += entry(option);
    const Command* before = nullptr;
    for (const Command& command : commands) {
        if (before == nullptr || before->verb != command.verb)
            text += optionsOf(command.verb);
        before = &command;
    }
    return text +
           L"\ntemz help codes shows the exit codes, temz help findings what a check can find.\n";
}
