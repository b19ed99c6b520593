// How the function of a custom action is found and called, and what keeps it from being called.

#include "motion/CCustomActionMtElement.h"

#include <gmock/gmock.h>

#include "support/ChildProcess.h"
#include "support/CustomActionScriptTest.h"
#include "support/FakeCall.h"
#include "support/Heard.h"
#include "support/LogFile.h"
#include "system/LibraryCalls.h"
#include "system/ShellCalls.h"
#include "system/TextCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;
using Notification = RecordingObserver::Notification;

namespace {

using CustomActionCallTest = CustomActionScriptTest;

// How the function is found and called.

TEST_F(CustomActionCallTest, TellsTheHostAndTheLogBeforeTheLibraryIsLoaded) {
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

TEST_F(CustomActionCallTest, HasAnEmptyTitleWithoutOne) {
    ASSERT_TRUE(loadFragment(action("answer", "Return='check'")));

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(heardTitles(observer), ElementsAre(L""));
}

TEST_F(CustomActionCallTest, GivesTheLoaderTheTextAsItStands) {
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

TEST_F(CustomActionCallTest, FindsALibraryBesideTheProgramByItsBareName) {
    ASSERT_TRUE(loadFragment(
        "<CustomAction DllFile='temz_test_actions' DllEntry='answer' Return='check'/>"));

    EXPECT_EQ(run(), 0);

    EXPECT_EQ(call.calls, 1u);
}

TEST_F(CustomActionCallTest, LoadsTheLibraryForOneCallAlone) {
    ASSERT_TRUE(loadFragment(action("countCalls", "Return='check'") +
                             action("countCalls", "Return='check'")));
    observer.answers = {ANSWER_IGNORE, ANSWER_IGNORE};

    EXPECT_EQ(run(), 0);

    ASSERT_EQ(observer.failures.size(), 2u);
    EXPECT_EQ(observer.failures[0].systemError, 1u);
    EXPECT_EQ(observer.failures[1].systemError, 1u);
    EXPECT_EQ(GetModuleHandleW(library.c_str()), nullptr);
}

TEST_F(CustomActionCallTest, UnloadsTheLibraryOnEveryPathThatLoadedIt) {
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

TEST_F(CustomActionCallTest, UnloadsTheLibraryBehindTheLogsLineAndAheadOfTheErrorRecord) {
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

TEST_F(CustomActionCallTest, EntryBeyondTheCodePageIsSoughtByWhatBecomesOfIt) {
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

TEST_F(CustomActionCallTest, EntryThatCannotBeConvertedIsSilentlyLeftOut) {
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

TEST_F(CustomActionCallTest, TextsOf512CharactersEndTheProcess) {
    const std::string fits(511, 'x');
    const std::pair<std::string, std::string> rows[] = {{fits + "x", fits}, {fits, fits + "x"}};
    for (const auto& [entry, title] : rows) {
        context.unload();
        ASSERT_TRUE(loadFragment(action(entry, "Return='check' Title='" + title + "'")));

        EXPECT_EXIT(run(), endedByInvalidParameter(), "");
    }
}

TEST_F(CustomActionCallTest, TextsOf511CharactersReachTheHost) {
    const std::string fits(511, 'x');
    const std::wstring heard(511, L'x');
    ASSERT_TRUE(loadFragment(action(fits, "Return='check' Title='" + fits + "'")));

    EXPECT_EQ(run(), -1);

    EXPECT_THAT(observer.updates, ElementsAre(Notification{ACTION_CUSTOM_ACTION, heard, heard, 0}));
    EXPECT_EQ(failure(), messageFailure((L"Failed to get Address(" + heard).substr(0, 511)));
}

// What keeps the function from being called.

TEST_F(CustomActionCallTest, FailsWhenAnAttributeIsNotSettled) {
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

TEST_F(CustomActionCallTest, FailsWithoutARootDirectory) {
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

TEST_F(CustomActionCallTest, FailsWhenTheLibraryDoesNotLoad) {
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

TEST_F(CustomActionCallTest, FailsWhenTheLibraryHasNoSuchEntry) {
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

}  // namespace
