#include "host/RunWatch.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <stdexcept>

#include "host/Diagnosis.h"
#include "support/LockedFile.h"
#include "support/PayloadFolder.h"
#include "support/Requirements.h"
#include "support/Restart.h"
#include "support/Text.h"

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// What is told about a run, but for its calls: a line for each event.
class RecordingReporter final : public Reporter {
public:
    void began(const Action& action) override {
        onBegan();
        events.push_back(std::to_wstring(action.number) + L" " +
                         describeAction(action.code, action.text1, action.text2));
        percents.push_back(action.percent);
    }
    void called(const Call& call) override {
        onCalled(call);
        calls.push_back(call.name);
    }
    void failed(const Action&, const Failure& failure, unsigned attempt) override {
        onFailed();
        events.push_back(failure.what + L" failed " + std::to_wstring(attempt));
    }
    void ended(const Action& action, Fate fate) override {
        constexpr const wchar_t* words[] = {L"done", L"ignored", L"nonVital", L"failed",
                                            L"stopped"};
        events.push_back(std::to_wstring(action.number) + L" " + words[static_cast<int>(fate)]);
        for (const Call& call : action.calls)
            if (call.name == L"CreateDirectoryW")
                directories.push_back(std::to_wstring(action.number) + L" " + call.arguments[0]);
    }
    void warned(const std::wstring& text) override { events.push_back(text); }

    std::function<void()> onBegan = [] {};
    std::function<void()> onFailed = [] {};
    std::function<void(const Call&)> onCalled = [](const Call&) {};
    std::vector<std::wstring> events;
    std::vector<unsigned> percents;
    std::vector<std::wstring> calls;
    std::vector<std::wstring> directories;  ///< each that is made, and by which action
};

/// Runs scripts by the engine itself, with a user who answers as told.
class RunWatchTest : public testing::Test {
protected:
    RunWatchTest() {
        temz_create(&context);
        duties.stopWanted = [this] { return stopWanted; };
        duties.diagnose = [](const Action&, const temz_error& error) {
            Failure failure;
            failure.what = error.code == TEMZ_ERROR_MESSAGE
                               ? error.message
                               : describeAction(error.code, error.text1, error.text2);
            failure.why = error.code == TEMZ_ERROR_MESSAGE ? L"" : L"why";
            return failure;
        };
        duties.ask = [this]() -> std::optional<temz_answer> {
            ++questions;
            if (answers.empty())
                return std::nullopt;
            const temz_answer answer = answers.front();
            answers.erase(answers.begin());
            return answer;
        };
        duties.wait = [this](std::chrono::milliseconds time) { pauses.push_back(time); };
    }
    ~RunWatchTest() override { temz_free(context); }

    /// Loads a script whose one component holds the elements in the folder "app".
    void load(const std::string& elements) {
        const std::string xml = "<Script><Product><Directory Path='" + narrow(folder.path(L"app")) +
                                "'><Component Id='C'>" + elements +
                                "</Component></Directory><InstallExecuteSequence><Feature>"
                                "<ComponentRef Id='C'/></Feature></InstallExecuteSequence>"
                                "</Product></Script>";
        ASSERT_EQ(temz_load(context, folder.write(L"script.xml", xml).c_str()), TEMZ_OK);
    }

    temz_status run(std::optional<ErrorPolicy> policy = {}, temz_mode mode = TEMZ_INSTALL) {
        watch = std::make_unique<RunWatch>(std::vector<Reporter*>{&reporter}, policy, duties);
        temz_outcome outcome{};
        outcome.size = sizeof outcome;
        return watch->run(context, mode, outcome);
    }

    /// A file that can be installed, and one whose source isn't there.
    std::string there(const wchar_t* name, const std::string& attributes = {}) const {
        return element(name, payload.write(name, "content"), attributes);
    }
    std::string missing(const wchar_t* name, const std::string& attributes = {}) const {
        return element(name, L"none\\" + std::wstring(name), attributes);
    }

    /// What fails unannounced.
    std::string unannounced() const {
        return "<FileSearch Name='script.xml' Path='" + narrow(folder.path()) +
               "' Expression='NONE = 1'/>";
    }

    const TestFolder folder;
    const PayloadFolder payload;
    temz_context* context = nullptr;
    WatchDuties duties;
    bool stopWanted = false;
    std::vector<temz_answer> answers;  // then nobody answers any more
    int questions = 0;
    std::vector<std::chrono::milliseconds> pauses;
    RecordingReporter reporter;
    std::unique_ptr<RunWatch> watch;

private:
    static std::string element(const std::wstring& name, const std::wstring& source,
                               const std::string& attributes) {
        return "<File Name='" + narrow(name) + "' Source='" + narrow(source) + "' " + attributes +
               "/>";
    }
};

constexpr ErrorPolicy ignoring{TEMZ_IGNORE, 0, {}};
constexpr ErrorPolicy aborting{TEMZ_ABORT, 0, {}};

TEST_F(RunWatchTest, TellsEachActionOnce) {
    load(there(L"a") + there(L"b"));

    EXPECT_EQ(run(), TEMZ_OK);

    EXPECT_THAT(reporter.events, ElementsAre(L"1 Copying a", L"1 done", L"2 Copying b", L"2 done"));
    EXPECT_THAT(reporter.percents, ElementsAre(0, 50));
    EXPECT_THAT(reporter.calls, testing::Contains(L"CopyFileW").Times(2));
    EXPECT_EQ(watch->summary().actions, 2u);
    EXPECT_EQ(watch->summary().done, 2u);
    EXPECT_EQ(questions, 0);
}

TEST_F(RunWatchTest, EndsTheRunWhereThePolicySaysSo) {
    load(there(L"a") + missing(L"b") + there(L"c"));

    EXPECT_EQ(run(aborting), TEMZ_RUN_FAILED);

    EXPECT_THAT(reporter.events, ElementsAre(L"1 Copying a", L"1 done", L"2 Copying b",
                                             L"Copying b failed 1", L"2 failed"));
    EXPECT_EQ(watch->summary().actions, 2u);
    EXPECT_EQ(watch->summary().done, 1u);
    EXPECT_THAT(watch->summary().leftOut, IsEmpty());
    EXPECT_FALSE(watch->endedByUser());
    EXPECT_EQ(questions, 0);
}

TEST_F(RunWatchTest, CountsWhatIsIgnored) {
    load(missing(L"a") + there(L"b") + missing(L"c"));

    EXPECT_EQ(run(ignoring), TEMZ_OK);

    EXPECT_THAT(reporter.events,
                ElementsAre(L"1 Copying a", L"Copying a failed 1", L"1 ignored", L"2 Copying b",
                            L"2 done", L"3 Copying c", L"Copying c failed 1", L"3 ignored"));
    EXPECT_EQ(watch->summary().done, 1u);
    EXPECT_EQ(watch->summary().ignored, 2u);
    EXPECT_EQ(watch->summary().nonVital, 0u);
    EXPECT_THAT(watch->summary().leftOut, ElementsAre(L"Copying a (why)", L"Copying c (why)"));
}

TEST_F(RunWatchTest, CountsFailuresThatAreNotVitalApart) {
    load(missing(L"a", "Vital='no'") + there(L"b"));

    EXPECT_EQ(run(aborting), TEMZ_OK);

    EXPECT_THAT(reporter.events, ElementsAre(L"1 Copying a", L"Copying a failed 1", L"1 nonVital",
                                             L"2 Copying b", L"2 done"));
    EXPECT_EQ(watch->summary().ignored, 0u);
    EXPECT_EQ(watch->summary().nonVital, 1u);
    EXPECT_THAT(watch->summary().leftOut, ElementsAre(L"Copying a (why)"));
}

TEST_F(RunWatchTest, CountsTwoFailuresOfOneNameAsTwoFirstAttempts) {
    load(missing(L"a", "Vital='no'") + missing(L"a", "Vital='no'"));

    EXPECT_EQ(run(aborting), TEMZ_OK);

    EXPECT_THAT(reporter.events, ElementsAre(L"1 Copying a", L"Copying a failed 1", L"1 nonVital",
                                             L"2 Copying a", L"Copying a failed 1", L"2 nonVital"));
}

TEST_F(RunWatchTest, PausesLongerBeforeEachRetry) {
    load(missing(L"a"));

    EXPECT_EQ(run(ErrorPolicy{TEMZ_RETRY, 6, {}}), TEMZ_RUN_FAILED);

    EXPECT_THAT(pauses, ElementsAre(250ms, 500ms, 1000ms, 2000ms, 2000ms, 2000ms));
    EXPECT_FALSE(watch->endedByUser());
    EXPECT_EQ(watch->summary().actions, 1u);
    EXPECT_EQ(watch->summary().done, 0u);
    EXPECT_EQ(reporter.events.size(), 1u + 7u + 1u);
    EXPECT_EQ(reporter.events[7], L"Copying a failed 7");
}

TEST_F(RunWatchTest, PausesAsLongAsThePolicySays) {
    load(missing(L"a"));

    EXPECT_EQ(run(ErrorPolicy{TEMZ_RETRY, 2, 7}), TEMZ_RUN_FAILED);

    EXPECT_THAT(pauses, ElementsAre(7s, 7s));
}

TEST_F(RunWatchTest, TakesAFailureBackWhenARetrySucceeds) {
    load("<File Name='a' Source='" + narrow(payload.write(L"a", "")) + "'/>" + there(L"b"));
    folder.write(L"app\\a", "");
    std::optional<LockedFile> lock{folder.path(L"app\\a")};
    duties.wait = [&](std::chrono::milliseconds) { lock.reset(); };

    EXPECT_EQ(run(ErrorPolicy{TEMZ_RETRY, 1, {}}), TEMZ_OK);

    EXPECT_THAT(reporter.events, ElementsAre(L"1 Copying a", L"Copying a failed 1", L"1 done",
                                             L"2 Copying b", L"2 done"));
    EXPECT_EQ(watch->summary().done, 2u);
    EXPECT_THAT(watch->summary().leftOut, IsEmpty());
    EXPECT_FALSE(watch->firstFailure());
}

TEST_F(RunWatchTest, LeavesAnActionOutOnceThoughItWasRetried) {
    load(missing(L"a"));
    answers = {TEMZ_RETRY, TEMZ_IGNORE};

    EXPECT_EQ(run(), TEMZ_OK);

    EXPECT_THAT(reporter.events, ElementsAre(L"1 Copying a", L"Copying a failed 1",
                                             L"Copying a failed 2", L"1 ignored"));
    EXPECT_THAT(watch->summary().leftOut, ElementsAre(L"Copying a (why)"));
    EXPECT_THAT(pauses, IsEmpty());
}

TEST_F(RunWatchTest, CountsTheRetriesOfEachActionApart) {
    load(missing(L"a") + missing(L"a"));
    answers = {TEMZ_RETRY, TEMZ_IGNORE, TEMZ_RETRY, TEMZ_IGNORE};

    EXPECT_EQ(run(), TEMZ_OK);

    EXPECT_THAT(
        reporter.events,
        ElementsAre(L"1 Copying a", L"Copying a failed 1", L"Copying a failed 2", L"1 ignored",
                    L"2 Copying a", L"Copying a failed 1", L"Copying a failed 2", L"2 ignored"));
}

TEST_F(RunWatchTest, RetriesWhatFailsUnannouncedAsOftenAsAnythingElse) {
    load(there(L"a") + unannounced());

    EXPECT_EQ(run(ErrorPolicy{TEMZ_RETRY, 2, {}}), TEMZ_RUN_FAILED);

    EXPECT_THAT(pauses, ElementsAre(250ms, 500ms));
}

TEST_F(RunWatchTest, CountsTheAttemptsAnewBehindWhatWasIgnored) {
    load(unannounced() + unannounced());

    EXPECT_EQ(run(ignoring), TEMZ_OK);

    EXPECT_THAT(reporter.events, testing::Each(testing::EndsWith(L" failed 1")));
    EXPECT_EQ(watch->summary().ignored, 2u);
}

TEST_F(RunWatchTest, NamesWhatHasNoReasonWithoutOne) {
    load(unannounced());

    EXPECT_EQ(run(ignoring), TEMZ_OK);

    ASSERT_EQ(watch->summary().leftOut.size(), 1u);
    EXPECT_THAT(watch->summary().leftOut[0], testing::HasSubstr(L"undefined variable:NONE"));
    EXPECT_THAT(watch->summary().leftOut[0], testing::Not(testing::HasSubstr(L"()")));
}

TEST_F(RunWatchTest, KeepsTheFirstFailure) {
    load(missing(L"a", "Vital='no'") + missing(L"b"));

    EXPECT_EQ(run(aborting), TEMZ_RUN_FAILED);

    ASSERT_TRUE(watch->firstFailure());
    EXPECT_EQ(watch->firstFailure()->what, L"Copying a");
}

TEST_F(RunWatchTest, KeepsWhatWasIgnoredWhenTheRunFailsBehindIt) {
    load(missing(L"a", "Vital='no'") + unannounced());

    EXPECT_EQ(run(aborting), TEMZ_RUN_FAILED);

    EXPECT_EQ(watch->summary().nonVital, 1u);
    EXPECT_THAT(watch->summary().leftOut, ElementsAre(L"Copying a (why)"));
}

TEST_F(RunWatchTest, FailsAConditionThatCannotBeDecided) {
    load("<Condition Expression='NONE = 1'>" + there(L"a") + "</Condition>");

    EXPECT_EQ(run(ignoring), TEMZ_RUN_FAILED);

    ASSERT_EQ(reporter.events.size(), 3u);
    EXPECT_EQ(reporter.events[0], L"1 Checking NONE = 1");
    EXPECT_EQ(reporter.events[2], L"1 failed");
    EXPECT_EQ(watch->summary().done, 0u);
}

TEST_F(RunWatchTest, FailsAnActionThatTellsItByAMessageAlone) {
    load(
        "<CustomAction DllFile='C:\\none.dll' DllEntry='f' Return='check'/>"
        "<CustomAction DllFile='C:\\none.dll' DllEntry='g' Return='check'/>");

    EXPECT_EQ(run(ignoring), TEMZ_OK);

    ASSERT_EQ(reporter.events.size(), 6u);
    EXPECT_EQ(reporter.events[2], L"1 ignored");
    EXPECT_EQ(reporter.events[3], L"2 Custom action g");
    EXPECT_EQ(reporter.events[5], L"2 ignored");
    EXPECT_EQ(watch->summary().done, 0u);
}

TEST_F(RunWatchTest, LeavesAnActionDoneWhateverFailsBehindItUnannounced) {
    const std::string followers[] = {unannounced(), "<File2/>",
                                     "<Condition Expression='1 E 1'><Condition/></Condition>"};
    for (const std::string& follower : followers) {
        SCOPED_TRACE(follower);
        temz_unload(context);
        load(there(L"a") + follower);
        reporter.events.clear();

        EXPECT_EQ(run(aborting), TEMZ_RUN_FAILED);

        EXPECT_EQ(reporter.events[1], L"1 done");
        EXPECT_THAT(reporter.events,
                    testing::Not(testing::Contains(testing::EndsWith(L" failed"))));
        EXPECT_EQ(watch->summary().done, watch->summary().actions);
        EXPECT_TRUE(watch->firstFailure());
    }
}

TEST_F(RunWatchTest, GoesOnCountingBehindWhatFailsUnannounced) {
    load(there(L"a") + there(L"b") + unannounced() + there(L"c"));

    EXPECT_EQ(run(ignoring), TEMZ_OK);

    EXPECT_THAT(reporter.percents, ElementsAre(0, 25, 75));
    EXPECT_EQ(watch->summary().done, 3u);
}

TEST_F(RunWatchTest, CountsTheDirectoryOfAFileToItsCopy) {
    load(there(L"a") + there(L"b") + missing(L"c"));
    const std::wstring app = folder.path(L"app");

    EXPECT_EQ(run(ErrorPolicy{TEMZ_RETRY, 1, {}}), TEMZ_RUN_FAILED);

    EXPECT_THAT(reporter.directories, ElementsAre(L"1 " + app, L"2 " + app, L"3 " + app));
}

TEST_F(RunWatchTest, TellsAFailureThatTheEngineAsksNothingAbout) {
    load("<File2/>");

    EXPECT_EQ(run(ignoring), TEMZ_RUN_FAILED);

    EXPECT_EQ(reporter.events.size(), 1u);
    EXPECT_TRUE(watch->firstFailure());
    EXPECT_EQ(watch->summary().ignored, 0u);
    EXPECT_THAT(watch->summary().leftOut, IsEmpty());
}

TEST_F(RunWatchTest, TellsWhyNothingWasRunAtAll) {
    load(there(L"a"));

    EXPECT_EQ(run({}, 7), TEMZ_BAD_MODE);

    EXPECT_THAT(reporter.events, IsEmpty());
    EXPECT_EQ(watch->summary().reason, L"This is no mode of a run.");
}

TEST_F(RunWatchTest, StopsBeforeAnActionThatTheUserNoLongerWants) {
    load(there(L"a") + there(L"b") + there(L"c"));
    int announced = 0;
    duties.stopWanted = [&] { return ++announced == 2; };

    EXPECT_EQ(run(), TEMZ_STOPPED);

    EXPECT_THAT(reporter.events, ElementsAre(L"1 Copying a", L"1 done", L"2 stopped"));
    EXPECT_EQ(watch->summary().stoppedAt, L"Copying b");
    EXPECT_EQ(watch->summary().done, 1u);
    EXPECT_TRUE(watch->endedByUser());
    EXPECT_TRUE(exists(folder.path(L"app\\a")));
    EXPECT_FALSE(exists(folder.path(L"app\\b")));
}

// Exceptions can't pass the library, which is called by way of C.

TEST_F(RunWatchTest, EndsTheRunWhereAnActionCannotBeTold) {
    load(there(L"a") + there(L"b"));
    reporter.onBegan = [this] {
        if (!reporter.events.empty())
            throw std::bad_alloc();
    };

    EXPECT_EQ(run(), TEMZ_NO_MEMORY);

    EXPECT_THAT(reporter.events, ElementsAre(L"1 Copying a", L"1 done", L"2 failed"));
    EXPECT_EQ(watch->summary().done, 1u);
    EXPECT_EQ(watch->summary().reason, temz_status_text(TEMZ_NO_MEMORY));
    EXPECT_FALSE(exists(folder.path(L"app\\b")));
}

TEST_F(RunWatchTest, EndsTheRunBehindACallThatCannotBeTold) {
    load(there(L"a") + there(L"b"));
    reporter.onCalled = [](const Call& call) {
        if (call.name == L"CopyFileW")
            throw std::runtime_error("no such thing");
    };

    EXPECT_EQ(run(), TEMZ_INTERNAL);

    EXPECT_THAT(reporter.events, ElementsAre(L"1 Copying a", L"1 failed"));
    EXPECT_TRUE(exists(folder.path(L"app\\a")));
    EXPECT_FALSE(exists(folder.path(L"app\\b")));
}

TEST_F(RunWatchTest, EndsTheRunWhereAFailureCannotBeExplained) {
    load(missing(L"a") + there(L"b"));
    duties.diagnose = [](const Action&, const temz_error&) -> Failure { throw std::bad_alloc(); };

    EXPECT_EQ(run(ignoring), TEMZ_NO_MEMORY);

    EXPECT_THAT(reporter.events, ElementsAre(L"1 Copying a", L"1 failed"));
    EXPECT_FALSE(exists(folder.path(L"app\\b")));
}

TEST_F(RunWatchTest, EndsTheRunWhereItsPlanCannotBeLookedAt) {
    load(there(L"a"));
    PlanHold hold({});
    duties.plan = &hold;
    duties.diagnose = nullptr;
    reporter.onFailed = [] { throw std::bad_alloc(); };

    EXPECT_EQ(run(), TEMZ_NO_MEMORY);

    EXPECT_FALSE(exists(folder.path(L"app")));
}

TEST_F(RunWatchTest, TellsWhatItsPlanHasInPlaceOfACall) {
    const struct {
        std::vector<PlannedCall> calls;
        const wchar_t* told;
    } plans[] = {
        {{}, L", and the plan has nothing more"},
        {{{L"file", L"DeleteFileW", {L"a"}}}, L", and the plan has DeleteFileW(a)"},
    };
    load(there(L"a"));
    for (const auto& [calls, told] : plans) {
        PlanHold hold({L"", L"", calls, {}});
        duties.plan = &hold;

        EXPECT_EQ(run(), TEMZ_RUN_FAILED);

        ASSERT_TRUE(watch->firstFailure());
        EXPECT_EQ(watch->firstFailure()->what, L"The run was about to leave its plan");
        EXPECT_EQ(watch->firstFailure()->why,
                  L"it comes to CreateDirectoryW(" + folder.path(L"app") + L", null)" + told);
    }
    EXPECT_FALSE(exists(folder.path(L"app")));
}

TEST_F(RunWatchTest, StopsDuringThePauseBeforeARetry) {
    load(missing(L"a"));
    duties.wait = [this](std::chrono::milliseconds) { stopWanted = true; };

    EXPECT_EQ(run(ErrorPolicy{TEMZ_RETRY, 5, {}}), TEMZ_RUN_FAILED);

    EXPECT_TRUE(watch->endedByUser());
    EXPECT_THAT(reporter.events, ElementsAre(L"1 Copying a", L"Copying a failed 1", L"1 failed"));
}

TEST_F(RunWatchTest, TellsTheUsersAbortFromOneWithoutAUser) {
    const struct {
        std::vector<temz_answer> answers;
        bool endedByUser;
    } users[] = {{{TEMZ_ABORT}, true}, {{}, false}};
    load(missing(L"a"));
    for (const auto& user : users) {
        answers = user.answers;

        EXPECT_EQ(run(), TEMZ_RUN_FAILED);

        EXPECT_EQ(watch->endedByUser(), user.endedByUser);
    }
    EXPECT_EQ(questions, 2);
}

TEST_F(RunWatchTest, NamesTheFilesThatWaitForARestart) {
    REQUIRES_WINE("leaves a file to the next restart");
    const TakesBackReplacements takeBack;
    load(there(L"a", "SupportDelayInstall='yes'") + there(L"b"));
    const std::wstring target = folder.write(L"app\\a", "old");
    const LockedFile lock(target);

    EXPECT_EQ(run(), TEMZ_OK);

    EXPECT_TRUE(watch->summary().restartNeeded);
    EXPECT_THAT(watch->summary().waiting, ElementsAre(target));
    EXPECT_EQ(watch->summary().done, 2u);
}

TEST_F(RunWatchTest, NamesAFileThatWaitsTwiceOnce) {
    REQUIRES_WINE("leaves a file to the next restart");
    const TakesBackReplacements takeBack;
    load(there(L"a", "SupportDelayInstall='yes'") + there(L"A", "SupportDelayInstall='yes'"));
    const std::wstring target = folder.write(L"app\\a", "old");
    const LockedFile lock(target);

    EXPECT_EQ(run(), TEMZ_OK);

    EXPECT_THAT(watch->summary().waiting, ElementsAre(target));
}

}  // namespace
