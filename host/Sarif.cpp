#include "Sarif.h"

#include "JsonLine.h"
#include "Utf8.h"
#include "Version.h"

namespace {

constexpr wchar_t schemaAddress[] =
    L"https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json";

JsonObject message(const std::wstring& text) {
    return JsonObject().add(L"text", text);
}

std::vector<JsonObject> rules() {
    std::vector<JsonObject> rules;
    forEachFindingKind([&rules](const temz_finding_kind& kind) {
        JsonObject& rule = rules.emplace_back();
        rule.add(L"id", kind.code)
            .add(L"shortDescription", message(kind.meaning))
            .add(L"help", message(kind.remedy))
            .add(L"defaultConfiguration", JsonObject().add(L"level", severityWord(kind.severity)));
    });
    return rules;
}

/// A path as an address: a relative one stays relative. Separators are slashes, and what has a
/// meaning there, or isn't ASCII, is written by its bytes.
std::wstring addressOf(const std::wstring& path) {
    constexpr std::wstring_view plain =
        L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/:";
    constexpr wchar_t digits[] = L"0123456789ABCDEF";
    const bool hasDrive = path.size() > 1 && path[1] == L':';
    const bool hasServer = path.starts_with(L"\\\\");
    std::wstring address = hasDrive ? L"file:///" : hasServer ? L"file:" : L"";
    for (const char character : toUtf8(path)) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte == '\\') {
            address += L'/';
        } else if (plain.find(static_cast<wchar_t>(byte)) != std::wstring_view::npos) {
            address += static_cast<wchar_t>(byte);
        } else {
            address += L'%';
            address += digits[byte >> 4];
            address += digits[byte & 15];
        }
    }
    return address;
}

JsonObject location(const ScriptFinding& finding) {
    JsonObject place;
    place.add(L"artifactLocation", JsonObject().add(L"uri", addressOf(finding.file)));
    if (finding.line > 0)
        place.add(L"region", JsonObject()
                                 .add(L"startLine", finding.line)
                                 .add(L"startColumn", finding.column)
                                 .add(L"endColumn", finding.column + finding.length));
    return JsonObject().add(L"physicalLocation", place);
}

JsonObject resultOf(const ScriptFinding& finding) {
    const std::wstring text =
        finding.help.empty() ? finding.text : finding.text + L" " + finding.help;
    JsonObject result;
    result.add(L"ruleId", finding.code)
        .add(L"level", severityWord(finding.severity))
        .add(L"message", message(text))
        .add(L"locations", std::vector<JsonObject>{location(finding)});
    return result;
}

}  // namespace

std::wstring sarifText(const std::vector<ScriptFinding>& findings) {
    std::vector<JsonObject> results;
    results.reserve(findings.size());
    for (const ScriptFinding& finding : findings)
        results.push_back(resultOf(finding));
    const JsonObject driver =
        JsonObject().add(L"name", L"temz").add(L"version", programVersion()).add(L"rules", rules());
    JsonObject run;
    run.add(L"tool", JsonObject().add(L"driver", driver))
        .add(L"columnKind", L"utf16CodeUnits")
        .add(L"results", results);
    JsonObject all;
    all.add(L"$schema", schemaAddress)
        .add(L"version", L"2.1.0")
        .add(L"runs", std::vector<JsonObject>{run});
    return all.text() + L"\n";
}
