#pragma once

#include <temz/temz.h>

#include <string>
#include <vector>

/// One finding of temz_check; see temz_finding.
struct ScriptFinding {
    temz_severity severity = TEMZ_SEVERITY_NOTE;
    bool endsRun = false;
    uint32_t line = 0;
    uint32_t column = 0;
    uint32_t length = 0;
    std::wstring code;
    std::wstring file;
    std::wstring text;
    std::wstring help;
    std::wstring sourceLine;
};

/// Has a script checked. `payload` and `previous` may be empty. The status is temz_check's.
temz_status findFaults(const std::wstring& script, const std::wstring& payload,
                       const std::wstring& previous, std::vector<ScriptFinding>& findings);

/// What surely ends a run of the script in any mode: what can be installed must be removable, too.
/// A line for each finding, without the last one's end; empty when there is none. The status is
/// temz_check's.
temz_status findFatalFaults(const std::wstring& script, std::wstring& lines);

/// Shows each kind of finding, in the order of the codes.
template <class Show>
void forEachFindingKind(const Show& show) {
    temz_finding_kind kind{};
    kind.size = sizeof kind;
    for (uint32_t index = 0; temz_get_finding_kind(index, &kind) == TEMZ_OK; ++index)
        show(kind);
}

/// All kinds as `temz help findings` shows them.
std::wstring findingTable();

/// How many findings there are of each weight.
struct FindingCounts {
    explicit FindingCounts(const std::vector<ScriptFinding>& findings);

    unsigned errors = 0;
    unsigned warnings = 0;
    unsigned notes = 0;
};

/// "error", "warning" or "note".
const wchar_t* severityWord(temz_severity severity);

/// A finding in the line that editors know: "install.xml:31:17: error TZ203: ...".
std::wstring findingLine(const ScriptFinding& finding);

/// A finding as a compiler tells it: its line and the help. With a width in
/// columns, with the source line and what is wrong in it marked, too.
std::wstring findingText(const ScriptFinding& finding, size_t width);

/// "2 findings: 1 error, 1 warning. Nothing was run."
std::wstring countText(const FindingCounts& counts);
