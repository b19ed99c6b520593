#include "trace/Tracer.h"

#include <gmock/gmock.h>

#include <optional>
#include <set>
#include <string>

#include "logging/Log.h"
#include "support/FakeCall.h"
#include "support/FakeFileCalls.h"
#include "system/PathText.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class Listener final : public CallListener {
public:
    void heard(const TracedCall& call) override {
        calls.push_back(call);
        SetLastError(ERROR_INVALID_DATA);
    }

    std::vector<TracedCall> calls;
};

/// The result of a call that nobody asks about, as a success of most.
template <class Result>
Result anyResult() {
    if constexpr (std::is_pointer_v<Result>)
        return reinterpret_cast<Result>(1);
    else
        return Result(1);
}

/// Answers each call, so that none gets through but the conversions of texts, which the tracer
/// needs.
struct AnswerToAll {
    template <auto& table, auto member, class Result, class... Arguments>
    Result around(const char*, Result (*real)(Arguments...),
                  std::type_identity_t<Arguments>... arguments) {
        if constexpr (std::is_same_v<decltype(table), TextCalls&>)
            return real(arguments...);
        else if constexpr (!std::is_void_v<Result>)
            return anyResult<Result>();
    }
};

class TracerTest : public testing::Test {
protected:
    /// Calls through a table with arguments that are all zero.
    template <class Result, class... Arguments>
    static void callWithZeros(Result (*call)(Arguments...)) {
        call(Arguments{}...);
    }

    /// What is heard of a call with this result, which leaves ERROR_ACCESS_DENIED behind.
    template <auto& table, auto member, class Result>
    TracedCall heardOf(Result result) {
        const FakeCall<table, member> fake([&](auto...) {
            SetLastError(ERROR_ACCESS_DENIED);
            return result;
        });
        Tracer tracer(listener);
        const CallWrapper<Tracer> wrapper(tracer);
        callWithZeros(table.*member);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
        return listener.calls.back();
    }

    /// The system error of a call with this result; none when it counts as a success.
    template <auto& table, auto member, class Result>
    std::optional<uint32_t> errorOf(Result result) {
        const TracedCall call = heardOf<table, member>(result);
        if (!call.failed) {
            EXPECT_EQ(call.systemError, 0u);
            return {};
        }
        return call.systemError;
    }

    Listener listener;
};

constexpr std::optional<uint32_t> success;
constexpr uint32_t lastError = ERROR_ACCESS_DENIED;

template <auto& table>
constexpr bool isTold = !isInternal<std::remove_reference_t<decltype(table)>>;
/// Tables whose calls can't be made with arguments that are all zero.
template <auto& table>
constexpr bool needsArguments =
    std::is_same_v<decltype(table), ActionCalls&> || std::is_same_v<decltype(table), LogCalls&> ||
    std::is_same_v<decltype(table), WalkCalls&>;

TEST_F(TracerTest, TellsOfEachCallOfEachTableByGroupAndName) {
    AnswerToAll answer;
    const CallWrapper<AnswerToAll> answered(answer);
    Tracer tracer(listener);
    const CallWrapper<Tracer> traced(tracer);
    std::vector<std::wstring> expected;

    visitCallTables([&]<auto & table> {
        if constexpr (!needsArguments<table>)
            table.visitCalls([&]<auto member>(const char* name) {
                if constexpr (isTold<table>)
                    expected.push_back(textOf(table.group) + L" " + textOf(name));
                callWithZeros(table.*member);
            });
    });

    std::vector<std::wstring> told;
    for (const TracedCall& call : listener.calls)
        told.push_back(call.group + L" " + call.name);
    EXPECT_EQ(told, expected);
    EXPECT_GT(told.size(), 50u);
}

TEST_F(TracerTest, TellsOfACustomActionWhatItWasGivenAndSaid) {
    const FakeCall<actionCalls, &ActionCalls::CallEntry> entry(
        [](CustomActionEntry, CustomActionParams*, wchar_t* message, uint32_t) {
            wcscpy(message, L"It went wrong.");
            return 7u;
        });
    Tracer tracer(listener);
    const CallWrapper<Tracer> wrapper(tracer);
    CustomActionParams params{"C:\\app\\", 6, 1, 1, 0};
    wchar_t message[CUSTOM_ACTION_MESSAGE_LENGTH] = L"";

    EXPECT_EQ(actionCalls.CallEntry(nullptr, &params, message, CUSTOM_ACTION_MESSAGE_LENGTH), 7u);

    ASSERT_THAT(listener.calls, SizeIs(1));
    const TracedCall& call = listener.calls.front();
    EXPECT_EQ(call.group, L"action");
    EXPECT_THAT(call.arguments, ElementsAre(L"null", L"C:\\app\\", L"It went wrong."));
    EXPECT_EQ(call.result, L"7");
    EXPECT_FALSE(call.failed);
}

TEST_F(TracerTest, WhatACustomActionReturnsIsNoFailure) {
    for (const uint32_t result : {0u, 1u}) {
        const FakeCall<actionCalls, &ActionCalls::CallEntry> entry([&](auto...) { return result; });
        Tracer tracer(listener);
        const CallWrapper<Tracer> wrapper(tracer);
        CustomActionParams params{};

        actionCalls.CallEntry(nullptr, &params, nullptr, 0);

        EXPECT_FALSE(listener.calls.back().failed) << result;
    }
}

TEST_F(TracerTest, TellsOfALogLineByItsLevel) {
    DWORD error = ERROR_SUCCESS;
    const FakeCall<logCalls, &LogCalls::WriteLine> write(
        [&](CLogLine&) { error = GetLastError(); });
    Tracer tracer(listener);
    const CallWrapper<Tracer> wrapper(tracer);
    SetLastError(ERROR_ACCESS_DENIED);

    writeLog(WARNNING, "Mind the gap.");

    EXPECT_EQ(write.count, 1);
    EXPECT_EQ(error, DWORD{ERROR_ACCESS_DENIED});
    ASSERT_THAT(listener.calls, SizeIs(1));
    const TracedCall& line = listener.calls.front();
    EXPECT_EQ(line.group, L"log");
    EXPECT_EQ(line.name, L"WARNNING");
    ASSERT_THAT(line.arguments, SizeIs(1));
    EXPECT_THAT(line.arguments[0], testing::EndsWith(L"Mind the gap."));
}

TEST_F(TracerTest, LeavesOutWhatItsListenerCalls) {
    class Asking final : public CallListener {
        void heard(const TracedCall&) override {
            ++count;
            fileCalls.GetFileAttributesW(L"C:\\");
            writeLog(INFO, "asked");
        }

    public:
        int count = 0;
    } asking;
    Tracer tracer(asking);
    const CallWrapper<Tracer> wrapper(tracer);

    fileCalls.GetFileAttributesW(L"C:\\");
    fileCalls.GetFileAttributesW(L"C:\\");

    EXPECT_EQ(asking.count, 2);
}

TEST_F(TracerTest, PutsEachCallBackWhenItEnds) {
    const FileCalls files = fileCalls;
    const RegistryCalls registry = registryCalls;
    const TextCalls texts = textCalls;
    {
        Tracer tracer(listener);
        const CallWrapper<Tracer> wrapper(tracer);
        EXPECT_NE(fileCalls.CopyFileW, files.CopyFileW);
        EXPECT_NE(registryCalls.RegCloseKey, registry.RegCloseKey);
    }
    EXPECT_EQ(fileCalls.CopyFileW, files.CopyFileW);
    EXPECT_EQ(registryCalls.RegCloseKey, registry.RegCloseKey);
    EXPECT_EQ(textCalls.MultiByteToWideChar, texts.MultiByteToWideChar);
}

// How the calls say that they have failed, and with which error.

TEST_F(TracerTest, ZeroIsAFailureOfMostCalls) {
    EXPECT_EQ((errorOf<fileCalls, &FileCalls::DeleteFileW>(FALSE)), lastError);
    EXPECT_EQ((errorOf<fileCalls, &FileCalls::DeleteFileW>(TRUE)), success);
    EXPECT_EQ((errorOf<serviceCalls, &ServiceCalls::OpenServiceW>(SC_HANDLE{})), lastError);
    EXPECT_EQ((errorOf<libraryCalls, &LibraryCalls::LoadLibraryW>(HMODULE{})), lastError);
    EXPECT_EQ((errorOf<versionCalls, &VersionCalls::GetFileVersionInfoSizeW>(0)), lastError);
}

TEST_F(TracerTest, NoHandleIsNullOrMinusOne) {
    const auto handle = reinterpret_cast<HANDLE>(16);
    EXPECT_EQ((errorOf<fileCalls, &FileCalls::FindFirstFileW>(INVALID_HANDLE_VALUE)), lastError);
    EXPECT_EQ((errorOf<processCalls, &ProcessCalls::OpenProcess>(HANDLE{})), lastError);
    EXPECT_EQ((errorOf<fileCalls, &FileCalls::FindFirstFileW>(handle)), success);
}

TEST_F(TracerTest, AllOnesAreAFailureOfAttributesAndOfWaiting) {
    constexpr DWORD allOnes = 0xFFFFFFFF;
    EXPECT_EQ((errorOf<fileCalls, &FileCalls::GetFileAttributesW>(allOnes)), lastError);
    EXPECT_EQ((errorOf<fileCalls, &FileCalls::GetFileAttributesW>(0)), success);
    EXPECT_EQ((errorOf<processCalls, &ProcessCalls::WaitForSingleObject>(allOnes)), lastError);
    EXPECT_EQ((errorOf<processCalls, &ProcessCalls::WaitForSingleObject>(0)), success);
}

TEST_F(TracerTest, RegistryAnswersWithTheErrorItself) {
    EXPECT_EQ((errorOf<registryCalls, &RegistryCalls::RegDeleteKeyW>(ERROR_FILE_NOT_FOUND)),
              uint32_t{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ((errorOf<registryCalls, &RegistryCalls::RegDeleteKeyW>(ERROR_SUCCESS)), success);
}

TEST_F(TracerTest, NegativeResultsOfComAreTheErrorItself) {
    EXPECT_EQ((errorOf<shellCalls, &ShellCalls::CoInitialize>(E_FAIL)), 0x80004005u);
    EXPECT_EQ((errorOf<shellCalls, &ShellCalls::CoInitialize>(S_FALSE)), success);
    EXPECT_EQ((errorOf<linkCalls, &LinkCalls::SetPath>(S_FALSE)), success);
}

TEST_F(TracerTest, MemoryThatComesBackWasNotReleased) {
    const auto memory = reinterpret_cast<HLOCAL>(16);
    EXPECT_EQ((errorOf<processCalls, &ProcessCalls::LocalFree>(memory)), lastError);
    EXPECT_EQ((errorOf<processCalls, &ProcessCalls::LocalFree>(HLOCAL{})), success);
    EXPECT_EQ((errorOf<serviceCalls, &ServiceCalls::LocalFree>(memory)), lastError);
    EXPECT_EQ((errorOf<serviceCalls, &ServiceCalls::LocalFree>(HLOCAL{})), success);
}

TEST_F(TracerTest, CallWithoutAResultCannotFail) {
    const FakeCall<shellCalls, &ShellCalls::SHChangeNotify> notify([](auto...) {});
    Tracer tracer(listener);
    const CallWrapper<Tracer> wrapper(tracer);

    shellCalls.SHChangeNotify(0, 0, nullptr, nullptr);

    ASSERT_THAT(listener.calls, SizeIs(1));
    EXPECT_FALSE(listener.calls[0].failed);
    EXPECT_EQ(listener.calls[0].result, L"");
    EXPECT_THAT(listener.calls[0].arguments, ElementsAre(L"0", L"0", L"null", L"null"));
}

TEST_F(TracerTest, NoticeToTheShellIsToldWithItsPaths) {
    const FakeCall<shellCalls, &ShellCalls::SHChangeNotify> notify([](auto...) {});
    Tracer tracer(listener);
    const CallWrapper<Tracer> wrapper(tracer);

    shellCalls.SHChangeNotify(SHCNE_CREATE, SHCNF_PATHW, L"C:\\a", nullptr);

    ASSERT_THAT(listener.calls, SizeIs(1));
    EXPECT_THAT(listener.calls[0].arguments, ElementsAre(L"2", L"5", L"C:\\a", L"null"));
}

// An address is used again when what stood there is gone.
TEST_F(TracerTest, ObjectIsNotTakenForAHandleThatStoodThere) {
    int place = 0;
    const auto handle = reinterpret_cast<HMODULE>(&place);
    const FakeCall<libraryCalls, &LibraryCalls::LoadLibraryW> load([&](auto) { return handle; });
    const FakeCall<linkCalls, &LinkCalls::Save> save([](auto...) { return S_OK; });
    Tracer tracer(listener);
    const CallWrapper<Tracer> wrapper(tracer);

    libraryCalls.LoadLibraryW(L"a.dll");
    linkCalls.Save(reinterpret_cast<IPersistFile*>(&place), L"a.lnk", TRUE);

    ASSERT_THAT(listener.calls, SizeIs(2));
    EXPECT_THAT(listener.calls[1].arguments, ElementsAre(L"(object)", L"a.lnk", L"1"));
}

// What asks, and what changes.

TEST_F(TracerTest, CallsThatChangeTheMachineAreMarked) {
    EXPECT_TRUE((heardOf<fileCalls, &FileCalls::DeleteFileW>(TRUE).changes));
    EXPECT_TRUE((heardOf<serviceCalls, &ServiceCalls::DeleteService>(TRUE).changes));
    EXPECT_TRUE((heardOf<registryCalls, &RegistryCalls::RegDeleteKeyW>(0).changes));
    EXPECT_FALSE((heardOf<fileCalls, &FileCalls::GetFileAttributesW>(0).changes));
    EXPECT_FALSE((heardOf<registryCalls, &RegistryCalls::RegCloseKey>(0).changes));
}

// A call that acts on the machine and isn't among ChangingCalls would be made by a dry run. So each
// call must be sorted, here or there.
TEST_F(TracerTest, EachCallEitherChangesOrIsKnownToAsk) {
    const std::set<std::string> asking = {
        // clock, text and walk
        "GetLocalTime", "GetTickCount", "Sleep", "MultiByteToWideChar", "WideCharToMultiByte",
        "VisitElement", "Evaluate",
        // file
        "FindFirstFileW", "FindNextFileW", "FindClose", "GetFileAttributesW", "GetModuleFileNameW",
        // library, system and version
        "GetProcAddress", "FreeLibrary", "GetModuleHandleW", "GetVersionExW",
        "GetFileVersionInfoSizeW", "GetFileVersionInfoW", "VerQueryValueW",
        // link: of the object in memory alone
        "SetPath", "SetIconLocation", "SetWorkingDirectory",
        // log: a dry run leaves its lines out
        "WriteLine",
        // process
        "CreateToolhelp32Snapshot", "Process32FirstW", "Process32NextW", "Module32FirstW",
        "OpenProcess", "WaitForSingleObject", "CloseHandle", "FormatMessageW", "FormatMessageA",
        "LocalFree",
        // registry
        "RegOpenKeyExW", "RegQueryInfoKeyW", "RegEnumKeyExW", "RegCloseKey",
        // service: a dry run doesn't take the lock
        "OpenSCManagerW", "OpenServiceW", "QueryServiceStatus", "QueryServiceConfigW",
        "LockServiceDatabase", "UnlockServiceDatabase", "CloseServiceHandle", "LocalAlloc",
        // shell
        "SHGetSpecialFolderPathW", "CoInitialize", "CoUninitialize", "CoCreateInstance"};
    visitCallTables([&]<auto & table> {
        table.visitCalls([&]<auto member>(const char* name) {
            EXPECT_NE(ChangingCalls::has<member>, asking.contains(name)) << name;
        });
    });
}

/// A listener that is asked before each change.
class Guard final : public CallListener {
public:
    void heard(const TracedCall& call) override { told.push_back(call.name); }
    bool givesPermits() const override { return true; }
    void permit(const TracedCall& call) override {
        asked.push_back(call);
        SetLastError(ERROR_INVALID_DATA);
        fileCalls.DeleteFileW(L"of the listener's own");
        if (refuses)
            throw 1;
    }

    bool refuses = false;
    std::vector<TracedCall> asked;
    std::vector<std::wstring> told;
};

TEST_F(TracerTest, AsksBeforeAChangeAndNotBeforeAQuestion) {
    const FakeCall<fileCalls, &FileCalls::DeleteFileW> remove([](auto...) { return TRUE; });
    Guard guard;
    Tracer tracer(guard);
    const CallWrapper<Tracer> wrapper(tracer);
    SetLastError(ERROR_ACCESS_DENIED);

    fileCalls.DeleteFileW(L"C:\\a.txt");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    fileCalls.GetFileAttributesW(L"C:\\");

    ASSERT_THAT(guard.asked, SizeIs(1));
    EXPECT_EQ(guard.asked[0].group, L"file");
    EXPECT_EQ(guard.asked[0].name, L"DeleteFileW");
    EXPECT_TRUE(guard.asked[0].changes);
    EXPECT_THAT(guard.asked[0].arguments, ElementsAre(L"C:\\a.txt"));
    EXPECT_EQ(guard.asked[0].result, L"");
    EXPECT_THAT(guard.told, ElementsAre(L"DeleteFileW", L"GetFileAttributesW"));
    EXPECT_EQ(remove.count, 2);
}

TEST_F(TracerTest, CallThatIsRefusedIsNotMade) {
    const FakeCall<fileCalls, &FileCalls::MoveFileExW> move([](auto...) { return TRUE; });
    const FakeCall<fileCalls, &FileCalls::DeleteFileW> remove([](auto...) { return TRUE; });
    Guard guard;
    guard.refuses = true;
    Tracer tracer(guard);
    const CallWrapper<Tracer> wrapper(tracer);

    EXPECT_THROW(fileCalls.MoveFileExW(L"C:\\a", L"C:\\b", 0), int);
    EXPECT_EQ(move.count, 0);
    EXPECT_THAT(guard.told, IsEmpty());
    guard.refuses = false;
    fileCalls.MoveFileExW(L"C:\\a", L"C:\\b", 0);
    EXPECT_EQ(move.count, 1);
}

TEST_F(TracerTest, PermitIsAskedWithAWordForTheTimeInNames) {
    const FakeCall<fileCalls, &FileCalls::CopyFileW> copy([](auto...) { return TRUE; });
    Guard guard;
    Tracer tracer(guard);
    const CallWrapper<Tracer> wrapper(tracer);
    std::wstring target;
    makeStampedName(L"C:\\a.ico", target);

    fileCalls.CopyFileW(target.c_str(), (target + target).c_str(), FALSE);

    ASSERT_THAT(guard.asked, SizeIs(1));
    EXPECT_THAT(guard.asked[0].arguments,
                ElementsAre(L"C:\\a<time>.ico", L"C:\\a<time>.icoC:\\a<time>.ico", L"0"));
}

// How arguments and results are told.

TEST_F(TracerTest, WhatACallFillsInIsToldWhenItSucceeds) {
    BOOL result = TRUE;
    const FakeCall<shellCalls, &ShellCalls::SHGetSpecialFolderPathW> folder(
        [&](HWND, wchar_t* path, int, BOOL) {
            wcscpy(path, L"C:\\folder");
            return result;
        });
    Tracer tracer(listener);
    const CallWrapper<Tracer> wrapper(tracer);
    wchar_t path[MAX_PATH];

    shellCalls.SHGetSpecialFolderPathW(nullptr, path, 37, FALSE);
    result = FALSE;
    shellCalls.SHGetSpecialFolderPathW(nullptr, path, 37, FALSE);

    EXPECT_THAT(listener.calls[0].arguments, ElementsAre(L"null", L"C:\\folder", L"37", L"0"));
    EXPECT_EQ(listener.calls[0].result, L"1");
    EXPECT_THAT(listener.calls[1].arguments, ElementsAre(L"null", L"", L"37", L"0"));
    EXPECT_EQ(listener.calls[1].result, L"0");
}

TEST_F(TracerTest, KeysAreToldByTheirPaths) {
    uintptr_t next = 16;
    const FakeCall<registryCalls, &RegistryCalls::RegOpenKeyExW> open(
        [&](HKEY, const wchar_t*, DWORD, REGSAM, HKEY* key) {
            *key = reinterpret_cast<HKEY>(next++);
            return LSTATUS{ERROR_SUCCESS};
        });
    const FakeCall<registryCalls, &RegistryCalls::RegCloseKey> close(
        [](HKEY) { return LSTATUS{ERROR_SUCCESS}; });
    Tracer tracer(listener);
    const CallWrapper<Tracer> wrapper(tracer);
    HKEY outer = nullptr;
    HKEY inner = nullptr;

    registryCalls.RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software", 0, KEY_READ, &outer);
    registryCalls.RegOpenKeyExW(outer, L"Example", 0, KEY_READ, &inner);
    registryCalls.RegCloseKey(inner);
    registryCalls.RegCloseKey(outer);

    ASSERT_THAT(listener.calls, SizeIs(4));
    EXPECT_EQ(listener.calls[0].arguments[0], L"HKEY_LOCAL_MACHINE");
    EXPECT_EQ(listener.calls[0].arguments[4], L"HKEY_LOCAL_MACHINE\\Software");
    EXPECT_THAT(listener.calls[2].arguments, ElementsAre(L"HKEY_LOCAL_MACHINE\\Software\\Example"));
    EXPECT_THAT(listener.calls[3].arguments, ElementsAre(L"HKEY_LOCAL_MACHINE\\Software"));
}

TEST_F(TracerTest, ClassesAndInterfacesAreToldByTheirIds) {
    const FakeCall<shellCalls, &ShellCalls::CoCreateInstance> create(
        [](auto&&...) { return E_NOINTERFACE; });
    Tracer tracer(listener);
    const CallWrapper<Tracer> wrapper(tracer);
    constexpr GUID made{0x00021401, 0x0002, 0x0AB0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    constexpr GUID asked{0xFEDCBA98, 0xFFFF, 0, {0, 1, 2, 3, 4, 5, 6, 255}};
    void* object = nullptr;

    shellCalls.CoCreateInstance(made, nullptr, CLSCTX_INPROC_SERVER, asked, &object);

    EXPECT_THAT(listener.calls[0].arguments,
                ElementsAre(L"{00021401-0002-0AB0-C000-000000000046}", L"null", L"1",
                            L"{FEDCBA98-FFFF-0000-0001-0203040506FF}", testing::_));
}

TEST_F(TracerTest, WhatTheShellIsToldOfIsAPathWhereTheFlagsSaySo) {
    const FakeCall<shellCalls, &ShellCalls::SHChangeNotify> notify([](auto...) {});
    Tracer tracer(listener);
    const CallWrapper<Tracer> wrapper(tracer);
    const auto told = [&](UINT flags, const void* first, const void* second) {
        shellCalls.SHChangeNotify(SHCNE_RENAMEITEM, flags, first, second);
        return listener.calls.back().arguments;
    };

    EXPECT_THAT(told(SHCNF_PATHW | SHCNF_FLUSH, L"C:\\a.lnk", nullptr),
                ElementsAre(L"1", L"4101", L"C:\\a.lnk", L"null"));
    EXPECT_THAT(told(SHCNF_PATHA, "C:\\a.lnk", "C:\\b.lnk"),
                ElementsAre(L"1", L"1", L"C:\\a.lnk", L"C:\\b.lnk"));
    EXPECT_THAT(told(SHCNF_IDLIST, &told, nullptr), ElementsAre(L"1", L"0", L"(object)", L"null"));
    EXPECT_THAT(told(SHCNF_DWORD, &told, nullptr), ElementsAre(L"1", L"3", L"(object)", L"null"));
}

TEST_F(TracerTest, OtherHandlesAreToldByWhatTheyWereOpenedFor) {
    const auto handle = reinterpret_cast<HANDLE>(16);
    const FakeFind find([&](auto...) { return handle; });
    const FakeFindClose close([](auto...) { return TRUE; });
    Tracer tracer(listener);
    const CallWrapper<Tracer> wrapper(tracer);
    WIN32_FIND_DATAW found{};
    wcscpy(found.cFileName, L"a.txt");

    fileCalls.FindFirstFileW(L"C:\\*", &found);
    fileCalls.FindClose(handle);
    fileCalls.FindClose(reinterpret_cast<HANDLE>(20));
    fileCalls.FindClose(INVALID_HANDLE_VALUE);
    fileCalls.FindClose(nullptr);

    EXPECT_THAT(listener.calls[0].arguments, ElementsAre(L"C:\\*", L"a.txt"));
    EXPECT_EQ(listener.calls[0].result, L"C:\\*");
    EXPECT_THAT(listener.calls[1].arguments, ElementsAre(L"C:\\*"));
    EXPECT_THAT(listener.calls[2].arguments, ElementsAre(L"(object)"));
    EXPECT_THAT(listener.calls[3].arguments, ElementsAre(L"-1"));
    EXPECT_THAT(listener.calls[4].arguments, ElementsAre(L"null"));
}

TEST_F(TracerTest, ValuesAreToldByTheirTypes) {
    const FakeCall<registryCalls, &RegistryCalls::RegSetValueExW> set(
        [](auto...) { return LSTATUS{ERROR_SUCCESS}; });
    Tracer tracer(listener);
    const CallWrapper<Tracer> wrapper(tracer);
    const auto told = [&](DWORD type, const void* data, DWORD size) {
        registryCalls.RegSetValueExW(HKEY_CURRENT_USER, L"V", 0, type,
                                     static_cast<const BYTE*>(data), size);
        return listener.calls.back().arguments[4];
    };
    const DWORD number = 4000000000;

    EXPECT_EQ(told(REG_DWORD, &number, sizeof number), L"4000000000");
    EXPECT_EQ(told(REG_DWORD, "\1\2", 2), L"0102");
    EXPECT_EQ(told(REG_SZ, L"textmore", 8), L"text");
    EXPECT_EQ(told(REG_SZ, L"text", 10), L"text");
    EXPECT_EQ(told(REG_BINARY, "\xAB\xCD", 2), L"ABCD");
    EXPECT_EQ(told(REG_SZ, nullptr, 0), L"null");
    EXPECT_EQ(told(REG_MULTI_SZ, L"a\0bc\0", 12), L"a\\0bc\\0\\0");
}

}  // namespace
