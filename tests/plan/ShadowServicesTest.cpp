#include "plan/ShadowServices.h"

#include <optional>

#include "plan/PlanTest.h"
#include "support/FakeServices.h"
#include "system/ServiceOperations.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

/// The fakes stand where the system stands, beneath the dry run.
class ServicesOfMachine {
protected:
    FakeServices services;
};

class ShadowServicesTest : public ServicesOfMachine, public PlanTest {
public:
    static SC_HANDLE openManager() {
        return serviceCalls.OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT);
    }
    static SC_HANDLE open(DWORD access) {
        return serviceCalls.OpenServiceW(openManager(), L"svc", access);
    }

    static DWORD change(SC_HANDLE service, DWORD startType) {
        return errorOf(serviceCalls.ChangeServiceConfigW(
            service, SERVICE_NO_CHANGE, startType, SERVICE_NO_CHANGE, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr));
    }
    DWORD start(SC_HANDLE service) const {
        return errorOf(serviceCalls.StartServiceW(service, 0, nullptr));
    }
    DWORD stop(SC_HANDLE service) const {
        SERVICE_STATUS status;
        return errorOf(serviceCalls.ControlService(service, SERVICE_CONTROL_STOP, &status));
    }
    DWORD remove(SC_HANDLE service) const { return errorOf(serviceCalls.DeleteService(service)); }
    DWORD enable(SC_HANDLE service) const { return change(service, SERVICE_DEMAND_START); }

protected:
    static constexpr uint32_t noLimit = 0;
};

TEST_F(ShadowServicesTest, StartedServiceRuns) {
    services.states = {SERVICE_STOPPED};

    EXPECT_TRUE(startServiceAndWait(L"svc", noLimit));
    EXPECT_TRUE(startServiceAndWait(L"svc", noLimit));

    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::serviceStarted, L"svc")));
    EXPECT_EQ(lastChange().before, L"stopped");
    EXPECT_EQ(lastChange().after, L"running");
    EXPECT_THAT(services.held(), IsEmpty());
    EXPECT_THAT(services.sleeps, IsEmpty());
}

TEST_F(ShadowServicesTest, DisabledServiceDoesNotStart) {
    services.startType = SERVICE_DISABLED;

    EXPECT_FALSE(startServiceAndWait(L"svc", noLimit));
    EXPECT_TRUE(changeServiceStartType(L"svc", SERVICE_DEMAND_START));
    EXPECT_TRUE(startServiceAndWait(L"svc", noLimit));

    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::serviceChanged, L"svc"),
                                       Pair(ChangeKind::serviceStarted, L"svc")));
    EXPECT_EQ(services.countCalls("LockServiceDatabase"), 0u);
}

TEST_F(ShadowServicesTest, ServiceThatIsNotThereFailsAsTheSystemSays) {
    services.errors["OpenService"] = {ERROR_SERVICE_DOES_NOT_EXIST, ERROR_ACCESS_DENIED};
    EXPECT_TRUE(deleteServiceByName(L"svc"));
    EXPECT_FALSE(deleteServiceByName(L"svc"));
    services.errors["OpenSCManager"] = {ERROR_ACCESS_DENIED};
    EXPECT_FALSE(startServiceAndWait(L"svc", noLimit));
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ShadowServicesTest, StopFailsWhenTheServiceTakesNone) {
    services.states = {SERVICE_RUNNING};

    EXPECT_FALSE(stopServiceAndWait(L"svc", noLimit));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_SERVICE_CONTROL});
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ShadowServicesTest, StartedServiceCanBeStopped) {
    EXPECT_TRUE(startServiceAndWait(L"svc", noLimit));
    EXPECT_TRUE(stopServiceAndWait(L"svc", noLimit));

    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::serviceStarted, L"svc"),
                                       Pair(ChangeKind::serviceStopped, L"svc")));
}

TEST_F(ShadowServicesTest, RemovedServiceIsGoneOnceNobodyHasItOpen) {
    EXPECT_TRUE(deleteServiceByName(L"svc"));
    EXPECT_FALSE(startServiceAndWait(L"svc", noLimit));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SERVICE_DOES_NOT_EXIST});
    EXPECT_EQ(changes().size(), 1u);
}

TEST_F(ShadowServicesTest, RemovedServiceThatRunsStaysUntilItHasStopped) {
    services.states = {SERVICE_RUNNING};
    EXPECT_TRUE(deleteServiceByName(L"svc"));
    EXPECT_FALSE(deleteServiceByName(L"svc"));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SERVICE_MARKED_FOR_DELETE});
}

// As the engine leaves two handles open to a service that had stopped already.
TEST_F(ShadowServicesTest, RemovedServiceStaysWhileAHandleIsOpen) {
    EXPECT_TRUE(stopServiceAndWait(L"svc", noLimit));
    EXPECT_TRUE(deleteServiceByName(L"svc"));
    EXPECT_FALSE(startServiceAndWait(L"svc", noLimit));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SERVICE_MARKED_FOR_DELETE});
}

TEST_F(ShadowServicesTest, RequestNeedsAServiceAndTheRight) {
    for (const auto& request : {&ShadowServicesTest::start, &ShadowServicesTest::stop,
                                &ShadowServicesTest::remove, &ShadowServicesTest::enable}) {
        EXPECT_EQ((this->*request)(nullptr), DWORD{ERROR_INVALID_HANDLE});
        EXPECT_EQ((this->*request)(openManager()), DWORD{ERROR_INVALID_HANDLE});
        EXPECT_EQ((this->*request)(open(SERVICE_QUERY_STATUS)), DWORD{ERROR_ACCESS_DENIED});
    }
    EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(ShadowServicesTest, RequestFailsInAStateThatTakesNone) {
    struct Case {
        DWORD state;
        DWORD startError;
        DWORD stopError;
    };
    const Case cases[] = {
        {SERVICE_RUNNING, ERROR_SERVICE_ALREADY_RUNNING, ERROR_INVALID_SERVICE_CONTROL},
        {SERVICE_PAUSED, ERROR_SERVICE_ALREADY_RUNNING, ERROR_INVALID_SERVICE_CONTROL},
        {SERVICE_START_PENDING, ERROR_SERVICE_ALREADY_RUNNING, ERROR_SERVICE_CANNOT_ACCEPT_CTRL},
        {SERVICE_STOP_PENDING, ERROR_SERVICE_ALREADY_RUNNING, ERROR_SERVICE_CANNOT_ACCEPT_CTRL},
        {SERVICE_STOPPED, ERROR_SUCCESS, ERROR_SERVICE_NOT_ACTIVE},
    };
    const SC_HANDLE service = open(SERVICE_ALL_ACCESS);
    for (const Case& row : cases) {
        services.states = {row.state};
        EXPECT_EQ(stop(service), row.stopError) << row.state;
        EXPECT_EQ(start(service), row.startError) << row.state;
    }
    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::serviceStarted, L"svc")));
}

TEST_F(ShadowServicesTest, NoControlButTheStopIsForeseen) {
    SERVICE_STATUS status;
    EXPECT_EQ(errorOf(serviceCalls.ControlService(open(SERVICE_ALL_ACCESS), SERVICE_CONTROL_PAUSE,
                                                  &status)),
              DWORD{ERROR_INVALID_SERVICE_CONTROL});
}

TEST_F(ShadowServicesTest, RemovedServiceIsNotChanged) {
    const SC_HANDLE service = open(SERVICE_ALL_ACCESS);
    EXPECT_EQ(remove(service), 0u);
    EXPECT_EQ(enable(service), DWORD{ERROR_SERVICE_MARKED_FOR_DELETE});
    EXPECT_THAT(changes(), ElementsAre(Pair(ChangeKind::serviceRemoved, L"svc")));
}

TEST_F(ShadowServicesTest, StartTypeIsToldAsFarAsItIsKnown) {
    const SC_HANDLE service = open(SERVICE_ALL_ACCESS);
    EXPECT_EQ(change(service, SERVICE_DISABLED + 1), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_THAT(changes(), IsEmpty());

    EXPECT_EQ(change(service, SERVICE_NO_CHANGE), 0u);
    EXPECT_EQ(lastChange().before, L"on demand");
    EXPECT_EQ(lastChange().after, L"");

    services.errors["QueryServiceConfig"] = {ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED};
    EXPECT_EQ(change(service, SERVICE_AUTO_START), 0u);
    EXPECT_EQ(lastChange().before, L"");
    EXPECT_EQ(lastChange().after, L"automatic");

    EXPECT_EQ(change(service, SERVICE_DISABLED), 0u);
    EXPECT_EQ(lastChange().before, L"automatic");
}

TEST_F(ShadowServicesTest, ServiceStartsOnlyWithItsProgram) {
    const std::wstring program = folder.write(L"my service.exe", "x");
    folder.makeDirectory(L"directory.exe");
    struct Case {
        std::wstring commandLine;
        DWORD error;
    };
    const Case cases[] = {
        {folder.path(L"none.exe"), ERROR_FILE_NOT_FOUND},
        {folder.path(L"none.exe -x"), ERROR_FILE_NOT_FOUND},
        {L"\"" + folder.path(L"my.exe") + L"\" -x", ERROR_FILE_NOT_FOUND},
        {folder.path(L"none\\none.exe"), ERROR_PATH_NOT_FOUND},
        {folder.path(L"directory"), ERROR_ACCESS_DENIED},
        {program, ERROR_SUCCESS},
        {program + L" -x", ERROR_SUCCESS},
        {folder.path(L"my service") + L" -x", ERROR_SUCCESS},
        {L"\"" + program + L"\" -x", ERROR_SUCCESS},
        {L"system32\\service.exe", ERROR_SUCCESS},
    };
    for (const Case& row : cases) {
        services.program = row.commandLine;
        EXPECT_EQ(start(open(SERVICE_ALL_ACCESS)), row.error)
            << testing::PrintToString(row.commandLine);
        if (row.error == ERROR_SUCCESS) {
            EXPECT_EQ(stop(open(SERVICE_ALL_ACCESS)), 0u);
        }
    }
}

TEST_F(ShadowServicesTest, StateThatCannotBeToldIsNotMadeUp) {
    services.states = {FakeServices::failedLook};
    SERVICE_STATUS status{};
    EXPECT_FALSE(serviceCalls.QueryServiceStatus(open(SERVICE_ALL_ACCESS), &status));
    EXPECT_EQ(status.dwCurrentState, 0u);
}

TEST_F(ShadowServicesTest, OnlyALockThatWasGivenIsTakenBack) {
    EXPECT_EQ(errorOf(serviceCalls.UnlockServiceDatabase(nullptr)),
              DWORD{ERROR_INVALID_SERVICE_LOCK});
    EXPECT_TRUE(
        serviceCalls.UnlockServiceDatabase(serviceCalls.LockServiceDatabase(openManager())));
}

TEST(ShadowServices, HandlesThatTheRunLeavesOpenAreClosedAtItsEnd) {
    FakeServices services;
    {
        PlannedChanges planned;
        Rehearsal rehearsal(planned);
        const CallWrapper<Rehearsal> wrapper(rehearsal);
        EXPECT_TRUE(stopServiceAndWait(L"svc", 0));
        EXPECT_EQ(services.held().size(), 2u);
    }
    EXPECT_THAT(services.held(), IsEmpty());
}

}  // namespace
