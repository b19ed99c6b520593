#include "system/ServiceOperations.h"

#include <gmock/gmock.h>

#include "support/FakeServiceTest.h"

using testing::ElementsAre;

namespace {

constexpr uint32_t noLimit = 0;

// The start.

class StartServiceTest : public FakeServiceTest {};

TEST_F(StartServiceTest, AsksForTheServiceThenLooksAfterASecondAndEachHalfSecond) {
    services.states = {SERVICE_STOPPED, SERVICE_START_PENDING, SERVICE_START_PENDING,
                       SERVICE_RUNNING};

    EXPECT_TRUE(startServiceAndWait(L"svc", 15'000));

    EXPECT_THAT(services.calls,
                ElementsAre("OpenSCManager 0xf003f", "OpenService svc 0x37", "QueryServiceStatus",
                            "StartService", "GetTickCount", "Sleep 1000", "QueryServiceStatus",
                            "GetTickCount", "Sleep 500", "QueryServiceStatus", "GetTickCount",
                            "Sleep 500", "QueryServiceStatus", "GetTickCount",
                            "CloseServiceHandle service", "CloseServiceHandle manager"));
}

TEST_F(StartServiceTest, LeavesARunningServiceAlone) {
    services.states = {SERVICE_RUNNING};

    EXPECT_TRUE(startServiceAndWait(L"svc", 15'000));

    EXPECT_THAT(services.calls,
                ElementsAre("OpenSCManager 0xf003f", "OpenService svc 0x37", "QueryServiceStatus",
                            "CloseServiceHandle service", "CloseServiceHandle manager"));
}

TEST_F(StartServiceTest, FailsWithoutTheManager) {
    services.errors["OpenSCManager"] = {ERROR_SERVICE_DOES_NOT_EXIST};

    EXPECT_FALSE(startServiceAndWait(L"svc", 15'000));

    EXPECT_THAT(services.calls, ElementsAre("OpenSCManager 0xf003f"));
}

TEST_F(StartServiceTest, FailsWhenTheServiceCannotBeOpened) {
    for (const DWORD error : {ERROR_SERVICE_DOES_NOT_EXIST, ERROR_ACCESS_DENIED}) {
        SCOPED_TRACE(error);
        services.errors["OpenService"] = {error};
        services.calls.clear();

        EXPECT_FALSE(startServiceAndWait(L"svc", 15'000));

        EXPECT_THAT(services.calls, ElementsAre("OpenSCManager 0xf003f", "OpenService svc 0x37",
                                                "CloseServiceHandle manager"));
    }
}

TEST_F(StartServiceTest, StartsInAnyStateButRunning) {
    for (const DWORD state :
         {FakeServices::failedLook, DWORD{SERVICE_STOPPED}, DWORD{SERVICE_START_PENDING},
          DWORD{SERVICE_STOP_PENDING}, DWORD{SERVICE_CONTINUE_PENDING},
          DWORD{SERVICE_PAUSE_PENDING}, DWORD{SERVICE_PAUSED}}) {
        SCOPED_TRACE(state);
        services.states = {state, SERVICE_RUNNING};
        services.calls.clear();

        EXPECT_TRUE(startServiceAndWait(L"svc", 15'000));

        EXPECT_EQ(services.countCalls("StartService"), 1u);
    }
}

TEST_F(StartServiceTest, LooksOnceMoreWhenTheStartFails) {
    struct Row {
        DWORD state;
        bool started;
    };
    const Row rows[] = {
        {SERVICE_RUNNING, true},           {SERVICE_STOPPED, false},
        {SERVICE_START_PENDING, false},    {SERVICE_STOP_PENDING, false},
        {FakeServices::failedLook, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.state);
        services.errors["StartService"] = {ERROR_SERVICE_ALREADY_RUNNING};
        services.states = {SERVICE_STOPPED, row.state};
        services.calls.clear();

        EXPECT_EQ(startServiceAndWait(L"svc", 15'000), row.started);

        EXPECT_THAT(services.calls,
                    ElementsAre("OpenSCManager 0xf003f", "OpenService svc 0x37",
                                "QueryServiceStatus", "StartService", "QueryServiceStatus",
                                "CloseServiceHandle service", "CloseServiceHandle manager"));
    }
}

// The stop.

class StopServiceTest : public FakeServiceTest {
protected:
    StopServiceTest() { services.states = {SERVICE_RUNNING}; }
};

TEST_F(StopServiceTest, AsksTheServiceThenLooksEachSecond) {
    services.states = {SERVICE_RUNNING, SERVICE_STOP_PENDING, SERVICE_STOP_PENDING,
                       SERVICE_STOPPED};

    EXPECT_TRUE(stopServiceAndWait(L"svc", 15'000));

    EXPECT_THAT(
        services.calls,
        ElementsAre("OpenSCManager 0xf003f", "OpenService svc 0x37", "QueryServiceStatus",
                    "ControlService 0x1", "GetTickCount", "Sleep 1000", "QueryServiceStatus",
                    "GetTickCount", "Sleep 1000", "QueryServiceStatus", "GetTickCount",
                    "Sleep 1000", "QueryServiceStatus", "GetTickCount",
                    "CloseServiceHandle service", "CloseServiceHandle manager"));
}

TEST_F(StopServiceTest, LeavesAStoppedServiceAloneAndBothHandlesOpen) {
    services.states = {SERVICE_STOPPED};

    EXPECT_TRUE(stopServiceAndWait(L"svc", 15'000));

    EXPECT_THAT(services.calls,
                ElementsAre("OpenSCManager 0xf003f", "OpenService svc 0x37", "QueryServiceStatus"));
    left = {"manager", "service"};
}

TEST_F(StopServiceTest, FailsWithoutTheManager) {
    services.errors["OpenSCManager"] = {ERROR_SERVICE_DOES_NOT_EXIST};

    EXPECT_FALSE(stopServiceAndWait(L"svc", 15'000));

    EXPECT_THAT(services.calls, ElementsAre("OpenSCManager 0xf003f"));
}

TEST_F(StopServiceTest, SucceedsWithoutTheServiceButNotWhenItIsMerelyOutOfReach) {
    for (const DWORD error :
         {ERROR_SERVICE_DOES_NOT_EXIST, ERROR_ACCESS_DENIED, ERROR_INVALID_NAME,
          ERROR_FILE_NOT_FOUND, ERROR_SERVICE_NOT_ACTIVE, ERROR_SERVICE_MARKED_FOR_DELETE}) {
        SCOPED_TRACE(error);
        services.errors["OpenService"] = {error};
        services.calls.clear();

        EXPECT_EQ(stopServiceAndWait(L"svc", 15'000), error == ERROR_SERVICE_DOES_NOT_EXIST);

        EXPECT_THAT(services.calls, ElementsAre("OpenSCManager 0xf003f", "OpenService svc 0x37",
                                                "CloseServiceHandle manager"));
    }
}

TEST_F(StopServiceTest, SendsTheStopInAnyStateButStopped) {
    for (const DWORD state :
         {FakeServices::failedLook, DWORD{SERVICE_START_PENDING}, DWORD{SERVICE_STOP_PENDING},
          DWORD{SERVICE_RUNNING}, DWORD{SERVICE_CONTINUE_PENDING}, DWORD{SERVICE_PAUSE_PENDING},
          DWORD{SERVICE_PAUSED}}) {
        SCOPED_TRACE(state);
        services.states = {state, SERVICE_STOPPED};
        services.calls.clear();

        EXPECT_TRUE(stopServiceAndWait(L"svc", 15'000));

        EXPECT_EQ(services.countCalls("ControlService"), 1u);
    }
}

TEST_F(StopServiceTest, FailsWithoutAnotherLookWhenTheStopFails) {
    services.errors["ControlService"] = {ERROR_SERVICE_NOT_ACTIVE};
    services.stateAtStop = SERVICE_STOPPED;
    services.states = {SERVICE_RUNNING, SERVICE_STOPPED};

    EXPECT_FALSE(stopServiceAndWait(L"svc", 15'000));

    EXPECT_THAT(services.calls,
                ElementsAre("OpenSCManager 0xf003f", "OpenService svc 0x37", "QueryServiceStatus",
                            "ControlService 0x1", "CloseServiceHandle service",
                            "CloseServiceHandle manager"));
}

TEST_F(StopServiceTest, TakesTheLastStateSeenWhenTheServiceCannotBeLookedAt) {
    for (const DWORD answer : {SERVICE_STOPPED, SERVICE_STOP_PENDING, SERVICE_RUNNING}) {
        SCOPED_TRACE(answer);
        services.stateAtStop = answer;
        services.states = {SERVICE_RUNNING, FakeServices::failedLook};
        services.sleeps.clear();

        EXPECT_EQ(stopServiceAndWait(L"svc", noLimit), answer == SERVICE_STOPPED);

        EXPECT_THAT(services.sleeps, ElementsAre(1000u));
    }
}

// The wait, which is the same for both but for the states and the time between two looks.

struct Wait {
    bool (*operation)(const wchar_t* name, uint32_t limit);
    DWORD before;
    DWORD pending;
    DWORD wanted;
    DWORD interval;
};

constexpr Wait start = {&startServiceAndWait, SERVICE_STOPPED, SERVICE_START_PENDING,
                        SERVICE_RUNNING, 500};
constexpr Wait stop = {&stopServiceAndWait, SERVICE_RUNNING, SERVICE_STOP_PENDING, SERVICE_STOPPED,
                       1000};

class PendingServiceTest : public FakeServiceTest, public testing::WithParamInterface<Wait> {
protected:
    bool waitWithin(uint32_t limit) { return wait.operation(L"svc", limit); }

    const Wait wait = GetParam();
};

INSTANTIATE_TEST_SUITE_P(Both, PendingServiceTest, testing::Values(start, stop),
                         [](const auto& wait) {
                             return wait.param.wanted == SERVICE_RUNNING ? "Start" : "Stop";
                         });

TEST_P(PendingServiceTest, EndsAtTheFirstStateThatIsNotPending) {
    for (const DWORD state :
         {SERVICE_STOPPED, SERVICE_START_PENDING, SERVICE_STOP_PENDING, SERVICE_RUNNING,
          SERVICE_CONTINUE_PENDING, SERVICE_PAUSE_PENDING, SERVICE_PAUSED}) {
        if (state == wait.pending)
            continue;
        SCOPED_TRACE(state);
        services.states = {wait.before, wait.pending, state, wait.wanted};
        services.sleeps.clear();

        EXPECT_EQ(waitWithin(noLimit), state == wait.wanted);

        EXPECT_THAT(services.sleeps, ElementsAre(1000u, wait.interval));
    }
}

TEST_P(PendingServiceTest, EndsWhenTheServiceCannotBeLookedAtAnyMore) {
    services.states = {wait.before, wait.pending, FakeServices::failedLook, wait.wanted};

    EXPECT_FALSE(waitWithin(noLimit));

    EXPECT_THAT(services.sleeps, ElementsAre(1000u, wait.interval));
}

TEST_P(PendingServiceTest, GivesUpAtTheFirstLookAtOrBehindTheLimit) {
    struct Row {
        uint32_t limit;
        DWORD intervals;
    };
    const DWORD longWait = 14'000 / wait.interval;
    const Row rows[] = {{1, 0},
                        {999, 0},
                        {1000, 0},
                        {1001, 1},
                        {1000 + wait.interval, 1},
                        {1001 + wait.interval, 2},
                        {14'999, longWait},
                        {15'000, longWait},
                        {15'001, longWait + 1}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.limit);
        services.states = {wait.before, wait.pending};
        const DWORD begin = services.now;

        EXPECT_FALSE(waitWithin(row.limit));

        EXPECT_EQ(services.now - begin, 1000 + row.intervals * wait.interval);
    }
}

TEST_P(PendingServiceTest, TakesTheStateAtTheLimitAsItIs) {
    services.states = {wait.before, wait.wanted, wait.before};
    EXPECT_TRUE(waitWithin(1000));

    services.states = {wait.before, wait.pending, wait.wanted, wait.before};
    EXPECT_TRUE(waitWithin(1000 + wait.interval));

    EXPECT_THAT(services.sleeps, ElementsAre(1000u, 1000u, wait.interval));
}

TEST_P(PendingServiceTest, LastsWithoutALimitForAsLongAsItTakes) {
    services.states = {wait.before};
    services.states.insert(services.states.end(), 2 * 60 * 60, wait.pending);
    services.states.push_back(wait.wanted);

    EXPECT_TRUE(waitWithin(noLimit));

    EXPECT_GE(services.now, 60u * 60 * 1000);
}

TEST_P(PendingServiceTest, IsMeasuredAcrossTheEndOfTheTickCount) {
    services.now = 0xFFFFFFFF - 1200;
    services.states = {wait.before, wait.pending};

    EXPECT_FALSE(waitWithin(1000 + 2 * wait.interval));

    EXPECT_THAT(services.sleeps, ElementsAre(1000u, wait.interval, wait.interval));
}

TEST_P(PendingServiceTest, DoesNotCountTheTimeThatTheRequestTakes) {
    services.requestTakes = 30'000;
    services.states = {wait.before, wait.pending, wait.wanted};

    EXPECT_TRUE(waitWithin(15'000));

    EXPECT_THAT(services.sleeps, ElementsAre(1000u, wait.interval));
}

// The deletion.

class DeleteServiceTest : public FakeServiceTest {};

TEST_F(DeleteServiceTest, DeletesWithoutALookAtTheState) {
    EXPECT_TRUE(deleteServiceByName(L"svc"));

    EXPECT_THAT(services.calls,
                ElementsAre("OpenSCManager 0xf003f", "OpenService svc 0xf01ff", "DeleteService",
                            "CloseServiceHandle service", "CloseServiceHandle manager"));
}

TEST_F(DeleteServiceTest, FailsWithoutTheManager) {
    services.errors["OpenSCManager"] = {ERROR_SERVICE_DOES_NOT_EXIST};

    EXPECT_FALSE(deleteServiceByName(L"svc"));

    EXPECT_THAT(services.calls, ElementsAre("OpenSCManager 0xf003f"));
}

TEST_F(DeleteServiceTest, SucceedsWithoutTheServiceButNotWhenItIsMerelyOutOfReach) {
    for (const DWORD error :
         {ERROR_SERVICE_DOES_NOT_EXIST, ERROR_ACCESS_DENIED, ERROR_INVALID_NAME,
          ERROR_FILE_NOT_FOUND, ERROR_SERVICE_NOT_ACTIVE, ERROR_SERVICE_MARKED_FOR_DELETE}) {
        SCOPED_TRACE(error);
        services.errors["OpenService"] = {error};
        services.calls.clear();

        EXPECT_EQ(deleteServiceByName(L"svc"), error == ERROR_SERVICE_DOES_NOT_EXIST);

        EXPECT_THAT(services.calls, ElementsAre("OpenSCManager 0xf003f", "OpenService svc 0xf01ff",
                                                "CloseServiceHandle manager"));
    }
}

TEST_F(DeleteServiceTest, FailsWhenTheDeletionDoesForWhateverReason) {
    for (const DWORD error : {ERROR_SERVICE_MARKED_FOR_DELETE, ERROR_SERVICE_DOES_NOT_EXIST}) {
        SCOPED_TRACE(error);
        services.errors["DeleteService"] = {error};

        EXPECT_FALSE(deleteServiceByName(L"svc"));
    }
}

}  // namespace
