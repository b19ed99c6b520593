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
