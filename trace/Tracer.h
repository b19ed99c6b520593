#pragma once

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <exception>
#include <string>
#include <type_traits>
#include <vector>

#include "trace/CallEffect.h"
#include "trace/CallFailure.h"
#include "trace/CallText.h"

/// One call by which the engine has changed or asked the machine, or a line that goes to its log.
struct TracedCall {
    std::wstring group;  ///< of the call table
    std::wstring name;   ///< of the call; of a line its level
    std::vector<std::wstring> arguments;
    std::wstring result;
    bool changes = false;  ///< it is one of ChangingCalls
    bool failed = false;
    uint32_t systemError = 0;  ///< of a call that failed
    std::chrono::nanoseconds duration{};
};

class CallListener {
public:
    virtual void heard(const TracedCall& call) = 0;

    /// Whether `permit` is to be asked.
    virtual bool givesPermits() const { return false; }
    /// One of ChangingCalls is about to be made; what it is to fill in, and its result, are empty.
    /// In its arguments "<time>" stands for the time stamp that the process puts into names.
    /// What this throws keeps the call from being made, and leaves the engine through the run.
    virtual void permit(const TracedCall& /*call*/) {}

protected:
    ~CallListener() = default;
};

/// The groups of calls that ask nothing of the machine: the clock, text conversion, and the walk.
template <class Table>
constexpr bool isInternal = std::is_same_v<Table, ClockCalls> || std::is_same_v<Table, TextCalls> ||
                            std::is_same_v<Table, WalkCalls>;

/// Tells a listener of every call of the engine as it returns, and asks it before a change if it
/// wants that. For a CallWrapper. Calls, their results and the thread's last error are the same as
/// without it; a call that can't be told for lack of memory is left out, one that can't be asked
/// for isn't made, and what the listener itself has the engine call is left out, too.
class Tracer {
public:
    explicit Tracer(CallListener& listener) : listener(listener) {}

    template <auto& table, auto member, class Result, class... Arguments>
    Result around(const char* name, Result (*real)(Arguments...),
                  std::type_identity_t<Arguments>... arguments) {
        using Table = std::remove_reference_t<decltype(table)>;
        if constexpr (std::is_same_v<Table, LogCalls>) {
            tellLine(arguments...);
            return real(arguments...);
        } else if constexpr (isInternal<Table>) {
            return real(arguments...);
        } else if constexpr (std::is_void_v<Result>) {
            askPermit<table, member>(name, arguments...);
            const Moment start = now();
            real(arguments...);
            tell<table, member>(name, start, NoResult(), arguments...);
        } else {
            askPermit<table, member>(name, arguments...);
            const Moment start = now();
            const Result result = real(arguments...);
            tell<table, member>(name, start, result, arguments...);
            return result;
        }
    }

private:
    using Moment = std::chrono::steady_clock::time_point;

    /// Keeps the thread's last error over the tracer's own work.
    class LastErrorScope {
    public:
        LastErrorScope() = default;
        LastErrorScope(const LastErrorScope&) = delete;
        LastErrorScope& operator=(const LastErrorScope&) = delete;
        ~LastErrorScope() { SetLastError(error); }

        const DWORD error = GetLastError();
    };

    class ListeningScope {
    public:
        explicit ListeningScope(bool& listening) : listening(listening) { listening = true; }
        ListeningScope(const ListeningScope&) = delete;
        ListeningScope& operator=(const ListeningScope&) = delete;
        ~ListeningScope() { listening = false; }

    private:
        bool& listening;
    };

    /// Hands a call to the listener, unless that is listening already.
    void tellListener(const TracedCall& call) {
        if (listening)
            return;
        const ListeningScope scope(listening);
        listener.heard(call);
    }

    template <auto& table, auto member, class... Arguments>
    void askPermit(const char* name, Arguments... arguments) {
        if constexpr (ChangingCalls::has<member>) {
            if (listening || !listener.givesPermits())
                return;
            const LastErrorScope scope;
            TracedCall call = describe<table, member>(name);
            call.arguments = argumentsOf<member>(false, arguments...);
            for (std::wstring& argument : call.arguments)
                hideNameStamp(argument);
            const ListeningScope listeningScope(listening);
            listener.permit(call);
        }
    }

    template <auto& table, auto member>
    static TracedCall describe(const char* name) {
        TracedCall call;
        call.group = textOf(table.group);
        call.name = textOf(name);
        call.changes = ChangingCalls::has<member>;
        return call;
    }

    static Moment now() {
        const LastErrorScope scope;
        return std::chrono::steady_clock::now();
    }

    void tellLine(const CLogLine& line);

    template <auto& table, auto member, class Result, class... Arguments>
    void tell(const char* name, Moment start, Result result, Arguments... arguments) {
        const LastErrorScope scope;
        const auto duration = std::chrono::steady_clock::now() - start;
        try {
            constexpr Failure rule = failureOf<table, member, Result>();
            const bool failed = saysFailure<rule>(result);
            TracedCall call = describe<table, member>(name);
            if (!failed)
                nameHandle<member>(call.name, result, arguments...);
            call.arguments = argumentsOf<member>(!failed, arguments...);
            if constexpr (!std::is_same_v<Result, NoResult>)
                call.result = textOfArgument(handles, !failed, result);
            call.failed = failed;
            call.systemError = failed ? errorOfFailure<rule>(result, scope.error) : 0;
            call.duration = duration;
            tellListener(call);
        } catch (const std::exception&) {
            // Left out.
        }
    }

    /// Remembers what a handle stands for that a call has given.
    template <auto member, class Result, class... Arguments>
    void nameHandle(const std::wstring& name, Result result, Arguments... arguments) {
        if constexpr (std::is_same_v<std::remove_cv_t<decltype(member)>,
                                     decltype(&RegistryCalls::RegOpenKeyExW)> ||
                      std::is_same_v<std::remove_cv_t<decltype(member)>,
                                     decltype(&RegistryCalls::RegCreateKeyExW)>) {
            nameKey(arguments...);
        } else if constexpr (std::is_pointer_v<Result>) {
            std::wstring meaning = nameOf(arguments...);
            handles.remember(reinterpret_cast<const void*>(result),
                             meaning.empty() ? name : meaning);
        }
    }

    /// The first two arguments of both calls that open a key are its parent and its path, and one
    /// of the later ones takes the key.
    template <class... Arguments>
    void nameKey(HKEY parent, const wchar_t* path, Arguments... arguments) {
        const auto remember = [&](auto argument) {
            if constexpr (std::is_same_v<decltype(argument), PHKEY>)
                handles.remember(*argument, handles.find(parent) + L"\\" + textOf(path));
        };
        (remember(arguments), ...);
    }

    /// The texts that a call was given, or else its last number: a service, a file, a process.
    template <class... Arguments>
    std::wstring nameOf(Arguments... arguments) const {
        std::wstring meaning;
        const auto add = [&](auto argument) {
            using Argument = decltype(argument);
            if constexpr (std::is_same_v<Argument, const wchar_t*> ||
                          std::is_same_v<Argument, const char*>) {
                if (argument)
                    meaning = textOf(argument);
            } else if constexpr (std::is_same_v<Argument, HMODULE>) {
                meaning = handles.find(argument);
            }
        };
        (add(arguments), ...);
        return meaning;
    }

    template <auto member, class... Arguments>
    std::vector<std::wstring> argumentsOf(bool filled, Arguments... arguments) const {
        if constexpr (isCall<member>(&RegistryCalls::RegSetValueExW))
            return valueArguments(arguments...);
        else if constexpr (isCall<member>(&ProcessCalls::FormatMessageW) ||
                           isCall<member>(&ProcessCalls::FormatMessageA))
            return messageArguments(arguments...);
        else if constexpr (isCall<member>(&ShellCalls::SHChangeNotify))
            return noticeArguments(arguments...);
        else if constexpr (isCall<member>(&ActionCalls::CallEntry))
            return entryArguments(arguments...);
        else
            return {textOfArgument(handles, filled, arguments)...};
    }

    // Calls with arguments whose meaning their types don't tell.
    std::vector<std::wstring> valueArguments(HKEY key, const wchar_t* name, DWORD reserved,
                                             DWORD type, const BYTE* data, DWORD size) const;
    template <class Buffer>
    static std::vector<std::wstring> messageArguments(DWORD flags, const void* /*source*/,
                                                      DWORD code, DWORD language,
                                                      Buffer /*allocated*/, DWORD /*size*/,
                                                      va_list* /*inserts*/) {
        return {std::to_wstring(flags), std::to_wstring(code), std::to_wstring(language)};
    }
    static std::vector<std::wstring> noticeArguments(LONG event, UINT flags, const void* one,
                                                     const void* other);
    std::vector<std::wstring> entryArguments(CustomActionEntry entry,
                                             const CustomActionParams* params,
                                             const wchar_t* message, uint32_t capacity) const;

    CallListener& listener;
    bool listening = false;
    HandleNames handles;
};
