#include "motion/CFileSearchMtElement.h"

#include <gmock/gmock.h>

#include "elements/ElementFactory.h"
#include "engine/CContext.h"
#include "support/AllowedChildren.h"
#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/ScriptTest.h"
#include "support/Text.h"
#include "support/Thrown.h"
#include "support/VersionedFile.h"
#include "system/FileCalls.h"
#include "system/VersionCalls.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::StrEq;
using Notification = RecordingObserver::Notification;

namespace {

/// Runs scripts that search in the test's folder. A search that succeeds sets the variable "Found"
/// to 1 when its expression is `assign`.
class CFileSearchMtElementTest : public ScriptTest {
protected:
    static inline const std::string assign = "Found = 1";

    /// A `FileSearch` with the id "S".
    std::string search(const std::string& name, const std::string& expression,
                       const std::string& attributes = {}) const {
        return "<FileSearch Id='S' Name='" + name + "' Path='" + narrow(folder.path()) +
               "' Expression='" + expression + "' " + attributes + "/>";
    }

    bool loadFragment(const std::string& children) {
        return loadProduct("<InstallExecuteSequence><Fragment Id='F'>" + children +
                               "</Fragment></InstallExecuteSequence>",
                           "<Variable Id='Found' Type='int' Value='0'/>"
                           "<Variable Id='Wanted' Type='string' Value='1.2'/>"
                           "<Variable Id='Bad' Type='int' Value='many'/>");
    }

    /// Whether a run of this element alone evaluates `assign`.
    bool evaluates(const std::string& element) {
        context.unload();
        EXPECT_TRUE(loadFragment(element));
        EXPECT_EQ(run(), 0);
        return found();
    }

    bool found() const { return context.findVariable(L"Found")->getInt() == 1; }
};

// What it finds

TEST_F(CFileSearchMtElementTest, EvaluatesItsExpressionWhenTheFileIsThere) {
    folder.write(L"a.txt", "");
    ASSERT_TRUE(loadFragment(search("a.txt", assign)));
    const LogFile log;

    EXPECT_EQ(run(), 0);

    EXPECT_TRUE(found());
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CFileSearchMtElementTest, DoesNothingWhenTheFileIsNotThere) {
    ASSERT_TRUE(loadFragment(search("a.txt", assign, "MinVersion='1'")));
    const LogFile log;

    EXPECT_EQ(run(), 0);

    EXPECT_FALSE(found());
    EXPECT_EQ(errorMessage(), L"");
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CFileSearchMtElementTest, NameMayBeADirectoryAPatternOrAPath) {
    folder.write(L"sub\\a.dll", "");

    EXPECT_TRUE(evaluates(search("sub", assign)));
    EXPECT_TRUE(evaluates(search("s*", assign)));
    EXPECT_TRUE(evaluates(search("sub\\?.dll", assign)));
    EXPECT_TRUE(evaluates(search("sub/a.dll", assign)));
    EXPECT_FALSE(evaluates(search("*.dll", assign)));
    EXPECT_FALSE(evaluates(search("sub\\*.exe", assign)));
    EXPECT_FALSE(evaluates(search("absent\\*", assign)));
}

TEST_F(CFileSearchMtElementTest, JoinsPathAndNameByOneSeparator) {
    std::vector<std::wstring> searched;
    const FakeCall<fileCalls, &FileCalls::FindFirstFileW> find(
        [&](const wchar_t* path, WIN32_FIND_DATAW*) {
            searched.push_back(path);
            SetLastError(ERROR_SUCCESS);
            return INVALID_HANDLE_VALUE;
        });
    for (const std::string path : {"C:\\d", "C:\\d\\", "C:/d/", ""}) {
        context.unload();
        ASSERT_TRUE(loadFragment("<FileSearch Name='a.txt' Path='" + path + "' Expression='1'/>"));
        EXPECT_EQ(run(), 0);
    }

    EXPECT_THAT(searched, ElementsAre(L"C:\\d\\a.txt", L"C:\\d\\a.txt", L"C:/d/a.txt", L"a.txt"));
}

TEST_F(CFileSearchMtElementTest, EndsTheSearchBeforeItReadsTheVersion) {
    placeVersionedFile(folder.path(L"a.dll"), L"1.2.0.0");
    const FakeCall<fileCalls, &FileCalls::FindClose> close(
        [&](HANDLE handle) { return close.real(handle); });
    const FakeCall<versionCalls, &VersionCalls::GetFileVersionInfoSizeW> size(
        [&](const wchar_t* path, DWORD* handle) {
            EXPECT_EQ(close.count, 1);
            return size.real(path, handle);
        });

    EXPECT_TRUE(evaluates(search("a.dll", assign, "MinVersion='1'")));

    EXPECT_EQ(size.count, 1);
    EXPECT_EQ(close.count, 1);
}

// The version that it may ask for

TEST_F(CFileSearchMtElementTest, VersionHasToBeHighEnough) {
    struct Row {
        const wchar_t* version;
        const char* minVersion;
        bool satisfied;
    };
    const Row rows[] = {
        {L"1.2.0.0", "1.2", true},
        {L"1.2.0.0", "1.2.0.0.9", true},
        {L"1.2.0.0", "1.2.0.1", false},
        {L"1.2.0.0", "1.3", false},
        {L"1.2.0.0", "2", false},
        {L"1.2.0.0", "abc", true},
        {L"1.2.0.0", "-1", false},
        {L"1.2.0.0", "#Wanted", true},
        {L"1.10.0.0", "1.9", true},
        {L"1.10.0.0", "1.11", false},
        {L"32768.3.32769.4", "32767.9", true},
        {L"32768.3.32769.4", "32768.3.32769.4", true},
        {L"32768.3.32769.4", "32768.3.32769.5", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.minVersion);
        placeVersionedFile(folder.path(L"a.dll"), row.version);

        EXPECT_EQ(
            evaluates(search("a.dll", assign, "MinVersion='" + std::string(row.minVersion) + "'")),
            row.satisfied);
    }
}

TEST_F(CFileSearchMtElementTest, LogsWhetherTheVersionIsHighEnough) {
    placeVersionedFile(folder.path(L"a.dll"), L"1.2.0.0");
    ASSERT_TRUE(loadFragment(search("a.dll", assign, "MinVersion='1.2'") +
                             search("a.dll", assign, "MinVersion='1.3'")));
    const LogFile log;

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(log.lines(), ElementsAre("[INFO] File Version MS:65538 LS:0",
                                         "[INFO] Satisfy min version required.",
                                         "[INFO] File Version MS:65538 LS:0",
                                         "[INFO] Can't satisfy min version required."));
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CFileSearchMtElementTest, WhatHasNoVersionSatisfiesNone) {
    folder.write(L"a.txt", "");
    folder.makeDirectory(L"sub");
    placeVersionedFile(folder.path(L"a.dll"), L"1.2.0.0");
    for (const std::string name : {"a.txt", "sub", "*.dll"}) {
        SCOPED_TRACE(name);
        const LogFile log;

        EXPECT_FALSE(evaluates(search(name, assign, "MinVersion='0'")));
        EXPECT_FALSE(evaluates(search(name, assign, "MinVersion='abc'")));

        const std::string unread = "[WARNNING] Failed to GetFileVersionInfoSize";
        const std::string refused = "[INFO] Can't satisfy min version required.";
        EXPECT_THAT(log.lines(), ElementsAre(unread, refused, unread, refused));
    }
}

TEST_F(CFileSearchMtElementTest, ReadsNoVersionWhenNoneIsAskedFor) {
    folder.write(L"a.txt", "");
    const LogFile log;
    const FakeCall<versionCalls, &VersionCalls::GetFileVersionInfoSizeW> size(
        [](auto...) { return 0; });

    EXPECT_TRUE(evaluates(search("a.txt", assign)));
    EXPECT_TRUE(evaluates(search("a.txt", assign, "MinVersion=''")));

    EXPECT_EQ(size.count, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

// Its expression

TEST_F(CFileSearchMtElementTest, ExpressionCountsForWhatItAssignsAlone) {
    folder.write(L"a.txt", "");
    for (const std::string expression : {"0", "1", "Found", "Found = 0"}) {
        SCOPED_TRACE(expression);
        EXPECT_FALSE(evaluates(search("a.txt", expression)));
        EXPECT_EQ(errorMessage(), L"");
    }
}

TEST_F(CFileSearchMtElementTest, ConditionReadsWhatASearchAssigned) {
    folder.write(L"a.txt", "");
    const std::string condition =
        "<Condition Expression='Found E 1'><Caution Title='a'/></Condition>";
    ASSERT_TRUE(loadFragment(condition + search("a.txt", assign) + condition));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.updates, ElementsAre(Notification{2, L"Found E 1", L"", 0},
                                              Notification{2, L"Found E 1", L"", 66},
                                              Notification{16, L"", L"a", 66}));
}

TEST_F(CFileSearchMtElementTest, FailingExpressionIsPutToTheHost) {
    folder.write(L"a.txt", "");
    struct Row {
        const char* expression;
        const wchar_t* message;
    };
    const Row rows[] = {
        {"Missing", L"\"Missing\" expression error:Reference undefined variable:Missing"},
        {"1 =", L"\"1 =\" expression error:Grammar error:The symbol = can't be in front of end."},
        {"Bad", L"(Variable,Bad) is not int variable."}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expression);
        context.unload();
        ASSERT_TRUE(loadFragment(search("a.txt", row.expression)));
        observer = {};
        const LogFile log;

        EXPECT_EQ(run(), -1);

        EXPECT_THAT(
            observer.failures,
            ElementsAre(AllOf(Field(&ErrorInfo::code, 1u), Field(&ErrorInfo::systemError, 0u),
                              Field(&ErrorInfo::message, StrEq(row.message)))));
        EXPECT_EQ(errorMessage(), row.message);
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST_F(CFileSearchMtElementTest, HostMayRepeatOrIgnoreAFailingExpression) {
    folder.write(L"a.txt", "");
    ASSERT_TRUE(loadFragment(search("a.txt", "Missing", "Vital='no'") + search("a.txt", assign)));
    observer.answers = {ANSWER_RETRY, ANSWER_IGNORE};

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.failures, SizeIs(2));
    EXPECT_TRUE(found());
}

TEST_F(CFileSearchMtElementTest, LongMessageIsCut) {
    folder.write(L"a.txt", "");
    const std::string name(300, 'n');
    const std::wstring message = L"\"" + std::wstring(300, L'n') +
                                 L"\" expression error:Reference undefined variable:" +
                                 std::wstring(300, L'n');
    ASSERT_TRUE(loadFragment(search("a.txt", name)));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(), message.substr(0, 511));
}

TEST_F(CFileSearchMtElementTest, BadExpressionStaysUnnoticedUntilItIsNeeded) {
    placeVersionedFile(folder.path(L"a.dll"), L"1.2.0.0");
    ASSERT_TRUE(loadFragment(search("absent", "( Missing") +
                             search("a.dll", "( Missing", "MinVersion='2'")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_EQ(errorMessage(), L"");
}

TEST_F(CFileSearchMtElementTest, SearchInVainLeavesAnErrorRecordWithoutAMessage) {
    folder.write(L"a.txt", "");
    placeVersionedFile(folder.path(L"a.dll"), L"1.2.0.0");
    for (const std::string& element :
         {search("absent", assign), search("a.txt", assign, "MinVersion='1'"),
          search("a.dll", assign, "MinVersion='2'")}) {
        SCOPED_TRACE(element);
        context.unload();
        ASSERT_TRUE(loadFragment(element));
        const XmlHandlePtr node = context.findElementById(L"FileSearch", L"S");
        const MotionElementPtr made = CreateMotionElement(node.get(), context, nullptr);
        context.subject().setErrorInfo(7, L"before", 5, L"before", L"before");

        EXPECT_EQ(made->execute(context), 0);

        const ErrorInfo& error = context.subject().errorInfo;
        EXPECT_EQ(error.code, 1u);
        EXPECT_EQ(error.systemError, 0u);
        EXPECT_STREQ(error.text1, L"");
        EXPECT_STREQ(error.message, L"");
    }
}

// What it is

TEST_F(CFileSearchMtElementTest, RunsInEveryModeWhateverOnSays) {
    folder.write(L"a.txt", "");
    for (const int32_t mode : {0, 1, 2, 7}) {
        context.unload();
        ASSERT_TRUE(loadFragment(search("a.txt", assign, "On='uninstall'")));

        EXPECT_EQ(run(mode), 0);

        EXPECT_TRUE(found()) << mode;
    }
}

TEST_F(CFileSearchMtElementTest, DeclaresItsFourAttributesAlone) {
    ASSERT_TRUE(loadFragment(search("a.txt", "1", "MinVersion='1' On='install' Vital='no'")));
    const XmlHandlePtr node = context.findElementById(L"FileSearch", L"S");
    const MotionElementPtr element = CreateMotionElement(node.get(), context, nullptr);
    std::vector<AttributeDeclaration> declared(3);
    std::vector<AttributeDeclaration> derived(3);

    element->getAttributes(declared);
    element->getDerivedAttributes(derived);

    std::vector<std::pair<std::wstring, bool>> list;
    for (const AttributeDeclaration& declaration : declared)
        list.emplace_back(declaration.name, declaration.required);
    EXPECT_THAT(list, ElementsAre(Pair(L"Name", true), Pair(L"Path", true),
                                  Pair(L"Expression", true), Pair(L"MinVersion", false)));
    EXPECT_THAT(derived, IsEmpty());
    EXPECT_TRUE(element->isVital(context));
}

TEST_F(CFileSearchMtElementTest, CannotBeMadeWithoutARequiredAttribute) {
    struct Row {
        const char* attributes;
        const wchar_t* missing;
    };
    const Row rows[] = {{"Path='p' Expression='1'", L"Name"},
                        {"Name='n' Expression='1'", L"Path"},
                        {"Name='n' Path='p'", L"Expression"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.attributes);
        context.unload();
        ASSERT_TRUE(loadProduct("<Directory Path='C:\\p'><Component Id='C'><FileSearch Id='S' " +
                                std::string(row.attributes) +
                                "/></Component></Directory><InstallExecuteSequence><Feature>"
                                "<ComponentRef Id='C'/></Feature></InstallExecuteSequence>"));

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(errorMessage(),
                  std::wstring(L"Create Motion Element error:(FileSearch,S) cant get the require "
                               L"explicit ") +
                      row.missing +
                      L"attribute.(Component,C) cann't create child element(FileSearch)");
    }
}

TEST_F(CFileSearchMtElementTest, FailsWhenItsAttributesWereNeverRead) {
    folder.write(L"a.txt", "");
    ASSERT_TRUE(loadFragment(search("a.txt", assign)));
    CFileSearchMtElement element(*context.findElementById(L"FileSearch", L"S"), context);

    EXPECT_EQ(element.execute(context), -1);

    EXPECT_EQ(errorMessage(), L"(FileSearch,S) can't get Name attribute.");
    EXPECT_EQ(context.getProduct()->errorInfo.code, 1u);
    EXPECT_FALSE(found());
}

TEST_F(CFileSearchMtElementTest, HoldsNothing) {
    ASSERT_TRUE(loadFragment(
        "<FileSearch Id='S' Name='n' Path='p' Expression='1'><Caution Title='a'/></FileSearch>"));
    const CFileSearchMtElement element(*context.findElementById(L"FileSearch", L"S"), context);

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(), L"(FileSearch,S) has a illegal child element(Caution)");
    EXPECT_THAT(allowedChildren(element), IsEmpty());
}

TEST_F(CFileSearchMtElementTest, StandsForNoOtherElement) {
    ASSERT_TRUE(loadProduct("<File Id='F'/>"));
    const XmlHandlePtr node = context.findElementById(L"File", L"F");

    EXPECT_EQ(thrownBy([&] { CFileSearchMtElement(*node, context); }),
              L"Failed to create element (File,F)");
}

}  // namespace
