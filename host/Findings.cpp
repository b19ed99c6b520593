#include "Findings.h"

#include <algorithm>

#include "CallbackGuard.h"
#include "Columns.h"

namespace {

constexpr size_t gutterWidth = 6;  // of the line's number

ScriptFinding copyOf(const temz_finding& told) {
    ScriptFinding finding;
    finding.severity = told.severity;
    finding.endsRun = told.ends_run != 0;
    finding.line = told.line;
    finding.column = told.column;
    finding.length = told.length;
    finding.code = told.code;
    finding.file = told.file;
    finding.text = told.text;
    finding.help = told.help;
    finding.sourceLine = told.source_line;
    return finding;
}

std::wstring counted(unsigned count, const wchar_t* word) {
    return std::to_wstring(count) + L" " + word + (count == 1 ? L"" : L"s");
}

std::wstring gutter(const std::wstring& number) {
    return std::wstring(gutterWidth - std::min(gutterWidth, number.size()), L' ') + number + L" | ";
}

/// The source line with what is wrong in it marked below. Of a long one the part around it.
std::wstring markedLine(const ScriptFinding& finding, size_t width) {
    const std::wstring number = gutter(std::to_wstring(finding.line));
    const size_t room = std::max<size_t>(width, 40) - number.size();
    const size_t at = std::min<size_t>(finding.column - 1, finding.sourceLine.size());
    const size_t first = columnsOf(finding.sourceLine.substr(0, at)) + finding.length < room
                             ? 0
                             : at - std::min(at, room / 3);
    const std::wstring shown = cutToColumns(finding.sourceLine.substr(first), room);
    const size_t before = columnsOf(finding.sourceLine.substr(first, at - first));
    const size_t marked =
        std::min(std::max<size_t>(columnsOf(finding.sourceLine.substr(at, finding.length)), 1),
                 room - std::min(before, room - 1));
    return number + shown + L"\n" + gutter(L"") + std::wstring(before, L' ') + L"^" +
           std::wstring(marked - 1, L'~') + L"\n";
}

}  // namespace

temz_status findFaults(const std::wstring& script, const std::wstring& payload,
                       const std::wstring& previous, std::vector<ScriptFinding>& findings) {
    struct Notes {
        std::vector<ScriptFinding>& findings;
        CallbackGuard guard = {};
    } notes{findings};
    temz_check_request request{};
    request.size = sizeof request;
    request.script = script.c_str();
    request.payload = payload.empty() ? nullptr : payload.c_str();
    request.previous = previous.empty() ? nullptr : previous.c_str();
    request.user = &notes;
    request.finding = [](void* user, const temz_finding* finding) {
        auto& noted = *static_cast<Notes*>(user);
        noted.guard.run([&] { noted.findings.push_back(copyOf(*finding)); });
    };
    return notes.guard.statusOf(temz_check(&request));
}

temz_status findFatalFaults(const std::wstring& script, std::wstring& lines) {
    std::vector<ScriptFinding> findings;
    const temz_status status = findFaults(script, L"", L"", findings);
    for (const ScriptFinding& finding : findings)
        if (finding.endsRun)
            lines += (lines.empty() ? L"" : L"\n") + findingLine(finding);
    return status;
}

FindingCounts::FindingCounts(const std::vector<ScriptFinding>& findings) {
    for (const ScriptFinding& finding : findings)
        ++(finding.severity == TEMZ_SEVERITY_ERROR     ? errors
           : finding.severity == TEMZ_SEVERITY_WARNING ? warnings
                                                       : notes);
}

std::wstring findingTable() {
    std::wstring table;
    forEachFindingKind([&table](const temz_finding_kind& kind) {
        table += std::wstring(kind.code) + L"  " + severityWord(kind.severity) + L": " +
                 kind.meaning + L"\n       " + kind.remedy + L"\n";
    });
    return table;
}

const wchar_t* severityWord(temz_severity severity) {
    constexpr const wchar_t* words[] = {L"error", L"warning", L"note"};
    return words[severity];
}

std::wstring findingLine(const ScriptFinding& finding) {
    std::wstring text = finding.file;
    if (finding.line > 0)
        text += L":" + std::to_wstring(finding.line) + L":" + std::to_wstring(finding.column);
    return text + L": " + severityWord(finding.severity) + L" " + finding.code + L": " +
           finding.text;
}

std::wstring findingText(const ScriptFinding& finding, size_t width) {
    std::wstring text = findingLine(finding) + L"\n";
    if (width > 0 && !finding.sourceLine.empty())
        text += markedLine(finding, width);
    if (!finding.help.empty())
        text += std::wstring(gutterWidth + 1, L' ') + L"help: " + finding.help + L"\n";
    return text;
}

std::wstring countText(const FindingCounts& counts) {
    const unsigned all = counts.errors + counts.warnings + counts.notes;
    if (all == 0)
        return L"No findings. Nothing was run.";
    std::wstring parts;
    const auto add = [&parts](unsigned count, const wchar_t* word) {
        if (count > 0)
            parts += (parts.empty() ? L"" : L", ") + counted(count, word);
    };
    add(counts.errors, L"error");
    add(counts.warnings, L"warning");
    add(counts.notes, L"note");
    return counted(all, L"finding") + L": " + parts + L". Nothing was run.";
}
