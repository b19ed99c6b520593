#include <gmock/gmock.h>

#include <string>
#include <utility>

#include "support/FakeServiceTest.h"
#include "system/ServiceOperations.h"

using testing::ElementsAre;

namespace {

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
    for (const DWORD error : {ERROR_SERVICE_DOES_NOT_EXIST, ERROR_ACCESS_DENIED}) {
        SCOPED_TRACE(error);
        services.errors["OpenService"] = {error};

        EXPECT_FALSE(query());

        EXPECT_EQ(startType, untouched);
        EXPECT_THAT(services.calls,
                    ElementsAre("OpenService svc 0x1", "CloseServiceHandle manager"));
    }
    logged = {"[ERROR] OpenService failed:1060", "[ERROR] OpenService failed:5"};
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

/// Lists what is given back, with the lines of the log where they are written.
class StartTypeFailureTest : public FakeServiceTest {
protected:
    using Steps = std::vector<std::string>;

    /// A call that fails, and what follows.
    struct Row {
        const char* call;
        std::deque<DWORD> errors;
        Steps steps;
    };

    StartTypeFailureTest() {
        services.onGiveBack = [this](const std::string& kind) {
            const std::vector<std::string> lines = log.lines();
            steps.insert(steps.end(), lines.begin() + static_cast<ptrdiff_t>(logged.size()),
                         lines.end());
            logged = lines;
            steps.push_back(kind);
        };
    }

    Steps steps;
};

TEST_F(StartTypeFailureTest, OfAReadingIsLoggedBeforeTheHandlesAreClosed) {
    const Row rows[] = {
        {"OpenService", {5}, {"[ERROR] OpenService failed:5", "manager"}},
        {"QueryServiceConfig", {5}, {"[ERROR] QueryServiceConfig failed:5", "service", "manager"}},
        {"QueryServiceConfig",
         {122, 5},
         {"[ERROR] QueryServiceConfig failed:122", "memory", "service", "manager"}},
        {"LocalAlloc", {8}, {"[ERROR] QueryServiceConfig failed:122", "service", "manager"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.call);
        ServiceHandle manager(serviceCalls.OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
        services.errors[row.call] = row.errors;
        steps.clear();
        uint32_t startType = 0;

        EXPECT_FALSE(queryServiceStartType(L"svc", startType, std::move(manager)));

        EXPECT_EQ(steps, row.steps);
    }
}

TEST_F(StartTypeFailureTest, OfAChangeIsLoggedBeforeTheHandlesAreClosed) {
    const Row rows[] = {
        {"OpenService", {0, 5}, {"[ERROR] OpenService failed:5", "lock", "manager"}},
        {"ChangeServiceConfig",
         {87},
         {"[ERROR] ChangeServiceConfig failed:87", "service", "lock", "manager"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.call);
        services.errors[row.call] = row.errors;
        steps.clear();

        EXPECT_FALSE(changeServiceStartType(L"svc", SERVICE_AUTO_START));

        Steps expected = {"memory", "service", "manager"};  // of the reading
        expected.insert(expected.end(), row.steps.begin(), row.steps.end());
        EXPECT_EQ(steps, expected);
    }
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
