#include <gmock/gmock.h>

#include <functional>

#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/Requirements.h"
#include "support/TestService.h"
#include "system/ClockCalls.h"
#include "system/ServiceOperations.h"

using testing::IsEmpty;

namespace {

constexpr uint32_t noLimit = 0;
constexpr wchar_t absentService[] = L"temz-test-absent";

/// A test with the system's own service manager, and a clock on which only the service takes time.
class RealServiceTest : public testing::Test {
protected:
    ~RealServiceTest() override { EXPECT_THAT(log.lines(), IsEmpty()); }

    void SetUp() override { REQUIRES_WINE("installs services in the machine"); }

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
TEST(RealServiceWaitTest, GoesOnWhileTheServiceStarts) {
    REQUIRES_WINE("installs a service in the machine");
    const TestService service({.startTakes = 1200});

    EXPECT_TRUE(startServiceAndWait(service.name(), 15'000));

    EXPECT_EQ(service.state(), SERVICE_RUNNING);
}

}  // namespace
