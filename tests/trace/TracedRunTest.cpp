// A run in which every call is shown, against one in which none is.

#include <gmock/gmock.h>

#include "capi/CHostTest.h"
#include "support/LockedFile.h"
#include "trace/Tracer.h"

using testing::Contains;

namespace {

/// Notes the calls that arrive at the machine.
class Recorder {
public:
    template <auto& table, auto member, class Result, class... Arguments>
    Result around(const char* name, Result (*real)(Arguments...),
                  std::type_identity_t<Arguments>... arguments) {
        // The tracer itself reads the clock and converts texts.
        if constexpr (!isInternal<std::remove_reference_t<decltype(table)>>)
            calls.emplace_back(name);
        return real(arguments...);
    }

    std::vector<std::string> calls;
};

/// What a run has done: its status, the outcome, the files, and the calls that arrived.
struct Done {
    temz_status status;
    std::string outcome;
    std::string file;
    std::vector<std::string> calls;
    bool operator==(const Done&) const = default;
};

void PrintTo(const Done& done, std::ostream* out) {
    *out << done.status << ' ' << done.file << ' ' << testing::PrintToString(done.calls);
}

class TracedRunTest : public CHostTest {
protected:
    TracedRunTest() {
        EXPECT_EQ(load(fileScript()), TEMZ_OK);
        // The first run makes the directory, and asks what is asked once in a process.
        EXPECT_EQ(temz_run(context, TEMZ_INSTALL, nullptr), TEMZ_OK);
        EXPECT_EQ(temz_run(context, TEMZ_UNINSTALL, nullptr), TEMZ_OK);
    }

    void trace(bool traced) {
        const temz_tracer tracer = {sizeof tracer, &heard,
                                    [](void* user, const temz_call*) {
                                        ++*static_cast<size_t*>(user);
                                        SetLastError(ERROR_INVALID_DATA);
                                    },
                                    nullptr};
        EXPECT_EQ(temz_set_tracer(context, traced ? &tracer : nullptr), TEMZ_OK);
    }

    Done run(temz_mode mode) {
        temz_outcome outcome{};
        outcome.size = sizeof outcome;
        Recorder recorder;
        const CallWrapper<Recorder> wrapper(recorder);
        const temz_status status = temz_run(context, mode, &outcome);
        return {status, std::string(reinterpret_cast<const char*>(&outcome), sizeof outcome),
                readFile(app(L"a.txt")), recorder.calls};
    }

    size_t heard = 0;
};

TEST_F(TracedRunTest, DoesTheSameInTheSameOrder) {
    constexpr temz_mode life[] = {TEMZ_INSTALL, TEMZ_UPGRADE, TEMZ_UNINSTALL};
    std::vector<Done> untraced;
    for (const temz_mode mode : life)
        untraced.push_back(run(mode));
    ASSERT_EQ(untraced[0].status, TEMZ_OK);
    ASSERT_EQ(untraced[0].file, "new");
    ASSERT_THAT(untraced[0].calls, Contains("CopyFileW"));
    ASSERT_EQ(heard, 0u);
    trace(true);

    size_t arrived = 0;
    for (size_t i = 0; i < std::size(life); ++i) {
        const Done traced = run(life[i]);
        EXPECT_EQ(traced, untraced[i]) << i;
        arrived += traced.calls.size();
    }

    EXPECT_EQ(heard, arrived);
}

TEST_F(TracedRunTest, FailsForTheSameReason) {
    const LockedFile lock(folder.write(L"app\\a.txt", "old"));
    const Done untraced = run(TEMZ_UPGRADE);
    ASSERT_EQ(untraced.status, TEMZ_RUN_FAILED);
    trace(true);

    EXPECT_EQ(run(TEMZ_UPGRADE), untraced);
}

// The tracer is called within the observer's question here, and asks itself.
TEST_F(TracedRunTest, TracerMayAskWhileAnObserverAsks) {
    struct Questions {
        temz_context* context;
        std::vector<temz_status> answers;
    } questions{context, {}};
    const temz_observer observer = {sizeof observer, &questions,
                                    [](void* user, const temz_outcome*) -> temz_answer {
                                        temz_get_directory(static_cast<Questions*>(user)->context,
                                                           L"System32Folder", nullptr, 0, nullptr);
                                        return TEMZ_CONTINUE;
                                    },
                                    nullptr};
    const temz_tracer tracer = {
        sizeof tracer, &questions,
        [](void* user, const temz_call*) {
            auto& self = *static_cast<Questions*>(user);
            self.answers.push_back(temz_last_failure(self.context, nullptr, 0, nullptr));
        },
        nullptr};
    EXPECT_EQ(temz_set_observer(context, &observer), TEMZ_OK);
    EXPECT_EQ(temz_set_tracer(context, &tracer), TEMZ_OK);

    EXPECT_EQ(temz_run(context, TEMZ_INSTALL, nullptr), TEMZ_OK);

    EXPECT_THAT(questions.answers, testing::AllOf(testing::SizeIs(testing::Gt(1u)),
                                                  testing::Each(temz_status{TEMZ_OK})));
}

/// An observer that looks whether a call of the engine goes straight to the system.
class StraightCallTest : public TracedRunTest {
protected:
    StraightCallTest() {
        const temz_observer observer = {sizeof observer, this, look, nullptr};
        EXPECT_EQ(temz_set_observer(context, &observer), TEMZ_OK);
    }

    static temz_answer look(void* user, const temz_outcome*) {
        auto& self = *static_cast<StraightCallTest*>(user);
        self.straight.push_back(fileCalls.CopyFileW == self.files.CopyFileW &&
                                registryCalls.RegCloseKey == self.registry.RegCloseKey &&
                                logCalls.WriteLine == self.log.WriteLine);
        return self.answer;
    }

    // As they are while nobody runs anything.
    const FileCalls files = fileCalls;
    const RegistryCalls registry = registryCalls;
    const LogCalls log = logCalls;

    temz_answer answer = TEMZ_CONTINUE;
    std::vector<bool> straight;
};

TEST_F(StraightCallTest, NothingStandsInBetweenWithoutATracer) {
    EXPECT_EQ(temz_run(context, TEMZ_INSTALL, nullptr), TEMZ_OK);
    EXPECT_THAT(straight, testing::AllOf(testing::Not(testing::IsEmpty()), testing::Each(true)));
}

TEST_F(StraightCallTest, NothingIsLeftInBetweenByARunThatWasStopped) {
    trace(true);
    answer = TEMZ_STOP;
    EXPECT_EQ(temz_run(context, TEMZ_INSTALL, nullptr), TEMZ_STOPPED);
    EXPECT_THAT(straight, testing::ElementsAre(false));

    straight.clear();
    trace(false);
    EXPECT_EQ(temz_run(context, TEMZ_INSTALL, nullptr), TEMZ_STOPPED);
    EXPECT_THAT(straight, testing::ElementsAre(true));
}

}  // namespace
