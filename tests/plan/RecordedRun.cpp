#include "plan/RecordedRun.h"

#include <gtest/gtest.h>

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "plan/Rehearsal.h"
#include "trace/Tracer.h"

namespace {

/// Notes the calls that change something.
class ChangeRecorder final : public CallListener {
public:
    explicit ChangeRecorder(std::vector<std::wstring>& lines) : lines(lines) {}

    bool givesPermits() const override { return true; }
    void permit(const TracedCall& call) override {
        std::wstring line = call.group + L"." + call.name + L"(";
        for (const std::wstring& argument : call.arguments)
            line += (line.ends_with(L'(') ? L"" : L", ") + argument;
        lines.push_back(line + L")");
    }
    void heard(const TracedCall& call) override {
        if (call.changes && call.failed)
            lines.back() += L" fails with " + std::to_wstring(call.systemError);
    }

private:
    std::vector<std::wstring>& lines;
};

}  // namespace

std::wstring linesOf(const RecordedRun& run) {
    std::wstring text = L"result " + std::to_wstring(run.result);
    for (const auto* lines : {&run.calls, &run.heard})
        for (const std::wstring& line : *lines)
            text += L"\n" + line;
    return text;
}

RecordedRun runScript(const std::wstring& script, int32_t mode,
                      const std::deque<int32_t>& answers) {
    RecordedRun run;
    CContext context;
    EXPECT_TRUE(context.load(script.c_str())) << context.getLastError();
    RecordingObserver observer;
    observer.answers = answers;
    context.runMode = mode;
    context.getProduct()->observer = &observer;
    {
        ChangeRecorder recorder(run.calls);
        Tracer tracer(recorder);
        const CallWrapper<Tracer> wrapper(tracer);
        run.result = context.getProduct()->run(&context);
    }
    for (const RecordingObserver::Notification& update : observer.updates)
        run.heard.push_back(std::to_wstring(update.code) + L" " + update.text1 + L"; " +
                            update.text2 + L" at " + std::to_wstring(update.progress));
    for (const ErrorInfo& failure : observer.failures)
        run.heard.push_back(L"failure " + std::to_wstring(failure.code) + L" " + failure.text1 +
                            L"; " + failure.text2 + L": " + std::to_wstring(failure.systemError) +
                            L" " + failure.message);
    context.unload();
    return run;
}

RecordedRun rehearseScript(const std::wstring& script, int32_t mode, PlannedChanges& planned,
                           const std::deque<int32_t>& answers) {
    Rehearsal rehearsal(planned);
    const CallWrapper<Rehearsal> wrapper(rehearsal);
    return runScript(script, mode, answers);
}
