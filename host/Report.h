#pragma once

#include <temz/temz.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "ExitCodes.h"

// What a run tells those who report it. All that is written about a run, on the console, in its log
// and as JSON, is made from these records.

/// One call of the engine, or a line of the engine's own log (see temz_call).
struct Call {
    std::wstring group;
    std::wstring name;
    std::vector<std::wstring> arguments;
    std::wstring result;
    bool failed = false;
    uint32_t systemError = 0;
    std::chrono::nanoseconds duration{};
};

/// How an action has ended.
enum class Fate {
    done,
    ignored,   ///< it is vital and has failed, and the run was to go on without it
    nonVital,  ///< it has failed, and the script doesn't count on it
    failed,    ///< it has failed, and so has the run
    stopped,   ///< the user wanted no more of the run before it was carried out
};

/// An action, from its announcement to the next one's.
struct Action {
    unsigned number = 0;   ///< from 1; 0 for what comes before the first announcement
    unsigned percent = 0;  ///< of the run at its beginning
    uint32_t code = 0;     ///< TEMZ_ACTION_...
    std::wstring text1;
    std::wstring text2;
    std::vector<Call> calls;  ///< of the last attempt
};

/// What has failed, why, and what to do about it, in sentences for a person.
struct Failure {
    uint32_t code = 0;         ///< TEMZ_ACTION_... or TEMZ_ERROR_...
    uint32_t systemError = 0;  ///< of the call that failed, or the record's; 0 when there is none
    std::wstring what;         ///< "Copying sync.dll"
    std::wstring why;          ///< "the file is in use by sync.exe (4312)"; may be empty
    std::wstring source;       ///< whole paths; empty where there is none
    std::wstring target;
    std::wstring advice;       ///< what to do; may be empty
    std::wstring call;         ///< the call that failed, with its arguments; empty when none did
    bool notElevated = false;  ///< it wants an administrator, and this process isn't one
};

/// What is told about a run before it begins.
struct RunHeader {
    std::wstring version;  ///< of the program
    std::wstring commandLine;
    std::wstring windows;  ///< "10.0.19045"
    std::wstring user;     ///< with its domain
    bool elevated = false;
    std::wstring mode;        ///< "install"; this and what follows are empty without a command
    std::wstring script;      ///< whole path
    std::wstring scriptHash;  ///< SHA-256, in lower-case hexadecimal digits
};

/// What a run has come to.
struct RunSummary {
    Ending ending = Ending::done;
    unsigned actions = 0;               ///< announced
    unsigned done = 0;                  ///< of these, carried out
    unsigned total = 0;                 ///< that there were to be; 0 when that isn't known
    unsigned ignored = 0;               ///< vital failures that the run went on without
    unsigned nonVital = 0;              ///< other failures
    std::vector<std::wstring> leftOut;  ///< what failed and was gone on without, and why
    bool restartNeeded = false;
    std::vector<std::wstring> waiting;  ///< files that wait for the restart
    bool sessionEnded = false;          ///< by which Windows, not the user, has ended the run
    std::wstring stoppedAt;             ///< the action before which the user stopped, or empty
    std::wstring reason;                ///< why the run could not begin; empty when it did
};

/// Somebody who reports a run. Called on the thread of the run, in this order: `started` once; then
/// for each action `began`, its `called`s, any `failed`s, and `ended`; `finished` once. An action
/// before which the user has stopped has no `began`.
class Reporter {
public:
    Reporter() = default;
    Reporter(const Reporter&) = delete;
    Reporter& operator=(const Reporter&) = delete;
    virtual ~Reporter() = default;

    virtual void started(const RunHeader&) {}
    virtual void began(const Action&) {}
    virtual void called(const Call&) {}
    /// `attempt` counts from 1.
    virtual void failed(const Action&, const Failure&, unsigned /*attempt*/) {}
    virtual void ended(const Action&, Fate) {}
    /// Something worth knowing that is no failure.
    virtual void warned(const std::wstring& /*text*/) {}
    virtual void finished(const RunSummary&) {}
};
