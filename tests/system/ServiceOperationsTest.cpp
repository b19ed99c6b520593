#include "system/ServiceOperations.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/FakeCall.h"
#include "support/FakeServices.h"
#include "support/LogFile.h"
#include "support/TestService.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr uint32_t noLimit = 0;
constexpr wchar_t absentService[] = L"temz-test-absent";

// With the system's own service manager, and a clock on which only the service takes time.

class RealServiceTest : public testing::Test {
protected:
    ~RealServiceTest() override { EXPECT_THAT(log.lines(), IsEmpty()); }

    /// A time in which the service comes to a state.
    void sleepUntil(const TestService& service, uint32_t state) {
        onSleep = [&service, state] { EXPECT_TRUE(service.waitFor(state)); };
    }

    const LogFile log;
    std::function<void()> onSleep = [] { ADD_FAILURE() << "slept"; };
    const FakeCall<clockCalls, &ClockCalls::Sleep> sleep{[this](DWORD) { onSleep(); }};
};

TEST_F(RealServiceTest, IsStarted) {
    const TestService service;
    sleepUntil(service, SERVICE_RUNNING);

    EXPECT_TRUE(startServiceAndWait(service.name(), 1000));

    EXPECT_EQ(service.state(), SERVICE_RUNNING);
}

TEST_F(RealServiceTest, IsStopped) {
    const TestService service;
    service.start();
    sleepUntil(service, SERVICE_STOPPED);

    EXPECT_TRUE(stopServiceAndWait(service.name(), 1000));

    EXPECT_EQ(service.state(), SERVICE_STOPPED);
}

TEST_F(RealServiceTest, CountsAsStartedWhenItRuns) {
    const TestService service;
    service.start();

    EXPECT_TRUE(startServiceAndWait(service.name(), 1000));
}

TEST_F(RealServiceTest, CannotBeStartedWhenItIsAbsentOrDisabled) {
    const TestService service({.startType = SERVICE_DISABLED});

    EXPECT_FALSE(startServiceAndWait(absentService, 1000));
    EXPECT_FALSE(startServiceAndWait(service.name(), 1000));

    EXPECT_EQ(service.state(), SERVICE_STOPPED);
}

TEST_F(RealServiceTest, CountsAsStoppedAndDeletedWhenItIsAbsent) {
    EXPECT_TRUE(stopServiceAndWait(absentService, 1000));
    EXPECT_TRUE(deleteServiceByName(absentService));
}

TEST_F(RealServiceTest, FailsWhenItStopsInsteadOfRunning) {
    const TestService service({.kind = L"fails"});
    sleepUntil(service, SERVICE_STOPPED);

    EXPECT_FALSE(startServiceAndWait(service.name(), noLimit));
}

TEST_F(RealServiceTest, FailsWhenItIsStillStartingAtTheLimit) {
    const TestService service({.startTakes = TestService::forEver});
    sleepUntil(service, SERVICE_START_PENDING);

    EXPECT_FALSE(startServiceAndWait(service.name(), 1));

    EXPECT_EQ(service.state(), SERVICE_START_PENDING);
}

TEST_F(RealServiceTest, FailsWhenItIsStillStoppingAtTheLimit) {
    const TestService service({.stopTakes = TestService::forEver});
    service.start();
    sleepUntil(service, SERVICE_STOP_PENDING);

    EXPECT_FALSE(stopServiceAndWait(service.name(), 1));

    EXPECT_EQ(service.state(), SERVICE_STOP_PENDING);
}

TEST_F(RealServiceTest, FailsAtOnceWhenItRefusesToStop) {
    const TestService service({.kind = L"stays"});
    service.start();

    EXPECT_FALSE(stopServiceAndWait(service.name(), 1000));

    EXPECT_EQ(service.state(), SERVICE_RUNNING);
}

TEST_F(RealServiceTest, IsGoneWhenItIsDeleted) {
    const TestService service;

    EXPECT_TRUE(deleteServiceByName(service.name()));

    EXPECT_EQ(service.state(), TestService::gone);
    EXPECT_TRUE(deleteServiceByName(service.name()));
}

TEST_F(RealServiceTest, RunsOnWhenItIsDeletedAndCannotBeDeletedAgain) {
    const TestService service;
    service.start();

    EXPECT_TRUE(deleteServiceByName(service.name()));

    EXPECT_EQ(service.state(), SERVICE_RUNNING);
    EXPECT_FALSE(deleteServiceByName(service.name()));
}

TEST_F(RealServiceTest, TellsHowItIsStarted) {
    for (const uint32_t installed : {SERVICE_AUTO_START, SERVICE_DEMAND_START, SERVICE_DISABLED}) {
        SCOPED_TRACE(installed);
        const TestService service({.startType = installed});
        uint32_t startType = 0;

        EXPECT_TRUE(queryServiceStartType(
            service.name(), startType,
            ServiceHandle(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT))));

        EXPECT_EQ(startType, installed);
    }
}

TEST_F(RealServiceTest, CanBeStartedInAnotherWay) {
    const TestService service;
    for (const uint32_t wanted : {SERVICE_DISABLED, SERVICE_AUTO_START, SERVICE_DEMAND_START}) {
        SCOPED_TRACE(wanted);

        EXPECT_TRUE(changeServiceStartType(service.name(), wanted));

        EXPECT_EQ(service.startType(), wanted);
    }
}

TEST_F(RealServiceTest, HasAllItsHandlesClosedUnlessItIsStoppedAlready) {
    const TestService service;
    std::vector<SC_HANDLE> open;
    FakeCall<serviceCalls, &ServiceCalls::OpenSCManagerW> openManager(
        [&](auto... arguments) { return open.emplace_back(openManager.real(arguments...)); });
    FakeCall<serviceCalls, &ServiceCalls::OpenServiceW> openService(
        [&](auto... arguments) { return open.emplace_back(openService.real(arguments...)); });
    FakeCall<serviceCalls, &ServiceCalls::CloseServiceHandle> close([&](SC_HANDLE handle) {
        EXPECT_EQ(std::erase(open, handle), 1u);
        return close.real(handle);
    });

    sleepUntil(service, SERVICE_RUNNING);
    startServiceAndWait(service.name(), 1000);
    sleepUntil(service, SERVICE_STOPPED);
    stopServiceAndWait(service.name(), 1000);
    changeServiceStartType(service.name(), SERVICE_DISABLED);
    EXPECT_THAT(open, IsEmpty());
    stopServiceAndWait(service.name(), 1000);
    EXPECT_EQ(open.size(), 2u);

    for (const SC_HANDLE handle : open)
        close.real(handle);
}

/// Nothing here is faked: the service takes a while, and so does the test.
TEST(ServiceOperationsTest, WaitForAServiceThatIsSlowToStart) {
    const TestService service({.startTakes = 1200});

    EXPECT_TRUE(startServiceAndWait(service.name(), 15'000));

    EXPECT_EQ(service.state(), SERVICE_RUNNING);
}

// With a service manager that does as it is told. Unless a test says otherwise, what an operation
// does leaves no handle, lock or memory behind, and no line in the log.

class FakeServiceTest : public testing::Test {
protected:
    ~FakeServiceTest() override {
        EXPECT_THAT(services.held(), testing::UnorderedElementsAreArray(left));
        EXPECT_EQ(log.lines(), logged);
    }

    const LogFile log;
    FakeServices services;
    std::vector<std::string> left;
    std::vector<std::string> logged;
};

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

TEST_F(StartServiceTest, EndsTheWaitAtTheFirstStateThatIsNotStarting) {
    for (const DWORD state : {SERVICE_STOPPED, SERVICE_STOP_PENDING, SERVICE_RUNNING,
                              SERVICE_CONTINUE_PENDING, SERVICE_PAUSE_PENDING, SERVICE_PAUSED}) {
        SCOPED_TRACE(state);
        services.states = {SERVICE_STOPPED, SERVICE_START_PENDING, state, SERVICE_RUNNING};
        services.sleeps.clear();

        EXPECT_EQ(startServiceAndWait(L"svc", noLimit), state == SERVICE_RUNNING);

        EXPECT_THAT(services.sleeps, ElementsAre(1000u, 500u));
    }
}

TEST_F(StartServiceTest, EndsTheWaitWhenTheServiceCannotBeLookedAt) {
    services.states = {SERVICE_STOPPED, SERVICE_START_PENDING, FakeServices::failedLook,
                       SERVICE_RUNNING};

    EXPECT_FALSE(startServiceAndWait(L"svc", noLimit));

    EXPECT_THAT(services.sleeps, ElementsAre(1000u, 500u));
}

TEST_F(StartServiceTest, GivesUpAtTheFirstLookAtOrBehindTheLimit) {
    struct Row {
        uint32_t limit;
        DWORD waited;
    };
    const Row rows[] = {{1, 1000},        {999, 1000},      {1000, 1000},
                        {1001, 1500},     {1500, 1500},     {1501, 2000},
                        {14'999, 15'000}, {15'000, 15'000}, {15'001, 15'500}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.limit);
        services.states = {SERVICE_STOPPED, SERVICE_START_PENDING};
        const DWORD begin = services.now;

        EXPECT_FALSE(startServiceAndWait(L"svc", row.limit));

        EXPECT_EQ(services.now - begin, row.waited);
    }
}

TEST_F(StartServiceTest, TakesTheStateAtTheLimitAsItIs) {
    services.states = {SERVICE_STOPPED, SERVICE_RUNNING, SERVICE_STOPPED};
    EXPECT_TRUE(startServiceAndWait(L"svc", 1000));

    services.states = {SERVICE_STOPPED, SERVICE_START_PENDING, SERVICE_RUNNING, SERVICE_STOPPED};
    EXPECT_TRUE(startServiceAndWait(L"svc", 1500));

    EXPECT_THAT(services.sleeps, ElementsAre(1000u, 1000u, 500u));
}

TEST_F(StartServiceTest, WaitsWithoutALimitForAsLongAsItTakes) {
    services.states.assign(2 * 60 * 60, SERVICE_START_PENDING);
    services.states.push_back(SERVICE_RUNNING);

    EXPECT_TRUE(startServiceAndWait(L"svc", noLimit));

    EXPECT_GE(services.now, 60u * 60 * 1000);
}

TEST_F(StartServiceTest, MeasuresTheWaitAcrossTheEndOfTheTickCount) {
    services.now = 0xFFFFFFFF - 1200;
    services.states = {SERVICE_STOPPED, SERVICE_START_PENDING};

    EXPECT_FALSE(startServiceAndWait(L"svc", 2000));

    EXPECT_THAT(services.sleeps, ElementsAre(1000u, 500u, 500u));
}

TEST_F(StartServiceTest, DoesNotCountTheTimeThatTheRequestTakes) {
    services.requestTakes = 30'000;
    services.states = {SERVICE_STOPPED, SERVICE_START_PENDING, SERVICE_RUNNING};

    EXPECT_TRUE(startServiceAndWait(L"svc", 15'000));

    EXPECT_THAT(services.sleeps, ElementsAre(1000u, 500u));
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

TEST_F(StopServiceTest, EndsTheWaitAtTheFirstStateThatIsNotStopping) {
    for (const DWORD state : {SERVICE_STOPPED, SERVICE_START_PENDING, SERVICE_RUNNING,
                              SERVICE_CONTINUE_PENDING, SERVICE_PAUSE_PENDING, SERVICE_PAUSED}) {
        SCOPED_TRACE(state);
        services.states = {SERVICE_RUNNING, SERVICE_STOP_PENDING, state, SERVICE_STOPPED};
        services.sleeps.clear();

        EXPECT_EQ(stopServiceAndWait(L"svc", noLimit), state == SERVICE_STOPPED);

        EXPECT_THAT(services.sleeps, ElementsAre(1000u, 1000u));
    }
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

TEST_F(StopServiceTest, EndsTheWaitWhenTheServiceCannotBeLookedAtAnyMore) {
    services.states = {SERVICE_RUNNING, SERVICE_STOP_PENDING, FakeServices::failedLook,
                       SERVICE_STOPPED};

    EXPECT_FALSE(stopServiceAndWait(L"svc", noLimit));

    EXPECT_THAT(services.sleeps, ElementsAre(1000u, 1000u));
}

TEST_F(StopServiceTest, GivesUpAtTheFirstLookAtOrBehindTheLimit) {
    struct Row {
        uint32_t limit;
        DWORD waited;
    };
    const Row rows[] = {{1, 1000},        {999, 1000},      {1000, 1000},
                        {1001, 2000},     {2000, 2000},     {2001, 3000},
                        {14'999, 15'000}, {15'000, 15'000}, {15'001, 16'000}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.limit);
        services.states = {SERVICE_RUNNING, SERVICE_STOP_PENDING};
        const DWORD begin = services.now;

        EXPECT_FALSE(stopServiceAndWait(L"svc", row.limit));

        EXPECT_EQ(services.now - begin, row.waited);
    }
}

TEST_F(StopServiceTest, TakesTheStateAtTheLimitAsItIs) {
    services.states = {SERVICE_RUNNING, SERVICE_STOPPED, SERVICE_RUNNING};
    EXPECT_TRUE(stopServiceAndWait(L"svc", 1000));

    services.states = {SERVICE_RUNNING, SERVICE_STOP_PENDING, SERVICE_STOPPED, SERVICE_RUNNING};
    EXPECT_TRUE(stopServiceAndWait(L"svc", 2000));

    EXPECT_THAT(services.sleeps, ElementsAre(1000u, 1000u, 1000u));
}

TEST_F(StopServiceTest, WaitsWithoutALimitForAsLongAsItTakes) {
    services.states.assign(60 * 60, SERVICE_STOP_PENDING);
    services.states.push_back(SERVICE_STOPPED);

    EXPECT_TRUE(stopServiceAndWait(L"svc", noLimit));

    EXPECT_GE(services.now, 60u * 60 * 1000);
}

TEST_F(StopServiceTest, MeasuresTheWaitAcrossTheEndOfTheTickCount) {
    services.now = 0xFFFFFFFF - 1200;
    services.states = {SERVICE_RUNNING, SERVICE_STOP_PENDING};

    EXPECT_FALSE(stopServiceAndWait(L"svc", 3000));

    EXPECT_THAT(services.sleeps, ElementsAre(1000u, 1000u, 1000u));
}

TEST_F(StopServiceTest, DoesNotCountTheTimeThatTheRequestTakes) {
    services.requestTakes = 30'000;
    services.states = {SERVICE_RUNNING, SERVICE_STOP_PENDING, SERVICE_STOPPED};

    EXPECT_TRUE(stopServiceAndWait(L"svc", 15'000));

    EXPECT_THAT(services.sleeps, ElementsAre(1000u, 1000u));
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

// The start type.

class QueryStartTypeTest : public FakeServiceTest {
protected:
    static constexpr uint32_t untouched = 4711;

    bool query() {
        ServiceHandle manager(serviceCalls.OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
        services.calls.clear();
        return queryServiceStartType(L"svc", startType, std::move(manager));
    }

    uint32_t startType = untouched;
};

TEST_F(QueryStartTypeTest, ReadsTheConfigurationIntoMemoryOfTheNeededSize) {
    services.startType = SERVICE_DISABLED;

    EXPECT_TRUE(query());

    EXPECT_EQ(startType, SERVICE_DISABLED);
    EXPECT_THAT(services.calls,
                ElementsAre("OpenService svc 0x1", "QueryServiceConfig 0", "LocalAlloc 0x40 0x200",
                            "QueryServiceConfig 0x200", "LocalFree", "CloseServiceHandle service",
                            "CloseServiceHandle manager"));
}

TEST_F(QueryStartTypeTest, FailsWhenTheServiceCannotBeOpened) {
    services.errors["OpenService"] = {ERROR_SERVICE_DOES_NOT_EXIST};

    EXPECT_FALSE(query());

    EXPECT_EQ(startType, untouched);
    EXPECT_THAT(services.calls, ElementsAre("OpenService svc 0x1", "CloseServiceHandle manager"));
    logged = {"[ERROR] OpenService failed:1060"};
}

TEST_F(QueryStartTypeTest, FailsSilentlyWhenTheConfigurationFitsInNoMemoryAtAll) {
    services.errors["QueryServiceConfig"] = {ERROR_SUCCESS};

    EXPECT_FALSE(query());

    EXPECT_EQ(startType, untouched);
    EXPECT_THAT(services.calls,
                ElementsAre("OpenService svc 0x1", "QueryServiceConfig 0",
                            "CloseServiceHandle service", "CloseServiceHandle manager"));
}

TEST_F(QueryStartTypeTest, FailsWhenTheNeededSizeIsNotTold) {
    services.errors["QueryServiceConfig"] = {ERROR_ACCESS_DENIED};

    EXPECT_FALSE(query());

    EXPECT_EQ(startType, untouched);
    EXPECT_THAT(services.calls,
                ElementsAre("OpenService svc 0x1", "QueryServiceConfig 0",
                            "CloseServiceHandle service", "CloseServiceHandle manager"));
    logged = {"[ERROR] QueryServiceConfig failed:5"};
}

TEST_F(QueryStartTypeTest, FailsWithoutMemory) {
    services.errors["LocalAlloc"] = {ERROR_NOT_ENOUGH_MEMORY};

    EXPECT_FALSE(query());

    EXPECT_EQ(startType, untouched);
    EXPECT_THAT(services.calls,
                ElementsAre("OpenService svc 0x1", "QueryServiceConfig 0", "LocalAlloc 0x40 0x200",
                            "CloseServiceHandle service", "CloseServiceHandle manager"));
    logged = {"[ERROR] QueryServiceConfig failed:122"};
}

TEST_F(QueryStartTypeTest, TellsTheFirstErrorWhenTheSecondReadingFails) {
    services.errors["QueryServiceConfig"] = {ERROR_INSUFFICIENT_BUFFER, ERROR_ACCESS_DENIED};

    EXPECT_FALSE(query());

    EXPECT_EQ(startType, untouched);
    EXPECT_THAT(services.calls,
                ElementsAre("OpenService svc 0x1", "QueryServiceConfig 0", "LocalAlloc 0x40 0x200",
                            "QueryServiceConfig 0x200", "LocalFree", "CloseServiceHandle service",
                            "CloseServiceHandle manager"));
    logged = {"[ERROR] QueryServiceConfig failed:122"};
}

/// Changes the start type of a service that is started on demand.
class ChangeStartTypeTest : public FakeServiceTest {
protected:
    /// What is called from the last opening of the manager on.
    std::vector<std::string> callsOfChange() const {
        std::vector<std::string> calls;
        for (const std::string& call : services.calls) {
            if (call.starts_with("OpenSCManager"))
                calls.clear();
            calls.push_back(call);
        }
        return calls;
    }
};

TEST_F(ChangeStartTypeTest, LocksTheDatabaseWhileItChanges) {
    EXPECT_TRUE(changeServiceStartType(L"svc", SERVICE_AUTO_START));

    EXPECT_THAT(
        services.calls,
        ElementsAre("OpenSCManager 0xf003f", "OpenService svc 0x1", "QueryServiceConfig 0",
                    "LocalAlloc 0x40 0x200", "QueryServiceConfig 0x200", "LocalFree",
                    "CloseServiceHandle service", "CloseServiceHandle manager",
                    "OpenSCManager 0xf003f", "LockServiceDatabase", "OpenService svc 0x2",
                    "ChangeServiceConfig 0xffffffff 0x2 0xffffffff", "CloseServiceHandle service",
                    "UnlockServiceDatabase", "CloseServiceHandle manager"));
}

TEST_F(ChangeStartTypeTest, ChangesNothingWhenTheTypeIsTheWantedOne) {
    EXPECT_TRUE(changeServiceStartType(L"svc", SERVICE_DEMAND_START));

    EXPECT_EQ(services.countCalls("OpenSCManager"), 1u);
    EXPECT_EQ(services.countCalls("LockServiceDatabase"), 0u);
    EXPECT_EQ(services.countCalls("ChangeServiceConfig"), 0u);
}

TEST_F(ChangeStartTypeTest, FailsWithoutRightsToTheManager) {
    services.errors["OpenSCManager"] = {ERROR_NOT_ENOUGH_MEMORY, ERROR_ACCESS_DENIED};

    EXPECT_FALSE(changeServiceStartType(L"svc", SERVICE_AUTO_START));

    EXPECT_THAT(services.calls, ElementsAre("OpenSCManager 0xf003f", "OpenSCManager 0xf003f"));
    logged = {"[ERROR] OpenSCManager failed:5"};
}

TEST_F(ChangeStartTypeTest, ChangesEvenTheSameTypeWhenItCouldNotBeRead) {
    services.errors["OpenSCManager"] = {ERROR_ACCESS_DENIED};
    EXPECT_TRUE(changeServiceStartType(L"svc", SERVICE_DEMAND_START));
    EXPECT_EQ(services.countCalls("ChangeServiceConfig"), 1u);

    // Nothing that was read isn't the type 0 either.
    services.errors["QueryServiceConfig"] = {ERROR_ACCESS_DENIED};
    EXPECT_TRUE(changeServiceStartType(L"svc", SERVICE_BOOT_START));
    EXPECT_EQ(services.countCalls("ChangeServiceConfig"), 2u);

    logged = {"[ERROR] QueryServiceConfig failed:5"};
}

TEST_F(ChangeStartTypeTest, FailsWhenTheManagerCannotBeOpenedASecondTime) {
    services.errors["OpenSCManager"] = {ERROR_SUCCESS, 0x80070005};

    EXPECT_FALSE(changeServiceStartType(L"svc", SERVICE_AUTO_START));

    EXPECT_THAT(callsOfChange(), ElementsAre("OpenSCManager 0xf003f"));
    logged = {"[ERROR] OpenSCManager failed:2147942405"};
}

TEST_F(ChangeStartTypeTest, GoesOnWithoutTheLock) {
    services.errors["LockServiceDatabase"] = {ERROR_SERVICE_DATABASE_LOCKED};

    EXPECT_TRUE(changeServiceStartType(L"svc", SERVICE_AUTO_START));

    EXPECT_THAT(callsOfChange(),
                ElementsAre("OpenSCManager 0xf003f", "LockServiceDatabase", "OpenService svc 0x2",
                            "ChangeServiceConfig 0xffffffff 0x2 0xffffffff",
                            "CloseServiceHandle service", "CloseServiceHandle manager"));
    logged = {"[WARNNING] Database lock failed:1055"};
}

TEST_F(ChangeStartTypeTest, FailsWhenTheServiceCannotBeOpened) {
    services.errors["OpenService"] = {ERROR_SERVICE_DOES_NOT_EXIST, ERROR_ACCESS_DENIED};

    EXPECT_FALSE(changeServiceStartType(L"svc", SERVICE_AUTO_START));

    EXPECT_THAT(callsOfChange(),
                ElementsAre("OpenSCManager 0xf003f", "LockServiceDatabase", "OpenService svc 0x2",
                            "UnlockServiceDatabase", "CloseServiceHandle manager"));
    logged = {"[ERROR] OpenService failed:1060", "[ERROR] OpenService failed:5"};
}

TEST_F(ChangeStartTypeTest, FailsWhenTheChangeDoes) {
    services.errors["ChangeServiceConfig"] = {ERROR_INVALID_PARAMETER};

    EXPECT_FALSE(changeServiceStartType(L"svc", 7));

    EXPECT_THAT(
        callsOfChange(),
        ElementsAre("OpenSCManager 0xf003f", "LockServiceDatabase", "OpenService svc 0x2",
                    "ChangeServiceConfig 0xffffffff 0x7 0xffffffff", "CloseServiceHandle service",
                    "UnlockServiceDatabase", "CloseServiceHandle manager"));
    logged = {"[ERROR] ChangeServiceConfig failed:87"};
}

TEST_F(ChangeStartTypeTest, TellsTheFailedLockAheadOfTheFailedChange) {
    services.errors["LockServiceDatabase"] = {ERROR_ACCESS_DENIED};
    services.errors["ChangeServiceConfig"] = {ERROR_INVALID_PARAMETER};

    EXPECT_FALSE(changeServiceStartType(L"svc", SERVICE_AUTO_START));

    logged = {"[WARNNING] Database lock failed:5", "[ERROR] ChangeServiceConfig failed:87"};
}

}  // namespace
