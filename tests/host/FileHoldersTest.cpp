#include "host/FileHolders.h"

#include <gmock/gmock.h>

#include <restartmanager.h>

#include <cstring>
#include <functional>
#include <map>

#include "support/FakeCall.h"
#include "support/LockedFile.h"
#include "support/Requirements.h"
#include "support/TestFolder.h"

namespace {

TEST(FileHoldersTest, AreThoseThatTheRestartManagerNames) {
    REQUIRES_WINDOWS("has a restart manager that knows who holds a file");
    const TestFolder folder;
    const std::wstring held = folder.write(L"held.txt", "");
    const LockedFile lock(held);
    const std::wstring thisProcess = L" (" + std::to_wstring(GetCurrentProcessId()) + L")";

    EXPECT_THAT(holdersOf(held), testing::ElementsAre(testing::EndsWith(thisProcess)));
}

TEST(FileHoldersTest, AreNoneWhereTheRestartManagerKnowsNobody) {
    REQUIRES_WINE("has a restart manager that answers every question and knows nobody");
    const TestFolder folder;
    const std::wstring held = folder.write(L"held.txt", "");
    const LockedFile lock(held);

    EXPECT_THAT(holdersOf(held), testing::IsEmpty());
}

TEST(FileHoldersTest, AreNoneOfAFileThatNobodyHoldsOrThatIsNotThere) {
    const TestFolder folder;
    EXPECT_THAT(holdersOf(folder.write(L"free.txt", "")), testing::IsEmpty());
    EXPECT_THAT(holdersOf(folder.path(L"none.txt")), testing::IsEmpty());
}

/// A restart manager that answers as the test wants.
class FakeRestartManager {
public:
    FakeRestartManager() {
        current = this;
        startAnswer = registerAnswer = ERROR_SUCCESS;
    }

    static inline FakeRestartManager* current = nullptr;
    DWORD startAnswer;
    DWORD registerAnswer;
    const char* lacking = "";  ///< a function that it doesn't have
    std::function<DWORD(UINT* needed, UINT* count, RM_PROCESS_INFO* list)> getList;
    std::vector<std::wstring> registered;
    int openSessions = 0;

private:
    static DWORD WINAPI startSession(DWORD* session, DWORD, wchar_t*) {
        *session = 7;
        current->openSessions += current->startAnswer == ERROR_SUCCESS;
        return current->startAnswer;
    }
    static DWORD WINAPI registerResources(DWORD session, UINT count, const wchar_t** files, UINT,
                                          RM_UNIQUE_PROCESS*, UINT, const wchar_t**) {
        EXPECT_EQ(session, 7u);
        current->registered.assign(files, files + count);
        return current->registerAnswer;
    }
    static DWORD WINAPI list(DWORD session, UINT* needed, UINT* count, RM_PROCESS_INFO* list,
                             DWORD*) {
        EXPECT_EQ(session, 7u);
        return current->getList(needed, count, list);
    }
    static DWORD WINAPI endSession(DWORD session) {
        EXPECT_EQ(session, 7u);
        --current->openSessions;
        return ERROR_SUCCESS;
    }

    const FakeCall<holderCalls, &HolderCalls::GetProcAddress> find{
        [this](HMODULE, const char* name) {
            const std::map<std::string, void*> functions = {
                {"RmStartSession", reinterpret_cast<void*>(&startSession)},
                {"RmRegisterResources", reinterpret_cast<void*>(&registerResources)},
                {"RmGetList", reinterpret_cast<void*>(&list)},
                {"RmEndSession", reinterpret_cast<void*>(&endSession)},
            };
            return std::strcmp(name, lacking) == 0 ? nullptr
                                                   : reinterpret_cast<FARPROC>(functions.at(name));
        }};
};

/// Answers with this process, under a name.
DWORD nameOne(UINT* needed, UINT* count, RM_PROCESS_INFO* list) {
    *needed = 1;
    if (*count < 1)
        return ERROR_MORE_DATA;
    *count = 1;
    list[0].Process.dwProcessId = 4312;
    std::wcscpy(list[0].strAppName, L"sync.exe");
    return ERROR_SUCCESS;
}

TEST(FileHoldersTest, AreToldByTheirNamesAndNumbers) {
    FakeRestartManager manager;
    manager.getList = nameOne;

    EXPECT_THAT(holdersOf(L"C:\\a.dll"), testing::ElementsAre(L"sync.exe (4312)"));

    EXPECT_THAT(manager.registered, testing::ElementsAre(L"C:\\a.dll"));
    EXPECT_EQ(manager.openSessions, 0);
}

TEST(FileHoldersTest, AreAskedForAgainWhereMoreHaveComeMeanwhileButNotForEver) {
    FakeRestartManager manager;
    int questions = 0;
    manager.getList = [&questions](UINT* needed, UINT* count, RM_PROCESS_INFO* list) -> DWORD {
        if (++questions == 2) {
            *needed = 2;
            return ERROR_MORE_DATA;
        }
        return nameOne(needed, count, list);
    };
    EXPECT_THAT(holdersOf(L"a"), testing::ElementsAre(L"sync.exe (4312)"));

    manager.getList = [](UINT* needed, UINT* count, RM_PROCESS_INFO*) -> DWORD {
        *needed = *count + 1;
        return ERROR_MORE_DATA;
    };
    EXPECT_THAT(holdersOf(L"a"), testing::IsEmpty());
    EXPECT_EQ(manager.openSessions, 0);
}

TEST(FileHoldersTest, AreNoneWhereTheRestartManagerFails) {
    FakeRestartManager manager;
    manager.getList = [](UINT*, UINT*, RM_PROCESS_INFO*) -> DWORD { return ERROR_WRITE_FAULT; };
    EXPECT_THAT(holdersOf(L"a"), testing::IsEmpty());
    manager.getList = nameOne;
    manager.registerAnswer = ERROR_WRITE_FAULT;
    EXPECT_THAT(holdersOf(L"a"), testing::IsEmpty());
    EXPECT_EQ(manager.openSessions, 0);
    manager.registerAnswer = ERROR_SUCCESS;
    manager.startAnswer = ERROR_WRITE_FAULT;
    EXPECT_THAT(holdersOf(L"a"), testing::IsEmpty());
}

TEST(FileHoldersTest, AreNoneWhereThereIsNoWholeRestartManager) {
    FakeRestartManager manager;
    manager.getList = nameOne;
    for (const char* name :
         {"RmStartSession", "RmRegisterResources", "RmGetList", "RmEndSession"}) {
        manager.lacking = name;
        EXPECT_THAT(holdersOf(L"a"), testing::IsEmpty()) << name;
    }
    manager.lacking = "";
    const FakeCall<holderCalls, &HolderCalls::LoadLibraryExW> noLibrary(
        [](auto...) { return nullptr; });
    EXPECT_THAT(holdersOf(L"a"), testing::IsEmpty());
}

}  // namespace
