#include "LogReporter.h"

#include "Diagnosis.h"
#include "Machine.h"
#include "RunText.h"
#include "Utf8.h"
#include "WriteBytes.h"

namespace {

constexpr const wchar_t* fateWords[] = {L"done", L"failed, ignored", L"failed, not vital",
                                        L"failed", L"not carried out"};

std::wstring callLine(const Call& call) {
    std::wstring text = call.group + L"." + callText(call) + L" = " + call.result;
    if (call.failed)
        text += L" [error " + std::to_wstring(call.systemError) + L"]";
    const auto microseconds =
        std::chrono::duration_cast<std::chrono::microseconds>(call.duration).count();
    return text + L" " + std::to_wstring(microseconds) + L" us";
}

}  // namespace

std::unique_ptr<LogReporter> LogReporter::open(const std::wstring& path, Detail detail,
                                               std::wstring& problem) {
    // With this right alone every write goes to the end, also beside those of a run that goes on:
    // that is why the other can't begin, and not the log.
    FilePtr file(CreateFileW(path.c_str(), FILE_APPEND_DATA,
                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                             OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        const DWORD error = GetLastError();
        problem = path + L" can't be opened: " + systemTextWithCode(error);
        return nullptr;
    }
    return std::unique_ptr<LogReporter>(new LogReporter(std::move(file), detail));
}

void LogReporter::line(const std::wstring& text) {
    const DWORD error = writeBytes(file.get(), toUtf8(timeStamp() + L" " + text + L"\r\n"));
    if (firstError == ERROR_SUCCESS)
        firstError = error;
}

void LogReporter::started(const RunHeader& header) {
    line(L"temz " + header.version + L": " + header.commandLine);
    line(L"Windows " + header.windows + L", " + header.user +
         (header.elevated ? L", as an administrator" : L", not as an administrator"));
    line(header.mode + L" " + header.script + L", SHA-256 " + header.scriptHash);
}

void LogReporter::called(const Call& call) {
    if (call.group == L"log")
        line(L"    engine: " + call.arguments[0]);
    else if (detail == Detail::calls)
        line(L"    " + callLine(call));
}

void LogReporter::failed(const Action&, const Failure& failure, unsigned attempt) {
    line(L"    attempt " + std::to_wstring(attempt) + L": " + failure.what +
         (failure.why.empty() ? L"" : L": " + failure.why) +
         (failure.systemError ? L" [error " + std::to_wstring(failure.systemError) + L"]" : L""));
    if (!failure.call.empty())
        line(L"    the call that failed: " + failure.call +
             (failure.systemError ? L": " + systemText(failure.systemError) : L""));
    if (!failure.advice.empty())
        line(L"    " + failure.advice);
}

void LogReporter::ended(const Action& action, Fate fate) {
    std::wstring text = std::to_wstring(action.number) + L". " +
                        describeAction(action.code, action.text1, action.text2);
    const Places places = placesOf(action);
    if (!places.source.empty())
        text += L", from " + places.source + L" to " + places.target;
    else if (!places.target.empty())
        text += L", at " + places.target;
    line(text + L": " + fateWords[static_cast<size_t>(fate)]);
}

void LogReporter::warned(const std::wstring& text) {
    line(L"Warning: " + text);
}

void LogReporter::finished(const RunSummary& summary) {
    if (!summary.reason.empty())
        line(summary.reason);
    line(summaryText(summary, {}));
    line(L"Exit code " + std::to_wstring(exitCodeOf(summary.ending)));
}
