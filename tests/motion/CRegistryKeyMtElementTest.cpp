#include "motion/CRegistryKeyMtElement.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <tuple>
#include <utility>
#include <vector>

#include "support/AllowedChildren.h"
#include "support/ChildProcess.h"
#include "support/Declarations.h"
#include "support/FakeCall.h"
#include "support/Heard.h"
#include "support/RegistryScriptTest.h"
#include "support/Thrown.h"
#include "system/RegistryCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;
using Notification = RecordingObserver::Notification;

namespace {

using FakeCreate = FakeCall<registryCalls, &RegistryCalls::RegCreateKeyExW>;

const std::string value = "<RegistryValue Id='V' Name='v' Type='REG_SZ' Value='x'/>";

using CRegistryKeyMtElementTest = RegistryScriptTest;

/// Takes the place of the call that makes keys, and writes down their roots and paths.
class MadeKeys {
public:
    std::vector<std::pair<HKEY, std::wstring>> list;

private:
    const FakeCreate create{[this](HKEY root, const wchar_t* subkey, auto...) {
        list.emplace_back(root, subkey);
        return ERROR_SUCCESS;
    }};
};

TEST_F(CRegistryKeyMtElementTest, TellsTheHostBeforeItMakesOrRemoves) {
    ASSERT_TRUE(loadComponent(element("create", L"a") + element("remove", L"a")));
    std::vector<size_t> heard;
    const FakeCreate create([&](auto... arguments) {
        heard.push_back(observer.updates.size());
        return create.real(arguments...);
    });
    const FakeCall<registryCalls, &RegistryCalls::RegOpenKeyExW> open([&](auto... arguments) {
        heard.push_back(observer.updates.size());
        return open.real(arguments...);
    });

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heard, ElementsAre(1u, 2u));
}

// What the element asks of the script.

TEST_F(CRegistryKeyMtElementTest, DeclaresItsAttributesInOrder) {
    ASSERT_TRUE(loadComponent(element("create", L"a")));
    const CRegistryKeyMtElement element(*context.findElementById(L"RegistryKey", L"K"), context);

    EXPECT_THAT(declaredBy(element),
                ElementsAre(Pair(L"Action", true), Pair(L"Key", true), Pair(L"Root", false),
                            Pair(L"On", false), Pair(L"Vital", false), Pair(L"Title", false)));
    EXPECT_THAT(derivedBy(element), ElementsAre(Pair(L"Root", true)));
}

TEST_F(CRegistryKeyMtElementTest, IsMadeOfARegistryKeyNodeAlone) {
    ASSERT_TRUE(loadComponent(element("create", L"a")));
    const XmlHandlePtr component = context.findElementById(L"Component", L"C");

    EXPECT_EQ(thrownBy([&] { CRegistryKeyMtElement(*component, context); }),
              L"Failed to create element (Component,C)");
}

TEST_F(CRegistryKeyMtElementTest, HoldsKeysValuesAndConditions) {
    ASSERT_TRUE(loadComponent(element("create", L"a")));
    const CRegistryKeyMtElement element(*context.findElementById(L"RegistryKey", L"K"), context);

    EXPECT_THAT(allowedChildren(element),
                UnorderedElementsAre(L"RegistryKey", L"RegistryValue", L"Condition"));
    EXPECT_FALSE(element.isChildAllowed(L"registrykey"));
    EXPECT_FALSE(element.isChildAllowed(L"RegistryKeys"));
}

TEST_F(CRegistryKeyMtElementTest, KeyAloneIsCumulative) {
    ASSERT_TRUE(loadComponent(element("create", L"a")));
    const CRegistryKeyMtElement element(*context.findElementById(L"RegistryKey", L"K"), context);

    EXPECT_TRUE(element.isCumulativeAttribute(L"Key"));
    for (const wchar_t* name : {L"", L"key", L"KEY", L"Ke", L"Keys", L"Root", L"Action", L"Title"})
        EXPECT_FALSE(element.isCumulativeAttribute(name)) << narrow(name);
    EXPECT_FALSE(element.isCumulativeAttribute(nullptr));
}

TEST_F(CRegistryKeyMtElementTest, PutsOneSeparatorBehindTheKeyAroundIt) {
    struct Row {
        const wchar_t* outer;
        const wchar_t* own;
        const wchar_t* combined;
    };
    const Row rows[] = {{L"A", L"B", L"A\\B"},     {L"A\\", L"B", L"A\\B"},
                        {L"A/", L"B", L"A/B"},     {L"", L"B", L"B"},
                        {L"", L"\\B", L"\\B"},     {L"A", L"\\B", L"A\\\\B"},
                        {L"A\\", L"/B", L"A\\/B"}, {L"A", L"", L"A\\"},
                        {L"", L"", L""},           {L"A\\B", L"C", L"A\\B\\C"}};
    ASSERT_TRUE(loadComponent(element("create", L"a")));
    const CRegistryKeyMtElement element(*context.findElementById(L"RegistryKey", L"K"), context);
    for (const auto& [outer, own, combined] : rows) {
        SCOPED_TRACE(narrow(combined));
        std::wstring text = own;

        element.combineWithParent(outer, text);

        EXPECT_EQ(text, combined);
    }
}

TEST_F(CRegistryKeyMtElementTest, IsNotMadeWithoutActionOrKey) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"<RegistryKey Id='K' Root='HKEY_CURRENT_USER' Key='a'/>", L"Action"},
        {"<RegistryKey Id='K' Root='HKEY_CURRENT_USER' Action='create'/>", L"Key"},
        {"<RegistryKey Id='K' Root='HKEY_CURRENT_USER'/>", L"Action"},
    };
    for (const auto& [xml, missing] : rows) {
        SCOPED_TRACE(xml);
        context.unload();
        ASSERT_TRUE(loadComponent(xml));

        EXPECT_EQ(run(), -1);

        expectErrorMessage(
            L"Create Motion Element error:(RegistryKey,K) cant get the require "
            L"explicit " +
            missing + L"attribute.(Component,C) cann't create child element(RegistryKey)");
    }
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CRegistryKeyMtElementTest, TakesNeitherActionNorKeyFromTheKeyAroundIt) {
    for (const auto& [attributes, missing] :
         {std::pair(std::string("Key='b'"), std::wstring(L"Action")),
          std::pair(std::string("Action='create'"), std::wstring(L"Key"))}) {
        SCOPED_TRACE(attributes);
        context.unload();
        ASSERT_TRUE(loadComponent(
            element("create", L"a", {}, "<RegistryKey Id='Inner' " + attributes + "/>")));

        EXPECT_EQ(run(), -1);

        expectErrorMessage(
            L"Create Motion Element error:(RegistryKey,Inner) cant get the require "
            L"explicit " +
            missing + L"attribute.(RegistryKey,K) cann't create child element(RegistryKey)");
    }
}

TEST_F(CRegistryKeyMtElementTest, OutermostKeyIsNotMadeWithoutARoot) {
    ASSERT_TRUE(loadComponent("<RegistryKey Id='K' Action='create' Key='a'/>"));

    EXPECT_EQ(run(), -1);

    expectErrorMessage(
        L"Create Motion Element error:(RegistryKey,K) can't get Root attribute from "
        L" parent element.(Component,C) cann't create child element(RegistryKey)");
}

TEST_F(CRegistryKeyMtElementTest, FailsWhenItsAttributesAreNotSettled) {
    const std::pair<std::string, const wchar_t*> rows[] = {
        {"", L"(RegistryKey,K) can't get Action attribute."},
        {"Action='create'", L"(RegistryKey,K) can't get Key attribute."},
        {"Action='create' Key='a'", L"(RegistryKey,K) can't get Root attribute."},
    };
    for (const auto& [attributes, message] : rows) {
        SCOPED_TRACE(attributes);
        context.unload();
        ASSERT_TRUE(loadComponent("<RegistryKey Id='K' " + attributes + "/>"));
        CRegistryKeyMtElement element(*context.findElementById(L"RegistryKey", L"K"), context);
        std::wstring ignored;
        element.readDeclaredAttributes(context, ignored);
        bool descend = true;

        EXPECT_EQ(element.prepare(descend, context), -1);

        EXPECT_FALSE(descend);
        expectErrorMessage(message);
    }
}

TEST_F(CRegistryKeyMtElementTest, UnknownRootFailsAheadOfAnUnknownAction) {
    for (const char* root : {"HKLM", "hkey_current_user", "", "HKEY_PERFORMANCE_DATA"}) {
        SCOPED_TRACE(root);
        context.unload();
        ASSERT_TRUE(loadComponent("<RegistryKey Id='K' Action='unknown' Key='a' Root='" +
                                  std::string(root) + "'>" + value + "</RegistryKey>"));

        EXPECT_EQ(run(), -1);

        expectErrorMessage(std::wstring(root, root + strlen(root)) +
                           L" is unknown Registry KEY in the (RegistryKey,K)");
    }
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(CRegistryKeyMtElementTest, UnknownActionFails) {
    for (const std::string action : {"Create", "REMOVE", "delete", "", "create ", "creat"}) {
        SCOPED_TRACE(action);
        context.unload();
        ASSERT_TRUE(loadComponent(element(action, L"a", {}, value)));

        EXPECT_EQ(run(), -1);

        expectErrorMessage(std::wstring(action.begin(), action.end()) +
                           L" is unknown Action in the (RegistryKey,K)");
    }
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_THAT(key.keys(), IsEmpty());
}

// Making and removing.

TEST_F(CRegistryKeyMtElementTest, MakesTheKeyAndTellsTheHost) {
    ASSERT_TRUE(
        loadComponent(element("create", L"a\\b", "Title='Making it'") + element("create", L"c")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(key.keys(), ElementsAre(L"a", L"a\\b", L"c"));
    EXPECT_THAT(observer.updates, ElementsAre(Notification{12, told(L"a\\b"), L"Making it", 0},
                                              Notification{12, told(L"c"), L"", 50}));
    expectNoError();
}

TEST_F(CRegistryKeyMtElementTest, MakesAKeyOnceMore) {
    key.make(L"a\\b");
    ASSERT_TRUE(loadComponent(element("create", L"a")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(key.keys(), ElementsAre(L"a", L"a\\b"));
}

TEST_F(CRegistryKeyMtElementTest, RemovesTheKeyWithAllInItAndTellsTheHost) {
    key.make(L"a\\b\\c");
    key.make(L"d");
    ASSERT_TRUE(
        loadComponent(element("create", L"e") + element("remove", L"a", "Title='Removing it'")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(key.keys(), ElementsAre(L"d", L"e"));
    EXPECT_THAT(observer.updates, ElementsAre(Notification{12, told(L"e"), L"", 0},
                                              Notification{13, told(L"a"), L"Removing it", 50}));
    expectNoError();
}

TEST_F(CRegistryKeyMtElementTest, WalksItsChildrenAfterwardsAlsoWhenThereIsNothingToRemove) {
    ASSERT_TRUE(
        loadComponent(element("remove", L"absent", {}, "<RegistryKey Action='create' Key='b'/>")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(key.keys(), ElementsAre(L"absent", L"absent\\b"));
    EXPECT_THAT(observer.updates, ElementsAre(Notification{13, told(L"absent"), L"", 0},
                                              Notification{12, told(L"absent\\b"), L"", 0}));
}

TEST_F(CRegistryKeyMtElementTest, DescendsOnlyWhenItsWorkIsDone) {
    key.make(L"made");
    const RefusedKey refused(key.make(L"refused"));
    struct Row {
        const char* action;
        const wchar_t* name;
        bool done;
    };
    const Row rows[] = {{"create", L"made", true},
                        {"create", L"refused", false},
                        {"remove", L"made", true},
                        {"remove", L"refused", false},
                        {"unknown", L"a", false}};
    for (const auto& [action, name, done] : rows) {
        SCOPED_TRACE(action + (" " + narrow(name)));
        context.unload();
        ASSERT_TRUE(loadComponent(element(action, name)));
        CRegistryKeyMtElement element(*context.findElementById(L"RegistryKey", L"K"), context);
        std::wstring ignored;
        ASSERT_TRUE(element.readDeclaredAttributes(context, ignored));
        bool descend = !done;

        EXPECT_EQ(element.prepare(descend, context), done ? 0 : -1);

        EXPECT_EQ(descend, done);
    }
}

TEST_F(CRegistryKeyMtElementTest, HasNothingToDoAfterItsChildren) {
    ASSERT_TRUE(loadComponent(element("create", L"a")));
    CRegistryKeyMtElement element(*context.findElementById(L"RegistryKey", L"K"), context);

    EXPECT_EQ(element.execute(context), 0);

    EXPECT_THAT(key.keys(), IsEmpty());
    EXPECT_EQ(context.getProduct()->actionInfo.code, 0u);
}

TEST_F(CRegistryKeyMtElementTest, WorksInThePredefinedKeyOfItsRoot) {
    const std::pair<std::string, HKEY> rows[] = {
        {"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},     {"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
        {"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},   {"HKEY_USERS", HKEY_USERS},
        {"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG},
    };
    for (const auto& [name, root] : rows) {
        SCOPED_TRACE(name);
        context.unload();
        const MadeKeys made;
        ASSERT_TRUE(loadComponent("<RegistryKey Action='create' Key='a\\b' Root='" + name + "'/>"));

        EXPECT_EQ(run(), 0);

        EXPECT_THAT(made.list, ElementsAre(Pair(root, L"a\\b")));
    }
}

TEST_F(CRegistryKeyMtElementTest, TextsThatJustFitReachTheHost) {
    const std::string title(511, 't');
    const std::string path(500, 'k');  // 510 characters with the root's
    const MadeKeys made;
    ASSERT_TRUE(loadComponent("<RegistryKey Action='create' Root='HKEY_USERS' Key='" + path +
                              "' Title='" + title + "'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(observer.updates,
                ElementsAre(Notification{12, L"HKEY_USERS\\" + std::wstring(500, L'k'),
                                         std::wstring(511, L't'), 0}));
    EXPECT_EQ(made.list.size(), 1u);
}

TEST_F(CRegistryKeyMtElementTest, TextsThatDoNotFitEndTheProcessBeforeTheKeyIsTouched) {
    const FakeCreate create([](auto...) -> LSTATUS { std::exit(EXIT_FAILURE); });
    const FakeCall<registryCalls, &RegistryCalls::RegOpenKeyExW> open(
        [](auto...) -> LSTATUS { std::exit(EXIT_FAILURE); });
    for (const std::string action : {"create", "remove"})
        for (const auto& [keyLength, titleLength] : {std::pair(501, 0), std::pair(1, 512)}) {
            SCOPED_TRACE(action + " " + std::to_string(keyLength));
            context.unload();
            ASSERT_TRUE(loadComponent("<RegistryKey Action='" + action +
                                      "' Root='HKEY_USERS' Key='" + std::string(keyLength, 'k') +
                                      "' Title='" + std::string(titleLength, 't') + "'/>"));

            EXPECT_EXIT(run(), endedByInvalidParameter(), "");
        }
}

TEST_F(CRegistryKeyMtElementTest, ReplacesReferencesInItsAttributes) {
    ASSERT_TRUE(loadComponent(element("create", L"#V", "Title='about #V'"),
                              "<Variable Id='V' Type='string' Value='x'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(key.keys(), ElementsAre(L"x"));
    EXPECT_THAT(heardTitles(observer), ElementsAre(L"about x"));
}

// Nesting.

TEST_F(CRegistryKeyMtElementTest, NestedKeyAddsToTheKeyAroundIt) {
    const std::string inner =
        "<RegistryKey Action='create' Key='B'><RegistryKey Action='create' Key='C\\D'/>"
        "</RegistryKey>";
    for (const wchar_t* outer : {L"A", L"A\\"}) {
        SCOPED_TRACE(narrow(outer));
        context.unload();
        observer.updates.clear();
        ASSERT_TRUE(loadComponent(element("create", outer, {}, inner)));

        EXPECT_EQ(run(), 0);

        EXPECT_THAT(key.keys(), ElementsAre(L"A", L"A\\B", L"A\\B\\C", L"A\\B\\C\\D"));
        EXPECT_THAT(observer.updates, ElementsAre(Notification{12, told(outer), L"", 0},
                                                  Notification{12, told(L"A\\B"), L"", 0},
                                                  Notification{12, told(L"A\\B\\C\\D"), L"", 0}));
    }
}

TEST_F(CRegistryKeyMtElementTest, NestedKeyAddsToAnEmptyKeyWithoutASeparator) {
    const MadeKeys made;
    ASSERT_TRUE(
        loadComponent("<RegistryKey Action='create' Root='HKEY_USERS' Key=''>"
                      "<RegistryKey Action='create' Key='B'/></RegistryKey>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(made.list, ElementsAre(Pair(HKEY_USERS, L""), Pair(HKEY_USERS, L"B")));
}

TEST_F(CRegistryKeyMtElementTest, NestedKeyTakesTheRootAroundItUnlessItHasItsOwn) {
    const MadeKeys made;
    ASSERT_TRUE(
        loadComponent("<RegistryKey Action='create' Root='HKEY_USERS' Key='A'>"
                      "<RegistryKey Action='create' Key='B'>"
                      "<RegistryKey Action='create' Key='C' Root='HKEY_CLASSES_ROOT'>"
                      "<RegistryKey Action='create' Key='D'/>"
                      "</RegistryKey></RegistryKey></RegistryKey>"));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(made.list, ElementsAre(Pair(HKEY_USERS, L"A"), Pair(HKEY_USERS, L"A\\B"),
                                       Pair(HKEY_CLASSES_ROOT, L"A\\B\\C"),
                                       Pair(HKEY_CLASSES_ROOT, L"A\\B\\C\\D")));
}

TEST_F(CRegistryKeyMtElementTest, NestedKeyFindsTheKeyAroundItBeyondConditions) {
    ASSERT_TRUE(
        loadComponent(element("create", L"a", {},
                              "<Condition Expression='1'><Condition Expression='1'>"
                              "<RegistryKey Action='create' Key='b'/></Condition></Condition>")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(key.keys(), ElementsAre(L"a", L"a\\b"));
}

TEST_F(CRegistryKeyMtElementTest, FalseConditionAroundAKeyKeepsItFromBeingMade) {
    ASSERT_TRUE(loadComponent(
        element("create", L"a", {},
                "<Condition Expression='0'><RegistryKey Action='create' Key='b'/></Condition>")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(key.keys(), ElementsAre(L"a"));
}

TEST_F(CRegistryKeyMtElementTest, NestedKeysDoNotTakeTheTitleAroundThem) {
    ASSERT_TRUE(loadComponent(
        element("create", L"a", "Title='outer'", "<RegistryKey Action='create' Key='b'/>")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L"outer", L""));
}

// Modes.

TEST_F(CRegistryKeyMtElementTest, ActsAlikeInAllModes) {
    ASSERT_TRUE(loadComponent(element("create", L"a")));
    constexpr int32_t unknownMode = 7;
    const int32_t modes[] = {RUNMODE_INSTALL, RUNMODE_UNINSTALL, RUNMODE_UPGRADE, unknownMode};
    for (const int32_t mode : modes) {
        SCOPED_TRACE(mode);
        RegDeleteKeyW(HKEY_CURRENT_USER, key.path(L"a").c_str());

        EXPECT_EQ(run(mode), 0);

        EXPECT_THAT(key.keys(), ElementsAre(L"a"));
    }
}

TEST_F(CRegistryKeyMtElementTest, OnLimitsItAndAllInItToItsModes) {
    ASSERT_TRUE(loadComponent(
        element("create", L"a", "On='installupgrade'", "<RegistryKey Action='create' Key='b'/>")));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(key.keys(), IsEmpty());
    EXPECT_THAT(observer.updates, IsEmpty());

    EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    EXPECT_THAT(key.keys(), ElementsAre(L"a", L"a\\b"));
}

// Failure.

class RegistryKeyFailureTest : public CRegistryKeyMtElementTest,
                               public testing::WithParamInterface<
                                   std::tuple<std::pair<const char*, uint32_t>, const char*>> {};

INSTANTIATE_TEST_SUITE_P(
    ActionsAndVital, RegistryKeyFailureTest,
    testing::Combine(testing::Values(std::pair("create", 12u), std::pair("remove", 13u)),
                     testing::Values("", "Vital='yes'", "Vital='no'", "Vital=''")));

TEST_P(RegistryKeyFailureTest, EndsTheRunWithoutAQuestionWhateverVitalSays) {
    const auto& [action, vital] = GetParam();
    const RefusedKey refused(key.make(L"refused"));
    ASSERT_TRUE(loadComponent(
        element("create", L"before") +
        element(action.first, L"refused", std::string("Title='The title' ") + vital, value) +
        element("create", L"behind")));
    observer.answers = {ANSWER_IGNORE};

    EXPECT_EQ(run(), -1);

    expectError(action.second, told(L"refused"), L"The title", L"");
    EXPECT_THAT(observer.updates,
                ElementsAre(Notification{12, told(L"before"), L"", 0},
                            Notification{action.second, told(L"refused"), L"The title", 33}));
    EXPECT_THAT(observer.failures, IsEmpty());
    EXPECT_THAT(key.keys(), ElementsAre(L"before", L"refused"));
}

TEST_F(CRegistryKeyMtElementTest, FailureDoesNotTellTheErrorOfTheSystem) {
    ASSERT_TRUE(loadComponent(element("create", L"a")));
    const FakeCreate create([](auto...) {
        SetLastError(ERROR_DISK_FULL);
        return ERROR_ACCESS_DENIED;
    });

    EXPECT_EQ(run(), -1);

    expectError(12, told(L"a"), L"", L"");
}

TEST_F(CRegistryKeyMtElementTest, FailedNestedKeyEndsTheRun) {
    const RefusedKey refused(key.make(L"a\\refused"));
    ASSERT_TRUE(loadComponent(element("create", L"a", "Vital='no'",
                                      "<RegistryKey Action='remove' Key='refused' Vital='no'/>"
                                      "<RegistryKey Action='create' Key='behind'/>")));

    EXPECT_EQ(run(), -1);

    expectError(13, told(L"a\\refused"), L"", L"");
    EXPECT_THAT(key.keys(), ElementsAre(L"a", L"a\\refused"));
}

TEST_F(CRegistryKeyMtElementTest, ChildThatItCannotHoldFailsWhenItIsReached) {
    ASSERT_TRUE(loadComponent(element("create", L"a", {}, value + "<Caution Title='x'/>")));

    EXPECT_EQ(run(), -1);

    expectErrorMessage(L"(RegistryKey,K) has a illegal child element(Caution)");
    EXPECT_NE(readValue(key.path(L"a"), L"v").bytes, "<missing>");
}

}  // namespace
