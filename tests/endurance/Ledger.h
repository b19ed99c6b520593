#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>

#include "allocation/FailingAllocation.h"
#include "trace/CallEffect.h"

/// What the engine gets from the system and gives back to it.
enum class Thing : size_t {
    registryKey,
    serviceHandle,
    serviceLock,
    search,
    processHandle,
    library,
    systemMemory,
    componentLibrary,
    linkObject,
    none,
};
inline constexpr std::array thingNames = {
    "registry key", "service handle", "lock of the services",  "search",     "process handle",
    "library",      "system memory",  "use of the components", "link object"};

/// How much is held, by name; only of what is.
using Holdings = std::map<std::string, int64_t>;

/// What is held at a moment: memory, and of each thing how many.
struct Books {
    int64_t blocks = static_cast<int64_t>(liveAllocations());
    int64_t bytes = static_cast<int64_t>(liveBytes());
    std::array<int64_t, thingNames.size()> things{};
};

/// By how much it has grown.
inline Holdings operator-(const Books& later, const Books& earlier) {
    Holdings growth{{"block", later.blocks - earlier.blocks},
                    {"byte", later.bytes - earlier.bytes}};
    for (size_t thing = 0; thing < thingNames.size(); ++thing)
        growth[thingNames[thing]] = later.things[thing] - earlier.things[thing];
    std::erase_if(growth, [](const auto& holding) { return holding.second == 0; });
    return growth;
}

inline Holdings operator*(Holdings holdings, int64_t times) {
    for (auto& [name, count] : holdings)
        count *= times;
    return holdings;
}

/// Keeps the books of what each call of the call tables gets and gives back, whoever answers it.
class Ledger {
public:
    template <auto& table, auto member, class Result, class... Parameters, class... Arguments>
    Result around(const char*, Result (*real)(Parameters...), Arguments&&... arguments) {
        constexpr Thing got = gets<member>();
        constexpr Thing given = gives<member>();
        static_assert(got != Thing::none || given != Thing::none || !std::is_pointer_v<Result> ||
                          Lends::has<member>,
                      "whose is what this call answers?");
        if constexpr (std::is_void_v<Result>) {
            real(arguments...);
            if constexpr (given != Thing::none)
                --held[static_cast<size_t>(given)];
        } else {
            const Result result = real(arguments...);
            const bool failed = saysFailure<failureOf<table, member, Result>()>(result);
            if constexpr (got != Thing::none)
                held[static_cast<size_t>(got)] += !failed && isThere(arguments...);
            if constexpr (given != Thing::none)
                held[static_cast<size_t>(given)] -= !failed;
            return result;
        }
    }

    /// A reference to a link object more, or less: its calls aren't in the tables.
    void bookLink(int64_t references) {
        held[static_cast<size_t>(Thing::linkObject)] += references;
    }

    Books books() const { return {.things = held}; }

private:
    using Lends = CallList<&LibraryCalls::GetProcAddress, &SystemCalls::GetProcAddress,
                           &SystemCalls::GetModuleHandleW>;

    template <auto member>
    static constexpr Thing gets() {
        if (CallList<&RegistryCalls::RegCreateKeyExW, &RegistryCalls::RegOpenKeyExW>::has<member>)
            return Thing::registryKey;
        if (CallList<&ServiceCalls::OpenSCManagerW, &ServiceCalls::OpenServiceW>::has<member>)
            return Thing::serviceHandle;
        if (isCall<member>(&ServiceCalls::LockServiceDatabase))
            return Thing::serviceLock;
        if (isCall<member>(&FileCalls::FindFirstFileW))
            return Thing::search;
        if (CallList<&ProcessCalls::CreateToolhelp32Snapshot, &ProcessCalls::OpenProcess,
                     &ShellCalls::ShellExecuteExW>::has<member>)
            return Thing::processHandle;
        if (isCall<member>(&LibraryCalls::LoadLibraryW))
            return Thing::library;
        if (CallList<&ServiceCalls::LocalAlloc, &ProcessCalls::FormatMessageW,
                     &ProcessCalls::FormatMessageA>::has<member>)
            return Thing::systemMemory;
        if (isCall<member>(&ShellCalls::CoInitialize))
            return Thing::componentLibrary;
        return Thing::none;
    }

    template <auto member>
    static constexpr Thing gives() {
        if (isCall<member>(&RegistryCalls::RegCloseKey))
            return Thing::registryKey;
        if (isCall<member>(&ServiceCalls::CloseServiceHandle))
            return Thing::serviceHandle;
        if (isCall<member>(&ServiceCalls::UnlockServiceDatabase))
            return Thing::serviceLock;
        if (isCall<member>(&FileCalls::FindClose))
            return Thing::search;
        if (isCall<member>(&ProcessCalls::CloseHandle))
            return Thing::processHandle;
        if (isCall<member>(&LibraryCalls::FreeLibrary))
            return Thing::library;
        if (isCall<member>(&ServiceCalls::LocalFree) || isCall<member>(&ProcessCalls::LocalFree))
            return Thing::systemMemory;
        if (isCall<member>(&ShellCalls::CoUninitialize))
            return Thing::componentLibrary;
        return Thing::none;
    }

    /// A program that was started may have left no process to hold.
    static bool isThere(const SHELLEXECUTEINFOW* start) { return start->hProcess != nullptr; }
    template <class... Arguments>
    static bool isThere(Arguments...) {
        return true;
    }

    std::array<int64_t, thingNames.size()> held{};
};
