#include "motion/CConditionMtElement.h"

#include <gmock/gmock.h>

#include <optional>

#include "elements/ElementFactory.h"
#include "engine/CContext.h"
#include "logging/IterfaceObserver.h"
#include "support/AllowedChildren.h"
#include "support/ChildProcess.h"
#include "support/Heard.h"
#include "support/LogFile.h"
#include "support/PayloadFolder.h"
#include "support/ProbeElement.h"
#include "support/ScriptTest.h"
#include "support/Text.h"
#include "support/Thrown.h"

using testing::ElementsAre;
using testing::IsEmpty;
using Notification = RecordingObserver::Notification;

namespace {

class CConditionMtElementTest : public ScriptTest {
protected:
    /// Loads a script whose sequence holds these elements, with definitions that stand before it
    /// and with some variables.
    bool loadSequence(const std::string& sequence, const std::string& definitions = {}) {
        return loadProduct(
            definitions + "<InstallExecuteSequence>" + sequence + "</InstallExecuteSequence>",
            "<Variable Id='X' Type='int' Value='3'/><Variable Id='Y' Type='int' Value='4'/>"
            "<Variable Id='S' Type='string' Value='text'/>"
            "<Variable Id='Empty' Type='string' Value=''/>"
            "<Variable Id='Bad' Type='int' Value='many'/>");
    }

    /// A `Condition` with the id "C" that lets the host hear "inside".
    static std::string condition(const std::string& expression) {
        return "<Condition Id='C' Expression='" + expression +
               "'><Fragment><Caution Title='inside'/></Fragment></Condition>";
    }

    /// The element of that name with the id "C", in which nothing has been read yet.
    XmlHandlePtr nodeOf(const wchar_t* name) { return context.findElementById(name, L"C"); }

    int32_t valueOf(const wchar_t* variable) { return context.findVariable(variable)->getInt(); }

    /// An attribute as the element answers; "<none>" when it has no answer.
    static std::wstring attribute(const CElement& element, const wchar_t* name) {
        AttributeRecord record;
        return element.getAttribute(name, record) ? record.value : L"<none>";
    }
};

// What it is

TEST_F(CConditionMtElementTest, HoldsEverythingThatRunsButTheSequence) {
    ASSERT_TRUE(loadSequence(condition("1")));
    const CConditionMtElement element(*nodeOf(L"Condition"), context);

    EXPECT_THAT(allowedChildren(element),
                ElementsAre(L"Caution", L"Component", L"ComponentRef", L"Condition", L"CopyFile",
                            L"CustomAction", L"Feature", L"FeatureRef", L"File", L"FileSearch",
                            L"Fragment", L"FragmentRef", L"RegistryKey", L"RegistryValue",
                            L"ServiceControl", L"ShellExcute", L"Shortcut", L"RemoveDirectory"));
}

TEST_F(CConditionMtElementTest, DeclaresItsExpressionAlone) {
    ASSERT_TRUE(loadSequence(condition("1")));
    const CConditionMtElement element(*nodeOf(L"Condition"), context);
    std::vector<AttributeDeclaration> declared(3);
    std::vector<AttributeDeclaration> derived(3);

    element.getAttributes(declared);
    element.getDerivedAttributes(derived);

    ASSERT_EQ(declared.size(), 1u);
    EXPECT_STREQ(declared[0].name, L"Expression");
    EXPECT_TRUE(declared[0].required);
    EXPECT_THAT(derived, IsEmpty());
}

TEST_F(CConditionMtElementTest, StandsForNoOtherElement) {
    ASSERT_TRUE(loadProduct("<Fragment Id='C'/>"));

    EXPECT_EQ(thrownBy([&] { CConditionMtElement(*nodeOf(L"Fragment"), context); }),
              L"Failed to create element(Fragment) in Condition");
}

TEST_F(CConditionMtElementTest, CannotBeMadeWithoutAnExpression) {
    ASSERT_TRUE(loadSequence("<Condition Id='C' expression='1'/>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(),
              L"Create Motion Element error:(Condition,C) cant get the require explicit "
              L"Expressionattribute.(InstallExecuteSequence,) cann't create child "
              L"element(Condition)");
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CConditionMtElementTest, DoesNothingAfterItsChildren) {
    ASSERT_TRUE(loadSequence(condition("1")));
    const MotionElementPtr element =
        CreateMotionElement(nodeOf(L"Condition").get(), context, nullptr);

    EXPECT_EQ(element->execute(context), 0);

    EXPECT_THAT(observer.updates, IsEmpty());
}

// Its value

TEST_F(CConditionMtElementTest, ItsValueDecidesAboutItsChildrenAndIsLogged) {
    struct Row {
        std::string expression;
        bool value;
    };
    const Row rows[] = {{"1", true},
                        {"0", false},
                        {"-1", true},
                        {"X", true},
                        {"S", true},
                        {"Empty", false},
                        {"! Empty", true},
                        {"X E 3 AND Y G X", true},
                        {"X E 4 OR ( Y L X )", false},
                        {"OS_BIT E 32 OR OS_BIT E 64", true}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expression);
        context.unload();
        ASSERT_TRUE(loadSequence(condition(row.expression) + "<Fragment><Caution Title='after'/>"
                                                             "</Fragment>"));
        observer = {};
        const LogFile log;

        EXPECT_EQ(run(), 0);

        std::vector<std::wstring> titles = {L"", L"inside", L"after"};
        if (!row.value)
            titles = {L"", L"after"};
        EXPECT_EQ(heardTitles(observer), titles);
        EXPECT_THAT(log.lines(), ElementsAre("[INFO] " + row.expression + " expression value:" +
                                             (row.value ? "true" : "false")));
        EXPECT_THAT(observer.failures, IsEmpty());
    }
}

TEST_F(CConditionMtElementTest, TellsTheHostItsExpressionAtTheStartOfItsShare) {
    ASSERT_TRUE(
        loadSequence("<Condition Expression='0'/><Condition Expression='X E 3'>"
                     "<Fragment/><Condition Expression='1'/></Condition>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.updates,
                ElementsAre(Notification{2, L"0", L"", 0}, Notification{2, L"X E 3", L"", 50},
                            Notification{2, L"1", L"", 75}));
}

TEST_F(CConditionMtElementTest, TellsTheHostBeforeItIsEvaluated) {
    class ReadingObserver final : public IterfaceObserver {
    public:
        explicit ReadingObserver(CContext& context) : context(context) {}
        void update(IterfaceProduct*) override {
            values.push_back(context.findVariable(L"X")->getInt());
        }
        ObserverAnswer askOnError(ErrorInfo*) override { return ANSWER_ABORT; }

        CContext& context;
        std::vector<int32_t> values;
    };
    ASSERT_TRUE(
        loadSequence("<Condition Expression='X = 5'><Condition Expression='X = 6'/></Condition>"));
    ReadingObserver reading(context);
    context.runMode = RUNMODE_INSTALL;
    context.getProduct()->observer = &reading;

    EXPECT_EQ(context.getProduct()->run(&context), 0);

    EXPECT_THAT(reading.values, ElementsAre(3, 5));
    EXPECT_EQ(valueOf(L"X"), 6);
}

TEST_F(CConditionMtElementTest, FalseOneHidesFaultsOfItsChildren) {
    ASSERT_TRUE(
        loadSequence("<Condition Expression='0'><Illegal/><Caution/>"
                     "<Condition Expression='Undefined'/></Condition>"));

    EXPECT_EQ(run(), 0);
}

TEST_F(CConditionMtElementTest, FaultOfAChildEndsTheRun) {
    ASSERT_TRUE(loadSequence("<Condition Id='C' Expression='1'><Directory Path='p'/></Condition>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(), L"(Condition,C) has a illegal child element(Directory)");
}

TEST_F(CConditionMtElementTest, HoldsReferences) {
    ASSERT_TRUE(
        loadSequence("<Condition Expression='1'><FragmentRef Id='F'/><FeatureRef Id='F'/>"
                     "</Condition>",
                     "<Fragment Id='F'><Caution Title='a'/></Fragment>"
                     "<Feature Id='F'><Condition Expression='1'><Caution Title='b'/></Condition>"
                     "</Feature>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"", L"a", L"", L"b"));
}

TEST_F(CConditionMtElementTest, LimitsItselfToNoMode) {
    ASSERT_TRUE(loadSequence("<Condition On='uninstall' Expression='1'/>"));

    for (const int32_t mode : {0, 1, 2, 7})
        EXPECT_EQ(run(mode), 0);

    EXPECT_EQ(observer.updates.size(), 4u);
}

// Assignments

TEST_F(CConditionMtElementTest, AssignmentDecidesByTheValueAssigned) {
    ASSERT_TRUE(
        loadSequence("<Condition Expression='X = 0'><Fragment><Caution Title='not'/></Fragment>"
                     "</Condition><Condition Expression='Y = 7'><Fragment><Caution Title='a'/>"
                     "</Fragment></Condition>"));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(valueOf(L"X"), 0);
    EXPECT_EQ(valueOf(L"Y"), 7);
    EXPECT_THAT(heardTitles(observer), ElementsAre(L"", L"", L"a"));
}

TEST_F(CConditionMtElementTest, AssignmentIsReadByLaterConditions) {
    ASSERT_TRUE(
        loadSequence("<Condition Expression='X = Y'/><Condition Expression='X E 4'>"
                     "<Fragment><Caution Title='a'/></Fragment></Condition>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"", L"", L"a"));
}

TEST_F(CConditionMtElementTest, AssignmentInASkippedPartIsNotMade) {
    ASSERT_TRUE(
        loadSequence("<Condition Expression='0'><Condition Expression='X = 9'/></Condition>"
                     "<Fragment On='uninstall'><Condition Expression='X = 9'/></Fragment>"));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(valueOf(L"X"), 3);
}

// References in its text

TEST_F(CConditionMtElementTest, ReferencesInItAreReplacedWhenItIsMade) {
    ASSERT_TRUE(loadProduct(
        "<InstallExecuteSequence><Condition Expression='S = T'/><Condition Expression='#S'/>"
        "</InstallExecuteSequence>",
        "<Variable Id='S' Type='string' Value='0'/><Variable Id='T' Type='string' "
        "Value='1 E 1'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.updates,
                ElementsAre(Notification{2, L"S = T", L"", 0}, Notification{2, L"1 E 1", L"", 50}));
}

TEST_F(CConditionMtElementTest, CannotBeMadeWithABrokenReference) {
    ASSERT_TRUE(loadSequence("<Condition Expression='X E 1 #'/>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(),
              L"Create Motion Element error:# mismatch.(InstallExecuteSequence,) cann't create "
              L"child element(Condition)");
    EXPECT_THAT(observer.updates, IsEmpty());
}

// Failures

TEST_F(CConditionMtElementTest, ExpressionThatFailsEndsTheRun) {
    struct Row {
        std::string expression;
        std::string message;
    };
    const Row rows[] = {
        {"A E 1", "\"A E 1\" expression error:Reference undefined variable:A"},
        {"X Y",
         "\"X Y\" expression error:Grammar error:The symbol X can't be in front of "
         "operand."},
        {"( X", "\"( X\" expression error: '(' didn't math ')'."},
        {"", "\"\" expression error:Grammar error:The symbol # can't be in front of end."},
        {"OS_BIT = 1",
         "\"OS_BIT = 1\" expression error:It can't assign value to a const "
         "variable."},
        {"Bad E 1", "\"Bad E 1\" expression error:(Variable,Bad) is not int variable."},
        // Asked for its truth only when all has been read.
        {"Bad", "(Variable,Bad) is not int variable."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expression);
        context.unload();
        ASSERT_TRUE(loadSequence(condition(row.expression) + "<Fragment><Caution Title='not'/>"
                                                             "</Fragment>"));
        observer = {};
        observer.answers = {ANSWER_IGNORE};
        const LogFile log;

        EXPECT_EQ(run(), -1);

        const std::wstring expression(row.expression.begin(), row.expression.end());
        EXPECT_THAT(observer.updates, ElementsAre(Notification{2, expression, L"", 0}));
        EXPECT_THAT(observer.failures, IsEmpty());
        EXPECT_EQ(errorMessage(), std::wstring(row.message.begin(), row.message.end()));
        EXPECT_THAT(log.lines(),
                    ElementsAre("[ERROR] Condition expression evaluate error:" + row.message));
    }
}

TEST_F(CConditionMtElementTest, FailureFillsTheErrorRecordAnewAndLeavesTheDecisionAlone) {
    ASSERT_TRUE(loadSequence("<Condition Id='C' Expression='Undefined' Vital='no'/>"));
    const MotionElementPtr element =
        CreateMotionElement(nodeOf(L"Condition").get(), context, nullptr);
    for (const bool before : {true, false}) {
        context.subject().setErrorInfo(7, L"before", 5, L"before", L"before");
        bool descend = before;

        EXPECT_EQ(element->prepare(descend, context), -1);

        EXPECT_EQ(descend, before);
        const ErrorInfo& error = context.subject().errorInfo;
        EXPECT_EQ(error.code, 1u);
        EXPECT_EQ(error.systemError, 0u);
        EXPECT_STREQ(error.text1, L"");
        EXPECT_STREQ(error.text2, L"");
        EXPECT_STREQ(error.message,
                     L"\"Undefined\" expression error:Reference undefined variable:Undefined");
    }
}

TEST_F(CConditionMtElementTest, AssignmentsBeforeAFailureStay) {
    ASSERT_TRUE(loadSequence("<Condition Expression='( X = 8 ) E Undefined'/>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(valueOf(L"X"), 8);
}

TEST_F(CConditionMtElementTest, LongMessageIsCutForTheHostAndWholeInTheLog) {
    const std::string name(400, 'n');
    const std::string message =
        "\"" + name + "\" expression error:Reference undefined variable:" + name;
    ASSERT_TRUE(loadSequence("<Condition Expression='" + name + "'/>"));
    const LogFile log;

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(), std::wstring(message.begin(), message.begin() + 511));
    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] Condition expression evaluate error:" + message));
}

TEST_F(CConditionMtElementTest, ExpressionTooLongToBeToldEndsTheProcess) {
    const std::string longest(511, '1');
    ASSERT_TRUE(loadSequence("<Condition Expression='" + longest + "'/>"));
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(observer.updates.at(0).text1, std::wstring(511, L'1'));
    context.unload();

    ASSERT_TRUE(loadSequence("<Condition Expression='" + longest + "1'/>"));
    EXPECT_EXIT(run(), endedByInvalidParameter(), "");
}

TEST_F(CConditionMtElementTest, FailsWhenItsExpressionWasNeverRead) {
    ASSERT_TRUE(loadSequence(condition("1")));
    CConditionMtElement element(*nodeOf(L"Condition"), context);
    ProbeElement above(*nodeOf(L"Condition"), context);
    above.hold(L"Expression", L"1");
    element.setParent(&above);
    context.getProduct()->observer = &observer;
    bool descend = true;
    const LogFile log;

    EXPECT_EQ(element.prepare(descend, context), -1);

    EXPECT_TRUE(descend);
    EXPECT_EQ(errorMessage(), L"(Condition,C) element can't get the Expression");
    EXPECT_EQ(context.getProduct()->errorInfo.code, 1u);
    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] (Condition,C) element can't get the Expression"));
    EXPECT_THAT(observer.updates, IsEmpty());
}

// Questions about attributes

TEST_F(CConditionMtElementTest, PassesQuestionsOnToWhatStandsAboveIt) {
    ASSERT_TRUE(loadSequence(condition("1")));
    const XmlHandlePtr node = nodeOf(L"Condition");
    ProbeElement above(*node, context);
    above.hold(L"Path", L"above");
    above.hold(L"Expression", L"above");
    above.hold(L"expression", L"small");
    const MotionElementPtr outer = CreateMotionElement(node.get(), context, &above);
    const MotionElementPtr inner = CreateMotionElement(node.get(), context, outer.get());
    const LogFile log;

    EXPECT_EQ(attribute(*inner, L"Path"), L"above");
    EXPECT_EQ(attribute(*inner, L"expression"), L"small");
    EXPECT_EQ(attribute(*inner, L"Expression"), L"1");
    EXPECT_EQ(attribute(*inner, L"Name"), L"<none>");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CConditionMtElementTest, LogsAQuestionThatItHasNobodyToPassTo) {
    ASSERT_TRUE(loadSequence(condition("1")));
    const XmlHandlePtr node = nodeOf(L"Condition");
    const MotionElementPtr outer = CreateMotionElement(node.get(), context, nullptr);
    const MotionElementPtr inner = CreateMotionElement(node.get(), context, outer.get());
    context.subject().setErrorText(L"before");
    const LogFile log;

    EXPECT_EQ(attribute(*inner, L"Path"), L"<none>");
    EXPECT_TRUE(outer->passesOnFilter(context));
    EXPECT_EQ(attribute(*outer, L"Expression"), L"1");

    const std::string line = "[ERROR] (Condition,C) don't know its parent element object.";
    EXPECT_THAT(log.lines(), ElementsAre(line, line));
    EXPECT_EQ(errorMessage(), L"before");
}

TEST_F(CConditionMtElementTest, IsInTheModesOfTheFragmentThatHoldsIt) {
    ASSERT_TRUE(loadSequence("<Fragment Id='C' On='uninstall'>" + condition("1") + "</Fragment>"));
    const MotionElementPtr fragment =
        CreateMotionElement(nodeOf(L"Fragment").get(), context, nullptr);
    const MotionElementPtr outer =
        CreateMotionElement(nodeOf(L"Condition").get(), context, fragment.get());
    const MotionElementPtr inner =
        CreateMotionElement(nodeOf(L"Condition").get(), context, outer.get());
    for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UNINSTALL, RUNMODE_UPGRADE}) {
        context.runMode = mode;
        EXPECT_EQ(outer->passesOnFilter(context), mode == RUNMODE_UNINSTALL) << mode;
        EXPECT_EQ(inner->passesOnFilter(context), mode == RUNMODE_UNINSTALL) << mode;
    }
}

TEST_F(CConditionMtElementTest, LetsItsFilesFindThePathOfTheComponent) {
    const PayloadFolder payload;
    ASSERT_TRUE(loadSequence("<Feature><ComponentRef Id='C'/></Feature>",
                             "<Directory Path='" + narrow(folder.path(L"app")) +
                                 "'><Component Id='C'><Condition Expression='X E 3'><Condition "
                                 "Expression='Y E 4'><File Name='a.txt' Source='" +
                                 narrow(payload.write(L"a.txt", "content")) +
                                 "'/></Condition></Condition></Component></Directory>"));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(readFile(folder.path(L"app\\a.txt")), "content");
}

// The component asks for its path where it is defined, before any walk comes there.
TEST_F(CConditionMtElementTest, AboveAComponentReachedByReferenceItAnswersNoQuestion) {
    ASSERT_TRUE(
        loadSequence("<Feature><ComponentRef Id='C'/></Feature>",
                     "<Directory Path='C:\\a'><Condition Id='C' Expression='0'><Component Id='C'>"
                     "<Condition Expression='1'/></Component></Condition></Directory>"));
    const LogFile log;

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.updates, ElementsAre(Notification{2, L"1", L"", 0}));
    EXPECT_THAT(log.lines(),
                ElementsAre("[ERROR] (Condition,C) don't know its parent element object.",
                            "[INFO] 1 expression value:true"));
}

// Actions in it, which ask it for nothing

struct ContainedAction {
    const char* name;
    const char* attributes;  ///< all that it demands; the first one is missed first
    bool hasOn;
};

void PrintTo(const ContainedAction& action, std::ostream* stream) {
    *stream << action.name;
}

class ActionInConditionTest : public CConditionMtElementTest,
                              public testing::WithParamInterface<ContainedAction> {
protected:
    /// Makes the action in a `Condition` below an element that has all attributes; null with the
    /// reason in `getLastCreateError`.
    MotionElementPtr make(const std::string& attributes) {
        EXPECT_TRUE(loadSequence("<Condition Id='C' Expression='1'><" + name + " Id='A' " +
                                 attributes + "/></Condition>"));
        context.runMode = RUNMODE_INSTALL;
        const XmlHandlePtr node = nodeOf(L"Condition");
        above.emplace(*node, context);
        for (const wchar_t* attribute :
             {L"Path", L"Title", L"DllFile", L"DllEntry", L"Return", L"File", L"ExeCommand",
              L"Show", L"Name", L"Action", L"Wait", L"DestinationName", L"SourceName",
              L"MinVersion", L"On", L"Vital"})
            above->hold(attribute, L"above");
        around = CreateMotionElement(node.get(), context, &*above);
        return CreateMotionElement(getFirstChildElement(node.get()).get(), context, around.get());
    }

    const std::string name = GetParam().name;
    const std::string attributes = GetParam().attributes;
    std::optional<ProbeElement> above;
    MotionElementPtr around;
};

INSTANTIATE_TEST_SUITE_P(
    Actions, ActionInConditionTest,
    testing::Values(ContainedAction{"RemoveDirectory", "Path='own'", true},
                    ContainedAction{"Caution", "Title='own'", true},
                    ContainedAction{"CustomAction", "DllFile='own' DllEntry='own' Return='own'",
                                    true},
                    ContainedAction{"ShellExcute", "File='own' Return='own'", true},
                    ContainedAction{"ServiceControl", "Name='own' Action='own' Wait='own'", true},
                    ContainedAction{"CopyFile", "DestinationName='own' SourceName='own'", false},
                    ContainedAction{"FileSearch", "Name='own' Path='own' Expression='own'", false}),
    [](const auto& action) { return action.param.name; });

TEST_P(ActionInConditionTest, IsNotMadeOfAttributesAboveIt) {
    EXPECT_EQ(make(""), nullptr);

    EXPECT_EQ(narrow(getLastCreateError()),
              "Create Motion Element error:(" + name + ",A) cant get the require explicit " +
                  attributes.substr(0, attributes.find('=')) + "attribute.");
}

TEST_P(ActionInConditionTest, HasNeitherModeNorVitalNorTextsOfWhatIsAbove) {
    const MotionElementPtr action = make(attributes);

    ASSERT_NE(action, nullptr);
    EXPECT_EQ(action->getParent(), around.get());
    EXPECT_TRUE(action->passesOnFilter(context));
    EXPECT_TRUE(action->isVital(context));
    for (const wchar_t* text : {L"Title", L"ExeCommand", L"Show", L"MinVersion"})
        EXPECT_NE(attribute(*action, text), L"above") << narrow(text);
}

TEST_P(ActionInConditionTest, IsLimitedByItsOwnOnWhereItHasOne) {
    const MotionElementPtr action = make(attributes + " On='upgrade'");

    EXPECT_EQ(action->passesOnFilter(context), !GetParam().hasOn);
    context.runMode = RUNMODE_UPGRADE;
    EXPECT_TRUE(action->passesOnFilter(context));
}

TEST_F(CConditionMtElementTest, ActionsInItRunInTheirOwnModesWithTheirShareOfTheProgress) {
    const std::string service =
        "<ServiceControl Name='temz-test-absent' Action='remove' Wait='no' ";
    const std::string directory = "<RemoveDirectory Path='" + narrow(folder.path(L"absent")) + "' ";
    ASSERT_TRUE(
        loadSequence("<Fragment/><Condition Expression='1'>" + directory + "/>" + directory +
                     "On='uninstall'/><Caution Title='a'/><Caution Title='b' On='uninstall'/>" +
                     service + "/>" + service +
                     "On='uninstall'/><ShellExcute File='' Return='r' Vital='no'/>"
                     "<ShellExcute File='' Return='r' On='uninstall'/>"
                     "<CustomAction DllFile='f' DllEntry='e' Return='r' On='uninstall'/>"
                     "<CustomAction DllFile='f' DllEntry='e' Return='r' Vital='no'/></Condition>"));

    EXPECT_EQ(run(), -1);

    EXPECT_THAT(
        observer.updates,
        ElementsAre(Notification{2, L"1", L"", 50},
                    Notification{15, folder.path(L"absent"), L"", 50},
                    Notification{16, L"", L"a", 60}, Notification{7, L"temz-test-absent", L"", 70},
                    Notification{11, L"", L"", 80}, Notification{10, L"e", L"", 95}));
    ASSERT_EQ(observer.failures.size(), 1u) << "the custom action alone, whatever its Vital says";
    EXPECT_STREQ(observer.failures[0].message, L"Can't get application directory.");
}

}  // namespace
