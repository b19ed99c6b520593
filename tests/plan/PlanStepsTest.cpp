#include "plan/PlanSteps.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <utility>

#include "engine/CContext.h"
#include "logging/CSubject.h"
#include "logging/IterfaceObserver.h"
#include "plan/Rehearsal.h"
#include "support/TestFolder.h"
#include "support/Text.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A step on a line: what it is, at which depth and of which element, and all that it has.
std::wstring lineOf(const PlanStep& step) {
    constexpr const wchar_t* kinds[] = {L"group",  L"element", L"condition", L"search",
                                        L"action", L"change",  L"failure",   L"left out"};
    constexpr const wchar_t* fates[] = {L"vital", L"not vital", L"ends"};
    std::wstring text = kinds[static_cast<size_t>(step.kind)];
    text += L" " + std::to_wstring(step.depth) + L" " + step.element;
    if (!step.id.empty())
        text += L"#" + step.id;
    for (const std::wstring& part : {step.object, step.detail, step.after, step.message})
        if (!part.empty())
            text += L"; " + part;
    if (step.kind == StepKind::condition || step.kind == StepKind::search)
        text += step.holds ? L"; yes" : L"; no";
    if (step.kind == StepKind::failure)
        text += std::wstring(L"; ") + fates[static_cast<size_t>(step.fate)];
    if (step.leftOut.elements > 0)
        text += L"; without " + std::to_wstring(step.leftOut.elements) + L", files " +
                std::to_wstring(step.leftOut.files);
    return text;
}

class NotedSteps final : public StepListener {
public:
    void step(const PlanStep& step) override {
        steps.push_back(step);
        lines.push_back(lineOf(step));
    }
    bool wantsSteps() const override { return wanted; }

    std::vector<PlanStep> steps;
    std::vector<std::wstring> lines;
    bool wanted = true;
};

/// What a plan's observer does: it goes on past each failure.
class Observer final : public IterfaceObserver {
public:
    explicit Observer(PlanSteps& steps) : steps(steps) {}
    void update(IterfaceProduct*) override { steps.announced(); }
    ObserverAnswer askOnError(ErrorInfo*) override {
        steps.failed();
        return ANSWER_IGNORE;
    }

private:
    PlanSteps& steps;
};

/// Counts the lines that the engine would write to its log.
class LineCounter {
public:
    template <auto& table, auto member, class Result, class... Arguments>
    Result around(const char*, Result (*real)(Arguments...),
                  std::type_identity_t<Arguments>... arguments) {
        count += isCall<member>(&LogCalls::WriteLine);
        return real(arguments...);
    }

    int count = 0;
};

class PlanStepsTest : public testing::Test {
protected:
    /// The steps of the installation by a script with this sequence, and these definitions in its
    /// product. Variables are S = "a", EMPTY = "" and N = 7.
    std::vector<std::wstring> plan(const std::string& sequence,
                                   const std::string& definitions = {}) {
        load(sequence, definitions);
        PlanSteps steps(context, noted);
        Observer observer(steps);
        context.runMode = RUNMODE_INSTALL;
        context.getProduct()->observer = &observer;
        Rehearsal rehearsal(steps);
        const CallWrapper<Rehearsal> rehearsed(rehearsal);
        const CallWrapper<LineCounter> counted(counter);
        const CallWrapper<PlanSteps> followed(steps);
        try {
            if (context.getProduct()->run(&context) != 0)
                steps.ended();
        } catch (const std::wstring&) {
            steps.ended();
        }
        context.unload();
        return noted.lines;
    }

    void load(const std::string& sequence, const std::string& definitions) {
        const std::string xml =
            "<Script><Variable Id='S' Type='string' Value='a'/>"
            "<Variable Id='EMPTY' Type='string' Value=''/><Variable Id='N' Type='int' Value='7'/>"
            "<Product>" +
            definitions + "<InstallExecuteSequence>\n" + sequence +
            "</InstallExecuteSequence></Product></Script>";
        ASSERT_TRUE(context.load(folder.write(L"script.xml", xml).c_str()));
    }

    const TestFolder folder;
    CContext context;
    NotedSteps noted;
    LineCounter counter;
};

/// A definition of the component "C", in a directory that isn't there.
std::string product(const std::string& content, const std::string& attributes = {}) {
    return "<Directory Path='C:\\temz-none'><Component Id='C' " + attributes + ">" + content +
           "</Component></Directory>";
}

constexpr char caution[] = "<Caution Title='t'/>";

TEST_F(PlanStepsTest, TellWhatIsReachedWithItsPlace) {
    EXPECT_THAT(plan("<Feature Id='Main'>\n<Component Id='C'>\n<Caution Title='t'/></Component>"
                     "</Feature><Fragment/>"),
                ElementsAre(L"group 0 Feature#Main", L"group 1 Component#C", L"element 2 Caution",
                            L"action 2 Caution; t", L"group 0 Fragment"));
    EXPECT_EQ(noted.steps[0].line, 2u);
    EXPECT_EQ(noted.steps[1].line, 3u);
    EXPECT_EQ(noted.steps[2].line, 4u);
    EXPECT_EQ(noted.steps[3].line, 4u);
}

TEST_F(PlanStepsTest, TellDefinitionsWhereTheyAreReferredTo) {
    EXPECT_THAT(plan("<Fragment><FragmentRef Id='F'/></Fragment>",
                     "\n<Fragment Id='F'>" + std::string(caution) + "</Fragment>"),
                ElementsAre(L"group 0 Fragment", L"group 1 Fragment#F", L"element 2 Caution",
                            L"action 2 Caution; t"));
    EXPECT_EQ(noted.steps[1].line, 2u);
}

TEST_F(PlanStepsTest, TellAChangeWithAllThatIsKnown) {
    PlanSteps steps(context, noted);

    steps.planned(
        {ChangeKind::keyAdded, L"object", L"source", L"before", L"after", 12, 3, true, true});

    ASSERT_THAT(noted.lines, ElementsAre(L"change 0 ; object; source; after"));
    const PlanStep& step = noted.steps[0];
    EXPECT_EQ(step.change, ChangeKind::keyAdded);
    EXPECT_EQ(step.before, L"before");
    EXPECT_EQ(step.bytes, 12u);
    EXPECT_EQ(step.bytesBefore, 3u);
    EXPECT_TRUE(step.sameContent);
    EXPECT_TRUE(step.unforeseeable);
}

TEST_F(PlanStepsTest, TellChangesAtTheElementThatMakesThem) {
    EXPECT_THAT(plan("<Condition Expression='1'><RegistryKey Action='create' "
                     "Root='HKEY_CURRENT_USER' Key='Software\\TemzPlanSteps'/></Condition>"),
                ElementsAre(L"action 0 Condition; 1", L"condition 0 Condition; 1; yes",
                            L"element 1 RegistryKey",
                            L"action 1 RegistryKey; HKEY_CURRENT_USER\\Software\\TemzPlanSteps",
                            L"change 1 RegistryKey; HKEY_CURRENT_USER\\Software\\TemzPlanSteps"));
}

TEST_F(PlanStepsTest, TellConditionsWithWhatDecidedThem) {
    const struct {
        const char* expression;
        const wchar_t* told;
    } rows[] = {
        {"1", L"1; yes"},
        {"0", L"0; no"},
        {"N E 7", L"N E 7; N = 7; yes"},
        {"(N E 8) OR (7 E N)", L"(N E 8) OR (7 E N); N = 7; yes"},
        {"S E EMPTY", L"S E EMPTY; S = \"a\", EMPTY = \"\"; no"},
        {"N = 8", L"N = 8; N = 7; yes"},
        {"( S E S ) AND ( N L 3 )", L"( S E S ) AND ( N L 3 ); S = \"a\", N = 7; no"},
    };
    for (const auto& [expression, told] : rows) {
        noted.lines.clear();
        plan("<Condition Expression='" + std::string(expression) + "'/>");
        ASSERT_EQ(noted.lines.size(), 2u) << expression;
        EXPECT_EQ(noted.lines[1], L"condition 0 Condition; " + std::wstring(told));
    }
}

TEST_F(PlanStepsTest, CountWhatAFalseConditionLeavesOut) {
    const struct {
        const char* beneath;
        LeftOut count;
    } rows[] = {
        {"", {0, 0}},
        {"<Fragment/>", {1, 0}},
        {"<Fragment><Caution Title='t'/></Fragment><Fragment/>", {3, 0}},
        {"<Feature><ComponentRef Id='C'/></Feature>", {4, 2}},
        // Once, however often it is referred to.
        {"<Feature><ComponentRef Id='C'/><ComponentRef Id='C'/></Feature>", {7, 4}},
        {"<Feature><ComponentRef Id='none'/></Feature>", {2, 0}},
        {"<Feature><ComponentRef/></Feature>", {2, 0}},
        {"<FragmentRef Id='Circle'/>", {2, 0}},
    };
    for (const auto& [beneath, count] : rows) {
        noted = {};
        plan("<Condition Expression='0'>" + std::string(beneath) + "</Condition>",
             "<Component Id='C'><File Name='a' Source='a'/><File Name='b' Source='b'/></Component>"
             "<Fragment Id='Circle'><FragmentRef Id='Circle'/></Fragment>");
        ASSERT_EQ(noted.steps.size(), 2u) << beneath;
        EXPECT_EQ(noted.steps[1].leftOut.elements, count.elements) << beneath;
        EXPECT_EQ(noted.steps[1].leftOut.files, count.files) << beneath;
    }
    noted = {};
    plan("<Condition Expression='1'>" + std::string("<Fragment/>") + "</Condition>");
    EXPECT_EQ(noted.steps[1].leftOut.elements, 0u);
}

TEST_F(PlanStepsTest, TellWhatTheModeLeavesOut) {
    EXPECT_THAT(
        plan("<Fragment On='uninstall' Id='U'>" + std::string(caution) +
                 "</Fragment><Feature><ComponentRef Id='C'/></Feature><Fragment On='install'/>",
             product("<File Name='a' Source='a'/>", "On='upgrade'")),
        ElementsAre(L"left out 0 Fragment#U; uninstall; without 2, files 0", L"group 0 Feature",
                    L"left out 1 Component#C; upgrade; without 2, files 1", L"group 0 Fragment"));
}

TEST_F(PlanStepsTest, AskForTheModeWithoutALineInTheLog) {
    EXPECT_THAT(plan("<Fragment On='never'/>"),
                ElementsAre(L"left out 0 Fragment; never; without 1, files 0"));
    const int lines = std::exchange(counter.count, 0);
    plan("<Fragment/>");
    EXPECT_EQ(lines - counter.count, 1);
}

TEST_F(PlanStepsTest, TellSearchesWithTheVariablesThatTheyHaveSet) {
    const std::string path = narrow(folder.path(L""));
    const std::wstring file = L"; " + folder.path(L"script.xml");
    const auto search = [&](const std::string& attributes) {
        noted.lines.clear();
        plan("<Fragment><FileSearch Path='" + path + "' " + attributes + "/></Fragment>");
        EXPECT_EQ(noted.lines.size(), 2u) << attributes;
        return noted.lines.back();
    };
    EXPECT_EQ(search("Name='script.xml' Expression='N = 8'"),
              L"search 1 FileSearch" + file + L"; N = 8; yes");
    EXPECT_EQ(search("Name='none' Expression='N = 8'"),
              L"search 1 FileSearch; " + folder.path(L"none") + L"; no");
    EXPECT_EQ(search("Name='script.xml' MinVersion='9.0' Expression='N = 8'"),
              L"search 1 FileSearch" + file + L"; 9.0; no");
}

std::string startService(const std::string& attributes) {
    return "<ServiceControl Name='temz-none' Action='start' Wait='no' " + attributes + "/>";
}

TEST_F(PlanStepsTest, TellWhatAFailureMeansForARun) {
    const std::vector<std::wstring> lines = plan(
        "<Fragment>" + startService("") + startService("Vital='no'") + caution + "</Fragment>");

    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines[1], L"element 1 ServiceControl");
    EXPECT_EQ(lines[2], L"action 1 ServiceControl; temz-none");
    EXPECT_TRUE(lines[3].starts_with(L"failure 1 ServiceControl; temz-none;")) << lines[3];
    EXPECT_TRUE(lines[3].ends_with(L"; vital")) << lines[3];
    EXPECT_TRUE(lines[6].ends_with(L"; not vital")) << lines[6];
    EXPECT_EQ(noted.steps[6].code, noted.steps[3].code);
    EXPECT_EQ(lines[8], L"action 1 Caution; t");
}

TEST_F(PlanStepsTest, TellAFailureAsTheRecordHasIt) {
    plan("<Feature><ComponentRef Id='C'/></Feature>", product("<File Name='a' Source='none\\a'/>"));

    const PlanStep& failure = noted.steps.back();
    EXPECT_EQ(failure.kind, StepKind::failure);
    EXPECT_EQ(failure.element, L"File");
    EXPECT_EQ(failure.code, noted.steps[noted.steps.size() - 2].code);
    EXPECT_EQ(failure.object, L"a");
    EXPECT_EQ(failure.systemError, static_cast<uint32_t>(ERROR_PATH_NOT_FOUND));
    EXPECT_NE(failure.message, L"");
}

TEST_F(PlanStepsTest, TellTheEndOfARunOnceAndWhereItComes) {
    const struct {
        const char* sequence;
        const wchar_t* element;  // and its depth
        const wchar_t* message;  // a part
    } rows[] = {
        {"<Fragment><Condition Expression='NONE E 1'/></Fragment>", L"1 Condition", L"NONE"},
        {"<Fragment><Condition Expression='1'><Fragment><Condition Expression='S E 1'/></Fragment>"
         "</Condition></Fragment>",
         L"3 Condition", L"different type"},
        {"<Fragment><Nonsense/></Fragment>", L"0 Fragment", L"Nonsense"},
        {"<Nonsense/>", L"0 InstallExecuteSequence", L"Nonsense"},
    };
    for (const auto& [sequence, element, message] : rows) {
        noted = {};
        plan(sequence);
        const auto ends = std::count_if(noted.steps.begin(), noted.steps.end(),
                                        [](const auto& s) { return s.kind == StepKind::failure; });
        EXPECT_EQ(ends, 1) << sequence;
        const PlanStep& last = noted.steps.back();
        EXPECT_TRUE(noted.lines.back().starts_with(std::wstring(L"failure ") + element))
            << noted.lines.back();
        EXPECT_EQ(last.fate, FailureFate::endsRun);
        EXPECT_NE(last.message.find(message), std::wstring::npos) << noted.lines.back();
    }
}

TEST_F(PlanStepsTest, TellTheEndOfARunThatNoElementHasTold) {
    EXPECT_THAT(plan(""), IsEmpty());
    load("", "");
    PlanSteps steps(context, noted);
    steps.ended();
    steps.ended();
    EXPECT_THAT(noted.lines, ElementsAre(L"failure 0 ; ends"));
}

TEST_F(PlanStepsTest, LookIntoFilesOnlyForWhoWantsSteps) {
    const PlanSteps steps(context, noted);
    EXPECT_TRUE(steps.wantsContents());
    noted.wanted = false;
    EXPECT_FALSE(steps.wantsContents());
}

}  // namespace
