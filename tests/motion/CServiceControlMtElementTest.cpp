#include "motion/CServiceControlMtElement.h"

#include <gmock/gmock.h>

#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "support/AllowedChildren.h"
#include "support/ChildProcess.h"
#include "support/Declarations.h"
#include "support/FakeServices.h"
#include "support/LogFile.h"
#include "support/ScriptTest.h"
#include "support/Text.h"
#include "support/Thrown.h"

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Pair;
using testing::StrEq;
using testing::Values;
using Notification = RecordingObserver::Notification;

namespace {

/// Runs scripts that control the service "svc".
class CServiceControlMtElementTest : public ScriptTest {
protected:
    ~CServiceControlMtElementTest() override { EXPECT_THAT(services.held(), IsEmpty()); }

    /// The elements of the script: one that does this to the service, with further attributes.
    static std::string control(const std::string& action, const std::string& wait = "no",
                               const std::string& attributes = {}) {
        return "<ServiceControl Id='S' Name='svc' Action='" + action + "' Wait='" + wait + "' " +
               attributes + "/>";
    }

    bool loadFragment(const std::string& elements, std::string_view variables = {}) {
        return loadProduct("<InstallExecuteSequence><Fragment Id='F'>" + elements +
                               "</Fragment></InstallExecuteSequence>",
                           variables);
    }

    void expectError(uint32_t code, const std::wstring& text1, const std::wstring& message) {
        const ErrorInfo& error = context.getProduct()->errorInfo;
        EXPECT_EQ(error.code, code);
        EXPECT_EQ(error.text1, text1);
        EXPECT_STREQ(error.text2, L"");
        EXPECT_EQ(error.systemError, 0u);
        EXPECT_EQ(error.message, message);
    }

    /// What an execution leaves at its start, and a success keeps.
    void expectNoError() { expectError(ERROR_CODE_MESSAGE, L"", L""); }

    const LogFile log;
    FakeServices services;
};

// What the element asks of the script.

TEST_F(CServiceControlMtElementTest, DeclaresItsAttributesInOrder) {
    ASSERT_TRUE(loadFragment(control("stop")));
    const CServiceControlMtElement element(*context.findElementById(L"ServiceControl", L"S"),
                                           context);

    EXPECT_THAT(declaredBy(element),
                ElementsAre(Pair(L"Name", true), Pair(L"Action", true), Pair(L"Wait", true),
                            Pair(L"On", false), Pair(L"Vital", false)));
    EXPECT_THAT(derivedBy(element), IsEmpty());
}

TEST_F(CServiceControlMtElementTest, StandsForNoOtherElement) {
    ASSERT_TRUE(loadProduct("<Fragment Id='F'/>"));
    const XmlHandlePtr node = context.findElementById(L"Fragment", L"F");

    EXPECT_EQ(thrownBy([&] { CServiceControlMtElement(*node, context); }),
              L"Failed to create element (Fragment,F)");
}

TEST_F(CServiceControlMtElementTest, RefusesChildren) {
    ASSERT_TRUE(
        loadFragment("<ServiceControl Id='S' Name='svc' Action='start' Wait='no'>"
                     "<Caution Title='x'/></ServiceControl>"));
    const CServiceControlMtElement element(*context.findElementById(L"ServiceControl", L"S"),
                                           context);

    EXPECT_EQ(run(), -1);

    expectError(ERROR_CODE_MESSAGE, L"",
                L"(ServiceControl,S) has a illegal child element(Caution)");
    EXPECT_THAT(allowedChildren(element), IsEmpty());
    EXPECT_THAT(services.calls, IsEmpty());
}

TEST_F(CServiceControlMtElementTest, IsNotMadeWithoutNameActionOrWait) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"<ServiceControl Id='S' Action='start' Wait='no'/>", L"Name"},
        {"<ServiceControl Id='S' Name='svc' Wait='no'/>", L"Action"},
        {"<ServiceControl Id='S' Name='svc' Action='start'/>", L"Wait"},
        {"<ServiceControl Id='S' Name='svc' Action='remove'/>", L"Wait"},
        {"<ServiceControl Id='S' name='svc' action='start' wait='no'/>", L"Name"},
    };
    for (const auto& [element, missing] : rows) {
        SCOPED_TRACE(element);
        context.unload();
        ASSERT_TRUE(loadFragment(element));

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(errorMessage(),
                  L"Create Motion Element error:(ServiceControl,S) cant get the require explicit " +
                      missing +
                      L"attribute.(Fragment,F) cann't create child element"
                      L"(ServiceControl)");
    }
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(services.calls, IsEmpty());
}

TEST_F(CServiceControlMtElementTest, FailsWhenItsAttributesWereNeverRead) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"<ServiceControl Id='S' Action='start' Wait='no'/>", L"Name"},
        {"<ServiceControl Id='S' Name='svc' Wait='no'/>", L"Action"},
        {"<ServiceControl Id='S' Name='svc' Action='start'/>", L"Wait"},
    };
    for (const auto& [script, missing] : rows) {
        SCOPED_TRACE(script);
        context.unload();
        ASSERT_TRUE(loadFragment(script));
        CServiceControlMtElement element(*context.findElementById(L"ServiceControl", L"S"),
                                         context);
        std::wstring ignored;
        element.readDeclaredAttributes(context, ignored);

        EXPECT_EQ(element.execute(context), -1);

        expectError(ERROR_CODE_MESSAGE, L"",
                    L"(ServiceControl,S) can't get " + missing + L" attribute.");
    }
    EXPECT_THAT(services.calls, IsEmpty());
}

TEST_F(CServiceControlMtElementTest, ReplacesReferencesInItsName) {
    ASSERT_TRUE(loadFragment("<ServiceControl Name='#V' Action='remove' Wait='no'/>",
                             "<Variable Id='V' Type='string' Value='other'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.updates,
                ElementsAre(Notification{ACTION_REMOVE_SERVICE, L"other", L"", 0}));
    EXPECT_THAT(services.calls, Contains("OpenService other 0xf01ff"));
}

TEST_F(CServiceControlMtElementTest, OnLimitsItToItsModes) {
    ASSERT_TRUE(loadFragment(control("remove", "no", "On='uninstall'")));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    EXPECT_THAT(services.calls, IsEmpty());

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_EQ(services.countCalls("DeleteService"), 1u);
}

TEST_F(CServiceControlMtElementTest, ActsInEveryMode) {
    ASSERT_TRUE(loadFragment(control("remove")));

    for (const int32_t mode : {0, 1, 2, 7})
        EXPECT_EQ(run(mode), 0) << mode;

    EXPECT_EQ(services.countCalls("DeleteService"), 4u);
}

// Actions that mean nothing.

TEST_F(CServiceControlMtElementTest, TakesNoNoticeOfAnActionThatItDoesNotKnow) {
    for (const char* action : {"Stop", "START", "Remove", "delete", "restart", "stop ", " start",
                               "sto", "stops", "", "5"}) {
        SCOPED_TRACE(action);
        const LogFile lines;
        context.unload();
        ASSERT_TRUE(loadFragment(control(action, "yes", "Vital='yes'")));

        EXPECT_EQ(run(), 0);

        EXPECT_THAT(lines.lines(), ElementsAre("[WARNNING] (ServiceControl,S) action is unknown."));
        expectNoError();
        EXPECT_EQ(context.getProduct()->actionInfo.code, 0u);
    }
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_THAT(services.calls, IsEmpty());
}

// The three actions.

struct Action {
    const char* word;
    ActionCode code;
    const char* request;           ///< the call that carries it out
    DWORD before, pending, after;  ///< the states that the service goes through
};

void PrintTo(const Action& action, std::ostream* stream) {
    *stream << action.word;
}

class ServiceActionTest : public CServiceControlMtElementTest,
                          public testing::WithParamInterface<Action> {
protected:
    ServiceActionTest() { services.states = {GetParam().before, GetParam().after}; }

    /// Loads a script with the action alone.
    bool loadAction(const std::string& wait = "no", const std::string& attributes = {}) {
        return loadFragment(control(GetParam().word, wait, attributes));
    }

    /// Lets the next attempts fail.
    void refuseService(size_t attempts) {
        services.errors["OpenService"].assign(attempts, ERROR_ACCESS_DENIED);
    }

    void expectFailure() { expectError(GetParam().code, L"svc", L""); }

    DWORD slept() const {
        return std::accumulate(services.sleeps.begin(), services.sleeps.end(), DWORD{});
    }
};

constexpr Action stop = {"stop",          ACTION_STOP_SERVICE,  "ControlService",
                         SERVICE_RUNNING, SERVICE_STOP_PENDING, SERVICE_STOPPED};
constexpr Action start = {"start",         ACTION_START_SERVICE,  "StartService",
                          SERVICE_STOPPED, SERVICE_START_PENDING, SERVICE_RUNNING};
constexpr Action removal = {"remove",        ACTION_REMOVE_SERVICE, "DeleteService",
                            SERVICE_RUNNING, SERVICE_RUNNING,       SERVICE_RUNNING};

std::string nameOf(const testing::TestParamInfo<Action>& info) {
    return info.param.word;
}

INSTANTIATE_TEST_SUITE_P(Actions, ServiceActionTest, Values(stop, start, removal), nameOf);

TEST_P(ServiceActionTest, IsAnnouncedWithTheServicesNameAndProgress) {
    services.states = {GetParam().before, GetParam().after, GetParam().before, GetParam().after};
    ASSERT_TRUE(loadFragment("<Caution Title='x'/>" + control(GetParam().word)));

    EXPECT_EQ(run(), 0);

    ASSERT_EQ(observer.updates.size(), 2u);
    EXPECT_EQ(observer.updates[1], (Notification{GetParam().code, L"svc", L"", 50}));
    EXPECT_EQ(services.countCalls(GetParam().request), 1u);
    EXPECT_EQ(services.countCalls("StartService") + services.countCalls("ControlService") +
                  services.countCalls("DeleteService"),
              1u);
    expectNoError();
    EXPECT_THAT(log.lines(), IsEmpty());
}

/// Remembers how far the engine was when the host heard of the action.
class TimingObserver final : public IterfaceObserver {
public:
    explicit TimingObserver(const FakeServices& services) : services(services) {}

    void update(IterfaceProduct*) override { callsAtUpdate.push_back(services.calls.size()); }
    ObserverAnswer askOnError(ErrorInfo*) override { return ANSWER_ABORT; }

    std::vector<size_t> callsAtUpdate;

private:
    const FakeServices& services;
};

TEST_P(ServiceActionTest, IsAnnouncedBeforeItBegins) {
    ASSERT_TRUE(loadAction());
    TimingObserver timing(services);
    context.runMode = RUNMODE_INSTALL;
    context.getProduct()->observer = &timing;

    EXPECT_EQ(context.getProduct()->run(&context), 0);

    EXPECT_THAT(timing.callsAtUpdate, ElementsAre(0u));
    EXPECT_THAT(services.calls, testing::Not(IsEmpty()));
}

TEST_P(ServiceActionTest, FailsWithItsCodeAndWithoutAReason) {
    ASSERT_TRUE(loadAction());
    services.states = {GetParam().before};
    services.errors[GetParam().request] = {ERROR_ACCESS_DENIED};

    EXPECT_EQ(run(), -1);

    expectFailure();
    EXPECT_EQ(observer.failures.size(), 1u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_P(ServiceActionTest, FailsWithoutTheServiceManager) {
    ASSERT_TRUE(loadAction());
    services.errors["OpenSCManager"] = {ERROR_ACCESS_DENIED};

    EXPECT_EQ(run(), -1);

    expectFailure();
}

TEST_P(ServiceActionTest, FailsWithoutTheServiceOnlyWhenItIsToStart) {
    ASSERT_TRUE(loadAction());
    services.errors["OpenService"] = {ERROR_SERVICE_DOES_NOT_EXIST};

    if (GetParam().code == ACTION_START_SERVICE) {
        EXPECT_EQ(run(), -1);
        expectFailure();
    } else {
        EXPECT_EQ(run(), 0);
        expectNoError();
    }
    EXPECT_EQ(observer.updates.size(), 1u);
}

TEST_P(ServiceActionTest, IsRepeatedWholeWhenTheHostWantsToRetry) {
    ASSERT_TRUE(loadAction());
    refuseService(2);
    observer.answers = {ANSWER_RETRY, ANSWER_RETRY};

    EXPECT_EQ(run(), 0);

    const Notification announced{GetParam().code, L"svc", L"", 0};
    EXPECT_THAT(observer.updates, ElementsAre(announced, announced, announced));
    EXPECT_EQ(observer.failures.size(), 2u);
    EXPECT_THAT(observer.failures, Each(AllOf(Field(&ErrorInfo::code, GetParam().code),
                                              Field(&ErrorInfo::text1, StrEq(L"svc")))));
    EXPECT_EQ(services.countCalls("OpenService"), 3u);
    EXPECT_EQ(services.countCalls(GetParam().request), 1u);
    expectNoError();
}

TEST_P(ServiceActionTest, LetsTheRunGoOnWhenTheHostIgnoresTheFailure) {
    ASSERT_TRUE(loadFragment(control(GetParam().word) + "<Caution Title='x'/>"));
    refuseService(1);
    observer.answers = {ANSWER_IGNORE};

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(observer.updates.size(), 2u);
    EXPECT_EQ(observer.failures.size(), 1u);
}

TEST_P(ServiceActionTest, EndsTheRunByItsFailureUnlessItIsNotVital) {
    struct Row {
        const char* attributes;
        bool vital;
    };
    const Row rows[] = {{"", true},          {"Vital='yes'", true},  {"Vital='no'", false},
                        {"Vital=''", false}, {"Vital='Yes'", false}, {"Vital='true'", false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.attributes);
        const LogFile lines;
        context.unload();
        observer = {};
        ASSERT_TRUE(loadAction("no", row.attributes));
        refuseService(1);

        EXPECT_EQ(run(), row.vital ? -1 : 0);

        expectFailure();
        EXPECT_EQ(observer.failures.size(), row.vital ? 1u : 0u);
        EXPECT_EQ(lines.lines(), row.vital
                                     ? std::vector<std::string>{}
                                     : std::vector<std::string>{
                                           "[WARNNING] The last error isn't vital - ignore."});
    }
}

TEST_P(ServiceActionTest, EndsTheProcessWhenTheNameIsTooLongToAnnounce) {
    ASSERT_TRUE(loadFragment("<ServiceControl Name='" + std::string(512, 'n') + "' Action='" +
                             GetParam().word + "' Wait='no'/>"));

    EXPECT_EXIT(run(), endedByInvalidParameter(), "");
}

TEST_P(ServiceActionTest, AnnouncesANameThatJustFits) {
    const std::wstring longest(511, L'n');
    ASSERT_TRUE(loadFragment("<ServiceControl Name='" + narrow(longest) + "' Action='" +
                             GetParam().word + "' Wait='no'/>"));
    refuseService(1);

    EXPECT_EQ(run(), -1);

    EXPECT_THAT(observer.updates, ElementsAre(Notification{GetParam().code, longest, L"", 0}));
    expectError(GetParam().code, longest, L"");
}

TEST_F(CServiceControlMtElementTest, RemovesAServiceWithoutWaiting) {
    ASSERT_TRUE(loadFragment(control("remove", "yes")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(services.sleeps, IsEmpty());
    EXPECT_EQ(services.countCalls("QueryServiceStatus"), 0u);
}

// The two that wait.

using ServiceWaitTest = ServiceActionTest;

INSTANTIATE_TEST_SUITE_P(Actions, ServiceWaitTest, Values(stop, start), nameOf);

TEST_P(ServiceWaitTest, FailsWhenTheServiceIsStillOnItsWayAtTheLimit) {
    struct Row {
        const char* wait;
        DWORD limit;
    };
    const Row rows[] = {{"yes", 15'000}, {"no", 1000},   {"Yes", 1000}, {"YES", 1000},
                        {"yes ", 1000},  {"ye", 1000},   {"", 1000},    {"true", 1000},
                        {"1", 1000},     {"15000", 1000}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.wait);
        context.unload();
        ASSERT_TRUE(loadAction(row.wait));
        services.states = {GetParam().before, GetParam().pending};
        services.sleeps.clear();

        EXPECT_EQ(run(), -1);

        expectFailure();
        EXPECT_EQ(slept(), row.limit);
    }
}

TEST_P(ServiceWaitTest, SucceedsWhenTheServiceArrivesWithinTheLimit) {
    ASSERT_TRUE(loadAction("yes"));
    services.states = {GetParam().before, GetParam().pending, GetParam().pending, GetParam().after};

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(services.sleeps.size(), 3u);
    expectNoError();
}

}  // namespace
