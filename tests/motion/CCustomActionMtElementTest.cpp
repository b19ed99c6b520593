#include "motion/CCustomActionMtElement.h"

#include <gmock/gmock.h>

#include <array>
#include <bit>

#include "elements/ElementFactory.h"
#include "support/ActionCall.h"
#include "support/AllowedChildren.h"
#include "support/ChildProcess.h"
#include "support/Declarations.h"
#include "support/Failure.h"
#include "support/FakeCall.h"
#include "support/Heard.h"
#include "support/LogFile.h"
#include "support/ScriptTest.h"
#include "support/Text.h"
#include "support/Thrown.h"
#include "system/LibraryCalls.h"
#include "system/ShellCalls.h"
#include "system/SystemCalls.h"
#include "system/TextCalls.h"

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Pair;
using Notification = RecordingObserver::Notification;

namespace {

const std::string rootDirectory = "<Directory Id='APPLICATIONROOTDIRECTORY' Path='C:\\app'/>";

/// Runs scripts that call functions of the action library, which reports to `call`.
class CCustomActionMtElementTest : public ScriptTest {
protected:
    /// A call of a function of the library, with further attributes.
    std::string action(const std::string& entry, const std::string& attributes) const {
        return "<CustomAction Id='A' DllFile='" + narrow(library) + "' DllEntry='" + entry + "' " +
               attributes + "/>";
    }

    /// Loads a script whose sequence holds one fragment of these children.
    bool loadFragment(const std::string& children, const std::string& directory = rootDirectory,
                      const std::string& variables = {}) {
        const bool loaded = loadProduct(directory + "<InstallExecuteSequence><Fragment Id='F'>" +
                                            children + "</Fragment></InstallExecuteSequence>",
                                        variables);
        context.getProduct()->observerData = &call;
        return loaded;
    }

    XmlHandlePtr node() { return context.findElementById(L"CustomAction", L"A"); }

    void answerWith(uint32_t result, const std::wstring& text) {
        answerText = text;
        call.result = result;
        call.text = answerText.c_str();
        call.textLength = answerText.size();
    }

    Failure failure() { return Failure(context.getProduct()->errorInfo); }

    const std::wstring library = testProgramDirectory() + L"\\temz_test_actions.dll";
    std::wstring answerText;
    ActionCall call{};
};

// What the element asks of the script.

TEST_F(CCustomActionMtElementTest, DeclaresItsAttributesInOrder) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check' Vital='no'")));
    const MotionElementPtr element = CreateMotionElement(node().get(), context, nullptr);
    AttributeRecord record;

    EXPECT_THAT(declaredBy(*element),
                ElementsAre(Pair(L"DllFile", true), Pair(L"DllEntry", true), Pair(L"Return", true),
                            Pair(L"On", false), Pair(L"Title", false)));
    EXPECT_THAT(derivedBy(*element), IsEmpty());
    EXPECT_FALSE(element->getAttribute(L"Vital", record));
}

TEST_F(CCustomActionMtElementTest, CannotBeMadeWithoutWhatItDemands) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"DllEntry='e' Return='r'", L"DllFile"},
        {"DllFile='f' Return='r'", L"DllEntry"},
        {"DllFile='f' DllEntry='e'", L"Return"},
    };
    for (const auto& [attributes, missing] : rows) {
        SCOPED_TRACE(attributes);
        context.unload();
        ASSERT_TRUE(loadFragment("<CustomAction Id='A' " + attributes + "/>"));

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(
            failure(),
            messageFailure(
                L"Create Motion Element error:(CustomAction,A) cant get the require explicit " +
                missing + L"attribute.(Fragment,F) cann't create child element(CustomAction)"));
    }
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CCustomActionMtElementTest, FailsWhenItsAttributesWereNeverRead) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));
    CCustomActionMtElement element(*node(), context);
    context.getProduct()->observer = &observer;

    EXPECT_EQ(element.execute(context), -1);

    EXPECT_EQ(failure(), messageFailure(L"(CustomAction,A) can't get DllFile attribute."));
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_EQ(call.calls, 0u);
}

TEST_F(CCustomActionMtElementTest, TakesNoChildren) {
    ASSERT_TRUE(
        loadFragment("<CustomAction Id='A' DllFile='f' DllEntry='e' Return='r'>"
                     "<Caution Title='a'/></CustomAction>"));
    EXPECT_THAT(allowedChildren(CCustomActionMtElement(*node(), context)), IsEmpty());

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(errorMessage(), L"(CustomAction,A) has a illegal child element(Caution)");
    EXPECT_THAT(observer.updates, IsEmpty());
}

TEST_F(CCustomActionMtElementTest, StandsForNoOtherElement) {
    ASSERT_TRUE(loadFragment(""));
    const XmlHandlePtr fragment = context.findElementById(L"Fragment", L"F");

    EXPECT_EQ(thrownBy([&] { CCustomActionMtElement(*fragment, context); }),
              L"Failed to create element (Fragment,F)");
}

TEST_F(CCustomActionMtElementTest, OnLimitsItToItsModes) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check' On='uninstall'")));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_EQ(call.calls, 0u);
    EXPECT_THAT(observer.updates, IsEmpty());

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_EQ(call.calls, 1u);
}

TEST_F(CCustomActionMtElementTest, CallsInEveryMode) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

    for (const int32_t mode : {0, 1, 2, 7})
        EXPECT_EQ(run(mode), 0) << mode;

    EXPECT_EQ(call.calls, 4u);
}

// What the function is given.

TEST_F(CCustomActionMtElementTest, GivesTheRecordByteByByte) {
    FakeCall<systemCalls, &SystemCalls::GetVersionExW> ask([](OSVERSIONINFOW* version) {
        version->dwMajorVersion = 0x01020304;
        version->dwMinorVersion = 0x05060708;
        return TRUE;
    });
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

    EXPECT_EQ(run(), 0);

    std::vector<unsigned char> expected = {4, 3, 2, 1, 8, 7, 6, 5, 1, 0, 0, 0};
    for (const auto byte : std::bit_cast<std::array<unsigned char, 8>>(&call))
        expected.push_back(byte);
    EXPECT_STREQ(reinterpret_cast<const char*>(call.params), "C:\\app\\");
    EXPECT_THAT(std::vector(call.params + 260, call.params + 280), ElementsAreArray(expected));
}

TEST_F(CCustomActionMtElementTest, TellsOnlyASixtyFourBitSystemFromOthers) {
    for (const bool tells64Bit : {true, false}) {
        FakeCall<systemCalls, &SystemCalls::GetProcAddress> find(
            [&](auto... arguments) { return tells64Bit ? find.real(arguments...) : nullptr; });
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

        EXPECT_EQ(run(), 0);

        EXPECT_THAT(std::vector(call.params + 268, call.params + 272),
                    ElementsAre(tells64Bit ? 1 : 0, 0, 0, 0));
    }
}

TEST_F(CCustomActionMtElementTest, GivesAnEmptyBufferOf1024Characters) {
    answerWith(0, std::wstring(1023, L'x'));
    ASSERT_TRUE(
        loadFragment(action("answer", "Return='check'") + action("answer", "Return='check'")));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(call.calls, 2u);
    EXPECT_EQ(call.capacity, 1024u);
    EXPECT_THAT(call.message, Each(L'\0'));
}

TEST_F(CCustomActionMtElementTest, CallsOnTheThreadOfTheRun) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(call.thread, GetCurrentThreadId());
}

TEST_F(CCustomActionMtElementTest, RootDirectoryEndsInOneSeparatorOfEitherKind) {
    const std::pair<std::string, std::string> rows[] = {{"C:\\app", "C:\\app\\"},
                                                        {"C:\\app\\", "C:\\app\\"},
                                                        {"C:\\app/", "C:\\app/"},
                                                        {"C:/a b/c", "C:/a b/c\\"},
                                                        {"/", "/"}};
    for (const auto& [path, expected] : rows) {
        SCOPED_TRACE(path);
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='check'"),
                                 "<Directory Id='APPLICATIONROOTDIRECTORY' Path='" + path + "'/>"));
        const LogFile log;

        EXPECT_EQ(run(), 0);

        EXPECT_EQ(reinterpret_cast<const char*>(call.params), expected);
        EXPECT_THAT(log.lines(), Contains("[INFO] " + expected));
    }
}

TEST_F(CCustomActionMtElementTest, RootDirectoryFillsItsFieldUpToTheTerminator) {
    const std::string path(258, 'd');
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'"),
                             "<Directory Id='APPLICATIONROOTDIRECTORY' Path='" + path + "'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(reinterpret_cast<const char*>(call.params), path + "\\");
}

TEST_F(CCustomActionMtElementTest, RootDirectoryOf260BytesEndsTheProcess) {
    const std::string path(259, 'd');
    for (const std::string& element :
         {action("answer", "Return='check'"),
          std::string("<CustomAction DllFile='absent' DllEntry='answer' Return='check'/>")}) {
        context.unload();
        ASSERT_TRUE(loadFragment(element,
                                 "<Directory Id='APPLICATIONROOTDIRECTORY' Path='" + path + "'/>"));

        EXPECT_EXIT(run(), endedByInvalidParameter(), "");
    }
}

// How the function is found and called.

TEST_F(CCustomActionMtElementTest, TellsTheHostAndTheLogBeforeTheLibraryIsLoaded) {
    const LogFile log;
    ASSERT_TRUE(
        loadFragment("<Caution Title='c'/>" + action("answer", "Return='check' Title='A title'")));
    std::vector<Notification> updatesBefore;
    std::vector<std::string> linesBefore;
    FakeCall<libraryCalls, &LibraryCalls::LoadLibraryW> open([&](auto file) {
        updatesBefore = observer.updates;
        linesBefore = log.lines();
        return open.real(file);
    });

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(updatesBefore,
                ElementsAre(Notification{ACTION_CAUTION, L"", L"c", 0},
                            Notification{ACTION_CUSTOM_ACTION, L"answer", L"A title", 50}));
    EXPECT_THAT(linesBefore, ElementsAre("[INFO] callDllEntry:" + narrow(library) + ";answer",
                                         "[INFO] C:\\app\\"));
    EXPECT_EQ(log.lines(), linesBefore);
}

TEST_F(CCustomActionMtElementTest, HasAnEmptyTitleWithoutOne) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L""));
}

TEST_F(CCustomActionMtElementTest, GivesTheLoaderTheTextAsItStands) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"a", L"a"},
        {"sub\\a.dll", L"sub\\a.dll"},
        {"C:/sub/a.dll", L"C:/sub/a.dll"},
        {"[APPLICATIONROOTDIRECTORY]a.dll", L"C:\\app\\a.dll"},
        {"", L""},
    };
    for (const auto& [file, expected] : rows) {
        SCOPED_TRACE(file);
        context.unload();
        ASSERT_TRUE(loadFragment("<CustomAction DllFile='" + file +
                                 "' DllEntry='answer' Return='check'/>"));
        std::wstring loaded = L"<nothing>";
        FakeCall<libraryCalls, &LibraryCalls::LoadLibraryW> open([&](auto name) {
            loaded = name;
            return nullptr;
        });

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(loaded, expected);
    }
}

TEST_F(CCustomActionMtElementTest, FindsALibraryBesideTheProgramByItsBareName) {
    ASSERT_TRUE(loadFragment(
        "<CustomAction DllFile='temz_test_actions' DllEntry='answer' Return='check'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(call.calls, 1u);
}

TEST_F(CCustomActionMtElementTest, LoadsTheLibraryForOneCallAlone) {
    ASSERT_TRUE(loadFragment(action("countCalls", "Return='check'") +
                             action("countCalls", "Return='check'")));
    observer.answers = {ANSWER_IGNORE, ANSWER_IGNORE};

    EXPECT_EQ(run(), 0);

    ASSERT_EQ(observer.failures.size(), 2u);
    EXPECT_EQ(observer.failures[0].systemError, 1u);
    EXPECT_EQ(observer.failures[1].systemError, 1u);
    EXPECT_EQ(GetModuleHandleW(library.c_str()), nullptr);
}

TEST_F(CCustomActionMtElementTest, UnloadsTheLibraryOnEveryPathThatLoadedIt) {
    struct Row {
        std::string element;
        int32_t result;
        size_t unloadings;
    };
    const Row rows[] = {
        {action("answer", "Return='check'"), 0, 1},
        {action("countCalls", "Return='check'"), 1, 1},
        {action("absent", "Return='check'"), -1, 1},
        {"<CustomAction DllFile='C:\\absent.dll' DllEntry='answer' Return='check'/>", -1, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.element);
        context.unload();
        ASSERT_TRUE(loadFragment(row.element));
        HMODULE loaded = nullptr;
        FakeCall<libraryCalls, &LibraryCalls::LoadLibraryW> open(
            [&](auto file) { return loaded = open.real(file); });
        std::vector<HMODULE> unloaded;
        FakeCall<libraryCalls, &LibraryCalls::FreeLibrary> close([&](HMODULE module) {
            unloaded.push_back(module);
            close.real(module);
            return FALSE;
        });

        EXPECT_EQ(run(), row.result);

        EXPECT_EQ(unloaded, std::vector<HMODULE>(row.unloadings, loaded));
    }
}

TEST_F(CCustomActionMtElementTest, UnloadsTheLibraryBehindTheLogsLineAndAheadOfTheErrorRecord) {
    answerWith(7, L"It went wrong.");
    const std::pair<std::string, size_t> rows[] = {{"absent", 3}, {"answer", 2}};
    for (const auto& [entry, lines] : rows) {
        SCOPED_TRACE(entry);
        const LogFile log;
        context.unload();
        ASSERT_TRUE(loadFragment(action(entry, "Return='check'")));
        FakeCall<libraryCalls, &LibraryCalls::FreeLibrary> close([&](HMODULE module) {
            EXPECT_EQ(log.lines().size(), lines);
            EXPECT_EQ(failure(), noFailure);
            return close.real(module);
        });

        EXPECT_NE(run(), 0);

        EXPECT_EQ(close.count, 1);
        EXPECT_EQ(log.lines().size(), lines);
        EXPECT_NE(failure(), noFailure);
    }
}

TEST_F(CCustomActionMtElementTest, EntryBeyondTheCodePageIsSoughtByWhatBecomesOfIt) {
    const LogFile log;
    FakeCall<shellCalls, &ShellCalls::SHGetSpecialFolderPathW> getPath(
        [](HWND, wchar_t* path, int, BOOL) {
            wcscpy(path, L"\u0634");
            return TRUE;
        });
    std::string sought;
    FakeCall<libraryCalls, &LibraryCalls::GetProcAddress> find([&](HMODULE, const char* name) {
        sought = name;
        return nullptr;
    });
    ASSERT_TRUE(loadFragment(action("[DesktopFolder]", "Return='check'"),
                             rootDirectory + "<Directory Id='DesktopFolder'/>"));

    EXPECT_EQ(run(), -1);

    EXPECT_EQ(sought, "?\\");
    EXPECT_THAT(observer.updates,
                ElementsAre(Notification{ACTION_CUSTOM_ACTION, L"\u0634\\", L"", 0}));
    EXPECT_EQ(failure(), messageFailure(L"Failed to get Address(?\\)."));
    EXPECT_THAT(log.lines(), ElementsAre("[INFO] callDllEntry:" + narrow(library) + ";?\\",
                                         "[INFO] C:\\app\\", "[ERROR] GetProcAddress ?\\ failed."));
}

TEST_F(CCustomActionMtElementTest, EntryThatCannotBeConvertedIsSilentlyLeftOut) {
    const LogFile log;
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));
    FakeCall<textCalls, &TextCalls::WideCharToMultiByte> convert(
        [&](UINT page, DWORD flags, LPCWCH text, auto... rest) {
            return text == std::wstring(L"answer") ? 0 : convert.real(page, flags, text, rest...);
        });

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(call.calls, 0u);
    EXPECT_THAT(observer.updates, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(failure(), noFailure);
}

TEST_F(CCustomActionMtElementTest, TextsOf512CharactersEndTheProcess) {
    const std::string fits(511, 'x');
    const std::pair<std::string, std::string> rows[] = {{fits + "x", fits}, {fits, fits + "x"}};
    for (const auto& [entry, title] : rows) {
        context.unload();
        ASSERT_TRUE(loadFragment(action(entry, "Return='check' Title='" + title + "'")));

        EXPECT_EXIT(run(), endedByInvalidParameter(), "");
    }
}

TEST_F(CCustomActionMtElementTest, TextsOf511CharactersReachTheHost) {
    const std::string fits(511, 'x');
    const std::wstring heard(511, L'x');
    ASSERT_TRUE(loadFragment(action(fits, "Return='check' Title='" + fits + "'")));

    EXPECT_EQ(run(), -1);

    EXPECT_THAT(observer.updates, ElementsAre(Notification{ACTION_CUSTOM_ACTION, heard, heard, 0}));
    EXPECT_EQ(failure(), messageFailure((L"Failed to get Address(" + heard).substr(0, 511)));
}

// What keeps the function from being called.

TEST_F(CCustomActionMtElementTest, FailsWhenAnAttributeIsNotSettled) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"", L"DllFile"}, {"DllFile='f'", L"DllEntry"}, {"DllFile='f' DllEntry='e'", L"Return"}};
    for (const auto& [attributes, missing] : rows) {
        context.unload();
        ASSERT_TRUE(loadFragment("<CustomAction Id='A' " + attributes + "/>"));
        CCustomActionMtElement element(*context.findElementById(L"CustomAction", L"A"), context);
        std::wstring ignored;
        element.readDeclaredAttributes(context, ignored);

        EXPECT_EQ(element.execute(context), -1);

        EXPECT_EQ(failure(),
                  messageFailure(L"(CustomAction,A) can't get " + missing + L" attribute."));
    }
}

TEST_F(CCustomActionMtElementTest, FailsWithoutARootDirectory) {
    for (const std::string directory :
         {"", "<Directory Id='applicationrootdirectory' Path='C:\\app'/>",
          "<Directory Id='APPLICATIONROOTDIRECTORY' Path=''/>",
          "<Directory Id='APPLICATIONROOTDIRECTORY'/>"}) {
        SCOPED_TRACE(directory);
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='no'"), directory));
        const LogFile log;

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(failure(), messageFailure(L"Can't get application directory."));
        EXPECT_THAT(log.lines(), ElementsAre("[INFO] callDllEntry:" + narrow(library) + ";answer"));
    }
    EXPECT_EQ(call.calls, 0u);
    EXPECT_EQ(observer.updates.size(), 4u);
}

TEST_F(CCustomActionMtElementTest, FailsWhenTheLibraryDoesNotLoad) {
    const std::string junk = narrow(folder.write(L"junk.dll", "junk"));
    for (const std::string& file : {std::string("C:\\no\\absent.dll"), junk, std::string()}) {
        context.unload();
        ASSERT_TRUE(loadFragment("<CustomAction DllFile='" + file +
                                 "' DllEntry='answer' Return='no' Title='t'/>"));
        const LogFile log;

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(narrow(errorMessage()), "Failed to load library(" + file + ").");
        EXPECT_EQ(failure(), messageFailure(errorMessage()));
        EXPECT_THAT(log.lines(),
                    ElementsAre("[INFO] callDllEntry:" + file + ";answer", "[INFO] C:\\app\\"));
    }
    EXPECT_EQ(observer.updates.size(), 3u);
}

TEST_F(CCustomActionMtElementTest, FailsWhenTheLibraryHasNoSuchEntry) {
    for (const std::string entry : {"absent", "Answer", "ANSWER", "answe", "answer ", ""}) {
        SCOPED_TRACE(entry);
        context.unload();
        ASSERT_TRUE(loadFragment(action(entry, "Return='no' Title='t'")));
        const LogFile log;

        EXPECT_EQ(run(), -1);

        EXPECT_EQ(narrow(errorMessage()), "Failed to get Address(" + entry + ").");
        EXPECT_EQ(failure(), messageFailure(errorMessage()));
        EXPECT_THAT(log.lines(), ElementsAre("[INFO] callDllEntry:" + narrow(library) + ";" + entry,
                                             "[INFO] C:\\app\\",
                                             "[ERROR] GetProcAddress " + entry + " failed."));
    }
    EXPECT_EQ(call.calls, 0u);
}

// What becomes of the function's number and text.

TEST_F(CCustomActionMtElementTest, NumberIsTheResultWhenItIsChecked) {
    for (const uint32_t number : {1u, 1234u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(number);
        answerWith(number, L"It went wrong.\r\n");
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='check' Title='A title'")));
        const LogFile log;

        EXPECT_EQ(run(), static_cast<int32_t>(number));

        EXPECT_EQ(failure(), Failure(ACTION_CUSTOM_ACTION, L"answer", L"A title", number,
                                     L"It went wrong.\r\n"));
        EXPECT_EQ(log.lines().size(), 2u);
    }
}

TEST_F(CCustomActionMtElementTest, NumberCountsForTheExactWordAlone) {
    answerWith(7, L"It went wrong.");
    const std::pair<std::string, bool> rows[] = {
        {"check", true},   {"Check", false},  {"CHECK", false}, {"checked", false},
        {"chec", false},   {" check", false}, {"", false},      {"ignore", false},
        {"check ", false}, {"sync", false},   {"yes", false}};
    for (const auto& [word, counts] : rows) {
        SCOPED_TRACE(word);
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='" + word + "'")));
        const LogFile log;

        EXPECT_EQ(run(), counts ? 7 : 0);

        EXPECT_EQ(failure() == noFailure, !counts);
        EXPECT_EQ(log.lines().size(), 2u);
    }
    EXPECT_EQ(call.calls, std::size(rows));
}

TEST_F(CCustomActionMtElementTest, TextOfASuccessIsDropped) {
    answerWith(0, L"All is well.");
    ASSERT_TRUE(loadFragment(action("answer", "Return='check' Title='t'")));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(failure(), noFailure);
    EXPECT_THAT(observer.failures, IsEmpty());
}

TEST_F(CCustomActionMtElementTest, TextEndsAtItsTerminator) {
    answerWith(1, std::wstring(L"seen\0unseen", 11));
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

    EXPECT_EQ(run(), 1);

    EXPECT_EQ(errorMessage(), L"seen");
}

TEST_F(CCustomActionMtElementTest, HostSeesTheFirst511CharactersOfALongText) {
    answerWith(1, std::wstring(511, L'a') + std::wstring(512, L'b'));
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

    EXPECT_EQ(run(), 1);

    EXPECT_EQ(errorMessage(), std::wstring(511, L'a'));
}

TEST_F(CCustomActionMtElementTest, CallGivesBackTheNumberAndTheWholeText) {
    for (const size_t length : {0, 1, 1022, 1023, 1024}) {
        SCOPED_TRACE(length);
        const std::wstring text(length, L'x');
        answerWith(9, text);
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));
        const CCustomActionMtElement element(*node(), context);
        uint32_t result = 0;
        std::wstring message = L"old";

        EXPECT_TRUE(element.callDllEntry(library, "answer", context, result, message));

        EXPECT_EQ(result, 9u);
        EXPECT_EQ(message, text);
    }
}

// What the host and the script decide about a failure.

TEST_F(CCustomActionMtElementTest, IsVitalWhateverTheScriptSays) {
    answerWith(7, L"It went wrong.");
    for (const std::string attributes : {"Vital='no'", "Vital=''", "Vital='yes'", ""}) {
        SCOPED_TRACE(attributes);
        context.unload();
        ASSERT_TRUE(loadFragment(action("answer", "Return='check' " + attributes)));
        observer.failures.clear();

        EXPECT_EQ(run(), 7);

        EXPECT_EQ(observer.failures.size(), 1u);
    }
}

TEST_F(CCustomActionMtElementTest, RetryTellsTheHostAndLoadsTheLibraryAnew) {
    ASSERT_TRUE(loadFragment(action("countCalls", "Return='check'")));
    observer.answers = {ANSWER_RETRY, ANSWER_RETRY, ANSWER_ABORT};
    FakeCall<libraryCalls, &LibraryCalls::LoadLibraryW> open(
        [&](auto file) { return open.real(file); });

    EXPECT_EQ(run(), 1);

    EXPECT_EQ(open.count, 3);
    EXPECT_EQ(observer.updates.size(), 3u);
    for (const ErrorInfo& error : observer.failures)
        EXPECT_EQ(error.systemError, 1u);
}

TEST_F(CCustomActionMtElementTest, RetryThatSucceedsLeavesNoFailure) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));
    FakeCall<libraryCalls, &LibraryCalls::LoadLibraryW> open(
        [&](auto file) { return open.count == 1 ? nullptr : open.real(file); });
    observer.answers = {ANSWER_RETRY};

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(call.calls, 1u);
    EXPECT_EQ(observer.failures.size(), 1u);
    EXPECT_EQ(failure(), noFailure);
}

}  // namespace
