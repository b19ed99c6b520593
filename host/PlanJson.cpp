#include "PlanJson.h"

#include "JsonLine.h"
#include "PlanWords.h"

namespace {

constexpr wchar_t schemaVersion[] = L"temz-plan-1";
constexpr const wchar_t* kindWords[] = {L"group",  L"element", L"condition", L"search",
                                        L"action", L"change",  L"failure",   L"left-out"};
constexpr const wchar_t* fateWords[] = {L"vital", L"not-vital", L"ends-run"};

void addOfKind(const Step& step, JsonObject& line) {
    switch (step.kind) {
        case TEMZ_STEP_CONDITION:
            line.add(L"expression", step.object)
                .add(L"variables", step.detail)
                .add(L"holds", step.holds)
                .add(L"elementsLeftOut", step.elements)
                .add(L"filesLeftOut", step.files);
            break;
        case TEMZ_STEP_SEARCH:
            line.add(L"file", step.object)
                .add(L"minVersion", step.after)
                .add(L"found", step.holds)
                .add(L"variables", step.detail);
            break;
        case TEMZ_STEP_ACTION:
            line.add(L"code", step.code).add(L"text1", step.object).add(L"text2", step.detail);
            break;
        case TEMZ_STEP_CHANGE:
            line.add(L"change", std::wstring(wordsOf(step).word))
                .add(L"object", step.object)
                .add(L"source", step.detail)
                .add(L"before", step.before)
                .add(L"after", step.after)
                .add(L"bytes", step.bytes)
                .add(L"bytesBefore", step.bytesBefore)
                .add(L"sameContent", step.sameContent)
                .add(L"unforeseeable", step.unforeseeable)
                .add(L"holders", step.holders);
            break;
        case TEMZ_STEP_FAILURE:
            line.add(L"code", step.failure.code)
                .add(L"systemError", step.failure.systemError)
                .add(L"what", step.failure.what)
                .add(L"why", step.failure.why)
                .add(L"advice", step.failure.advice)
                .add(L"uncertain", step.uncertain)
                .add(L"fate", std::wstring(fateWords[step.fate]));
            break;
        case TEMZ_STEP_LEFT_OUT:
            line.add(L"on", step.object)
                .add(L"elementsLeftOut", step.elements)
                .add(L"filesLeftOut", step.files);
            break;
        default:
            break;
    }
}

void writeStep(const Step& step) {
    JsonObject line = jsonEvent(L"step");
    line.add(L"kind", std::wstring(kindWords[step.kind - 1]))
        .add(L"depth", step.depth)
        .add(L"line", step.line)
        .add(L"element", step.element)
        .add(L"id", step.id);
    addOfKind(step, line);
    writeJsonLine(line);
}

void writeSummary(const PlanSummary& summary, int exitCode, const std::wstring& reason) {
    std::vector<std::wstring> drives;
    std::vector<uint64_t> bytes;
    for (const auto& [drive, needed] : summary.bytesNeeded) {
        drives.push_back(drive);
        bytes.push_back(needed);
    }
    writeJsonLine(jsonEvent(L"end")
                      .add(L"exitCode", exitCode)
                      .add(L"filesAdded", summary.filesAdded)
                      .add(L"filesReplaced", summary.filesReplaced)
                      .add(L"filesRemoved", summary.filesRemoved)
                      .add(L"filesAtRestart", summary.filesAtRestart)
                      .add(L"links", summary.links)
                      .add(L"keys", summary.keys)
                      .add(L"values", summary.values)
                      .add(L"services", summary.services)
                      .add(L"programs", summary.programs)
                      .add(L"drives", drives)
                      .add(L"bytesNeeded", bytes)
                      .add(L"vitalFailures", summary.vitalFailures)
                      .add(L"uncertainFailures", summary.uncertainFailures)
                      .add(L"otherFailures", summary.otherFailures)
                      .add(L"endsUnasked", summary.endsUnasked)
                      .add(L"unforeseeable", summary.unforeseeable)
                      .add(L"reason", reason));
}

}  // namespace

void writePlanAsJson(const Plan& plan, int exitCode, const std::wstring& reason) {
    const PlanHeader& header = plan.header;
    writeJsonLine(jsonEvent(L"plan")
                      .add(L"schema", std::wstring(schemaVersion))
                      .add(L"version", header.version)
                      .add(L"windows", header.windows)
                      .add(L"mode", header.mode)
                      .add(L"script", header.script)
                      .add(L"sha256", header.scriptHash)
                      .add(L"assumptions", header.assumptions));
    for (const Step& step : plan.steps)
        writeStep(step);
    writeSummary(summaryOf(plan), exitCode, reason);
}
