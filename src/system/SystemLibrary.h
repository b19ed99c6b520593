#pragma once

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <type_traits>

/// A library of the system that is bound at first use, by its whole path in the system directory.
/// An import of it would be looked for in the host's folder first, where anybody may have put one,
/// unless Windows keeps it at hand; and it would be loaded for scripts that don't need it.
///
/// Its own calls go through no table: they are the engine's way to a call, not what a script does.
class SystemLibrary {
public:
    /// `name` is kept as it is.
    constexpr explicit SystemLibrary(const wchar_t* name) : name(name) {}

    /// A function that the library exports; null, with the last error telling why, when there is
    /// no such library or function. The library stays loaded from then on, since none may be
    /// released while the engine itself is being unloaded.
    void* find(const char* function);

private:
    const wchar_t* name;
    std::atomic<HMODULE> module = nullptr;
};

/// The name of a function, as an argument of a template.
template <size_t size>
struct FunctionName {
    constexpr FunctionName(const char (&name)[size]) { std::copy_n(name, size, text); }
    char text[size];
};

/// A call of a system library for a call table. Where it can't be bound it gives what such a call
/// gives when it fails: 0, and of COM's and the registry's an error.
template <SystemLibrary& library, FunctionName name, class Result, class... Arguments>
Result callSystem(Arguments... arguments) {
    using Function = Result (*)(Arguments...);
    static constinit std::atomic<Function> bound = nullptr;
    Function function = bound;
    if (function == nullptr)
        bound = function = reinterpret_cast<Function>(library.find(name.text));
    if (function)
        return function(arguments...);
    static_assert(std::is_same_v<HRESULT, LSTATUS>);
    if constexpr (std::is_same_v<Result, HRESULT>)
        return E_FAIL;
    else
        return Result();
}
