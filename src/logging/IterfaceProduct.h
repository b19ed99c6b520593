#pragma once

#include "Abi.h"

#include <cstdint>
#include <string>

class IterfaceContext;
class IterfaceObserver;

/// What an action does, by the script element that carries it out. The numbers stand in
/// ActionInfo::code, and in ErrorInfo::code when the action has failed, but for those whose failure
/// has ERROR_CODE_MESSAGE or ERROR_CODE_REMOVE_SHORTCUT.
enum ActionCode : uint32_t {
    ACTION_CONDITION = 2,     ///< Condition: text1 is the expression about to be evaluated
    ACTION_COPY_FILE = 3,     ///< File, at install and upgrade: text1 is its name
    ACTION_DELETE_FILE = 4,   ///< File, at uninstall: text1 is its name
    ACTION_STOP_SERVICE = 5,  ///< ServiceControl, for this and the next two: text1 is the service
    ACTION_START_SERVICE = 6,
    ACTION_REMOVE_SERVICE = 7,
    ACTION_SHORTCUT = 8,              ///< Shortcut, in every mode: text1 is its name
    ACTION_CUSTOM_ACTION = 10,        ///< CustomAction: text1 is the function, text2 the title
    ACTION_SHELL_EXCUTE = 11,         ///< ShellExcute: text1 is the file, text2 the title
    ACTION_CREATE_REGISTRY_KEY = 12,  ///< RegistryKey: text1 is root and key, text2 the title
    ACTION_REMOVE_REGISTRY_KEY = 13,  ///< RegistryKey: text1 is root and key, text2 the title
    ACTION_REGISTRY_VALUE = 14,       ///< RegistryValue: text1 is root, key and the value's name
    ACTION_REMOVE_DIRECTORY = 15,     ///< RemoveDirectory: text1 is the path, text2 the title
    ACTION_CAUTION = 16,              ///< Caution: text1 is empty, text2 what the user should read
};

/// The value of ErrorInfo::code for a failure that `message` alone tells: of the script, so of a
/// Condition whose expression fails, and of a CustomAction whose function can't be called.
inline constexpr uint32_t ERROR_CODE_MESSAGE = 1;

/// The value of ErrorInfo::code for a Shortcut that couldn't be removed: text1 is its name.
inline constexpr uint32_t ERROR_CODE_REMOVE_SHORTCUT = 9;

/// The action that is about to be carried out.
struct ActionInfo {
    uint32_t code;       ///< one of ActionCode, 0 before the first action
    wchar_t text1[512];  ///< normally the object of the action
    wchar_t text2[512];  ///< a further text, often empty
};

/// The last failure. It doesn't tell whether a run has succeeded, which its result alone does: each
/// action that starts, but for a Condition, sets `code` to 1 and empties the rest.
struct ErrorInfo {
    /// One of ActionCode, ERROR_CODE_MESSAGE or ERROR_CODE_REMOVE_SHORTCUT; 0 before the first
    /// action.
    uint32_t code;
    wchar_t text1[512];    ///< the object of the failed action
    wchar_t text2[512];    ///< a further text of the action
    uint32_t systemError;  ///< the system's or the action's number; 0 or 0xFFFFFFFF for none
    wchar_t message[512];  ///< readable message, cut to fit; may be empty or end in a line end
};

/// The product of a loaded script: the host runs it, and reads here what it does. It belongs to the
/// context that handed it out and is gone after IterfaceContext::unload.
class IterfaceProduct {
public:
    virtual ~IterfaceProduct() = default;

    /// Carries out the install sequence of the script in the context's run mode; blocks until it
    /// has ended. 0 on success; otherwise -1, the system's error code of a File that couldn't be
    /// copied or the number that a CustomAction gave back, with `errorInfo` telling what happened.
    /// Can be called again.
    virtual int32_t run(IterfaceContext* context) = 0;

    /// Looks up the place that a folder word or the Id of a `Directory` element names. On success
    /// `path` ends in a separator, unless it is empty. False, with `errorInfo.message` telling why,
    /// when there is no such place; `path` may hold what it held before. `directoryId` isn't null.
    virtual bool getDirectory(std::wstring& path, const wchar_t* directoryId,
                              IterfaceContext* context) = 0;

    IterfaceObserver* observer = nullptr;  ///< set and owned by the host; null for none
    void* observerData = nullptr;          ///< the host's own value, handed on to custom actions
    uint32_t progress = 0;                 ///< percent of the run at the last action, 0 to 100
    bool rebootRequired = false;  ///< a file waits for the next restart; kept until the next run
    ActionInfo actionInfo{};      ///< the action that was announced last
    ErrorInfo errorInfo{};        ///< the last failure
};
