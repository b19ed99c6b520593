#include "JsonReporter.h"

#include <concepts>

#include "Console.h"
#include "Diagnosis.h"

namespace {

constexpr wchar_t schemaVersion[] = L"temz-run-1";
constexpr const wchar_t* fateWords[] = {L"done", L"ignored", L"not-vital", L"failed", L"stopped"};

std::wstring quoted(const std::wstring& text) {
    constexpr wchar_t digits[] = L"0123456789abcdef";
    std::wstring json = L"\"";
    for (const wchar_t unit : text) {
        if (unit == L'"' || unit == L'\\') {
            json += L'\\';
            json += unit;
        } else if (unit < L' ') {
            json += L"\\u00";
            json += digits[unit >> 4];
            json += digits[unit & 15];
        } else {
            json += unit;
        }
    }
    return json + L"\"";
}

/// One object on one line, written when its life ends.
class JsonLine {
public:
    explicit JsonLine(const wchar_t* event) { add(L"event", std::wstring(event)); }
    JsonLine(const JsonLine&) = delete;
    JsonLine& operator=(const JsonLine&) = delete;
    ~JsonLine() { write(Stream::output, L"{" + members + L"}\n"); }

    JsonLine& add(const wchar_t* name, const std::wstring& text) { return put(name, quoted(text)); }
    JsonLine& add(const wchar_t* name, std::integral auto number) {
        return put(name, std::to_wstring(number));
    }
    JsonLine& add(const wchar_t* name, bool value) { return put(name, value ? L"true" : L"false"); }
    JsonLine& add(const wchar_t* name, const std::vector<std::wstring>& texts) {
        std::wstring list;
        for (const std::wstring& text : texts)
            list += (list.empty() ? L"" : L",") + quoted(text);
        return put(name, L"[" + list + L"]");
    }

private:
    JsonLine& put(const wchar_t* name, const std::wstring& json) {
        members += (members.empty() ? L"" : L",") + quoted(name) + L":" + json;
        return *this;
    }

    std::wstring members;
};

}  // namespace

void JsonReporter::started(const RunHeader& header) {
    JsonLine(L"start")
        .add(L"schema", std::wstring(schemaVersion))
        .add(L"version", header.version)
        .add(L"commandLine", header.commandLine)
        .add(L"windows", header.windows)
        .add(L"user", header.user)
        .add(L"elevated", header.elevated)
        .add(L"mode", header.mode)
        .add(L"script", header.script)
        .add(L"sha256", header.scriptHash);
}

void JsonReporter::began(const Action& action) {
    JsonLine(L"action")
        .add(L"number", action.number)
        .add(L"percent", action.percent)
        .add(L"code", action.code)
        .add(L"text1", action.text1)
        .add(L"text2", action.text2);
}

void JsonReporter::called(const Call& call) {
    if (detail == Detail::actions && call.group != L"log")
        return;
    JsonLine(L"call")
        .add(L"group", call.group)
        .add(L"name", call.name)
        .add(L"arguments", call.arguments)
        .add(L"result", call.result)
        .add(L"failed", call.failed)
        .add(L"systemError", call.systemError)
        .add(L"nanoseconds", call.duration.count());
}

void JsonReporter::failed(const Action& action, const Failure& failure, unsigned attempt) {
    JsonLine(L"failure")
        .add(L"number", action.number)
        .add(L"attempt", attempt)
        .add(L"code", failure.code)
        .add(L"systemError", failure.systemError)
        .add(L"what", failure.what)
        .add(L"why", failure.why)
        .add(L"source", failure.source)
        .add(L"target", failure.target)
        .add(L"advice", failure.advice)
        .add(L"call", failure.call);
}

void JsonReporter::ended(const Action& action, Fate fate) {
    const Places places = placesOf(action);
    JsonLine(L"action-end")
        .add(L"number", action.number)
        .add(L"fate", std::wstring(fateWords[static_cast<size_t>(fate)]))
        .add(L"source", places.source)
        .add(L"target", places.target);
}

void JsonReporter::warned(const std::wstring& text) {
    JsonLine(L"warning").add(L"text", text);
}

void JsonReporter::finished(const RunSummary& summary) {
    JsonLine(L"end")
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
        .add(L"reason", summary.reason);
}
