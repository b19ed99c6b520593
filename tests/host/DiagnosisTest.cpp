#include "host/Diagnosis.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cwchar>

namespace {

std::vector<std::wstring> nobody(const std::wstring&) {
    return {};
}
std::vector<std::wstring> sync(const std::wstring& path) {
    if (path != L"C:\\app\\a.dll")
        return {};
    return {L"sync.exe (4312)", L"view.exe (7)"};
}
bool yes() {
    return true;
}
bool no() {
    return false;
}
template <unsigned long attributes>
unsigned long having(const std::wstring& path) {
    return path == L"C:\\app\\a.dll" ? attributes : INVALID_FILE_ATTRIBUTES;
}
std::wstring noService(const std::wstring&) {
    return L"";
}
std::wstring dependants(const std::wstring& service) {
    return service == L"Greeter" ? L"Mailer, Printer" : L"";
}

// An administrator on a machine where nothing is in the way.
constexpr Witnesses plain{nobody, yes, having<FILE_ATTRIBUTE_NORMAL>, noService};

/// The same with one fact changed.
constexpr Witnesses changed(decltype(Witnesses::holdersOf) holders) {
    Witnesses witnesses = plain;
    witnesses.holdersOf = holders;
    return witnesses;
}
constexpr Witnesses changed(decltype(Witnesses::isElevated) elevated) {
    Witnesses witnesses = plain;
    witnesses.isElevated = elevated;
    return witnesses;
}
constexpr Witnesses changed(decltype(Witnesses::attributesOf) attributes) {
    Witnesses witnesses = plain;
    witnesses.attributesOf = attributes;
    return witnesses;
}

constexpr Witnesses held = changed(sync);
constexpr Witnesses notElevated = changed(no);
constexpr Witnesses readOnly = changed(having<FILE_ATTRIBUTE_READONLY>);
constexpr Witnesses hiddenToo = changed(having<FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN>);
constexpr Witnesses systemFile = changed(having<FILE_ATTRIBUTE_SYSTEM>);

Call call(const wchar_t* name, std::vector<std::wstring> arguments, uint32_t systemError) {
    Call made;
    made.group = L"file";
    made.name = name;
    made.arguments = std::move(arguments);
    made.failed = systemError != 0;
    made.systemError = systemError;
    return made;
}

Call copyCall(uint32_t systemError) {
    return call(L"CopyFileW", {L"C:\\setup\\a.dll", L"C:\\app\\a.dll", L"0"}, systemError);
}
Call deleteCall(uint32_t systemError) {
    return call(L"DeleteFileW", {L"C:\\app\\a.dll"}, systemError);
}
Call serviceState(const wchar_t* state) {
    return call(L"QueryServiceStatus", {L"Greeter", state}, 0);
}

Action action(uint32_t code, const wchar_t* text1, std::vector<Call> calls) {
    Action announced;
    announced.number = 1;
    announced.code = code;
    announced.text1 = text1;
    announced.calls = std::move(calls);
    return announced;
}

temz_error error(uint32_t code, const wchar_t* text1, const wchar_t* message = L"",
                 uint32_t systemError = 0) {
    temz_error record{};
    record.code = code;
    record.system_error = systemError;
    std::wcscpy(record.text1, text1);
    std::wcscpy(record.message, message);
    return record;
}

/// What is said of the failure of an action that made these calls.
Failure failed(uint32_t code, const wchar_t* text1, std::vector<Call> calls,
               const Witnesses& witnesses = plain) {
    return diagnose(action(code, text1, std::move(calls)), error(code, text1), witnesses);
}

constexpr wchar_t close[] =
    L"Close the program, or give the file KillProcess or SupportDelayInstall in the script.";
constexpr wchar_t elevate[] = L"Run it from an administrator's prompt.";

TEST(DiagnosisTest, FindsTheReasonInTheCallsAndTheMachine) {
    const auto shell = [](uint32_t code) { return call(L"ShellExecuteExW", {L"x.msi"}, code); };
    const auto control = [](const wchar_t* name, uint32_t code) {
        return call(name, {L"Greeter"}, code);
    };
    const struct {
        uint32_t code;
        std::vector<Call> calls;
        Witnesses witnesses;
        std::wstring why;
        std::wstring advice;
        uint32_t systemError;
    } cases[] = {
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(32)},
         held,
         L"the file is in use by sync.exe (4312), view.exe (7)",
         close,
         32},
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(32)},
         plain,
         L"the file is in use by another program",
         close,
         32},
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(33)},
         plain,
         L"the file is in use by another program",
         close,
         33},
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(1224)},
         plain,
         L"the file is in use by another program",
         close,
         1224},
        {TEMZ_ACTION_DELETE_FILE,
         {deleteCall(5)},
         held,
         L"the file is in use by sync.exe (4312), view.exe (7)",
         close,
         5},
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(5)},
         readOnly,
         L"the file there is read-only",
         L"Clear that (attrib -r -h -s), and ship the file without it.",
         5},
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(5)},
         hiddenToo,
         L"the file there is read-only, hidden",
         L"Clear that (attrib -r -h -s), and ship the file without it.",
         5},
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(5)},
         systemFile,
         L"the file there is a system file",
         L"Clear that (attrib -r -h -s), and ship the file without it.",
         5},
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(5)},
         notElevated,
         L"access is denied, and the program isn't run as an administrator",
         elevate,
         5},
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(5)},
         plain,
         L"access is denied",
         L"Look at the rights of C:\\app\\a.dll.",
         5},
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(2)},
         plain,
         L"the file to copy isn't there",
         L"Put it where the script's Source says, counted from the folder of temz.exe.",
         2},
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(3)},
         plain,
         L"the file to copy or the directory isn't there",
         L"Look at the script's Source, and whether the directory can be made.",
         3},
        {TEMZ_ACTION_COPY_FILE,
         {call(L"CreateDirectoryW", {L"C:\\app"}, 5), copyCall(3)},
         notElevated,
         L"access is denied, and the program isn't run as an administrator",
         elevate,
         5},
        {TEMZ_ACTION_COPY_FILE,
         {call(L"CreateDirectoryW", {L"C:\\app"}, 183), copyCall(3)},
         plain,
         L"the file to copy or the directory isn't there",
         L"Look at the script's Source, and whether the directory can be made.",
         3},
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(32), copyCall(0), call(L"MoveFileExW", {L"a", L"b"}, 112)},
         plain,
         L"the disk is full",
         L"Make room on it.",
         112},
        {TEMZ_ACTION_SHELL_EXCUTE,
         {shell(1223)},
         plain,
         L"the question for an administrator's rights was answered with No",
         L"Run it from an administrator's prompt, where nobody is asked.",
         1223},
        {TEMZ_ACTION_SHELL_EXCUTE,
         {shell(1155)},
         plain,
         L"a file of this kind can't be started elevated",
         L"Start the program that opens it, with the file as its argument.",
         1155},
        {TEMZ_ACTION_SHELL_EXCUTE,
         {shell(2)},
         plain,
         L"the program isn't there",
         L"Give its whole path in the script.",
         2},
        {TEMZ_ACTION_SHELL_EXCUTE,
         {shell(193)},
         plain,
         L"it is no program that this Windows can run",
         L"",
         193},
        {TEMZ_ACTION_SHELL_EXCUTE,
         {shell(1260)},
         plain,
         systemText(1260),
         L"Ask whoever sets the machine's policy.",
         1260},
        {TEMZ_ACTION_STOP_SERVICE,
         {control(L"ControlService", 1051)},
         {nobody, yes, having<0>, dependants},
         L"other services that run depend on it: Mailer, Printer",
         L"Stop these first.",
         1051},
        {TEMZ_ACTION_STOP_SERVICE,
         {control(L"ControlService", 1051)},
         plain,
         L"other services that run depend on it",
         L"Stop these first.",
         1051},
        {TEMZ_ACTION_STOP_SERVICE,
         {control(L"OpenServiceW", 1060)},
         plain,
         L"there is no such service",
         L"The script wants its short name, which sc query shows.",
         1060},
        {TEMZ_ACTION_START_SERVICE,
         {control(L"StartServiceW", 1058)},
         plain,
         L"the service is disabled",
         L"Enable it: sc config NAME start= demand.",
         1058},
        {TEMZ_ACTION_START_SERVICE,
         {control(L"StartServiceW", 2)},
         plain,
         L"its program isn't there",
         L"See the path that sc qc NAME shows.",
         2},
        {TEMZ_ACTION_START_SERVICE,
         {control(L"StartServiceW", 3)},
         plain,
         L"its program isn't there",
         L"See the path that sc qc NAME shows.",
         3},
        {TEMZ_ACTION_START_SERVICE,
         {control(L"OpenServiceW", 5)},
         notElevated,
         L"access is denied, and the program isn't run as an administrator",
         elevate,
         5},
        {TEMZ_ACTION_STOP_SERVICE,
         {serviceState(L"state 4"), serviceState(L"state 3")},
         plain,
         L"it is still stopping",
         L"",
         0},
        {TEMZ_ACTION_START_SERVICE,
         {serviceState(L"state 2")},
         plain,
         L"it is still starting",
         L"",
         0},
        {TEMZ_ACTION_STOP_SERVICE,
         {serviceState(L"state 3"), call(L"QueryServiceStatus", {L"Greeter", L"state 0"}, 6)},
         plain,
         L"it is still stopping",
         L"",
         0},
        {TEMZ_ACTION_DELETE_FILE,
         {deleteCall(5)},
         plain,
         L"access is denied",
         L"Look at the rights of C:\\app\\a.dll.",
         5},
        {TEMZ_ACTION_REMOVE_DIRECTORY, {deleteCall(0)}, plain, L"", L"", 0},
        // A call that doesn't decide says nothing.
        {TEMZ_ACTION_START_SERVICE, {copyCall(2)}, plain, L"", L"", 0},
        // A code that no row is about.
        {TEMZ_ACTION_COPY_FILE, {copyCall(1450)}, plain, systemText(1450), L"", 1450},
    };
    for (const auto& [code, calls, witnesses, why, advice, systemError] : cases) {
        const Failure failure = failed(code, L"Greeter", calls, witnesses);

        EXPECT_EQ(failure.why, why) << code << ' ' << systemError;
        EXPECT_EQ(failure.advice, advice) << code << ' ' << systemError;
        EXPECT_EQ(failure.systemError, systemError) << why;
        EXPECT_EQ(failure.notElevated, advice == elevate) << why;
    }
}

TEST(DiagnosisTest, TellsWhatFailedWithItsPlacesAndTheCall) {
    const Failure failure = failed(TEMZ_ACTION_COPY_FILE, L"a.dll", {copyCall(32)}, held);

    EXPECT_EQ(failure.code, TEMZ_ACTION_COPY_FILE);
    EXPECT_EQ(failure.what, L"Copying a.dll");
    EXPECT_EQ(failure.source, L"C:\\setup\\a.dll");
    EXPECT_EQ(failure.target, L"C:\\app\\a.dll");
    EXPECT_EQ(failure.call, L"CopyFileW(C:\\setup\\a.dll, C:\\app\\a.dll, 0)");
}

TEST(DiagnosisTest, TakesTheFirstCallThatFailedForADirectory) {
    const Failure failure = failed(TEMZ_ACTION_REMOVE_DIRECTORY, L"C:\\app",
                                   {call(L"DeleteFileW", {L"C:\\app\\a.dll"}, 32),
                                    call(L"RemoveDirectoryW", {L"C:\\app"}, 145)},
                                   plain);

    EXPECT_EQ(failure.systemError, 32u);
    EXPECT_EQ(failure.call, L"DeleteFileW(C:\\app\\a.dll)");
}

TEST(DiagnosisTest, NamesTheHoldersOfTheFileThatKeepsADirectory) {
    const Failure failure =
        failed(TEMZ_ACTION_REMOVE_DIRECTORY, L"C:\\app",
               {deleteCall(32), call(L"RemoveDirectoryW", {L"C:\\app"}, 145)}, held);

    EXPECT_EQ(failure.why, L"the file is in use by sync.exe (4312), view.exe (7)");
    EXPECT_EQ(failure.target, L"C:\\app\\a.dll");
}

TEST(DiagnosisTest, LooksAtTheDirectoryThatCanNotBeMade) {
    const Failure failure = failed(TEMZ_ACTION_COPY_FILE, L"a.dll",
                                   {call(L"CreateDirectoryW", {L"C:\\app"}, 5), copyCall(3)});

    EXPECT_EQ(failure.advice, L"Look at the rights of C:\\app.");
    EXPECT_EQ(failure.call, L"CreateDirectoryW(C:\\app)");
}

TEST(DiagnosisTest, LooksAtNoDirectoryThatIsThereOrCannotBeTheReason) {
    for (const uint32_t error : {ERROR_SUCCESS, ERROR_PATH_NOT_FOUND, ERROR_ALREADY_EXISTS}) {
        const Failure failure =
            failed(TEMZ_ACTION_COPY_FILE, L"a.dll",
                   {call(L"CreateDirectoryW", {L"C:\\app"}, error), deleteCall(5), copyCall(3)});
        EXPECT_EQ(failure.systemError, 3u) << error;
        EXPECT_EQ(failure.call, L"CopyFileW(C:\\setup\\a.dll, C:\\app\\a.dll, 0)") << error;
    }
}

TEST(DiagnosisTest, ExplainsTheLibraryOfACustomAction) {
    const struct {
        const wchar_t* message;
        Call made;
        const wchar_t* why;
    } cases[] = {
        {L"Failed to load library(x.dll).", call(L"LoadLibraryW", {L"x.dll"}, 126),
         L"the library, or one that it needs, isn't there"},
        {L"Failed to load library(x.dll).", call(L"LoadLibraryW", {L"x.dll"}, 193),
         L"it is no 64-bit library"},
        {L"Failed to get Address(run).", call(L"GetProcAddress", {L"x.dll", L"run"}, 127),
         L"the library exports no such function"},
    };
    for (const auto& [message, made, why] : cases) {
        const Failure failure = diagnose(action(TEMZ_ACTION_CUSTOM_ACTION, L"run", {made}),
                                         error(TEMZ_ERROR_MESSAGE, L"", message), plain);

        EXPECT_EQ(failure.what, message);
        EXPECT_EQ(failure.why, why);
    }
}

TEST(DiagnosisTest, BlamesNoLibraryForAnotherMessage) {
    const Failure failure = diagnose(
        action(TEMZ_ACTION_CUSTOM_ACTION, L"run", {call(L"LoadLibraryW", {L"x.dll"}, 126)}),
        error(TEMZ_ERROR_MESSAGE, L"", L"It is wrong.\r\n"), plain);

    EXPECT_EQ(failure.what, L"It is wrong.");
    EXPECT_EQ(failure.why, L"");
    EXPECT_EQ(failure.systemError, 0u);
    EXPECT_EQ(failure.call, L"");
}

TEST(DiagnosisTest, BlamesNoConditionForWhatFollowsIt) {
    Call line;
    line.group = L"log";
    line.arguments = {L"delete file a"};
    const Failure failure = diagnose(action(TEMZ_ACTION_CONDITION, L"A = 1", {line, deleteCall(5)}),
                                     error(TEMZ_ERROR_MESSAGE, L"", L"It is wrong."), plain);

    EXPECT_EQ(failure.what, L"It is wrong.");
    EXPECT_EQ(failure.why, L"");
}

TEST(DiagnosisTest, TakesTheRecordOfAnActionThatItDoesNotKnow) {
    const Failure failure =
        diagnose(action(99, L"x", {copyCall(32)}), error(99, L"x", L"It is wrong.", 7), plain);

    EXPECT_EQ(failure.what, L"Action 99 x");
    EXPECT_EQ(failure.why, L"It is wrong.");
    EXPECT_EQ(failure.systemError, 7u);
}

TEST(DiagnosisTest, SaysSoWhereTheRecordIsEmpty) {
    EXPECT_EQ(diagnose({}, error(TEMZ_ERROR_MESSAGE, L""), plain).what,
              L"The engine doesn't tell what has failed.");
}

TEST(DiagnosisTest, TakesTheRecordWhereNoCallFailed) {
    const struct {
        uint32_t recorded;
        uint32_t told;
    } codes[] = {{7, 7}, {0, 0}, {UINT32_MAX, 0}};
    for (const auto& [recorded, told] : codes) {
        const Failure failure =
            diagnose(action(TEMZ_ACTION_CUSTOM_ACTION, L"run", {}),
                     error(TEMZ_ACTION_CUSTOM_ACTION, L"run", L"No licence.\n", recorded), plain);

        EXPECT_EQ(failure.what, L"Custom action run");
        EXPECT_EQ(failure.why, L"No licence.");
        EXPECT_EQ(failure.systemError, told);
    }
}

TEST(PlacesTest, ComeFromTheCallsOfTheAction) {
    const struct {
        uint32_t code;
        std::vector<Call> calls;
        const wchar_t* source;
        const wchar_t* target;
    } cases[] = {
        {TEMZ_ACTION_COPY_FILE, {copyCall(0)}, L"C:\\setup\\a.dll", L"C:\\app\\a.dll"},
        {TEMZ_ACTION_COPY_FILE,
         {copyCall(32), call(L"CopyFileW", {L"C:\\setup\\a.dll", L"C:\\app\\a.dll!@#$%"}, 0),
          deleteCall(0)},
         L"C:\\setup\\a.dll",
         L"C:\\app\\a.dll"},
        {TEMZ_ACTION_DELETE_FILE, {deleteCall(0)}, L"", L"C:\\app\\a.dll"},
        {TEMZ_ACTION_REMOVE_DIRECTORY,
         {deleteCall(0), call(L"RemoveDirectoryW", {L"C:\\app"}, 0)},
         L"",
         L"C:\\app"},
        {TEMZ_ACTION_SHORTCUT,
         {call(L"Save", {L"link", L"C:\\m\\a.lnk"}, 0)},
         L"",
         L"C:\\m\\a.lnk"},
        {TEMZ_ACTION_CAUTION, {}, L"", L""},
    };
    for (const auto& [code, calls, source, target] : cases) {
        const Places places = placesOf(action(code, L"x", calls));

        EXPECT_EQ(places.source, source) << code;
        EXPECT_EQ(places.target, target) << code;
    }
}

TEST(DescribeActionTest, HasAnOpeningForEachKindOfAction) {
    const struct {
        uint32_t code;
        const wchar_t* description;
    } actions[] = {
        {2, L"Checking x"},
        {3, L"Copying x"},
        {4, L"Deleting x"},
        {5, L"Stopping service x"},
        {6, L"Starting service x"},
        {7, L"Removing service x"},
        {8, L"Shortcut x"},
        {9, L"Removing shortcut x"},
        {10, L"Custom action x"},
        {11, L"Starting x"},
        {12, L"Creating registry key x"},
        {13, L"Removing registry key x"},
        {14, L"Writing registry value x"},
        {15, L"Removing directory x"},
        {16, L"Caution: x"},
        {17, L"Action 17 x"},
    };
    for (const auto& [code, description] : actions)
        EXPECT_EQ(describeAction(code, L"x", L""), description);
}

TEST(DescribeActionTest, JoinsTheTextsThatThereAre) {
    EXPECT_EQ(describeAction(TEMZ_ACTION_REMOVE_DIRECTORY, L"C:\\app", L"the program"),
              L"Removing directory C:\\app the program");
    EXPECT_EQ(describeAction(TEMZ_ACTION_CAUTION, L"", L"Read me"), L"Caution: Read me");
    EXPECT_EQ(describeAction(TEMZ_ACTION_CUSTOM_ACTION, L"", L""), L"Custom action");
}

TEST(SystemTextTest, HasNoLineEndAndMayBeMissing) {
    EXPECT_NE(systemText(ERROR_ACCESS_DENIED), L"");
    EXPECT_EQ(systemText(ERROR_ACCESS_DENIED).find_first_of(L"\r\n"), std::wstring::npos);
    EXPECT_EQ(systemText(123456), L"");
}

TEST(AdviceTest, IsGivenForACodeWhateverTheCall) {
    EXPECT_EQ(adviceOn(32), close);
    EXPECT_EQ(adviceOn(5), elevate);
    EXPECT_EQ(adviceOn(112), L"Make room on it.");
    EXPECT_EQ(adviceOn(123456), L"");
}

TEST(DiagnosisTest, NamesTheConditionThatCannotBeDecided) {
    Call line;
    line.group = L"log";
    line.arguments = {L"Condition expression evaluate error:undefined variable:NONE"};
    const Failure failure =
        diagnose(action(TEMZ_ACTION_CONDITION, L"NONE = 1", {line}),
                 error(TEMZ_ERROR_MESSAGE, L"", L"undefined variable:NONE"), plain);

    EXPECT_EQ(failure.code, uint32_t{TEMZ_ACTION_CONDITION});
    EXPECT_EQ(failure.what, L"Checking NONE = 1");
    EXPECT_EQ(failure.why, L"undefined variable:NONE");
}

TEST(DiagnosisTest, TellsAFailureOfAnActionFromOneThatFollowsIt) {
    const struct {
        uint32_t announced;
        uint32_t code;
        const wchar_t* message;
        bool isItsOwn;
    } cases[] = {
        {TEMZ_ACTION_COPY_FILE, TEMZ_ACTION_COPY_FILE, L"", true},
        {TEMZ_ACTION_SHORTCUT, TEMZ_ERROR_REMOVE_SHORTCUT, L"", true},
        {TEMZ_ACTION_COPY_FILE, TEMZ_ERROR_MESSAGE, L"undefined variable:NONE", false},
        {TEMZ_ACTION_CONDITION, TEMZ_ERROR_MESSAGE, L"undefined variable:NONE", false},
        {TEMZ_ACTION_CUSTOM_ACTION, TEMZ_ERROR_MESSAGE, L"Failed to load library(a.dll).", true},
        {TEMZ_ACTION_CUSTOM_ACTION, TEMZ_ERROR_MESSAGE, L"Failed to get Address(f).", true},
        {TEMZ_ACTION_CUSTOM_ACTION, TEMZ_ERROR_MESSAGE, L"Can't get application directory.", true},
        {TEMZ_ACTION_COPY_FILE, TEMZ_ERROR_MESSAGE, L"Failed to load library(a.dll).", false},
        {TEMZ_ACTION_REGISTRY_VALUE, TEMZ_ERROR_MESSAGE,
         L"x isn't DWORD text in the (RegistryValue,)", true},
        {TEMZ_ACTION_REGISTRY_VALUE, TEMZ_ERROR_MESSAGE,
         L"x is unknown Registry TYPE in the (RegistryValue,)", false},
    };
    for (const auto& [announced, code, message, isItsOwn] : cases)
        EXPECT_EQ(isFailureOf(action(announced, L"", {}), error(code, L"", message)), isItsOwn)
            << announced << ' ' << message;
}

}  // namespace
