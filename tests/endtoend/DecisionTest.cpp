// Scripts that decide in the run what is done: by conditions, by assignments and by searches.

#include <gmock/gmock.h>

#include "support/HostTest.h"
#include "support/LogFile.h"
#include "support/Requirements.h"
#include "support/VersionedFile.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Notification = RecordingObserver::Notification;

namespace {

class DecisionTest : public HostTest {
protected:
    /// Loads a script with variables whose product holds one directory, app(), and the sequence.
    bool loadScript(const std::string& variables, const std::string& components,
                    const std::string& sequence) {
        return load("<Script>" + variables + "<Product><Directory Path='" + narrow(app()) + "'>" +
                    components + "</Directory><InstallExecuteSequence>" + sequence +
                    "</InstallExecuteSequence></Product></Script>");
    }

    /// Loads a script whose one component holds the elements.
    bool loadComponent(const std::string& variables, const std::string& elements) {
        return loadScript(variables, "<Component Id='C'>" + elements + "</Component>",
                          "<Feature><ComponentRef Id='C'/></Feature>");
    }

    static std::string integer(const std::string& id, int value) {
        return "<Variable Id='" + id + "' Type='int' Value='" + std::to_string(value) + "'/>";
    }
    static std::string text(const std::string& id, const std::string& value) {
        return "<Variable Id='" + id + "' Type='string' Value='" + value + "'/>";
    }

    static std::string when(const std::string& expression, const std::string& elements) {
        return "<Condition Expression='" + expression + "'>" + elements + "</Condition>";
    }

    /// A `File` that installs its own name as its content.
    std::string file(const std::wstring& name) const { return HostTest::file(name, narrow(name)); }

    std::vector<std::wstring> installedNames() const {
        std::vector<std::wstring> names;
        for (const auto& [name, content] : installedFiles())
            names.push_back(name);
        return names;
    }
};

TEST_F(DecisionTest, NestedConditionsChooseFiles) {
    ASSERT_TRUE(
        loadComponent(integer("A", 1) + integer("B", 0),
                      when("A", file(L"a") + when("B", file(L"ab") + when("A", file(L"aba"))) +
                                    when("! B", file(L"anb"))) +
                          when("B", file(L"b") + when("A", file(L"ba"))) + file(L"c")));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(installedNames(), ElementsAre(L"a", L"anb", L"c"));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(installedNames(), IsEmpty());
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(DecisionTest, ConditionsChooseAmongReferences) {
    ASSERT_TRUE(loadScript(integer("Full", 1),
                           "<Component Id='A'>" + file(L"a") + "</Component><Component Id='B'>" +
                               file(L"b") + "</Component><Component Id='C'>" + file(L"c") +
                               "</Component><Feature Id='F'><ComponentRef Id='C'/></Feature>" +
                               "<Fragment Id='G'><Caution Title='full'/></Fragment>",
                           "<Feature>" + when("Full", "<ComponentRef Id='A'/>") +
                               when("! Full", "<ComponentRef Id='B'/>") + "</Feature>" +
                               when("Full E 1", "<FeatureRef Id='F'/><FragmentRef Id='G'/>")));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_THAT(installedNames(), ElementsAre(L"a", L"c"));
    EXPECT_THAT(observer.updates, ElementsAre(Notification{ACTION_CONDITION, L"Full", L"", 0},
                                              Notification{ACTION_COPY_FILE, L"a", L"", 0},
                                              Notification{ACTION_CONDITION, L"! Full", L"", 25},
                                              Notification{ACTION_CONDITION, L"Full E 1", L"", 50},
                                              Notification{ACTION_COPY_FILE, L"c", L"", 50},
                                              Notification{ACTION_CAUTION, L"", L"full", 75}));
}

TEST_F(DecisionTest, ConditionAboveADefinitionCutsItOffFromItsDirectory) {
    ASSERT_TRUE(loadScript({}, when("1", "<Component Id='C'>" + file(L"a") + "</Component>"),
                           "<Feature><ComponentRef Id='C'/></Feature>"));
    const LogFile log;

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    EXPECT_THAT(installedNames(), IsEmpty());
    EXPECT_STREQ(product().errorInfo.message,
                 L"Create Motion Element error:(File,) can't get Path attribute from  parent "
                 L"element.(Component,C) cann't create child element(File)");
    EXPECT_THAT(log.lines(),
                ElementsAre("[ERROR] (Condition,) don't know its parent element object."));
}

TEST_F(DecisionTest, AssignmentsChooseWhatFollows) {
    ASSERT_TRUE(loadComponent(
        integer("Step", 1) + integer("Next", 2) + text("Kind", "") + text("Chosen", "full"),
        when("Step = Next", file(L"a")) + when("Step E 2", file(L"b")) +
            when("Step = 0", file(L"c")) + when("! Step AND Next E 2", file(L"d")) +
            when("Kind = Chosen", "") + when("Kind E Chosen", file(L"e"))));
    std::wstring kind;

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_THAT(installedNames(), ElementsAre(L"a", L"b", L"d", L"e"));
    EXPECT_TRUE(context->getVariable(kind, L"Kind"));
    EXPECT_EQ(kind, L"full");
}

TEST_F(DecisionTest, FailingConditionEndsTheRunWithoutAQuestion) {
    ASSERT_TRUE(loadComponent({}, file(L"a") + when("Missing E 1", file(L"b")) + file(L"c")));
    observer.answers = {ANSWER_IGNORE};
    const LogFile log;

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    EXPECT_THAT(installedNames(), ElementsAre(L"a"));
    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_EQ(observer.updates.back(), (Notification{ACTION_CONDITION, L"Missing E 1", L"", 33}));
    EXPECT_EQ(product().errorInfo.code, 1u);
    EXPECT_STREQ(product().errorInfo.message,
                 L"\"Missing E 1\" expression error:Reference undefined variable:Missing");
    EXPECT_THAT(log.lines(),
                ElementsAre("[ERROR] Condition expression evaluate error:\"Missing E 1\" "
                            "expression error:Reference undefined variable:Missing"));
}

TEST_F(DecisionTest, FailingSearchIsPutToTheHost) {
    ASSERT_TRUE(loadComponent({}, file(L"a") + "<FileSearch Name='a' Path='" + narrow(app()) +
                                      "' Expression='Missing = 1'/>" + file(L"b")));

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);
    EXPECT_THAT(installedNames(), ElementsAre(L"a"));
    ASSERT_EQ(observer.failures.size(), 1u);
    EXPECT_STREQ(observer.failures[0].message,
                 L"\"Missing = 1\" expression error:Reference undefined variable:Missing");

    observer.answers = {ANSWER_IGNORE};
    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(installedNames(), ElementsAre(L"a", L"b"));
}

TEST_F(DecisionTest, VersionOfAFileDecidesWhetherItIsReplaced) {
    struct Row {
        const wchar_t* version;
        bool replaced;
    };
    const Row rows[] = {{L"1.2.0.0", true}, {L"1.10.0.0", false}, {L"32768.3.32769.4", false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.version));
        context->unload();
        folder.makeDirectory(L"app");
        placeVersionedFile(app(L"a.dll"), row.version);
        ASSERT_TRUE(
            loadComponent(integer("Recent", 0), "<FileSearch Name='a.dll' Path='" + narrow(app()) +
                                                    "' MinVersion='1.9' Expression='Recent = 1'/>" +
                                                    when("! Recent", file(L"a.dll"))));

        EXPECT_EQ(run(RUNMODE_INSTALL), 0);

        EXPECT_EQ(readFile(app(L"a.dll")) == "a.dll", row.replaced);
    }
}

TEST_F(DecisionTest, SearchesTellWhatIsThereAndWhatIsNot) {
    folder.write(L"app\\sub\\old.txt", "");
    const auto search = [this](const std::string& name, const std::string& variable) {
        return "<FileSearch Name='" + name + "' Path='" + narrow(app()) + "' Expression='" +
               variable + " = 1'/>";
    };
    ASSERT_TRUE(
        loadComponent(integer("Directory", 0) + integer("Pattern", 0) + integer("Absent", 0),
                      search("sub", "Directory") + search("sub\\*.txt", "Pattern") +
                          search("sub\\*.dll", "Absent") +
                          when("Directory AND Pattern AND ( Absent E 0 )", file(L"a"))));
    const LogFile log;

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_TRUE(exists(app(L"a")));
    EXPECT_THAT(log.lines(),
                ElementsAre("[INFO] Directory AND Pattern AND ( Absent E 0 ) expression "
                            "value:true"));
}

TEST_F(DecisionTest, VariableKeepsItsValueUntilTheScriptIsUnloaded) {
    const auto loadCounting = [this] {
        return loadComponent(integer("Runs", 0),
                             when("Runs E 2", file(L"third")) +
                                 when("Runs E 1", when("Runs = 2", file(L"second"))) +
                                 when("Runs E 0", when("Runs = 1", file(L"first"))));
    };
    ASSERT_TRUE(loadCounting());

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(installedNames(), ElementsAre(L"first"));
    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(installedNames(), ElementsAre(L"first", L"second"));
    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(installedNames(), ElementsAre(L"first", L"second", L"third"));

    context->unload();
    ASSERT_TRUE(loadCounting());
    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(installedNames(), ElementsAre(L"second", L"third"));
}

TEST_F(DecisionTest, SystemDecidesByItsBuiltInVariables) {
    ASSERT_TRUE(loadComponent(
        // Can't be reached: the built-in one comes first.
        integer("OS_BIT", 16),
        when("OS_BIT E 64", file(L"64")) + when("OS_BIT E 32", file(L"32")) +
            when("OS_BIT E 16", file(L"16")) +
            when("OS_MAJOR_VERSION G 6 OR OS_MAJOR_VERSION E 6 AND OS_MINOR_VERSION GE 1",
                 file(L"modern"))));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_THAT(installedNames(), ElementsAre(L"64", L"modern"));
}

TEST_F(DecisionTest, BuiltInVariableCannotBeAssigned) {
    ASSERT_TRUE(loadComponent({}, when("OS_BIT = 32", file(L"a"))));

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);

    EXPECT_STREQ(product().errorInfo.message,
                 L"\"OS_BIT = 32\" expression error:It can't assign value to a const variable.");
}

TEST_F(DecisionTest, ServesNamesAndTextsOfTheCodePage) {
    REQUIRES_CODE_PAGE(1252, 932, 936, 65001);
    const std::wstring name = L"\u00B0.dll";
    folder.makeDirectory(L"app");
    placeVersionedFile(app(name), L"1.2.0.0");
    const std::string id = narrow(L"\u00D7");
    ASSERT_TRUE(loadComponent(
        integer(id, 0) + text("Low", narrow(L"\u00B0")) + text("High", narrow(L"\u00D7")),
        "<FileSearch Name='" + narrow(name) + "' Path='" + narrow(app()) +
            "' MinVersion='1' Expression='" + id + " = 1'/>" +
            when(id + " AND ( Low L High )", file(L"a"))));
    const LogFile log;

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_TRUE(exists(app(L"a")));
    EXPECT_EQ(observer.updates.at(0).text1, L"\u00D7 AND ( Low L High )");
    EXPECT_EQ(log.lines().at(2), "[INFO] " + id + " AND ( Low L High ) expression value:true");
}

TEST_F(DecisionTest, CopyFileIsCarriedAndDoesNothing) {
    folder.write(L"app\\a.txt", "content");
    ASSERT_TRUE(loadComponent({}, "<CopyFile SourceName='" + narrow(app(L"a.txt")) +
                                      "' DestinationName='" + narrow(app(L"b.txt")) +
                                      "'/><CopyFile SourceName='absent' DestinationName=''/>"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "content")));
    EXPECT_THAT(observer.updates, IsEmpty());
}

}  // namespace
