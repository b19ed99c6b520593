#include "hostile/Judgement.h"

#include <windows.h>

#include <algorithm>
#include <optional>
#include <string_view>

#include "author/plan/Rehearsal.h"
#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "support/RecordingObserver.h"
#include "support/Text.h"
#include "system/CallTables.h"

namespace {

constexpr std::wstring_view refusals[] = {L"TZ101", L"TZ102", L"TZ107"};
constexpr std::wstring_view endsOfProcess[] = {L"TZ210", L"TZ216", L"TZ431", L"TZ432",
                                               L"TZ433", L"TZ512", L"TZ513"};

constexpr std::wstring_view largeRemovals[] = {L"TZ701", L"TZ702", L"TZ703", L"TZ704"};

class NoListener final : public ChangeListener {
public:
    void planned(const Change&) override {}
};

template <class Codes>
bool isOneOf(const Codes& codes, const wchar_t* code) {
    return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

Judgement check(const std::wstring& file) {
    Judgement judgement{};
    checkScript({file, {}, {}}, [&](const Finding& finding) {
        judgement.refusalFound |= isOneOf(refusals, finding.kind->code);
        judgement.endOfProcessFound |= isOneOf(endsOfProcess, finding.kind->code);
        judgement.largeRemovalFound |= isOneOf(largeRemovals, finding.kind->code);
        judgement.endOfRunFound |= finding.endsRun;
        judgement.findings += narrow(finding.kind->code) + " " + narrow(finding.text) + "\n";
    });
    return judgement;
}

/// The message of a run that fails; nothing for one that succeeds.
std::optional<std::wstring> failureOf(CContext& context, int32_t mode,
                                      const std::deque<int32_t>& answers) {
    RecordingObserver observer;
    observer.answers = answers;
    NoListener listener;
    Rehearsal rehearsal(listener);
    const CallWrapper<Rehearsal> wrapper(rehearsal);
    context.runMode = mode;
    context.getProduct()->observer = &observer;
    const int32_t result = context.getProduct()->run(&context);
    context.getProduct()->observer = nullptr;
    if (result == 0)
        return std::nullopt;
    return context.getProduct()->errorInfo.message;
}

}  // namespace

DeepDirectory::DeepDirectory() {
    GetCurrentDirectoryW(static_cast<DWORD>(std::size(before)), before);
    SetCurrentDirectoryW(folder.makeDirectory(L"a\\b\\c\\d\\e\\f").c_str());
}

DeepDirectory::~DeepDirectory() {
    SetCurrentDirectoryW(before);
}

Judgement judgeScript(const std::wstring& file, Care care, const std::deque<int32_t>& answers) {
    Judgement judgement = check(file);
    if (care == Care::runUnlessFound &&
        (judgement.endOfProcessFound || judgement.largeRemovalFound)) {
        judgement.outcome = Judgement::notRun;
        return judgement;
    }
    CContext context;
    if (!context.load(file.c_str())) {
        judgement.message = context.getLastError();
        judgement.outcome = judgement.message.empty() ? Judgement::refused : Judgement::unloadable;
        return judgement;
    }
    judgement.outcome = Judgement::runs;
    for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UPGRADE, RUNMODE_UNINSTALL})
        if (const auto failure = failureOf(context, mode, answers);
            failure && judgement.outcome == Judgement::runs) {
            judgement.outcome = Judgement::fails;
            judgement.message = *failure;
        }
    return judgement;
}
