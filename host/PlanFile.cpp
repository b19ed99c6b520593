#include "PlanFile.h"

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "Diagnosis.h"
#include "ScriptFile.h"
#include "TextOutput.h"
#include "Utf8.h"

namespace {

// A line has fields between tabs; in them, a backslash, a tab and the ends of lines are escaped.
constexpr wchar_t format[] = L"temz-plan";
constexpr wchar_t formatVersion[] = L"2";

struct Escape {
    wchar_t character;
    wchar_t letter;
};
constexpr Escape escapes[] = {{L'\\', L'\\'}, {L'\t', L't'}, {L'\n', L'n'}, {L'\r', L'r'}};

std::wstring escaped(const std::wstring& field) {
    std::wstring text;
    for (const wchar_t character : field) {
        const auto* escape =
            std::find_if(std::begin(escapes), std::end(escapes),
                         [character](const Escape& one) { return one.character == character; });
        if (escape != std::end(escapes))
            text.append(1, L'\\').append(1, escape->letter);
        else
            text += character;
    }
    return text;
}

std::wstring line(const std::vector<std::wstring>& fields) {
    std::wstring text;
    for (const std::wstring& field : fields)
        text += (text.empty() ? L"" : L"\t") + escaped(field);
    return text + L"\n";
}

std::vector<std::wstring> fieldsOf(const std::wstring& text) {
    std::vector<std::wstring> fields(1);
    for (size_t i = 0; i < text.size(); ++i) {
        const auto* escape = std::end(escapes);
        if (text[i] == L'\\' && i + 1 < text.size())
            escape = std::find_if(std::begin(escapes), std::end(escapes),
                                  [&](const Escape& one) { return one.letter == text[i + 1]; });
        if (text[i] == L'\t') {
            fields.emplace_back();
        } else if (escape != std::end(escapes)) {
            fields.back() += escape->character;
            ++i;
        } else {
            fields.back() += text[i];
        }
    }
    return fields;
}

uint32_t number(const std::wstring& field) {
    return static_cast<uint32_t>(std::wcstoul(field.c_str(), nullptr, 10));
}

/// Its result is the system's error code, or nothing.
std::wstring callLine(const PlannedCall& call) {
    const std::wstring result = call.result ? std::to_wstring(*call.result) : L"";
    std::vector<std::wstring> fields{L"call", result, call.group, call.name};
    fields.insert(fields.end(), call.arguments.begin(), call.arguments.end());
    return line(fields);
}

std::wstring textOf(const Plan& plan) {
    std::wstring text = line({format, formatVersion}) + line({L"sha256", plan.header.scriptHash}) +
                        line({L"mode", plan.header.mode});
    size_t call = 0;
    for (const PlannedElement& element : plan.elements) {
        for (; call < element.firstCall; ++call)
            text += callLine(plan.calls[call]);
        text += line({L"element", element.element, std::to_wstring(element.line)});
    }
    for (; call < plan.calls.size(); ++call)
        text += callLine(plan.calls[call]);
    return text + line({L"end"});
}

PlannedCall readCall(const std::vector<std::wstring>& fields) {
    const CallResult result = fields[1].empty() ? std::nullopt : CallResult(number(fields[1]));
    return {fields[2], fields[3], {fields.begin() + 4, fields.end()}, result};
}

std::wstring textOf(const CallResult& result) {
    return result ? systemTextWithCode(*result) : L"success";
}

/// Reads the lines behind the first. What it finds wrong is in `problem`.
class PlanReader {
public:
    explicit PlanReader(std::wstring& problem) : problem(problem) {}

    std::optional<KeptPlan> read(std::wistringstream& lines) {
        std::wstring text;
        if (!readLine(lines, text) || fieldsOf(text)[0] != format)
            return refuse(L"It is no plan.");
        if (text != std::wstring(format) + L"\t" + formatVersion)
            return refuse(L"It is a plan of another version of the program.");
        while (readLine(lines, text))
            if (!take(fieldsOf(text)))
                return refuse(L"It has a line that is none of a plan.");
        if (!complete)
            return refuse(L"It isn't complete.");
        return std::move(plan);
    }

private:
    /// Plans travel through tools that change the ends of lines.
    static bool readLine(std::wistringstream& lines, std::wstring& text) {
        if (!std::getline(lines, text))
            return false;
        if (text.ends_with(L'\r'))
            text.pop_back();
        return true;
    }

    std::optional<KeptPlan> refuse(const wchar_t* reason) {
        problem = reason;
        return std::nullopt;
    }

    bool take(const std::vector<std::wstring>& fields) {
        const std::wstring& kind = fields[0];
        if (complete)
            return false;
        if (kind == L"sha256" && fields.size() == 2)
            plan.scriptHash = fields[1];
        else if (kind == L"mode" && fields.size() == 2)
            plan.mode = fields[1];
        else if (kind == L"element" && fields.size() == 3)
            plan.elements.push_back({plan.calls.size(), fields[1], number(fields[2])});
        else if (kind == L"call" && fields.size() >= 4)
            plan.calls.push_back(readCall(fields));
        else if (kind == L"end" && fields.size() == 1)
            complete = true;
        else
            return false;
        return true;
    }

    std::wstring& problem;
    KeptPlan plan;
    bool complete = false;
};

}  // namespace

std::wstring keepPlan(const Plan& plan, const std::wstring& path) {
    return writeTextFile(path, textOf(plan));
}

std::optional<KeptPlan> readPlan(const std::wstring& path, std::wstring& problem) {
    if (const std::wstring opening = findOpenProblem(path); !opening.empty()) {
        problem = L"It can't be opened: " + opening;
        return std::nullopt;
    }
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    const std::string utf8{std::istreambuf_iterator<char>(file), {}};
    std::wistringstream lines(fromUtf8(utf8));
    return PlanReader(problem).read(lines);
}

bool PlanHold::take(const PlannedCall& call) {
    const auto from = plan.calls.begin() + static_cast<ptrdiff_t>(again);
    const auto behind =
        plan.calls.begin() + static_cast<ptrdiff_t>(std::min(position + 1, plan.calls.size()));
    const auto found = std::find_if(
        from, behind, [&call](const PlannedCall& planned) { return planned.asksAs(call); });
    if (found == behind)
        return false;
    position = static_cast<size_t>(found - plan.calls.begin()) + 1;
    again = position;
    return true;
}

void PlanHold::returned(const CallResult& result) {
    departed.reset();
    if (result != plan.calls[position - 1].result)
        departed = result;
}

std::wstring PlanHold::otherResult() const {
    if (!departed)
        return {};
    const PlannedCall& call = plan.calls[position - 1];
    return callText(call.name, call.arguments) + L" has another result: " + textOf(*departed) +
           L", and in the plan " + textOf(call.result);
}

const PlannedCall* PlanHold::next() const {
    return position < plan.calls.size() ? &plan.calls[position] : nullptr;
}

// A File makes its directory before it is announced, so its calls begin where its element does.
void PlanHold::retried() {
    departed.reset();
    again = 0;
    for (const PlannedElement& element : plan.elements)
        if (element.firstCall <= announcedAt)
            again = element.firstCall;
}

bool PlanHold::isBetweenActions() const {
    return std::any_of(plan.elements.begin(), plan.elements.end(),
                       [this](const PlannedElement& element) {
                           return element.firstCall > announcedAt && element.firstCall <= position;
                       });
}
