#pragma once

#include <windows.h>

#include <cstring>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "trace/CallEffect.h"
#include "trace/CallFailure.h"

/// One use of a call: with which texts, and whether for the first time with these, or a later one.
struct CallUse {
    std::string call;       ///< "file.CopyFileW"
    std::string arguments;  ///< its texts: "C:\a.txt, C:\b.txt"
    size_t time = 1;

    bool operator==(const CallUse&) const = default;
};

/// How a call fails.
struct Fault {
    static constexpr DWORD usualError = ERROR_IO_DEVICE;  ///< one that the engine doesn't know

    DWORD error = usualError;
    bool lasting = false;  ///< the call goes on failing, whatever its arguments
    size_t times = 1;      ///< how many uses with the same texts fail in a row

    bool operator==(const Fault&) const = default;
};

/// The calls that give something back or wait. When one of these fails, that is done all the same:
/// nobody could tell what else has become of it.
using ReleasingCalls =
    CallList<&FileCalls::FindClose, &LibraryCalls::FreeLibrary, &ProcessCalls::CloseHandle,
             &ProcessCalls::LocalFree, &ProcessCalls::WaitForSingleObject,
             &RegistryCalls::RegCloseKey, &ServiceCalls::CloseServiceHandle,
             &ServiceCalls::LocalFree, &ServiceCalls::UnlockServiceDatabase>;

/// The calls that give null for no handle, where the type of their results is that of
/// INVALID_HANDLE_VALUE.
using NullGivingCalls = CallList<&ProcessCalls::OpenProcess, &ServiceCalls::LocalAlloc,
                                 &ServiceCalls::LockServiceDatabase>;

/// The calls that can't say that they have failed.
template <auto& table, auto member, class Result>
constexpr bool cannotFail() {
    using Table = std::remove_reference_t<decltype(table)>;
    constexpr bool isNumber =
        isCall<member>(&ClockCalls::GetTickCount) || std::is_same_v<Table, WalkCalls>;
    return isNumber || (std::is_void_v<Result> && !std::is_same_v<Table, LogCalls>);
}

/// Notes each call that can fail, and makes one use of one fail. For a CallWrapper. The calls of
/// the walk aren't the system's.
class CallFaults {
public:
    /// `readable` makes the texts of a call those of every other run.
    explicit CallFaults(std::function<std::string(std::wstring)> readable)
        : readable(std::move(readable)) {}

    void fail(const CallUse& use, const Fault& fault) {
        failing = use;
        how = fault;
    }

    template <auto& table, auto member, class Result, class... Arguments>
    Result around(const char* name, Result (*real)(Arguments...),
                  std::type_identity_t<Arguments>... arguments) {
        if constexpr (cannotFail<table, member, Result>()) {
            return real(arguments...);
        } else {
            const DWORD lastError = GetLastError();
            const bool fails = isToFail(std::string(table.group) + "." + name, arguments...);
            SetLastError(lastError);
            if (!fails)
                return real(arguments...);
            if constexpr (ReleasingCalls::has<member>)
                real(arguments...);
            SetLastError(how.error);
            return failure<table, member, Result>();
        }
    }

    /// In the order in which they were made.
    std::vector<CallUse> uses;
    bool hasFailed = false;

private:
    template <class... Arguments>
    bool isToFail(const std::string& call, const Arguments&... arguments) {
        CallUse use{call, {}};
        (addText(use.arguments, arguments), ...);
        use.time = ++counts[call + " " + use.arguments];
        uses.push_back(use);
        const bool again = hasFailed && how.lasting && use.call == failing.call;
        const bool inARow = use.call == failing.call && use.arguments == failing.arguments &&
                            use.time >= failing.time && use.time < failing.time + how.times;
        const bool fails = again || inARow;
        hasFailed |= fails;
        return fails;
    }

    template <class Argument>
    void addText(std::string& texts, const Argument& argument) {
        std::wstring text;
        if constexpr (std::is_same_v<Argument, const wchar_t*>)
            text = argument ? argument : L"";
        else if constexpr (std::is_same_v<Argument, const char*>)
            text.assign(argument, argument + (argument ? std::strlen(argument) : 0));
        else if constexpr (std::is_same_v<Argument, CLogLine>)
            text = withoutTime(argument.composed());
        if (!text.empty())
            texts += (texts.empty() ? "" : ", ") + readable(text);
    }

    /// "[LEVEL] text", of "[LEVEL][time] text".
    static std::wstring withoutTime(const std::string& line) {
        const size_t level = line.find(']') + 1;
        const size_t time = line.find("] ", level);
        return std::wstring(line.begin(), line.begin() + level) +
               std::wstring(line.begin() + time + 1, line.end());
    }

    /// What a call gives that has failed.
    template <auto& table, auto member, class Result>
    Result failure() const {
        constexpr Failure rule = failureOf<table, member, Result>();
        if constexpr (std::is_void_v<Result>)
            throw std::runtime_error("no line is written");
        else if constexpr (NullGivingCalls::has<member>)
            return nullptr;
        else if constexpr (rule == Failure::invalid)
            return INVALID_HANDLE_VALUE;
        else if constexpr (rule == Failure::nonNull)
            return reinterpret_cast<Result>(1);
        else if constexpr (rule == Failure::negativeCode)
            return HRESULT_FROM_WIN32(how.error);
        else if constexpr (rule == Failure::allOnes)
            return 0xFFFFFFFF;
        else if constexpr (rule == Failure::nonZeroErrorCode || rule == Failure::never)
            return static_cast<Result>(how.error);
        else
            return Result{};
    }

    const std::function<std::string(std::wstring)> readable;
    CallUse failing;
    Fault how;
    std::map<std::string, size_t> counts;
};
