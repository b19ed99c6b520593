#include "calls/FaultTable.h"

#include <algorithm>

namespace {

using Lines = std::vector<std::string>;
using enum FaultedUses::Mode;
using enum FaultedUses::Made;

Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// How calls fail other than with an error that the engine doesn't know.
constexpr Fault accessDenied{ERROR_ACCESS_DENIED};
constexpr Fault fileNotFound{ERROR_FILE_NOT_FOUND};
constexpr Fault pathNotFound{ERROR_PATH_NOT_FOUND};
constexpr Fault serviceNotFound{ERROR_SERVICE_DOES_NOT_EXIST};
constexpr Fault withoutError{ERROR_SUCCESS};
constexpr Fault lasting{.lasting = true};

const Lines ignored = {};

// An action fails, and the run goes on since the host says so.
const Lines newFileLacks = {"- there {app}\\new\\deep\\new.txt: new"};
const Lines oldFileStays = {"- there {app}\\old.txt: new", "+ there {app}\\old.txt: old"};
const Lines stagedFileStays = {"+ asked about 3 kept.txt by -1", "- there {app}\\kept.txt: new",
                               "+ log [ERROR] Failed to delete File {app}\\kept.txt!@#$%"};
const Lines keptFileStays = {"+ asked about 4 kept.txt", "+ there {app}\\kept.txt, read-only: old"};
const Lines nothingWaits = {"- restart",
                            "- at restart \\??\\{app}\\used.txt!@#$% to !\\??\\{app}\\used.txt",
                            "- log [WARNNING] Succeed to MoveFileEx, file={payload}\\used.txt"};
const Lines programStays = {"+ there {app}\\tool.exe: a program", "- the program has ended",
                            "+ the program runs",
                            "- log [INFO] Kill process ({app}\\tool.exe) success."};
const Lines copyMeetsProgram =
    programStays +
    Lines{"- there {app}\\tool.exe: new", "+ asked about 3 tool.exe by 32: (the system's text)"};
const Lines deletionMeetsProgram = programStays + Lines{"+ asked about 4 tool.exe"};
const Lines noSnapshot = {"+ log [ERROR] CreateToolhelp32Snapshot error:1117"};
const Lines cannotBeEnded = {"+ log [WARNNING] Failed to kill process({app}\\tool.exe)"};

const Lines linkLacks = {
    "- there {app}\\links\\Tool.lnk: a link to {app}\\tool.exe in {app} with "
    "{app}\\tool<time>.ico"};
const Lines iconLacks = {"- there {app}\\tool<time>.ico: icon"};
const Lines linkFails = linkLacks + iconLacks +
                        Lines{"+ asked about 8 links\\Tool",
                              "+ log [ERROR] Fail to create short cut:{app}\\links\\Tool.lnk"};
Lines linkWith(const std::string& description) {
    return linkLacks + Lines{"+ there {app}\\links\\Tool.lnk: a link to " + description};
}

// A key's failure ends the run unasked.
const Lines runEnds = {"- result 0", "+ result -1", "- left 1", "- heard 16 end at 50%"};
const Lines keyIsNotRemoved =
    runEnds + Lines{"+ left 13 HKEY_CURRENT_USER\\{key}\\gone t", "+ there {key}\\gone"};
const Lines firstSubkeyStays = keyIsNotRemoved + Lines{"+ there {key}\\gone\\a"};
const Lines secondSubkeyStays = keyIsNotRemoved + Lines{"+ there {key}\\gone\\b"};
const Lines bothSubkeysStay = firstSubkeyStays + Lines{"+ there {key}\\gone\\b"};
const Lines valueIsNotWritten = {"+ asked about 14 HKEY_CURRENT_USER\\{key}\\made[Value Name]text",
                                 "- there {key}\\made[text]: v"};

const Lines treeStays = {"+ there {app}\\tree"};
const Lines fileStays = treeStays + Lines{"+ there {app}\\tree\\a.txt: a"};
const Lines subtreeStays =
    treeStays + Lines{"+ there {app}\\tree\\sub", "+ there {app}\\tree\\sub\\b.txt: b"};
const Lines allStays = subtreeStays + Lines{"+ there {app}\\tree\\a.txt: a"};
const Lines removalFails = {"+ asked about 15 {app}\\tree t by -1"};

const Lines actionIsNotCalled = {"- the action has been called, with is64Bit 1"};
const Lines programIsNotStarted = {"+ asked about 11 {system}\\cmd.exe t by -1",
                                   "- there {app}\\ran.txt: done"};

Lines serviceFails(const char* code, const char* request) {
    return {std::string("+ asked about ") + code + " S",
            std::string("- the service has had ") + request};
}

const Lines isNotFound = {"- heard 16 found at 25%", "- log [INFO] FOUND E 1 expression value:true",
                          "+ log [INFO] FOUND E 1 expression value:false"};
Lines hasNoVersion(const char* failure) {
    return isNotFound + Lines{"- log [INFO] File Version MS:65538 LS:0",
                              "- log [INFO] Satisfy min version required.",
                              std::string("+ log [WARNNING] ") + failure,
                              "+ log [INFO] Can't satisfy min version required."};
}

// A text that can't be converted the short way isn't the long way either.
FaultedUses texts(size_t firstTime = 0, size_t lastTime = 0) {
    return {
        .firstTime = firstTime, .lastTime = lastTime, .scenario = "texts", .fault = {.times = 2}};
}

/// Only exhausted memory makes a text be missing where it may be, and what comes of it is no matter
/// of the call alone.
constexpr char onlyMemory[] = "only exhausted memory leaves out what may be left out";

// A run that ends in front of the condition, in it, and behind it.
Lines behindCondition(const std::string& message) {
    return runEnds + Lines{"+ left 1: " + message};
}
Lines inCondition(const std::string& message) {
    return behindCondition(message) + Lines{"- heard 16 t at 0%"};
}
Lines beforeCondition(const std::string& message) {
    return inCondition(message) +
           Lines{"- heard 2 V E 1 at 0%", "- log [INFO] V E 1 expression value:true"};
}
Lines notLoaded(const std::string& message) {
    return {"- result 0",
            "- left 1",
            "- heard 2 V E 1 at 0%",
            "- heard 16 t at 0%",
            "- heard 16 end at 50%",
            "- log [INFO] V E 1 expression value:true",
            "+ not loaded: " + message};
}
Lines variableLacks(const std::string& attribute) {
    return notLoaded("Create Element error:(VariableConst,V) cant get the require explicit " +
                     attribute + "attribute.");
}
std::string notMade(const std::string& why, const std::string& parent, const std::string& name) {
    return "Create Motion Element error:" + why + parent + " cann't create child element(" + name +
           ")";
}
constexpr char cautionLacksTitle[] = "(Caution,) cant get the require explicit Titleattribute.";
const Lines conditionLacksExpression =
    beforeCondition(notMade("(Condition,) cant get the require explicit Expressionattribute.",
                            "(InstallExecuteSequence,)", "Condition"));
const Lines referenceLacksId =
    behindCondition(notMade("The name or id is NULL in createRefMotionElement.",
                            "(InstallExecuteSequence,)", "FragmentRef"));

void replace(std::string& text, const std::string& from, const std::string& to) {
    if (const size_t at = text.find(from); at != std::string::npos)
        text.replace(at, from.size(), to);
}

bool matches(std::string_view pattern, std::string_view text) {
    return pattern.empty() || pattern == text;
}

}  // namespace

bool FaultRow::isAbout(const Scenario& scenario, int32_t mode, const CallUse& use) const {
    const size_t lastTime = std::max(uses.firstTime, uses.lastTime);
    const bool isRemoving = mode == RUNMODE_UNINSTALL;
    return uses.made != once && use.call == call && matches(arguments, use.arguments) &&
           matches(uses.scenario, scenario.name) &&
           (lastTime == 0 || (use.time >= uses.firstTime && use.time <= lastTime)) &&
           (uses.mode == anyMode || (uses.mode == removing) == isRemoving);
}

std::vector<const FaultRow*> rowsOf(const Scenario& scenario, int32_t mode, const CallUse& use) {
    std::vector<const FaultRow*> rows;
    for (const FaultRow& row : faultTable()) {
        const auto sameFault = [&](const FaultRow* other) {
            return other->uses.fault == row.uses.fault;
        };
        if (row.isAbout(scenario, mode, use) && std::ranges::none_of(rows, sameFault))
            rows.push_back(&row);
    }
    return rows;
}

Lines differencesBetween(const ScenarioRun& undisturbed, const ScenarioRun& run) {
    const Lines& before = undisturbed.lines;
    const Lines& after = run.lines;
    // The length of the longest common part of what is left from each place on.
    std::vector<std::vector<size_t>> common(before.size() + 1,
                                            std::vector<size_t>(after.size() + 1));
    for (size_t i = before.size(); i-- > 0;)
        for (size_t j = after.size(); j-- > 0;)
            common[i][j] = before[i] == after[j] ? common[i + 1][j + 1] + 1
                                                 : std::max(common[i + 1][j], common[i][j + 1]);
    Lines differences;
    size_t i = 0;
    size_t j = 0;
    while (i < before.size() && j < after.size()) {
        if (before[i] == after[j])
            ++i, ++j;
        else if (common[i + 1][j] >= common[i][j + 1])
            differences.push_back("- " + before[i++]);
        else
            differences.push_back("+ " + after[j++]);
    }
    for (; i < before.size(); ++i)
        differences.push_back("- " + before[i]);
    for (; j < after.size(); ++j)
        differences.push_back("+ " + after[j]);
    return differences;
}

Lines differencesOf(const FaultRow& row, const CallUse& use) {
    Lines differences = row.differences;
    for (std::string& difference : differences)
        replace(difference, "{arguments}", use.arguments);
    return differences;
}

const std::vector<FaultRow>& faultTable() {
    static const std::vector<FaultRow> rows = {
        // The facts that a script can ask.
        {"system.GetModuleHandleW",
         "kernel32.dll",
         {.scenario = "facts of the system"},
         {"- heard 16 64 bits at 0%", "- log [INFO] OS_BIT E 64 expression value:true",
          "+ log [INFO] OS_BIT E 64 expression value:false"}},
        {"system.GetModuleHandleW",
         "kernel32.dll",
         {.scenario = "a custom action"},
         actionIsNotCalled + Lines{"+ the action has been called, with is64Bit 0"}},
        {"system.GetModuleHandleW", "kernel32.dll", {}, ignored},
        {"system.GetProcAddress",
         "GetNativeSystemInfo",
         {.scenario = "facts of the system"},
         {"- heard 16 64 bits at 0%", "- log [INFO] OS_BIT E 64 expression value:true",
          "+ log [INFO] OS_BIT E 64 expression value:false"}},
        {"system.GetProcAddress",
         "GetNativeSystemInfo",
         {.scenario = "a custom action"},
         actionIsNotCalled + Lines{"+ the action has been called, with is64Bit 0"}},
        {"system.GetProcAddress", "GetNativeSystemInfo", {}, ignored},
        {"system.GetVersionExW",
         "",
         {.firstTime = 1, .scenario = "facts of the system", .fault = lasting},
         {"- result 0", "- left 1", "- heard 2 OS_BIT E 64 at 0%", "- heard 16 64 bits at 0%",
          "- heard 16 {windows}\\ at 16%", "- heard 16 end at 50%",
          "- log [INFO] OS_BIT E 64 expression value:true", "+ not loaded: Can't get OS Version.",
          "+ log [ERROR] Can't get OS version."}},
        {"system.GetVersionExW", "", {.firstTime = 1}, ignored},
        {"system.GetVersionExW",
         "",
         {.firstTime = 2, .scenario = "a program"},
         programIsNotStarted},

        // The log. A line isn't there.
        {"log.WriteLine", "", {}, {"- log {arguments}"}},
        {"clock.GetLocalTime", "", {}, {}, "has no way to fail"},
        {"clock.GetTickCount", "", {}, {}, "has no way to fail"},
        {"clock.Sleep", "", {}, {}, "has no way to fail"},

        // What is given back or waited for.
        {"file.FindClose", "", {}, ignored},
        {"library.FreeLibrary", "", {}, ignored},
        {"process.CloseHandle", "", {}, ignored},
        {"process.LocalFree", "", {}, ignored},
        {"process.WaitForSingleObject", "", {}, ignored},
        {"registry.RegCloseKey", "", {}, ignored},
        {"service.CloseServiceHandle", "", {}, ignored},
        {"shell.CoUninitialize", "", {}, {}, "has no way to fail"},
        {"shell.SHChangeNotify", "", {}, {}, "has no way to fail"},

        // The directory of a file. That it can't be made shows in the copy.
        {"file.CreateDirectoryW",
         "{app}\\new\\deep",
         {.firstTime = 1, .fault = lasting},
         newFileLacks + Lines{"- there {app}\\new", "- there {app}\\new\\deep",
                              "+ asked about 3 new\\deep\\new.txt by 3: (the system's text)"}},
        {"file.CreateDirectoryW", "{app}\\new\\deep", {.firstTime = 1}, ignored},
        {"file.CreateDirectoryW", "{app}\\new", {}, ignored},
        {"file.CreateDirectoryW",
         "{app}\\new\\deep",
         {.firstTime = 2},
         newFileLacks + Lines{"- there {app}\\new\\deep",
                              "+ asked about 3 new\\deep\\new.txt by 3: (the system's text)"}},
        {"file.CreateDirectoryW", "{app}", {}, ignored},
        {"file.CreateDirectoryW", "{app}", {.fault = lasting}, ignored},

        // A new file.
        {"file.FindFirstFileW", "{app}\\new\\deep\\new.txt!@#$%", {}, ignored},
        {"file.CopyFileW",
         "{payload}\\new.txt, {app}\\new\\deep\\new.txt",
         {},
         newFileLacks + Lines{"+ asked about 3 new\\deep\\new.txt by 1117: (the system's text)"}},
        {"file.CopyFileW",
         "{payload}\\new.txt, {app}\\new\\deep\\new.txt",
         {.fault = withoutError},
         newFileLacks + Lines{"+ asked about 3 new\\deep\\new.txt by -1"}},
        {"file.FindFirstFileW",
         "{app}\\new\\deep\\new.txt",
         {},
         {"+ there {app}\\new\\deep\\new.txt: new"}},
        {"file.DeleteFileW",
         "{app}\\new\\deep\\new.txt",
         {},
         {"+ asked about 4 new\\deep\\new.txt", "+ there {app}\\new\\deep\\new.txt: new"}},
        {"file.DeleteFileW",
         "{app}\\new\\deep\\new.txt",
         {.fault = accessDenied},
         {"+ asked about 4 new\\deep\\new.txt", "+ there {app}\\new\\deep\\new.txt: new"}},

        // A file that is there, with what an earlier run has left beside it.
        {"file.FindFirstFileW", "{app}\\old.txt!@#$%", {}, {"+ there {app}\\old.txt!@#$%: left"}},
        {"file.DeleteFileW",
         "{app}\\old.txt!@#$%",
         {},
         oldFileStays + Lines{"+ asked about 3 old.txt by -1", "+ there {app}\\old.txt!@#$%: left",
                              "+ log [ERROR] Failed to delete File {app}\\old.txt!@#$%"}},
        {"file.CopyFileW",
         "{payload}\\old.txt, {app}\\old.txt",
         {},
         oldFileStays + Lines{"+ asked about 3 old.txt by 1117: (the system's text)"}},
        {"file.FindFirstFileW", "{app}\\old.txt", {}, {"+ there {app}\\old.txt: old"}},
        {"file.DeleteFileW",
         "{app}\\old.txt",
         {},
         {"+ asked about 4 old.txt", "+ there {app}\\old.txt: old"}},

        // A file that can't be deleted before it is made writable.
        {"file.FindFirstFileW",
         "{app}\\kept.txt!@#$%",
         {},
         {"+ there {app}\\kept.txt!@#$%, read-only: old"}},
        {"file.DeleteFileW",
         "{app}\\kept.txt!@#$%",
         {.firstTime = 1, .fault = accessDenied},
         ignored},
        {"file.DeleteFileW",
         "{app}\\kept.txt!@#$%",
         {.firstTime = 1},
         stagedFileStays + Lines{"+ there {app}\\kept.txt!@#$%, read-only: old"}},
        {"file.GetFileAttributesW",
         "{app}\\kept.txt!@#$%",
         {},
         stagedFileStays + Lines{"+ there {app}\\kept.txt!@#$%, read-only: old"}},
        {"file.SetFileAttributesW",
         "{app}\\kept.txt!@#$%",
         {},
         stagedFileStays + Lines{"+ there {app}\\kept.txt!@#$%, read-only: old"}},
        {"file.DeleteFileW",
         "{app}\\kept.txt!@#$%",
         {.firstTime = 2},
         stagedFileStays + Lines{"+ there {app}\\kept.txt!@#$%: old"}},
        {"file.CopyFileW",
         "{payload}\\kept.txt, {app}\\kept.txt",
         {},
         {"+ asked about 3 kept.txt by 1117: (the system's text)", "- there {app}\\kept.txt: new"}},
        {"file.FindFirstFileW", "{app}\\kept.txt", {}, {"+ there {app}\\kept.txt, read-only: old"}},
        {"file.DeleteFileW", "{app}\\kept.txt", {.firstTime = 1, .fault = accessDenied}, ignored},
        {"file.DeleteFileW", "{app}\\kept.txt", {.firstTime = 1}, keptFileStays},
        {"file.GetFileAttributesW", "{app}\\kept.txt", {}, keptFileStays},
        {"file.SetFileAttributesW", "{app}\\kept.txt", {}, keptFileStays},
        {"file.DeleteFileW",
         "{app}\\kept.txt",
         {.firstTime = 2},
         {"+ asked about 4 kept.txt", "+ there {app}\\kept.txt: old"}},

        // A file in use. Whatever the copy fails of, the replacement is left to the restart.
        {"file.FindFirstFileW", "{app}\\used.txt!@#$%", {}, ignored},
        {"file.CopyFileW", "{payload}\\used.txt, {app}\\used.txt", {}, ignored},
        {"file.CopyFileW",
         "{payload}\\used.txt, {app}\\used.txt!@#$%",
         {},
         nothingWaits + Lines{"+ asked about 3 used.txt by 1117: (the system's text)",
                              "- there {app}\\used.txt!@#$%: new"}},
        {"file.CopyFileW",
         "{payload}\\used.txt, {app}\\used.txt!@#$%",
         {.fault = withoutError},
         nothingWaits +
             Lines{"+ asked about 3 used.txt by -1", "- there {app}\\used.txt!@#$%: new"}},
        {"file.MoveFileExW",
         "{app}\\used.txt!@#$%, {app}\\used.txt",
         {},
         nothingWaits + Lines{"+ asked about 3 used.txt by 1117: (the system's text)",
                              "+ log [ERROR] MoveFileEx error code=1117"}},
        {"file.MoveFileExW",
         "{app}\\used.txt!@#$%, {app}\\used.txt",
         {.fault = withoutError},
         nothingWaits +
             Lines{"+ asked about 3 used.txt by -1", "+ log [ERROR] MoveFileEx error code=0"}},
        {"file.FindFirstFileW", "{app}\\used.txt", {}, {"- asked about 4 used.txt"}},
        {"file.DeleteFileW", "{app}\\used.txt", {}, ignored},

        // A copy that fails by itself.
        {"file.FindFirstFileW", "{app}\\gone.txt!@#$%", {}, ignored},
        {"file.FindFirstFileW", "{app}\\more.txt!@#$%", {}, ignored},
        {"file.FindFirstFileW", "{app}\\gone.txt", {}, ignored},
        {"file.FindFirstFileW", "{app}\\more.txt", {}, ignored},
        {"file.CopyFileW",
         "{payload}\\gone.txt, {app}\\gone.txt",
         {},
         {"- asked about 3 gone.txt by 2: (the system's text)",
          "+ asked about 3 gone.txt by 1117: (the system's text)"}},
        {"file.CopyFileW", "{payload}\\more.txt, {app}\\more.txt", {}, ignored},
        {"process.FormatMessageW",
         "",
         {.firstTime = 1},
         {"- asked about 3 gone.txt by 2: (the system's text)", "+ asked about 3 gone.txt by 2"}},
        {"process.FormatMessageW", "", {.firstTime = 2}, ignored},
        {"process.FormatMessageA", "", {.made = never}, {}, "no element wants a narrow text"},

        // A program that runs from a file that is to go. That it can't be found or ended is no
        // failure.
        {"process.CreateToolhelp32Snapshot", "", {.mode = placing}, copyMeetsProgram + noSnapshot},
        {"process.CreateToolhelp32Snapshot",
         "",
         {.mode = removing},
         deletionMeetsProgram + noSnapshot},
        {"process.Process32FirstW", "", {.mode = placing}, copyMeetsProgram},
        {"process.Process32FirstW", "", {.mode = removing}, deletionMeetsProgram},
        {"process.Process32NextW", "", {.firstTime = 1, .mode = placing}, copyMeetsProgram},
        {"process.Process32NextW", "", {.firstTime = 1, .mode = removing}, deletionMeetsProgram},
        {"process.Process32NextW", "", {}, {}, "how often depends on what runs on the machine"},
        {"process.Module32FirstW", "", {.mode = placing}, copyMeetsProgram},
        {"process.Module32FirstW", "", {.mode = removing}, deletionMeetsProgram},
        {"process.OpenProcess", "", {.mode = placing}, copyMeetsProgram + cannotBeEnded},
        {"process.OpenProcess", "", {.mode = removing}, deletionMeetsProgram + cannotBeEnded},
        {"process.TerminateProcess", "", {.mode = placing}, copyMeetsProgram + cannotBeEnded},
        {"process.TerminateProcess", "", {.mode = removing}, deletionMeetsProgram + cannotBeEnded},
        {"file.FindFirstFileW", "{app}\\tool.exe!@#$%", {}, ignored},
        {"file.CopyFileW",
         "{payload}\\tool.exe, {app}\\tool.exe",
         {},
         {"+ asked about 3 tool.exe by 1117: (the system's text)", "- there {app}\\tool.exe: new",
          "+ there {app}\\tool.exe: a program"}},
        {"file.FindFirstFileW", "{app}\\tool.exe", {}, {"+ there {app}\\tool.exe: a program"}},
        {"file.DeleteFileW",
         "{app}\\tool.exe",
         {},
         {"+ asked about 4 tool.exe", "+ there {app}\\tool.exe: a program"}},

        // A link. Only its directory and its objects count.
        {"file.CreateDirectoryW",
         "{app}\\links",
         {.firstTime = 1, .fault = lasting},
         linkLacks + iconLacks +
             Lines{"+ asked about 8 links\\Tool by 1", "- there {app}\\links",
                   "+ log [ERROR] Fail to create short cut path:{app}"}},
        {"file.CreateDirectoryW", "{app}\\links", {}, ignored},
        {"shell.CoInitialize", "", {}, linkFails},
        {"shell.CoCreateInstance", "", {}, linkFails},
        {"link.SetPath", "{app}\\tool.exe", {}, linkWith(" in {app} with {app}\\tool<time>.ico")},
        {"file.FindFirstFileW", "{app}\\tool<time>.ico!@#$%", {}, ignored},
        {"file.CopyFileW",
         "{app}\\tool.ico, {app}\\tool<time>.ico",
         {},
         iconLacks + linkWith("{app}\\tool.exe in {app} with {app}\\tool.ico")},
        {"link.SetIconLocation",
         "{app}\\tool<time>.ico",
         {},
         linkWith("{app}\\tool.exe in {app} with ")},
        {"link.SetWorkingDirectory",
         "{app}",
         {},
         linkWith("{app}\\tool.exe in  with {app}\\tool<time>.ico")},
        {"link.Save", "{app}\\links\\Tool.lnk", {}, linkLacks},
        {"file.FindFirstFileW",
         "{app}\\links\\Tool.lnk",
         {},
         {"+ there {app}\\links\\Tool.lnk: link"}},
        {"file.DeleteFileW",
         "{app}\\links\\Tool.lnk",
         {},
         {"+ asked about 9 links\\Tool", "+ there {app}\\links\\Tool.lnk: link",
          "+ log [ERROR] Fail to delete short cut:{app}\\links\\Tool.lnk"}},

        // Keys and a value. The system's error is dropped.
        {"registry.RegCreateKeyExW",
         "{key}\\made",
         {},
         runEnds + Lines{"+ left 12 HKEY_CURRENT_USER\\{key}\\made t",
                         "- heard 14 HKEY_CURRENT_USER\\{key}\\made[Value Name]text at 0%",
                         "- heard 13 HKEY_CURRENT_USER\\{key}\\gone t at 25%",
                         "- there {key}\\made", "- there {key}\\made[text]: v",
                         "+ there {key}\\gone", "+ there {key}\\gone\\a",
                         "+ there {key}\\gone\\b"}},
        {"registry.RegOpenKeyExW", "{key}\\made", {}, valueIsNotWritten},
        {"registry.RegSetValueExW", "text", {}, valueIsNotWritten},
        {"registry.RegOpenKeyExW", "{key}\\gone", {}, bothSubkeysStay},
        {"registry.RegOpenKeyExW",
         "{key}\\gone",
         {.fault = fileNotFound},
         {"+ there {key}\\gone", "+ there {key}\\gone\\a", "+ there {key}\\gone\\b"}},
        {"registry.RegQueryInfoKeyW", "", {.firstTime = 1}, bothSubkeysStay},
        {"registry.RegQueryInfoKeyW", "", {}, ignored},
        {"registry.RegEnumKeyExW", "", {.firstTime = 1}, firstSubkeyStays},
        {"registry.RegEnumKeyExW", "", {.firstTime = 2}, secondSubkeyStays},
        {"registry.RegOpenKeyExW", "a", {}, firstSubkeyStays},
        {"registry.RegOpenKeyExW", "a", {.fault = fileNotFound}, firstSubkeyStays},
        {"registry.RegDeleteKeyW", "a", {}, firstSubkeyStays},
        {"registry.RegOpenKeyExW", "b", {}, secondSubkeyStays},
        {"registry.RegDeleteKeyW", "b", {}, secondSubkeyStays},
        {"registry.RegDeleteKeyW", "{key}\\gone", {}, keyIsNotRemoved},

        // A directory. What can be removed is, and what stays makes it fail.
        {"file.FindFirstFileW", "{app}\\tree\\*", {}, removalFails + allStays},
        {"file.FindFirstFileW", "{app}\\tree\\*", {.fault = pathNotFound}, allStays},
        {"file.FindFirstFileW", "{app}\\tree\\a.txt", {}, removalFails + fileStays},
        {"file.DeleteFileW", "{app}\\tree\\a.txt", {}, removalFails + fileStays},
        {"file.FindFirstFileW", "{app}\\tree\\sub\\*", {}, removalFails + subtreeStays},
        {"file.FindFirstFileW", "{app}\\tree\\sub\\b.txt", {}, removalFails + subtreeStays},
        {"file.DeleteFileW", "{app}\\tree\\sub\\b.txt", {}, removalFails + subtreeStays},
        {"file.RemoveDirectoryW",
         "{app}\\tree\\sub",
         {},
         removalFails + treeStays + Lines{"+ there {app}\\tree\\sub"}},
        {"file.RemoveDirectoryW", "{app}\\tree", {}, removalFails + treeStays},
        // Of the directory: ".." and a.txt.
        {"file.FindNextFileW", "", {.firstTime = 1, .lastTime = 2}, removalFails + allStays},
        // Of the directory: sub. In it: ".." and b.txt.
        {"file.FindNextFileW", "", {.firstTime = 3, .lastTime = 5}, removalFails + subtreeStays},
        // The end of both.
        {"file.FindNextFileW", "", {.firstTime = 6, .lastTime = 7}, ignored},

        // A custom action.
        {"library.LoadLibraryW",
         "{program}\\temz_test_actions.dll",
         {},
         actionIsNotCalled +
             Lines{"+ asked about 1: Failed to load library({program}\\temz_test_actions.dll)."}},
        {"library.GetProcAddress",
         "answer",
         {},
         actionIsNotCalled + Lines{"+ asked about 1: Failed to get Address(answer).",
                                   "+ log [ERROR] GetProcAddress answer failed."}},
        {"action.CallEntry",
         "",
         {},
         actionIsNotCalled + Lines{"+ asked about 10 answer t by 1117"}},

        // A program.
        {"shell.ShellExecuteExW", "", {}, programIsNotStarted},
        {"shell.SHGetSpecialFolderPathW",
         "",
         {.scenario = "a program"},
         runEnds + Lines{"+ left 1: Create Motion Element error:[System32Folder] mismatch."
                         "(Component,Main) cann't create child element(ShellExcute)",
                         "- heard 11 {system}\\cmd.exe t at 0%", "- there {app}\\ran.txt: done",
                         "+ log [ERROR] Failed to get the System32Folder"}},

        // Services.
        {"service.OpenSCManagerW",
         "",
         {.scenario = "a service that is started"},
         serviceFails("6", "StartService")},
        {"service.OpenServiceW",
         "S",
         {.scenario = "a service that is started"},
         serviceFails("6", "StartService")},
        {"service.OpenServiceW",
         "S",
         {.scenario = "a service that is started", .fault = serviceNotFound},
         serviceFails("6", "StartService")},
        {"service.QueryServiceStatus",
         "",
         {.firstTime = 1, .scenario = "a service that is started"},
         ignored},
        {"service.StartServiceW", "", {}, serviceFails("6", "StartService")},
        {"service.QueryServiceStatus",
         "",
         {.firstTime = 2, .lastTime = 3, .scenario = "a service that is started"},
         {"+ asked about 6 S"}},
        {"service.OpenSCManagerW",
         "",
         {.scenario = "a service that is stopped"},
         serviceFails("5", "ControlService")},
        {"service.OpenServiceW",
         "S",
         {.scenario = "a service that is stopped"},
         serviceFails("5", "ControlService")},
        {"service.OpenServiceW",
         "S",
         {.scenario = "a service that is stopped", .fault = serviceNotFound},
         {"- the service has had ControlService"}},
        {"service.QueryServiceStatus",
         "",
         {.firstTime = 1, .scenario = "a service that is stopped"},
         ignored},
        {"service.ControlService", "", {}, serviceFails("5", "ControlService")},
        {"service.QueryServiceStatus",
         "",
         {.firstTime = 2, .lastTime = 3, .scenario = "a service that is stopped"},
         {"+ asked about 5 S"}},
        {"service.OpenSCManagerW",
         "",
         {.scenario = "a service that is removed"},
         serviceFails("7", "DeleteService")},
        {"service.OpenServiceW",
         "S",
         {.scenario = "a service that is removed"},
         serviceFails("7", "DeleteService")},
        {"service.OpenServiceW",
         "S",
         {.scenario = "a service that is removed", .fault = serviceNotFound},
         {"- the service has had DeleteService"}},
        {"service.DeleteService", "", {}, serviceFails("7", "DeleteService")},
        {"service.QueryServiceConfigW",
         "",
         {.made = never},
         {},
         "no element asks how a service is started"},
        {"service.LocalAlloc", "", {.made = never}, {}, "no element asks how a service is started"},
        {"service.LocalFree", "", {.made = never}, {}, "no element asks how a service is started"},
        {"service.LockServiceDatabase",
         "",
         {.made = never},
         {},
         "no element changes how a service is started"},
        {"service.UnlockServiceDatabase",
         "",
         {.made = never},
         {},
         "no element changes how a service is started"},
        {"service.ChangeServiceConfigW",
         "",
         {.made = never},
         {},
         "no element changes how a service is started"},

        // A search. A version that can't be read satisfies nobody.
        {"file.FindFirstFileW",
         "{app}\\lib.dll",
         {},
         isNotFound + Lines{"- log [INFO] File Version MS:65538 LS:0",
                            "- log [INFO] Satisfy min version required."}},
        {"version.GetFileVersionInfoSizeW",
         "{app}\\lib.dll",
         {},
         hasNoVersion("Failed to GetFileVersionInfoSize")},
        {"version.GetFileVersionInfoW",
         "{app}\\lib.dll",
         {},
         hasNoVersion("Failed to GetFileVersionInfo")},
        {"version.VerQueryValueW", "\\", {}, hasNoVersion("Failed to VerQueryValue")},

        // The place of a folder word.
        {"shell.SHGetSpecialFolderPathW",
         "",
         {.scenario = "facts of the system"},
         runEnds + Lines{"+ left 1: Create Motion Element error:[WindowsFolder] mismatch."
                         "(Component,Main) cann't create child element(Caution)",
                         "- heard 16 {windows}\\ at 16%",
                         "+ log [ERROR] Failed to get the WindowsFolder"}},

        // What is asked once in a process: where the host is.
        {"file.GetModuleFileNameW",
         "",
         {.firstTime = 1, .scenario = "a new file", .made = once},
         newFileLacks + Lines{"+ asked about 3 new\\deep\\new.txt by 3: (the system's text)"}},

        // Texts. A script's names and values that can't be had are missing.
        {"text.WideCharToMultiByte", "{folder}\\script.xml", texts(), notLoaded("")},
        {"text.MultiByteToWideChar", "VariableConst", texts(2),
         notLoaded("Create Element error:Fail to get element name.")},
        {"text.MultiByteToWideChar", "VariableConst", texts(3),
         notLoaded("Create Element error:Can't obtain the name of the element")},
        {"text.MultiByteToWideChar", "1", texts(), variableLacks("Value")},
        {"text.MultiByteToWideChar", "int", texts(), variableLacks("Type")},
        {"text.MultiByteToWideChar", "Product", texts(1), ignored},
        {"text.MultiByteToWideChar", "Product", texts(2),
         notLoaded("Create Element error:Fail to get element name.")},
        {"text.MultiByteToWideChar", "Product", texts(3),
         notLoaded("Create Element error:Can't obtain the name of the element")},
        {"text.MultiByteToWideChar", "InstallExecuteSequence", texts(1, 2),
         beforeCondition("Failed to create install element.")},
        {"text.MultiByteToWideChar", "Condition", texts(1),
         beforeCondition("(InstallExecuteSequence,) can't get child element name.")},
        {"text.MultiByteToWideChar", "Condition", texts(2),
         beforeCondition(
             notMade("Fail to get element name.", "(InstallExecuteSequence,)", "Condition"))},
        {"text.MultiByteToWideChar", "Condition", texts(3),
         beforeCondition(notMade("Can't obtain the name of the element",
                                 "(InstallExecuteSequence,)", "Condition"))},
        {"text.MultiByteToWideChar", "V E 1", texts(), conditionLacksExpression},
        {"text.WideCharToMultiByte",
         "V E 1",
         texts(),
         {"- log [INFO] V E 1 expression value:true", "+ log [INFO] null expression value:true"}},
        {"text.MultiByteToWideChar", "Caution", texts(1),
         inCondition("(Condition,) can't get child element name.")},
        {"text.MultiByteToWideChar", "Caution", texts(2),
         inCondition(notMade("Fail to get element name.", "(Condition,)", "Caution"))},
        {"text.MultiByteToWideChar", "Caution", texts(3),
         inCondition(notMade("Can't obtain the name of the element", "(Condition,)", "Caution"))},
        {"text.MultiByteToWideChar", "t", texts(),
         inCondition(notMade(cautionLacksTitle, "(Condition,)", "Caution"))},
        {"text.MultiByteToWideChar", "FragmentRef", texts(1),
         behindCondition("(InstallExecuteSequence,) can't get child element name.")},
        {"text.MultiByteToWideChar", "FragmentRef", texts(2),
         behindCondition(
             notMade("Fail to get element name.", "(InstallExecuteSequence,)", "FragmentRef"))},
        {"text.MultiByteToWideChar", "F", texts(1), referenceLacksId},
        {"text.MultiByteToWideChar", "Caution", texts(6),
         behindCondition("(Fragment,F) can't get child element name.")},
        {"text.MultiByteToWideChar", "Caution", texts(7),
         behindCondition(notMade("Fail to get element name.", "(Fragment,F)", "Caution"))},
        {"text.MultiByteToWideChar", "Caution", texts(8),
         behindCondition(
             notMade("Can't obtain the name of the element", "(Fragment,F)", "Caution"))},
        {"text.MultiByteToWideChar", "end", texts(),
         behindCondition(notMade(cautionLacksTitle, "(Fragment,F)", "Caution"))},
        {"text.WideCharToMultiByte",
         "answer",
         {.firstTime = 1, .lastTime = 2, .scenario = "a custom action"},
         actionIsNotCalled +
             Lines{"- heard 10 answer t at 0%", "- log [INFO] {app}\\",
                   "- log [INFO] callDllEntry:{program}\\temz_test_actions.dll;answer"}},
        {"text.MultiByteToWideChar", "", texts(), {}, onlyMemory},
        {"text.WideCharToMultiByte", "", texts(), {}, onlyMemory},
        {"text.MultiByteToWideChar", "", {}, {}, "is done with every script's texts alike"},
        {"text.WideCharToMultiByte", "", {}, {}, "is done with every script's texts alike"},
    };
    return rows;
}
