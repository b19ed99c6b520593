#include "Diagnosis.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "FileHolders.h"
#include "Machine.h"
#include "Services.h"

namespace {

/// What is said of an action, and which of its calls can be the one that made it fail.
struct ActionRow {
    uint32_t code;
    const wchar_t* name;
    std::array<const wchar_t*, 5> decisive;
};

constexpr ActionRow actionRows[] = {
    {TEMZ_ERROR_MESSAGE, L"", {L"LoadLibraryW", L"GetProcAddress"}},
    {TEMZ_ACTION_CONDITION, L"Checking", {}},
    {TEMZ_ACTION_COPY_FILE,
     L"Copying",
     {L"CopyFileW", L"MoveFileExW", L"DeleteFileW", L"SetFileAttributesW"}},
    {TEMZ_ACTION_DELETE_FILE, L"Deleting", {L"DeleteFileW", L"SetFileAttributesW"}},
    {TEMZ_ACTION_STOP_SERVICE,
     L"Stopping service",
     {L"OpenSCManagerW", L"OpenServiceW", L"ControlService"}},
    {TEMZ_ACTION_START_SERVICE,
     L"Starting service",
     {L"OpenSCManagerW", L"OpenServiceW", L"StartServiceW"}},
    {TEMZ_ACTION_REMOVE_SERVICE,
     L"Removing service",
     {L"OpenSCManagerW", L"OpenServiceW", L"DeleteService"}},
    {TEMZ_ACTION_SHORTCUT, L"Shortcut", {L"CreateDirectoryW", L"CoCreateInstance", L"Save"}},
    {TEMZ_ERROR_REMOVE_SHORTCUT, L"Removing shortcut", {L"DeleteFileW", L"SetFileAttributesW"}},
    {TEMZ_ACTION_CUSTOM_ACTION, L"Custom action", {}},
    {TEMZ_ACTION_SHELL_EXCUTE, L"Starting", {L"ShellExecuteExW"}},
    {TEMZ_ACTION_CREATE_REGISTRY_KEY, L"Creating registry key", {L"RegCreateKeyExW"}},
    {TEMZ_ACTION_REMOVE_REGISTRY_KEY,
     L"Removing registry key",
     {L"RegOpenKeyExW", L"RegDeleteKeyW"}},
    {TEMZ_ACTION_REGISTRY_VALUE, L"Writing registry value", {L"RegOpenKeyExW", L"RegSetValueExW"}},
    {TEMZ_ACTION_REMOVE_DIRECTORY,
     L"Removing directory",
     {L"DeleteFileW", L"SetFileAttributesW", L"RemoveDirectoryW"}},
    {TEMZ_ACTION_CAUTION, L"Caution:", {}},
};

const ActionRow* findRow(uint32_t code) {
    const auto* row = std::find_if(std::begin(actionRows), std::end(actionRows),
                                   [code](const ActionRow& row) { return row.code == code; });
    return row == std::end(actionRows) ? nullptr : row;
}

bool isOneOf(const std::array<const wchar_t*, 5>& names, const std::wstring& name) {
    return std::any_of(names.begin(), names.end(),
                       [&name](const wchar_t* one) { return one && name == one; });
}

/// The call that made the action fail: normally the last one that failed of those that can. Of a
/// directory it is the first, since what contains it can't be removed either.
const Call* decisiveCall(const Action& action, const ActionRow& row) {
    const auto decides = [&row](const Call& call) {
        return call.failed && isOneOf(row.decisive, call.name);
    };
    if (row.code == TEMZ_ACTION_REMOVE_DIRECTORY) {
        const auto first = std::find_if(action.calls.begin(), action.calls.end(), decides);
        return first == action.calls.end() ? nullptr : &*first;
    }
    const auto last = std::find_if(action.calls.rbegin(), action.calls.rend(), decides);
    if (last == action.calls.rend())
        return nullptr;
    // A copy into a directory that couldn't be made says no more than that it isn't there.
    if (last->name == L"CopyFileW" && last->systemError == ERROR_PATH_NOT_FOUND)
        for (const Call& call : action.calls)
            if (call.name == L"CreateDirectoryW" && call.failed &&
                call.systemError != ERROR_PATH_NOT_FOUND &&
                call.systemError != ERROR_ALREADY_EXISTS)
                return &call;
    return &*last;
}

std::wstring joined(const std::vector<std::wstring>& texts) {
    std::wstring all;
    for (const std::wstring& text : texts)
        all += (all.empty() ? L"" : L", ") + text;
    return all;
}

/// What an error code of a call means for the person who runs the program.
struct ReasonRow {
    uint32_t systemError;
    const wchar_t* call;  // of one call only; null for all
    const wchar_t* why;   // null for the system's own text
    const wchar_t* advice;
};

constexpr uint32_t programBlockedByPolicy = 1260;
constexpr wchar_t seeServicePath[] = L"See the path that sc qc NAME shows.";
constexpr ReasonRow reasonRows[] = {
    {ERROR_FILE_NOT_FOUND, L"CopyFileW", L"the file to copy isn't there",
     L"Put it where the script's Source says, counted from the folder of temz.exe."},
    {ERROR_PATH_NOT_FOUND, L"CopyFileW", L"the file to copy or the directory isn't there",
     L"Look at the script's Source, and whether the directory can be made."},
    {ERROR_FILE_NOT_FOUND, L"ShellExecuteExW", L"the program isn't there",
     L"Give its whole path in the script."},
    {ERROR_PATH_NOT_FOUND, L"ShellExecuteExW", L"the program's directory isn't there",
     L"Look at its path in the script."},
    {ERROR_CANCELLED, L"ShellExecuteExW",
     L"the question for an administrator's rights was answered with No",
     L"Run it from an administrator's prompt, where nobody is asked."},
    {ERROR_NO_ASSOCIATION, L"ShellExecuteExW", L"a file of this kind can't be started elevated",
     L"Start the program that opens it, with the file as its argument."},
    {programBlockedByPolicy, L"ShellExecuteExW", nullptr,
     L"Ask whoever sets the machine's policy."},
    {ERROR_MOD_NOT_FOUND, L"LoadLibraryW", L"the library, or one that it needs, isn't there",
     L"Give its whole path in the script, and link what it needs statically."},
    {ERROR_BAD_EXE_FORMAT, L"LoadLibraryW", L"it is no 64-bit library", L"Build it for 64 bits."},
    {ERROR_BAD_EXE_FORMAT, nullptr, L"it is no program that this Windows can run", L""},
    {ERROR_PROC_NOT_FOUND, L"GetProcAddress", L"the library exports no such function",
     L"Export it undecorated: extern \"C\"."},
    {ERROR_DISK_FULL, nullptr, L"the disk is full", L"Make room on it."},
    {ERROR_HANDLE_DISK_FULL, nullptr, L"the disk is full", L"Make room on it."},
    {ERROR_WRITE_PROTECT, nullptr, L"the disk is write-protected", L""},
    {ERROR_INVALID_NAME, nullptr, L"the name can't be one of a file",
     L"Look at the names in the script: < > : \" | ? * can't be in one."},
    {ERROR_FILENAME_EXCED_RANGE, nullptr, L"the path is too long",
     L"Install into a directory with a shorter path."},
    {ERROR_SERVICE_DOES_NOT_EXIST, nullptr, L"there is no such service",
     L"The script wants its short name, which sc query shows."},
    {ERROR_FILE_NOT_FOUND, L"StartServiceW", L"its program isn't there", seeServicePath},
    {ERROR_PATH_NOT_FOUND, L"StartServiceW", L"its program isn't there", seeServicePath},
    {ERROR_SERVICE_DISABLED, nullptr, L"the service is disabled",
     L"Enable it: sc config NAME start= demand."},
    {ERROR_SERVICE_MARKED_FOR_DELETE, nullptr, L"the service is already being removed",
     L"Close all programs that look at services, or restart the machine."},
    {ERROR_SERVICE_REQUEST_TIMEOUT, nullptr, L"its program didn't answer in time",
     L"See the system's event log."},
    {ERROR_SERVICE_LOGON_FAILED, nullptr, L"it can't log on with its account",
     L"Set its account and password."},
    {ERROR_SERVICE_CANNOT_ACCEPT_CTRL, nullptr, L"the service can't be stopped now",
     L"Try again when it has started."},
    {ERROR_INVALID_SERVICE_CONTROL, nullptr, L"the service doesn't let itself be stopped", L""},
    {ERROR_KEY_DELETED, nullptr, L"the key is being removed", L"Run the command again."},
};

const ReasonRow* findReason(const Call& call) {
    for (const ReasonRow& row : reasonRows)
        if (row.systemError == call.systemError && (!row.call || call.name == row.call))
            return &row;
    return nullptr;
}

bool isSharing(uint32_t error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
           error == ERROR_USER_MAPPED_FILE;
}

constexpr wchar_t closeProgram[] =
    L"Close the program, or give the file KillProcess or SupportDelayInstall in the script.";
constexpr wchar_t runElevated[] = L"Run it from an administrator's prompt.";

/// Explains a failure from the call that made it, and the machine.
class Investigation {
public:
    Investigation(const Action& action, const Witnesses& witnesses, Failure& failure)
        : action(action), witnesses(witnesses), failure(failure) {}

    void explain(const Call& call) {
        failure.systemError = call.systemError;
        failure.call = callText(call);
        const std::wstring object = objectOf(call);
        if (isSharing(call.systemError) || isInUse(call))
            explainHolders(object);
        else if (call.systemError == ERROR_ACCESS_DENIED)
            explainRefusal(object);
        else if (call.systemError == ERROR_DEPENDENT_SERVICES_RUNNING)
            explainDependants();
        else
            explainByTable(call);
    }

private:
    /// What the call was refused. That of a directory's removal or making is a file or directory of
    /// its own, and where there is nothing to tell but one place, it is the one.
    std::wstring objectOf(const Call& call) const {
        constexpr std::array<const wchar_t*, 5> ofOnePath = {
            L"DeleteFileW", L"SetFileAttributesW", L"RemoveDirectoryW", L"CreateDirectoryW"};
        if (isOneOf(ofOnePath, call.name)) {
            if (failure.source.empty())
                failure.target = call.arguments[0];
            return call.arguments[0];
        }
        return failure.target.empty() ? action.text1 : failure.target;
    }

    /// A program or library that is in use can't be deleted, which isn't told as such.
    bool isInUse(const Call& call) const {
        return call.systemError == ERROR_ACCESS_DENIED && call.name == L"DeleteFileW" &&
               !witnesses.holdersOf(call.arguments[0]).empty();
    }

    void explainHolders(const std::wstring& path) {
        const std::vector<std::wstring> holders = witnesses.holdersOf(path);
        failure.why = L"the file is in use by " +
                      (holders.empty() ? std::wstring(L"another program") : joined(holders));
        failure.advice = closeProgram;
    }

    void explainRefusal(const std::wstring& path) {
        const unsigned long attributes = witnesses.attributesOf(path);
        constexpr unsigned long barring =
            FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
        const bool isFile = action.code == TEMZ_ACTION_COPY_FILE;
        if (isFile && attributes != INVALID_FILE_ATTRIBUTES && (attributes & barring) != 0) {
            failure.why = L"the file there is " + attributeText(attributes);
            failure.advice = L"Clear that (attrib -r -h -s), and ship the file without it.";
        } else if (!witnesses.isElevated()) {
            failure.why = L"access is denied, and the program isn't run as an administrator";
            failure.advice = runElevated;
            failure.notElevated = true;
        } else {
            failure.why = L"access is denied";
            failure.advice = L"Look at the rights of " + path + L".";
        }
    }

    static std::wstring attributeText(unsigned long attributes) {
        std::vector<std::wstring> texts;
        if (attributes & FILE_ATTRIBUTE_READONLY)
            texts.emplace_back(L"read-only");
        if (attributes & FILE_ATTRIBUTE_HIDDEN)
            texts.emplace_back(L"hidden");
        if (attributes & FILE_ATTRIBUTE_SYSTEM)
            texts.emplace_back(L"a system file");
        return joined(texts);
    }

    void explainDependants() {
        const std::wstring dependants = witnesses.dependantsOf(action.text1);
        failure.why = L"other services that run depend on it";
        if (!dependants.empty())
            failure.why += L": " + dependants;
        failure.advice = L"Stop these first.";
    }

    void explainByTable(const Call& call) {
        const ReasonRow* row = findReason(call);
        failure.why = row && row->why ? row->why : systemText(call.systemError);
        if (row)
            failure.advice = row->advice;
    }

    const Action& action;
    const Witnesses& witnesses;
    Failure& failure;
};

/// The state that a service was last seen in, when it isn't the one that was wanted.
std::wstring lastState(const Action& action) {
    constexpr const wchar_t* states[] = {
        L"",
        L"it has stopped",
        L"it is still starting",
        L"it is still stopping",
        L"it runs",
        L"it is going on after a pause",
        L"it is pausing",
        L"it has paused",
    };
    const auto last = std::find_if(
        action.calls.rbegin(), action.calls.rend(),
        [](const Call& call) { return call.name == L"QueryServiceStatus" && !call.failed; });
    if (last == action.calls.rend())
        return {};
    const std::wstring& state = last->arguments.back();
    const auto number = static_cast<size_t>(state.back() - L'0');
    return number < std::size(states) ? states[number] : L"";
}

/// Of the failures with nothing but a message these alone come from a call. The others may follow
/// an action that made such calls, too.
bool isAboutLibrary(const std::wstring& message) {
    return message.starts_with(L"Failed to load library(") ||
           message.starts_with(L"Failed to get Address(");
}

/// How what has announced an action tells, by a message alone, that it failed: in the message, or
/// in a line of the engine's log.
struct MessageSign {
    uint32_t code;
    const wchar_t* part;
};
constexpr MessageSign messageSigns[] = {
    {TEMZ_ACTION_CONDITION, L"Condition expression evaluate error:"},
    {TEMZ_ACTION_CUSTOM_ACTION, L"Failed to load library("},
    {TEMZ_ACTION_CUSTOM_ACTION, L"Failed to get Address("},
    {TEMZ_ACTION_CUSTOM_ACTION, L"Can't get application directory."},
    {TEMZ_ACTION_REGISTRY_VALUE, L" isn't DWORD text in the "},
};

bool stands(const MessageSign& sign, const Action& action, const std::wstring& message) {
    const auto holdsSign = [&sign](const std::wstring& text) {
        return text.find(sign.part) != std::wstring::npos;
    };
    return holdsSign(message) ||
           std::any_of(action.calls.begin(), action.calls.end(), [&](const Call& call) {
               return call.group == L"log" && holdsSign(call.arguments[0]);
           });
}

std::wstring withoutLineEnd(std::wstring text) {
    text.erase(text.find_last_not_of(L"\r\n ") + 1);
    return text;
}

}  // namespace

const Witnesses realWitnesses = {
    holdersOf,
    isElevated,
    [](const std::wstring& path) -> unsigned long { return GetFileAttributesW(path.c_str()); },
    runningDependantsOf,
};

std::wstring adviceOn(uint32_t code) {
    if (isSharing(code))
        return closeProgram;
    if (code == ERROR_ACCESS_DENIED)
        return runElevated;
    const auto* row =
        std::find_if(std::begin(reasonRows), std::end(reasonRows),
                     [code](const ReasonRow& reason) { return reason.systemError == code; });
    return row == std::end(reasonRows) ? L"" : row->advice;
}

std::wstring describeAction(uint32_t code, const std::wstring& text1, const std::wstring& text2) {
    const ActionRow* row = findRow(code);
    std::wstring action = row ? row->name : L"Action " + std::to_wstring(code);
    for (const std::wstring& text : {text1, text2})
        if (!text.empty())
            action += L" " + text;
    return action;
}

Places placesOf(const Action& action) {
    Places places;
    for (const Call& call : action.calls) {
        if (call.name == L"CopyFileW" && places.source.empty())
            places = {call.arguments[0], call.arguments[1]};
        const bool names =
            call.name == L"DeleteFileW" || call.name == L"RemoveDirectoryW" || call.name == L"Save";
        if (names && action.code != TEMZ_ACTION_COPY_FILE)
            places.target = call.arguments[call.name == L"Save" ? 1 : 0];
    }
    return places;
}

bool isFailureOf(const Action& action, const temz_error& error) {
    if (error.code != TEMZ_ERROR_MESSAGE)
        return true;
    return std::any_of(std::begin(messageSigns), std::end(messageSigns),
                       [&](const MessageSign& sign) {
                           return sign.code == action.code && stands(sign, action, error.message);
                       });
}

Failure diagnose(const Action& action, const temz_error& error, const Witnesses& witnesses) {
    Failure failure;
    if (action.code == TEMZ_ACTION_CONDITION && isFailureOf(action, error)) {
        failure.code = action.code;
        failure.what = describeAction(action.code, action.text1, action.text2);
        failure.why = withoutLineEnd(error.message);
        return failure;
    }
    failure.code = error.code;
    const std::wstring message = withoutLineEnd(error.message);
    const bool isMessage = error.code == TEMZ_ERROR_MESSAGE;
    failure.what = !isMessage        ? describeAction(error.code, error.text1, error.text2)
                   : message.empty() ? L"The engine doesn't tell what has failed."
                                     : message;
    if (!isMessage) {  // which tells everything, and may be of no action
        const Places places = placesOf(action);
        failure.source = places.source;
        failure.target = places.target;
    }

    const ActionRow* row = findRow(error.code);
    const bool callsMatter = row && (!isMessage || isAboutLibrary(message));
    const Call* call = callsMatter ? decisiveCall(action, *row) : nullptr;
    if (call) {
        Investigation(action, witnesses, failure).explain(*call);
        return failure;
    }
    if (error.system_error != UINT32_MAX)
        failure.systemError = error.system_error;
    if (!isMessage)
        failure.why = !message.empty() ? message : lastState(action);
    return failure;
}

std::wstring callText(const std::wstring& name, const std::vector<std::wstring>& arguments) {
    std::wstring text = name + L"(";
    for (size_t i = 0; i < arguments.size(); ++i)
        text += (i == 0 ? L"" : L", ") + arguments[i];
    return text + L")";
}
