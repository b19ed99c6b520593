#include "JsonReporter.h"

#include "Diagnosis.h"
#include "JsonLine.h"

namespace {

constexpr wchar_t schemaVersion[] = L"temz-run-1";
constexpr const wchar_t* fateWords[] = {L"done", L"ignored", L"not-vital", L"failed", L"stopped"};

}  // namespace

void JsonReporter::started(const RunHeader& header) {
    writeJsonLine(jsonEvent(L"start")
                      .add(L"schema", schemaVersion)
                      .add(L"version", header.version)
                      .add(L"commandLine", header.commandLine)
                      .add(L"windows", header.windows)
                      .add(L"user", header.user)
                      .add(L"elevated", header.elevated)
                      .add(L"mode", header.mode)
                      .add(L"script", header.script)
                      .add(L"sha256", header.scriptHash));
}

void JsonReporter::began(const Action& action) {
    writeJsonLine(jsonEvent(L"action")
                      .add(L"number", action.number)
                      .add(L"percent", action.percent)
                      .add(L"code", action.code)
                      .add(L"text1", action.text1)
                      .add(L"text2", action.text2));
}

void JsonReporter::called(const Call& call) {
    if (detail == Detail::actions && call.group != L"log")
        return;
    writeJsonLine(jsonEvent(L"call")
                      .add(L"group", call.group)
                      .add(L"name", call.name)
                      .add(L"arguments", call.arguments)
                      .add(L"result", call.result)
                      .add(L"failed", call.failed)
                      .add(L"systemError", call.systemError)
                      .add(L"nanoseconds", call.duration.count()));
}

void JsonReporter::failed(const Action& action, const Failure& failure, unsigned attempt) {
    writeJsonLine(jsonEvent(L"failure")
                      .add(L"number", action.number)
                      .add(L"attempt", attempt)
                      .add(L"code", failure.code)
                      .add(L"systemError", failure.systemError)
                      .add(L"what", failure.what)
                      .add(L"why", failure.why)
                      .add(L"source", failure.source)
                      .add(L"target", failure.target)
                      .add(L"advice", failure.advice)
                      .add(L"call", failure.call));
}

void JsonReporter::ended(const Action& action, Fate fate) {
    const Places places = placesOf(action);
    writeJsonLine(jsonEvent(L"action-end")
                      .add(L"number", action.number)
                      .add(L"fate", fateWords[static_cast<size_t>(fate)])
                      .add(L"source", places.source)
                      .add(L"target", places.target));
}

void JsonReporter::warned(const std::wstring& text) {
    writeJsonLine(jsonEvent(L"warning").add(L"text", text));
}

void JsonReporter::finished(const RunSummary& summary) {
    writeJsonLine(jsonEvent(L"end")
                      .add(L"exitCode", exitCodeOf(summary.ending))
                      .add(L"actions", summary.actions)
                      .add(L"done", summary.done)
                      .add(L"total", summary.total)
                      .add(L"ignored", summary.ignored)
                      .add(L"nonVital", summary.nonVital)
                      .add(L"leftOut", summary.leftOut)
                      .add(L"restartNeeded", summary.restartNeeded)
                      .add(L"waiting", summary.waiting)
                      .add(L"stoppedAt", summary.stoppedAt)
                      .add(L"reason", summary.reason));
}
