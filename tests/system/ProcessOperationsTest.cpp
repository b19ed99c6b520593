#include "system/ProcessOperations.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cwctype>
#include <type_traits>
#include <vector>

#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/Sleeper.h"
#include "support/TestFolder.h"
#include "system/FileOperations.h"
#include "system/ProcessCalls.h"

using testing::Each;
using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::IsEmpty;

namespace {

constexpr uint32_t untouched = 4711;

/// What the system lists as running, in this order.
class FakeProcesses {
public:
    struct Process {
        DWORD id;
        const wchar_t* name;
        const wchar_t* image;  ///< null: refuses a module snapshot; "": has no modules
    };

    explicit FakeProcesses(std::vector<Process> list) : processes(std::move(list)) {}
    ~FakeProcesses() { EXPECT_THAT(open, IsEmpty()) << "a snapshot wasn't closed"; }

    std::vector<DWORD> inspected;  ///< the processes that a module snapshot was asked of

private:
    // The handle of a module snapshot is its process, that of the process snapshot this object.
    HANDLE takeSnapshot(DWORD kind, DWORD id) {
        if (kind == TH32CS_SNAPPROCESS) {
            EXPECT_EQ(id, 0u);
            return remember(this);
        }
        EXPECT_EQ(kind, DWORD{TH32CS_SNAPMODULE});
        inspected.push_back(id);
        const auto process = std::find_if(processes.begin(), processes.end(),
                                          [id](const Process& other) { return other.id == id; });
        if (process->image)
            return remember(&*process);
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }

    HANDLE remember(HANDLE snapshot) {
        open.push_back(snapshot);
        SetLastError(ERROR_GEN_FAILURE);
        return snapshot;
    }

    BOOL giveFirst(HANDLE snapshot, PROCESSENTRY32W* entry) {
        EXPECT_EQ(next, 0u);
        EXPECT_EQ(entry->cntUsage | entry->th32ProcessID | entry->th32DefaultHeapID |
                      entry->th32ModuleID | entry->cntThreads | entry->th32ParentProcessID |
                      entry->dwFlags,
                  0u);
        EXPECT_EQ(entry->pcPriClassBase, 0);
        EXPECT_THAT(entry->szExeFile, Each(L'\0'));
        return give(snapshot, entry);
    }

    BOOL giveNext(HANDLE snapshot, PROCESSENTRY32W* entry) {
        EXPECT_NE(next, 0u);
        return give(snapshot, entry);
    }

    BOOL give(HANDLE snapshot, PROCESSENTRY32W* entry) {
        EXPECT_EQ(snapshot, this);
        EXPECT_EQ(entry->dwSize, 568u);
        if (next == processes.size())
            return FALSE;
        entry->th32ProcessID = processes[next].id;
        wcscpy(entry->szExeFile, processes[next].name);
        ++next;
        return TRUE;
    }

    BOOL giveExecutable(HANDLE snapshot, MODULEENTRY32W* entry) {
        EXPECT_EQ(entry->dwSize, 1080u);
        EXPECT_EQ(entry->th32ModuleID | entry->th32ProcessID | entry->GlblcntUsage |
                      entry->ProccntUsage | entry->modBaseSize,
                  0u);
        EXPECT_EQ(entry->modBaseAddr, nullptr);
        EXPECT_EQ(entry->hModule, nullptr);
        EXPECT_THAT(entry->szModule, Each(L'\0'));
        EXPECT_THAT(entry->szExePath, Each(L'\0'));
        wcscpy(entry->szExePath, static_cast<Process*>(snapshot)->image);
        return entry->szExePath[0] != L'\0';
    }

    BOOL close(HANDLE snapshot) {
        EXPECT_EQ(std::erase(open, snapshot), 1u) << "closed what wasn't open";
        return TRUE;
    }

    std::vector<Process> processes;
    size_t next = 0;
    std::vector<HANDLE> open;
    FakeCall<processCalls, &ProcessCalls::CreateToolhelp32Snapshot> snapshot{
        [this](DWORD kind, DWORD id) { return takeSnapshot(kind, id); }};
    FakeCall<processCalls, &ProcessCalls::Process32FirstW> processFirst{
        [this](HANDLE handle, PROCESSENTRY32W* entry) { return giveFirst(handle, entry); }};
    FakeCall<processCalls, &ProcessCalls::Process32NextW> processNext{
        [this](HANDLE handle, PROCESSENTRY32W* entry) { return giveNext(handle, entry); }};
    FakeCall<processCalls, &ProcessCalls::Module32FirstW> moduleFirst{
        [this](HANDLE handle, MODULEENTRY32W* entry) { return giveExecutable(handle, entry); }};
    FakeCall<processCalls, &ProcessCalls::CloseHandle> closeHandle{
        [this](HANDLE handle) { return close(handle); }};
};

/// The id that the search gives; `untouched` when it finds nothing, as it must be then.
uint32_t found(const std::wstring& path) {
    uint32_t id = untouched;
    const bool success = findProcessByPath(id, path.c_str());
    EXPECT_EQ(success, id != untouched);
    return id;
}

TEST(FindProcessByPathTest, FindsARunningProgram) {
    const TestFolder folder;
    const Sleeper process(folder.path(L"sleeper.exe"));

    EXPECT_EQ(found(folder.path(L"sleeper.exe")), process.id());
}

TEST(FindProcessByPathTest, FindsNothingWhereNoneRuns) {
    const TestFolder folder;

    EXPECT_EQ(found(folder.path(L"sleeper.exe")), untouched);
}

TEST(FindProcessByPathTest, TellsEqualNamesInDifferentDirectoriesApart) {
    const TestFolder folder;
    const TestFolder other;
    const Sleeper first(folder.path(L"sleeper.exe"));
    const Sleeper second(other.path(L"sleeper.exe"));

    EXPECT_EQ(found(folder.path(L"sleeper.exe")), first.id());
    EXPECT_EQ(found(other.path(L"sleeper.exe")), second.id());
}

TEST(FindProcessByPathTest, IgnoresCaseAlsoOfOtherAlphabets) {
    const TestFolder folder;
    const Sleeper process(folder.path(L"\u00E4\\sleeper \u0436.exe"));

    std::wstring path = folder.path(L"\u00C4\\SLEEPER \u0416.EXE");
    path[0] = static_cast<wchar_t>(path[0] ^ 0x20);

    EXPECT_EQ(found(path), process.id());
}

TEST(FindProcessByPathTest, FindsOneOfTwoAndThenTheOther) {
    const TestFolder folder;
    const std::wstring path = folder.path(L"sleeper.exe");
    const Sleeper one(path);
    const Sleeper another(path);

    const uint32_t first = found(path);
    EXPECT_TRUE(killProcessById(first, 1));

    const Sleeper& ended = first == one.id() ? one : another;
    const Sleeper& left = first == one.id() ? another : one;
    EXPECT_EQ(ended.exitCode(), 0u);
    EXPECT_TRUE(left.isRunning());
    EXPECT_EQ(found(path), left.id());
}

TEST(FindProcessByPathTest, TakesTheFirstInTheOrderOfTheSnapshot) {
    const FakeProcesses processes({{30, L"b.exe", L"C:\\a\\b.exe"},
                                   {20, L"a.exe", L"C:\\A\\A.EXE"},
                                   {10, L"a.exe", L"C:\\a\\a.exe"}});

    EXPECT_EQ(found(L"C:\\a\\a.exe"), 20u);
}

TEST(FindProcessByPathTest, InspectsOnlyProcessesOfTheSameName) {
    const FakeProcesses processes({{1, L"a.exe.exe", L"C:\\a\\a.exe"},
                                   {2, L"A.EXE", L"C:\\b\\a.exe"},
                                   {3, L"b.exe", L"C:\\a\\a.exe"},
                                   {4, L"a.exe", L"C:\\a\\a.exe.exe"}});

    EXPECT_EQ(found(L"C:\\a\\a.exe"), untouched);

    EXPECT_THAT(processes.inspected, ElementsAre(2, 4));
}

TEST(FindProcessByPathTest, NormalisesNoPath) {
    for (const wchar_t* path : {L"C:/a/a.exe", L"C:\\a/a.exe", L"C:\\a\\\\a.exe", L"\\a\\a.exe"}) {
        SCOPED_TRACE(path);
        const FakeProcesses processes({{1, L"a.exe", L"C:\\a\\a.exe"}});

        EXPECT_EQ(found(path), untouched);

        EXPECT_THAT(processes.inspected, ElementsAre(1));
    }
}

TEST(FindProcessByPathTest, MatchesNothingWithoutASeparator) {
    for (const wchar_t* path : {L"a.exe", L"C:a.exe", L""}) {
        SCOPED_TRACE(path);
        const FakeProcesses processes({{1, L"a.exe", path}, {2, L"C:a.exe", path}});

        EXPECT_EQ(found(path), untouched);

        EXPECT_THAT(processes.inspected, IsEmpty());
    }
}

TEST(FindProcessByPathTest, FindsNothingForANullPath) {
    const FakeCall<processCalls, &ProcessCalls::CreateToolhelp32Snapshot> snapshot(
        [](auto...) { return INVALID_HANDLE_VALUE; });
    uint32_t id = untouched;

    EXPECT_FALSE(findProcessByPath(id, nullptr));

    EXPECT_EQ(id, untouched);
    EXPECT_EQ(snapshot.count, 0);
}

TEST(FindProcessByPathTest, FindsNothingInAnEmptySnapshot) {
    const FakeProcesses processes({});

    EXPECT_EQ(found(L"C:\\a\\a.exe"), untouched);
}

TEST(FindProcessByPathTest, LogsThatThereIsNoSnapshot) {
    const LogFile log;
    for (const DWORD error : {DWORD{ERROR_NOT_ENOUGH_MEMORY}, DWORD{0x80070005}}) {
        const FakeCall<processCalls, &ProcessCalls::CreateToolhelp32Snapshot> snapshot(
            [&](auto...) {
                SetLastError(error);
                return INVALID_HANDLE_VALUE;
            });

        EXPECT_EQ(found(L"C:\\a\\a.exe"), untouched);
    }
    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] CreateToolhelp32Snapshot error:8",
                                         "[ERROR] CreateToolhelp32Snapshot error:2147942405"));
}

TEST(FindProcessByPathTest, LogsEachProcessThatCannotBeInspectedAndGoesOn) {
    const LogFile log;
    const FakeProcesses processes({{1, L"a.exe", nullptr},
                                   {2, L"a.exe", nullptr},
                                   {3, L"a.exe", L""},
                                   {4, L"a.exe", L"C:\\a\\a.exe"}});

    EXPECT_EQ(found(L"C:\\a\\a.exe"), 4u);

    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] CreateToolhelp32Snapshot error:5",
                                         "[ERROR] CreateToolhelp32Snapshot error:5"));
}

TEST(FindProcessByPathTest, OverlongBaseNameEndsTheProcess) {
    const std::wstring directory = L"C:\\";

    EXPECT_EQ(found(directory + std::wstring(pathBufferLength - 1, L'a')), untouched);
    EXPECT_EXIT(found(directory + std::wstring(pathBufferLength, L'a')),
                ExitedWithCode(static_cast<int>(0xC0000417)), "");
}

TEST(GetProcessImagePathTest, GivesTheExecutableWhateverTheCapacity) {
    const TestFolder folder;
    const Sleeper process(folder.path(L"sleeper.exe"));
    wchar_t path[pathBufferLength] = L"";

    EXPECT_TRUE(getProcessImagePath(path, 1, process.id()));

    EXPECT_EQ(path, folder.path(L"sleeper.exe"));
}

TEST(GetProcessImagePathTest, LogsWhyAProcessCannotBeInspected) {
    const LogFile log;
    const FakeProcesses processes({{1, L"a.exe", nullptr}});
    wchar_t path[pathBufferLength] = L"untouched";

    EXPECT_FALSE(getProcessImagePath(path, pathBufferLength, 1));

    EXPECT_STREQ(path, L"untouched");
    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] CreateToolhelp32Snapshot error:5"));
}

TEST(GetProcessImagePathTest, FailsSilentlyForAProcessWithoutModules) {
    const LogFile log;
    const FakeProcesses processes({{1, L"a.exe", L""}});
    wchar_t path[pathBufferLength] = L"untouched";

    EXPECT_FALSE(getProcessImagePath(path, pathBufferLength, 1));

    EXPECT_STREQ(path, L"untouched");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(KillProcessByIdTest, EndsTheProcessWithExitCodeZero) {
    for (const uint32_t ignored : {0, 1, 7}) {
        SCOPED_TRACE(ignored);
        const TestFolder folder;
        const Sleeper process(folder.path(L"sleeper.exe"));

        EXPECT_TRUE(killProcessById(process.id(), ignored));

        EXPECT_EQ(process.exitCode(), 0u);
    }
}

/// A process that can be ended, and the calls that do it.
class KillProcessCallsTest : public testing::Test {
protected:
    HANDLE const process = this;
    BOOL ends = TRUE;
    std::vector<std::string> calls;

    FakeCall<processCalls, &ProcessCalls::OpenProcess> open{
        [this](DWORD access, BOOL inherit, DWORD id) {
            EXPECT_EQ(access, DWORD{PROCESS_TERMINATE});
            EXPECT_FALSE(inherit);
            calls.push_back("open " + std::to_string(id));
            return id == 42 ? process : nullptr;
        }};
    FakeCall<processCalls, &ProcessCalls::TerminateProcess> terminate{
        [this](HANDLE handle, UINT exitCode) {
            EXPECT_EQ(handle, process);
            calls.push_back("terminate with " + std::to_string(exitCode));
            return ends;
        }};
    FakeCall<processCalls, &ProcessCalls::WaitForSingleObject> wait{
        [this](HANDLE handle, DWORD milliseconds) {
            EXPECT_EQ(handle, process);
            EXPECT_EQ(milliseconds, INFINITE);
            calls.push_back("wait");
            return WAIT_FAILED;
        }};
    FakeCall<processCalls, &ProcessCalls::CloseHandle> close{[this](HANDLE handle) {
        EXPECT_EQ(handle, process);
        calls.push_back("close");
        return FALSE;
    }};
};

TEST_F(KillProcessCallsTest, NeitherAFailedWaitNorAFailedCloseCounts) {
    EXPECT_TRUE(killProcessById(42, 1));

    EXPECT_THAT(calls, ElementsAre("open 42", "terminate with 0", "wait", "close"));
}

TEST_F(KillProcessCallsTest, FailsWhenTheProcessCannotBeOpened) {
    EXPECT_FALSE(killProcessById(43, 1));

    EXPECT_THAT(calls, ElementsAre("open 43"));
}

TEST_F(KillProcessCallsTest, FailsWhenTheProcessCannotBeEnded) {
    ends = FALSE;

    EXPECT_FALSE(killProcessById(42, 1));

    EXPECT_THAT(calls, ElementsAre("open 42", "terminate with 0", "close"));
}

TEST_F(KillProcessCallsTest, ProcessZeroIsNone) {
    EXPECT_FALSE(killProcessById(0, 1));

    EXPECT_THAT(calls, IsEmpty());
}

struct Wide {
    using Text = std::wstring;
    static constexpr auto format = &ProcessCalls::FormatMessageW;
    static constexpr auto get = &getSystemMessage;
};

struct Narrow {
    using Text = std::string;
    static constexpr auto format = &ProcessCalls::FormatMessageA;
    static constexpr auto get = &getSystemMessageNarrow;
};

template <class Form>
class GetSystemMessageTest : public testing::Test {
protected:
    using Text = typename Form::Text;
    using Character = typename Text::value_type;

    static Text text(std::string_view ascii) { return Text(ascii.begin(), ascii.end()); }
};

using Forms = testing::Types<Wide, Narrow>;
TYPED_TEST_SUITE(GetSystemMessageTest, Forms);

TYPED_TEST(GetSystemMessageTest, GivesTheTextWithTheLineEndOfTheSystem) {
    typename TestFixture::Character expected[512];
    (processCalls.*TypeParam::format)(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, ERROR_ACCESS_DENIED, 0,
                                      expected, 512, nullptr);
    typename TestFixture::Text message = this->text("before");

    TypeParam::get(ERROR_ACCESS_DENIED, message);

    EXPECT_EQ(message, expected);
    EXPECT_EQ(message.substr(message.size() - 2), this->text("\r\n"));
}

TYPED_TEST(GetSystemMessageTest, LeavesTheStringWhereALengthComesWithoutAText) {
    const FakeCall<processCalls, TypeParam::format> format([](auto...) { return DWORD{5}; });
    typename TestFixture::Text message = this->text("before");

    TypeParam::get(ERROR_ACCESS_DENIED, message);

    EXPECT_EQ(message, this->text("before"));
    EXPECT_EQ(format.count, 1);
}

TYPED_TEST(GetSystemMessageTest, LeavesTheStringForACodeWithoutText) {
    typename TestFixture::Text message = this->text("before");

    TypeParam::get(123456, message);

    EXPECT_EQ(message, this->text("before"));
}

TYPED_TEST(GetSystemMessageTest, ReleasesWhatTheSystemAllocated) {
    using Character = typename TestFixture::Character;
    Character given[] = {'t', 'e', 'x', 't', '\r', '\n', '\0'};
    FakeCall<processCalls, TypeParam::format> format([&](DWORD flags, auto source, DWORD code,
                                                         DWORD language, Character* buffer,
                                                         DWORD size, va_list* arguments) {
        EXPECT_EQ(flags, 0x1100u);
        EXPECT_EQ(source, nullptr);
        EXPECT_EQ(code, 5u);
        EXPECT_EQ(language, 1024u);
        EXPECT_EQ(size, 0u);
        EXPECT_EQ(arguments, nullptr);
        *reinterpret_cast<Character**>(buffer) = given;
        return DWORD{6};
    });
    std::vector<const void*> released;
    FakeCall<processCalls, &ProcessCalls::LocalFree> free([&](HLOCAL memory) {
        released.push_back(memory);
        return HLOCAL{};
    });
    typename TestFixture::Text message;

    TypeParam::get(5, message);

    EXPECT_EQ(message, this->text("text\r\n"));
    EXPECT_THAT(released, ElementsAre(given));
}

}  // namespace
