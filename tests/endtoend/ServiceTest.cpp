#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "support/HostTest.h"
#include "support/LogFile.h"
#include "support/Requirements.h"
#include "support/TestService.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A product that has a service. The engine's waits take their time here.
class ServiceTest : public HostTest {
protected:
    void SetUp() override { REQUIRES_WINE("installs services in the machine"); }

    using Notification = RecordingObserver::Notification;

    /// Loads a script that does this to a service, one action behind the other.
    bool loadControls(const TestService& service, const std::vector<std::string>& actions,
                      const std::string& wait) {
        std::string controls;
        for (const std::string& action : actions)
            controls += "<ServiceControl Name='" + narrow(service.name()) + "' Action='" + action +
                        "' Wait='" + wait + "'/>";
        return load("<Script><Product><InstallExecuteSequence><Fragment Id='F'>" + controls +
                    "</Fragment></InstallExecuteSequence></Product></Script>");
    }

    void expectFailure(uint32_t code, const TestService& service) {
        ASSERT_EQ(observer.failures.size(), 1u);
        EXPECT_EQ(observer.failures[0].code, code);
        EXPECT_STREQ(observer.failures[0].text1, service.name());
        EXPECT_EQ(observer.failures[0].systemError, 0u);
        EXPECT_STREQ(observer.failures[0].message, L"");
    }

    const LogFile log;
};

TEST_F(ServiceTest, IsStartedStoppedAndRemovedThoughItIsSlow) {
    const TestService service({.startTakes = 1200, .stopTakes = 1200});
    ASSERT_TRUE(loadControls(service, {"start", "stop", "remove"}, "yes"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_TRUE(service.waitFor(TestService::gone));
    EXPECT_THAT(observer.updates,
                ElementsAre(Notification{ACTION_START_SERVICE, service.name(), L"", 0},
                            Notification{ACTION_STOP_SERVICE, service.name(), L"", 33},
                            Notification{ACTION_REMOVE_SERVICE, service.name(), L"", 66}));
    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ServiceTest, FailsWhenItIsSlowerToStartThanTheScriptWaits) {
    const TestService service({.startTakes = TestService::forEver});
    ASSERT_TRUE(loadControls(service, {"start"}, "no"));

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    expectFailure(ACTION_START_SERVICE, service);
    EXPECT_EQ(service.state(), SERVICE_START_PENDING);
}

TEST_F(ServiceTest, FailsWhenItIsSlowerToStopThanTheScriptWaits) {
    const TestService service({.stopTakes = TestService::forEver});
    service.start();
    ASSERT_TRUE(loadControls(service, {"stop"}, "no"));

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    expectFailure(ACTION_STOP_SERVICE, service);
    EXPECT_EQ(service.state(), SERVICE_STOP_PENDING);
}

TEST_F(ServiceTest, IsTriedAgainWhenTheHostWantsIt) {
    const TestService service({.startType = SERVICE_DISABLED});
    ASSERT_TRUE(loadControls(service, {"start"}, "no"));
    observer.answers = {ANSWER_RETRY, ANSWER_IGNORE};

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_EQ(observer.updates.size(), 2u);
    EXPECT_EQ(observer.failures.size(), 2u);
    EXPECT_EQ(service.state(), SERVICE_STOPPED);
}

TEST_F(ServiceTest, IsLeftAloneByAnActionThatIsSpeltOtherwise) {
    const TestService service;
    ASSERT_TRUE(loadControls(service, {"Start", "Remove"}, "no"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_EQ(service.state(), SERVICE_STOPPED);
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] (ServiceControl,) action is unknown.",
                                         "[WARNNING] (ServiceControl,) action is unknown."));
}

}  // namespace
