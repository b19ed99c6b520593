// A dry run and the real run behind it: they make the same calls, and the first changes nothing.

#include <gmock/gmock.h>

#include <optional>

#include "logging/IterfaceObserver.h"
#include "plan/LeftServiceHandles.h"
#include "plan/RecordedRun.h"
#include "plan/ScriptMaker.h"
#include "support/FakeCall.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/PayloadFolder.h"
#include "support/Picture.h"
#include "support/Requirements.h"
#include "support/Restart.h"
#include "support/ScriptTest.h"
#include "support/Sleeper.h"
#include "support/Sweep.h"
#include "support/TestFolder.h"
#include "support/TestKey.h"
#include "support/TestService.h"
#include "support/Text.h"
#include "support/VersionedFile.h"
#include "system/ClockCalls.h"

namespace {

constexpr int32_t modes[] = {RUNMODE_INSTALL, RUNMODE_UPGRADE, RUNMODE_UNINSTALL};

/// A place that generated scripts install into, in a state of its own.
class GeneratedRun {
public:
    explicit GeneratedRun(uint32_t seed) : random(seed) {
        sourceNames = {L"a.txt", L"b.txt", L"lib.dll", L"old.dll", L"tool.exe"};
        payload.write(L"a.txt", "one");
        payload.write(L"b.txt", "other");
        const std::wstring place = payload.path();
        CopyFileW((testProgramDirectory() + L"\\temz_test_actions.dll").c_str(),
                  (place + L"\\lib.dll").c_str(), FALSE);
        placeVersionedFile(place + L"\\old.dll", L"1.2.0.0");
        placeSleeper(place + L"\\tool.exe");
        for (const std::wstring& name : sourceNames)
            places.sources.push_back(narrow(payload.name(name)));
        places.sources.emplace_back("missing.txt");
        places.folder = narrow(folder.path());
        places.key = narrow(key.path());
        if (random.percent(15))
            useServices();
    }

    /// Makes the machine other than fresh.
    void prepare() {
        if (random.percent(60))
            putFiles();
        if (random.percent(50))
            putKeys();
        if (random.percent(20))
            sleeper.emplace(folder.path(L"app\\tool.exe"));
        if (random.percent(30))
            locked.emplace(folder.write(L"app\\sub\\a.txt", "held"));
        if (random.percent(20))
            refused.emplace(key.make(L"One\\Deep"));
    }

    std::wstring writeScript() {
        script = ScriptMaker(random, places).make();
        return scripts.write(L"script.xml", script);
    }

    std::deque<int32_t> makeAnswers() {
        std::deque<int32_t> answers(100, ANSWER_IGNORE);
        if (random.percent(30))
            answers[random.below(5)] = random.percent(50) ? ANSWER_RETRY : ANSWER_ABORT;
        return answers;
    }

    bool hasServices() const { return !places.services.empty(); }

    Picture picture() const {
        Picture all;
        addFolder(folder.path(), all);
        addKey(HKEY_CURRENT_USER, key.path(), all);
        for (const std::string& service : places.services)
            addService(std::wstring(service.begin(), service.end()), all);
        addTraces(all);
        if (sleeper)
            all.insert(sleeper->isRunning() ? L"it runs" : L"it has ended");
        return all;
    }

    std::string script;
    Random random;

private:
    /// The payload beside the program.
    class Payload {
    public:
        std::wstring path() const { return folder.path(); }
        void write(const wchar_t* name, std::string_view content) const {
            folder.write(name, content);
        }
        std::wstring name(const std::wstring& file) const {
            return folder.path(file).substr(testProgramDirectory().size() + 1);
        }

    private:
        TestFolder folder{testProgramDirectory()};
    };

    void useServices() {
        started.emplace();
        started->start();
        stopped.emplace();
        for (const auto* service : {&started, &stopped})
            places.services.push_back(narrow((*service)->name()));
        places.services.emplace_back("temz-no-service");
    }

    void putFiles() {
        folder.write(L"app\\a.txt", random.percent(50) ? "one" : "old");
        if (random.percent(50)) {
            const std::wstring file = folder.write(L"app\\b.txt", "old");
            if (mayBeReadOnly)
                SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
        }
        if (random.percent(50))
            folder.write(L"app\\a.txt!@#$%", "left");
        if (random.percent(30))
            folder.makeDirectory(L"app\\lib.dll");
        if (random.percent(30))
            folder.write(L"other", "a file in place of a directory");
        else
            folder.write(L"other\\more\\deep.txt", "x");
        placeVersionedFile(folder.write(L"app\\sub\\lib.dll", ""), L"1.10.0.0");
    }

    void putKeys() {
        writeValue(key.make(L"One"), L"a.txt", {REG_SZ, "x"});
        key.make(L"One\\Deep\\Deeper");
        key.make(L"Two\\There");
    }

    const bool mayBeReadOnly = opensReadOnlyFilesForAttributes();
    const TestFolder folder;
    const TestFolder scripts;
    const TestKey key;
    const Payload payload;
    std::vector<std::wstring> sourceNames;
    ScriptPlaces places;
    std::optional<TestService> started;
    std::optional<TestService> stopped;
    std::optional<Sleeper> sleeper;
    std::optional<LockedFile> locked;
    std::optional<RefusedKey> refused;
};

class EqualityTest : public testing::Test {
protected:
    void SetUp() override { REQUIRES_WINE("leaves replacements to a restart, starts programs"); }

    const LogFile log;
    const TakesBackReplacements takesBack;
    LeftServiceHandles left;
    // A service that is waited for takes no time to speak of.
    const FakeCall<clockCalls, &ClockCalls::Sleep> sleep{[](DWORD) { Sleep(10); }};
};

TEST_F(EqualityTest, OfGeneratedScripts) {
    constexpr uint32_t scripts = 400;
    const auto stride = static_cast<uint32_t>(sweepStride(8));
    size_t calls = 0;
    for (uint32_t seed = 0; seed < scripts; seed += stride) {
        GeneratedRun generated(seed);
        generated.prepare();
        const std::wstring script = generated.writeScript();
        // A service that Wine keeps until its handles are closed doesn't tell that it is to go.
        const size_t count = generated.hasServices() ? 1 : 1 + generated.random.below(3);
        for (size_t i = 0; i < count; ++i) {
            const int32_t mode = generated.random.pick(modes);
            const std::deque<int32_t> answers = generated.makeAnswers();
            const Picture before = generated.picture();
            PlannedChanges planned;

            const RecordedRun dry = rehearseScript(script, mode, planned, answers);
            const Picture after = generated.picture();
            const RecordedRun real = runScript(script, mode, answers);
            left.close();

            ASSERT_EQ(after, before) << "seed " << seed << " run " << i << '\n' << generated.script;
            EXPECT_EQ(narrow(linesOf(dry)), narrow(linesOf(real)))
                << "seed " << seed << " run " << i << " mode " << mode << '\n'
                << generated.script;
            if (HasNonfatalFailure())
                break;
            calls += real.calls.size();
        }
    }
    RecordProperty("calls", static_cast<int>(calls));
}

}  // namespace
