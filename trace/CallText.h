#pragma once

#include <map>
#include <string>
#include <type_traits>

#include "system/CallTables.h"

/// What the handles that a run has opened stand for.
class HandleNames {
public:
    void remember(const void* handle, const std::wstring& name) { names[handle] = name; }
    /// The name; a predefined key's own; "null" and "-1"; otherwise "(object)".
    std::wstring find(const void* handle) const;

private:
    std::map<const void*, std::wstring> names;
};

// The texts of arguments and results. What a call fills in has a text only when the call succeeded.
std::wstring textOf(const wchar_t* text);
std::wstring textOf(const char* text);
std::wstring textOfObject(const void* object);
std::wstring textOf(const WIN32_FIND_DATAW& found);
std::wstring textOf(const PROCESSENTRY32W& process);
std::wstring textOf(const MODULEENTRY32W& module);
std::wstring textOf(const SHELLEXECUTEINFOW& start);
std::wstring textOf(const SERVICE_STATUS& status);
std::wstring textOf(const QUERY_SERVICE_CONFIGW& config);
std::wstring textOf(const OSVERSIONINFOW& version);

/// The data of a registry value: a number, a text, or bytes.
std::wstring textOfRegistryData(DWORD type, const BYTE* data, DWORD size);

/// Has "<time>" stand for the time stamp that this process puts into names, so that what is told is
/// the same in the next one.
void hideNameStamp(std::wstring& text);

/// A text that a call has written into a buffer, of which at most `capacity` characters are read.
std::wstring filledText(const wchar_t* buffer, size_t capacity);

/// One argument of a call that has returned, or its result. `filled` tells whether the call has
/// succeeded.
template <class Argument>
std::wstring textOfArgument(const HandleNames& handles, bool filled, Argument argument) {
    using Target = std::remove_cv_t<std::remove_pointer_t<Argument>>;
    constexpr size_t longestPath = 260;
    if constexpr (std::is_integral_v<Argument>) {
        return std::to_wstring(argument);
    } else if constexpr (std::is_same_v<Argument, wchar_t*>) {
        return filled ? filledText(argument, longestPath) : std::wstring();
    } else if constexpr (std::is_same_v<Target, wchar_t> || std::is_same_v<Target, char>) {
        return textOf(argument);
    } else if constexpr (std::is_same_v<Target, DWORD> || std::is_same_v<Target, UINT>) {
        return filled && argument ? std::to_wstring(*argument) : std::wstring();
    } else if constexpr (std::is_same_v<Argument, PHKEY>) {
        return filled && argument ? handles.find(*argument) : std::wstring();
    } else if constexpr (requires { textOf(*argument); }) {
        // What describes a program to start is the caller's; all other records are filled in.
        const bool there = filled || std::is_same_v<Target, SHELLEXECUTEINFOW>;
        return there && argument ? textOf(*argument) : std::wstring();
    } else if constexpr (std::is_pointer_v<Argument> &&
                         (std::is_const_v<std::remove_pointer_t<Argument>> ||
                          std::is_base_of_v<IUnknown, Target>)) {
        // No handle, though it may stand where one stood.
        return textOfObject(argument);
    } else if constexpr (std::is_pointer_v<Argument>) {
        return handles.find(reinterpret_cast<const void*>(argument));
    } else {
        return {};
    }
}
