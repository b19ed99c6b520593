#include "motion/CRegistryValueMtElement.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include "elements/ElementFactory.h"
#include "motion/CRegistryKeyMtElement.h"
#include "support/AllowedChildren.h"
#include "support/ChildProcess.h"
#include "support/Declarations.h"
#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/RegistryScriptTest.h"
#include "support/Thrown.h"
#include "system/RegistryCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Notification = RecordingObserver::Notification;

namespace {

using FakeOpen = FakeCall<registryCalls, &RegistryCalls::RegOpenKeyExW>;
using FakeSetValue = FakeCall<registryCalls, &RegistryCalls::RegSetValueExW>;

const StoredValue missing{REG_NONE, "<missing>"};

class CRegistryValueMtElementTest : public RegistryScriptTest {
protected:
    static std::string value(const std::string& type, const std::string& text,
                             const std::string& attributes = "Name='v'") {
        return "<RegistryValue Id='V' Type='" + type + "' Value='" + text + "' " + attributes +
               "/>";
    }

    /// Loads a script that makes the key "a" and writes the values into it.
    bool loadValues(const std::string& values) {
        return loadComponent(element("create", L"a", {}, values));
    }

    /// How the value of a name is told of.
    std::wstring toldValue(const std::wstring& name) const {
        return told(L"a") + L"[Value Name]" + name;
    }

    StoredValue stored(const std::wstring& name = L"v") const {
        return readValue(key.path(L"a"), name);
    }
};

// What the element asks of the script.

TEST_F(CRegistryValueMtElementTest, DeclaresItsAttributesInOrder) {
    ASSERT_TRUE(loadValues(value("REG_SZ", "x")));
    const CRegistryValueMtElement element(*context.findElementById(L"RegistryValue", L"V"),
                                          context);

    EXPECT_THAT(declaredBy(element), ElementsAre(Pair(L"Name", true), Pair(L"Type", true),
                                                 Pair(L"Value", true), Pair(L"Vital", false)));
    EXPECT_THAT(derivedBy(element), ElementsAre(Pair(L"Key", true), Pair(L"Root", true)));
}

TEST_F(CRegistryValueMtElementTest, IsMadeOfARegistryValueNodeAlone) {
    ASSERT_TRUE(loadValues(value("REG_SZ", "x")));
    const XmlHandlePtr node = context.findElementById(L"RegistryKey", L"K");

    EXPECT_EQ(thrownBy([&] { CRegistryValueMtElement(*node, context); }),
              L"Failed to create element (RegistryKey,K)");
}

TEST_F(CRegistryValueMtElementTest, HoldsNothing) {
    ASSERT_TRUE(loadValues(value("REG_SZ", "x")));
    const CRegistryValueMtElement element(*context.findElementById(L"RegistryValue", L"V"),
                                          context);

    EXPECT_THAT(allowedChildren(element), IsEmpty());
}

TEST_F(CRegistryValueMtElementTest, ChildOfItFailsBeforeItIsWritten) {
    ASSERT_TRUE(loadValues("<RegistryValue Id='V' Name='v' Type='REG_SZ' Value='x'>" +
                           value("REG_SZ", "y") + "</RegistryValue>"));

    EXPECT_EQ(run(), -1);

    expectErrorMessage(L"(RegistryValue,V) has a illegal child element(RegistryValue)");
    EXPECT_EQ(stored(), missing);
}

TEST_F(CRegistryValueMtElementTest, IsNotMadeWithoutNameTypeOrValue) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"<RegistryValue Id='V' Type='REG_SZ' Value='x'/>", L"Name"},
        {"<RegistryValue Id='V' Name='v' Value='x'/>", L"Type"},
        {"<RegistryValue Id='V' Name='v' Type='REG_SZ'/>", L"Value"},
        {"<RegistryValue Id='V'/>", L"Name"},
    };
    for (const auto& [element, absent] : rows) {
        SCOPED_TRACE(element);
        context.unload();
        ASSERT_TRUE(loadValues(element));

        EXPECT_EQ(run(), -1);

        expectErrorMessage(
            L"Create Motion Element error:(RegistryValue,V) cant get the require "
            L"explicit " +
            absent + L"attribute.(RegistryKey,K) cann't create child element(RegistryValue)");
    }
}

TEST_F(CRegistryValueMtElementTest, IsNotMadeWithoutARegistryKeyAroundIt) {
    const std::wstring reason =
        L"Create Motion Element error:(RegistryValue,V) can't get Key attribute from  parent "
        L"element.";
    const std::string element = value("REG_SZ", "x", "Name='v' Key='a' Root='HKEY_CURRENT_USER'");

    ASSERT_TRUE(loadComponent(element));
    EXPECT_EQ(run(), -1);
    expectErrorMessage(reason + L"(Component,C) cann't create child element(RegistryValue)");

    context.unload();
    ASSERT_TRUE(loadComponent("<Condition Id='If' Expression='1'>" + element + "</Condition>"));
    EXPECT_EQ(run(), -1);
    expectErrorMessage(reason + L"(Condition,If) cann't create child element(RegistryValue)");
}

TEST_F(CRegistryValueMtElementTest, FailsWhenItsAttributesAreNotSettled) {
    const std::pair<std::string, const wchar_t*> rows[] = {
        {"", L"(RegistryValue,V) can't get Name attribute."},
        {"Name='v'", L"(RegistryValue,V) can't get Type attribute."},
        {"Name='v' Type='t'", L"(RegistryValue,V) can't get Value attribute."},
        {"Name='v' Type='t' Value='x' Root='r'", L"(RegistryValue,V) can't get Key attribute."},
    };
    for (const auto& [attributes, message] : rows) {
        SCOPED_TRACE(attributes);
        context.unload();
        ASSERT_TRUE(loadComponent("<RegistryValue Id='V' " + attributes + "/>"));
        CRegistryValueMtElement element(*context.findElementById(L"RegistryValue", L"V"), context);
        std::wstring ignored;
        element.readDeclaredAttributes(context, ignored);

        EXPECT_EQ(element.execute(context), -1);

        expectErrorMessage(message);
    }
}

TEST_F(CRegistryValueMtElementTest, FailsWhenTheKeyAroundItHasNoRoot) {
    ASSERT_TRUE(loadComponent("<RegistryKey Id='K' Action='create' Key='a'>" +
                              value("REG_SZ", "x") + "</RegistryKey>"));
    CRegistryKeyMtElement around(*context.findElementById(L"RegistryKey", L"K"), context);
    CRegistryValueMtElement element(*context.findElementById(L"RegistryValue", L"V"), context);
    std::wstring message;
    element.setParent(&around);
    ASSERT_TRUE(around.readDeclaredAttributes(context, message));
    ASSERT_TRUE(element.readDeclaredAttributes(context, message));

    EXPECT_FALSE(element.resolveDerivedAttributes(context, message));
    EXPECT_EQ(element.execute(context), -1);

    EXPECT_EQ(message, L"(RegistryValue,V) can't get Root attribute from  parent element.");
    expectErrorMessage(L"(RegistryValue,V) can't get Root attribute.");
}

TEST_F(CRegistryValueMtElementTest, TestsRootThenTypeThenText) {
    struct Row {
        const char* root;
        const char* type;
        const wchar_t* message;
    };
    const Row rows[] = {
        {"HKLM", "REG_BINARY", L"HKLM is unknown Registry KEY in the (RegistryValue,V)"},
        {"HKEY_USERS", "REG_BINARY",
         L"REG_BINARY is unknown Registry TYPE in the (RegistryValue,V)"},
        {"HKEY_USERS", "REG_DWORD", L"text isn't DWORD text in the (RegistryValue,V)"},
    };
    for (const auto& [root, type, message] : rows) {
        SCOPED_TRACE(narrow(message));
        context.unload();
        ASSERT_TRUE(loadComponent("<RegistryKey Action='create' Key='a' Root='" +
                                  std::string(root) + "'>" + value(type, "text") +
                                  "</RegistryKey>"));
        // Not from the walk, which a key of an unknown root ends.
        const MotionElementPtr element = CreateMotionElement(
            context.findElementById(L"RegistryValue", L"V").get(), context, nullptr);
        ASSERT_NE(element, nullptr);

        EXPECT_EQ(element->execute(context), -1);

        expectErrorMessage(message);
    }
}

TEST_F(CRegistryValueMtElementTest, UnknownTypeFailsBeforeTheHostIsTold) {
    for (const std::string type : {"REG_BINARY", "REG_EXPAND_SZ", "REG_QWORD", "reg_sz", ""}) {
        SCOPED_TRACE(type);
        context.unload();
        observer.updates.clear();
        ASSERT_TRUE(loadValues(value(type, "1")));

        EXPECT_EQ(run(), -1);

        expectErrorMessage(std::wstring(type.begin(), type.end()) +
                           L" is unknown Registry TYPE in the (RegistryValue,V)");
        EXPECT_THAT(observer.updates, ElementsAre(Notification{12, told(L"a"), L"", 0}));
        EXPECT_EQ(stored(), missing);
    }
}

// Writing.

TEST_F(CRegistryValueMtElementTest, TellsTheHostOfEachValue) {
    ASSERT_TRUE(
        loadValues(value("REG_SZ", "x", "Name='Path'") + value("REG_DWORD", "1", "Name=''")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.updates, ElementsAre(Notification{12, told(L"a"), L"", 0},
                                              Notification{14, toldValue(L"Path"), L"", 0},
                                              Notification{14, toldValue(L""), L"", 50}));
    expectNoError();
}

TEST_F(CRegistryValueMtElementTest, TellsTheHostBeforeItOpensTheKey) {
    ASSERT_TRUE(loadValues(value("REG_SZ", "x") + value("REG_DWORD", "1")));
    std::vector<size_t> heard;
    const FakeOpen open([&](auto... arguments) {
        heard.push_back(observer.updates.size());
        return open.real(arguments...);
    });

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heard, ElementsAre(2u, 3u));
}

/// A value below a key that only seems to be made, so that its path may be of any length.
class RegistryValueNamesTest : public CRegistryValueMtElementTest {
protected:
    /// Loads a script in which root, key and name have that many characters together.
    bool loadNames(size_t length) {
        const std::string name(length - path.size() - strlen("HKEY_USERS"), 'n');
        return loadComponent("<RegistryKey Action='create' Root='HKEY_USERS' Key='" + path + "'>" +
                             value("REG_SZ", "x", "Name='" + name + "'") + "</RegistryKey>");
    }

    const std::string path = std::string(300, 'k');
    const FakeCall<registryCalls, &RegistryCalls::RegCreateKeyExW> create{
        [](auto...) { return ERROR_SUCCESS; }};
};

TEST_F(RegistryValueNamesTest, ReachTheHostWhenTheyJustFit) {
    const FakeOpen open([](auto...) { return ERROR_ACCESS_DENIED; });
    ASSERT_TRUE(loadNames(498));

    EXPECT_EQ(run(), -1);

    const std::wstring told =
        L"HKEY_USERS\\" + std::wstring(300, L'k') + L"[Value Name]" + std::wstring(188, L'n');
    EXPECT_EQ(told.size(), 511u);
    EXPECT_EQ(observer.updates.back(), (Notification{14, told, L"", 0}));
    expectError(14, told, L"", L"");
}

TEST_F(RegistryValueNamesTest, EndTheProcessBeforeTheKeyIsOpenedWhenTheyDoNotFit) {
    const FakeOpen open([](auto...) -> LSTATUS { std::exit(EXIT_FAILURE); });
    ASSERT_TRUE(loadNames(499));

    EXPECT_EXIT(run(), endedByInvalidParameter(), "");
}

TEST_F(CRegistryValueMtElementTest, WritesTextWithoutATerminatorWhateverItsLength) {
    for (const auto& [name, type] : {std::pair(std::string("REG_SZ"), DWORD{REG_SZ}),
                                     std::pair(std::string("REG_MULTI_SZ"), DWORD{REG_MULTI_SZ})})
        for (const size_t length : {0u, 1u, 2u, 3u, 7u, 8u, 15u, 16u, 31u, 255u, 256u, 2000u}) {
            SCOPED_TRACE(name + " of " + std::to_string(length));
            context.unload();
            ASSERT_TRUE(loadValues(value(name, std::string(length, 'x'))));

            EXPECT_EQ(run(), 0);

            EXPECT_EQ(stored(), (StoredValue{type, bytesOf(std::wstring(length, L'x'))}));
        }
}

TEST_F(CRegistryValueMtElementTest, WritesTextAsItStands) {
    const std::pair<std::string, std::wstring> rows[] = {
        {" a  b ", L" a  b "},     {"a;b,c|d", L"a;b,c|d"},
        {"a\\0b\\n", L"a\\0b\\n"}, {"%PATH%", L"%PATH%"},
        {"&lt;&amp;&gt;", L"<&>"}, {"&quot;&apos;", L"\"'"},
        {"C:\\x y", L"C:\\x y"},   {"12", L"12"},
    };
    for (const auto& [name, type] : {std::pair(std::string("REG_SZ"), DWORD{REG_SZ}),
                                     std::pair(std::string("REG_MULTI_SZ"), DWORD{REG_MULTI_SZ})})
        for (const auto& [text, expected] : rows) {
            SCOPED_TRACE(name + " " + text);
            context.unload();
            ASSERT_TRUE(loadValues(value(name, text)));

            EXPECT_EQ(run(), 0);

            EXPECT_EQ(stored(), (StoredValue{type, bytesOf(expected)}));
        }
}

TEST_F(CRegistryValueMtElementTest, HandsTheSystemTheSizeOfTheTextAlone) {
    ASSERT_TRUE(loadValues(value("REG_MULTI_SZ", "abc")));
    const FakeSetValue write(
        [](HKEY, const wchar_t* name, DWORD, DWORD type, const BYTE* data, DWORD size) {
            EXPECT_STREQ(name, L"v");
            EXPECT_EQ(type, 7u);
            EXPECT_EQ(std::string(reinterpret_cast<const char*>(data), size), bytesOf(L"abc"));
            return ERROR_SUCCESS;
        });

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(write.count, 1);
}

TEST_F(CRegistryValueMtElementTest, WritesNumbersInFourBytes) {
    const std::pair<std::string, std::string> rows[] = {
        {"0", {"\0\0\0\0", 4}},
        {"-0", {"\0\0\0\0", 4}},
        {"1", {"\x01\0\0\0", 4}},
        {"007", {"\x07\0\0\0", 4}},
        {"305419896", "\x78\x56\x34\x12"},
        {"-5", "\xFB\xFF\xFF\xFF"},
        {"2147483647", "\xFF\xFF\xFF\x7F"},
        {"2147483648", "\xFF\xFF\xFF\x7F"},
        {"4294967295", "\xFF\xFF\xFF\x7F"},
        {"99999999999", "\xFF\xFF\xFF\x7F"},
        {"99999999999999999999999999", "\xFF\xFF\xFF\x7F"},
        {"-2147483648", {"\0\0\0\x80", 4}},
        {"-2147483649", {"\0\0\0\x80", 4}},
        {"-99999999999", {"\0\0\0\x80", 4}},
    };
    const LogFile log;
    for (const auto& [text, bytes] : rows) {
        SCOPED_TRACE(text);
        context.unload();
        ASSERT_TRUE(loadValues(value("REG_DWORD", text)));

        EXPECT_EQ(run(), 0);

        EXPECT_EQ(stored(), (StoredValue{REG_DWORD, bytes}));
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CRegistryValueMtElementTest, RefusesOtherTextsForANumberAfterTheHostIsTold) {
    for (const std::string text :
         {"", "-", "+5", " 5", "5 ", "0x10", "1.5", "--1", "5-", "a", "1a", "1,000"}) {
        SCOPED_TRACE(text);
        context.unload();
        observer.updates.clear();
        ASSERT_TRUE(loadValues(value("REG_DWORD", text)));

        EXPECT_EQ(run(), -1);

        expectErrorMessage(std::wstring(text.begin(), text.end()) +
                           L" isn't DWORD text in the (RegistryValue,V)");
        EXPECT_THAT(observer.updates, ElementsAre(Notification{12, told(L"a"), L"", 0},
                                                  Notification{14, toldValue(L"v"), L"", 0}));
        EXPECT_EQ(stored(), missing);
    }
}

TEST_F(CRegistryValueMtElementTest, ReplacesAValueOfAnotherType) {
    writeValue(key.make(L"a"), L"v", {REG_BINARY, "old and longer"});
    ASSERT_TRUE(loadValues(value("REG_DWORD", "1")));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(stored(), (StoredValue{REG_DWORD, {"\x01\0\0\0", 4}}));
}

TEST_F(CRegistryValueMtElementTest, EmptyNameIsTheUnnamedValue) {
    ASSERT_TRUE(loadValues(value("REG_SZ", "x", "Name=''")));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(stored(L""), (StoredValue{REG_SZ, bytesOf(L"x")}));
}

TEST_F(CRegistryValueMtElementTest, OpensItsKeyForEachWrite) {
    ASSERT_TRUE(loadValues(value("REG_SZ", "x", "Name='1'") + value("REG_SZ", "y", "Name='2'")));
    const FakeOpen open([&](auto... arguments) { return open.real(arguments...); });

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(open.count, 2);
    EXPECT_NE(stored(L"1"), missing);
    EXPECT_NE(stored(L"2"), missing);
}

TEST_F(CRegistryValueMtElementTest, TakesKeyAndRootFromTheKeyAroundItAlone) {
    ASSERT_TRUE(loadValues("<RegistryKey Action='create' Key='b'>" +
                           value("REG_SZ", "x", "Name='v' Key='c' Root='HKEY_USERS'") +
                           "</RegistryKey>"));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(readValue(key.path(L"a\\b"), L"v"), (StoredValue{REG_SZ, bytesOf(L"x")}));
    EXPECT_EQ(observer.updates.back(),
              (Notification{14, told(L"a\\b") + L"[Value Name]v", L"", 0}));
}

TEST_F(CRegistryValueMtElementTest, FindsTheKeyAroundItBeyondConditions) {
    ASSERT_TRUE(loadValues("<Condition Expression='1'><Condition Expression='1'>" +
                           value("REG_SZ", "x") + "</Condition></Condition>"));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(stored(), (StoredValue{REG_SZ, bytesOf(L"x")}));
}

TEST_F(CRegistryValueMtElementTest, WritesInEveryModeWhateverOnSays) {
    ASSERT_TRUE(loadValues(value("REG_SZ", "x", "Name='v' On='uninstall'")));
    for (const int32_t mode : {0, 1, 2, 7}) {
        writeValue(key.make(L"a"), L"v", {REG_BINARY, "old"});

        EXPECT_EQ(run(mode), 0);

        EXPECT_EQ(stored(), (StoredValue{REG_SZ, bytesOf(L"x")})) << mode;
    }
}

// Failure.

TEST_F(CRegistryValueMtElementTest, FailsBelowARemovedKeyAndMakesNone) {
    key.make(L"a");
    ASSERT_TRUE(loadComponent(element("remove", L"a", {}, value("REG_SZ", "x"))));

    EXPECT_EQ(run(), -1);

    expectError(14, toldValue(L"v"), L"", L"");
    EXPECT_THAT(observer.updates, ElementsAre(Notification{13, told(L"a"), L"", 0},
                                              Notification{14, toldValue(L"v"), L"", 0}));
    EXPECT_EQ(observer.failures.size(), 1u);
    EXPECT_THAT(key.keys(), IsEmpty());
}

/// Refuses the first writes of values.
class RefusedWrites {
public:
    explicit RefusedWrites(int count) : left(count) {}

private:
    int left;
    const FakeSetValue write{[this](auto... arguments) -> LSTATUS {
        SetLastError(ERROR_DISK_FULL);
        return left-- > 0 ? ERROR_ACCESS_DENIED : write.real(arguments...);
    }};
};

TEST_F(CRegistryValueMtElementTest, FailsWhenTheSystemRefusesTheValue) {
    for (const auto& [type, text] : {std::pair("REG_SZ", "x"), std::pair("REG_DWORD", "1")}) {
        SCOPED_TRACE(type);
        context.unload();
        observer.failures.clear();
        const RefusedWrites refused(1);
        ASSERT_TRUE(loadValues(value(type, text) + value("REG_SZ", "y", "Name='behind'")));

        EXPECT_EQ(run(), -1);

        expectError(14, toldValue(L"v"), L"", L"");
        ASSERT_EQ(observer.failures.size(), 1u);
        EXPECT_EQ(observer.failures[0].code, 14u);
        EXPECT_EQ(stored(L"behind"), missing);
    }
}

TEST_F(CRegistryValueMtElementTest, HostMayHaveItTriedAgain) {
    const RefusedWrites refused(2);
    ASSERT_TRUE(loadValues(value("REG_SZ", "x", "Name='v' Vital='yes'")));
    observer.answers = {ANSWER_RETRY, ANSWER_RETRY};

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(observer.failures.size(), 2u);
    EXPECT_EQ(observer.updates.size(), 4u);
    EXPECT_EQ(stored(), (StoredValue{REG_SZ, bytesOf(L"x")}));
    expectNoError();
}

TEST_F(CRegistryValueMtElementTest, HostMayHaveItIgnored) {
    ASSERT_TRUE(loadValues(value("REG_DWORD", "x") + value("REG_SZ", "y", "Name='behind'")));
    observer.answers = {ANSWER_IGNORE};

    EXPECT_EQ(run(), 0);

    ASSERT_EQ(observer.failures.size(), 1u);
    EXPECT_STREQ(observer.failures[0].message, L"x isn't DWORD text in the (RegistryValue,V)");
    EXPECT_EQ(stored(), missing);
    EXPECT_NE(stored(L"behind"), missing);
}

TEST_F(CRegistryValueMtElementTest, IsIgnoredWithoutAQuestionWhenItIsNotVital) {
    const LogFile log;
    const RefusedWrites refused(1);
    ASSERT_TRUE(loadValues(value("REG_SZ", "x", "Name='v' Vital='no'")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] The last error isn't vital - ignore."));
    expectError(14, toldValue(L"v"), L"", L"");
}

}  // namespace
