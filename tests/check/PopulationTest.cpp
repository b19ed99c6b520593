#include <windows.h>

#include <cstdio>

#include "check/CCheckTest.h"
#include "check/ScriptGenerator.h"
#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "support/ActionCall.h"
#include "support/FakeShell.h"
#include "support/PayloadFolder.h"
#include "support/Sweep.h"
#include "support/TestKey.h"

namespace {

constexpr size_t wholePopulation = 2500;
constexpr size_t stride = 25;

/// What ends the process can't be run here.
bool endsProcess(const Finding& finding) {
    return finding.kind->code == std::wstring(L"TZ210") ||
           finding.kind->code == std::wstring(L"TZ431") ||
           finding.kind->code == std::wstring(L"TZ432") ||
           finding.kind->code == std::wstring(L"TZ512");
}

class PopulationTest : public CCheckTest {
protected:
    PopulationTest()
        : playground{narrow(folder.path(L"place")), narrow(payload.write(L"source.txt", "content")),
                     narrow(key.path()), narrow(actions())} {
        GetCurrentDirectoryW(MAX_PATH, directoryBefore);
        SetCurrentDirectoryW(folder.path().c_str());
    }
    ~PopulationTest() override { SetCurrentDirectoryW(directoryBefore); }

    static std::wstring actions() {
        return testProgramDirectory() + L"\\..\\temz_test_actions.dll";
    }

    static std::wstring parentOf(const std::string& path) {
        return std::wstring(path.begin(), path.begin() + static_cast<ptrdiff_t>(path.find('\\')));
    }

    /// Whether a run fails in one of the modes, each begun from what the one before has left.
    std::wstring failureOf(const std::string& script) {
        const std::wstring file = folder.write(L"run.xml", script);
        for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UPGRADE, RUNMODE_UNINSTALL}) {
            CContext context;
            context.runMode = mode;
            if (!context.load(file.c_str()))
                return L"load: " + context.getLastError();
            ActionCall call{};
            context.getProduct()->observerData = &call;
            if (context.getProduct()->run(&context) != 0)
                return std::to_wstring(mode) + L": " + context.getProduct()->errorInfo.message;
        }
        return {};
    }

    /// Compares what a check says of the script with what a run of it does.
    void compare(const std::string& script, const std::string& label) {
        CheckRequest request;
        request.payload = testProgramDirectory() + L"\\" + parentOf(playground.source);
        bool hasError = false;
        bool endsRun = false;
        std::string findings;
        for (const Finding& finding : check(script, request)) {
            if (endsProcess(finding))
                return;
            if (finding.kind->severity != Severity::error)
                continue;
            hasError = true;
            endsRun |= finding.endsRun;
            findings += std::to_string(finding.place.line) + " " + narrow(finding.kind->code) +
                        " " + narrow(finding.text) + "\n";
        }
        const std::wstring failure = failureOf(script);
        ++compared;
        failed += failure.empty() ? 0 : 1;
        EXPECT_FALSE(!failure.empty() && !hasError)
            << label << " fails, and nothing was found: " << narrow(failure) << "\n"
            << script;
        EXPECT_FALSE(failure.empty() && endsRun) << label << " runs, in spite of:\n"
                                                 << findings << script;
    }

    PayloadFolder payload;
    TestKey key;
    FakeShell shell;
    Playground playground;
    wchar_t directoryBefore[MAX_PATH] = {};
    size_t compared = 0;
    size_t failed = 0;
};

}  // namespace

TEST_F(PopulationTest, AVerdictIsWhatARunDoes) {
    for (size_t number = 0; number < wholePopulation; number += sweepStride(stride)) {
        Random random(static_cast<uint32_t>(number + 1));
        ScriptGenerator generator(random, playground);
        DraftElement script = generator.makeScript();
        std::string text;
        script.write(text);
        compare(text, "valid " + std::to_string(number));
        generator.spoil(script);
        text.clear();
        script.write(text);
        compare(text, "spoilt " + std::to_string(number));
        if (HasFailure() && !sweepsAreWhole())
            break;
    }
    RecordProperty("compared", static_cast<int>(compared));
    RecordProperty("failed", static_cast<int>(failed));
    if (sweepsAreWhole())
        std::printf("%zu scripts compared, of which %zu fail\n", compared, failed);
    EXPECT_GT(failed * 10, compared) << "faults that no run minds are no test";
}
