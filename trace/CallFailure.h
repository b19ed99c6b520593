#pragma once

#include <type_traits>

#include "system/CallTables.h"

/// How a call says that it failed, and where its error code is then.
enum class Failure {
    never,             ///< it can't fail, or its number is the business of whom it was called for
    zero,              ///< a result of 0, false or null; GetLastError
    invalid,           ///< a handle of -1, or null; GetLastError
    allOnes,           ///< a number of 0xFFFFFFFF; GetLastError
    nonZeroErrorCode,  ///< the result is the error code
    negativeCode,      ///< an HRESULT, which is the code itself
    nonNull,           ///< a handle that comes back; GetLastError
};

/// Whether a call is a certain one.
template <auto member, class Other>
constexpr bool isCall(Other other) {
    if constexpr (std::is_same_v<Other, std::remove_const_t<decltype(member)>>)
        return member == other;
    else
        return false;
}

/// What stands for the result of a call that has none.
struct NoResult {};

/// The rule follows from the type of the result, but for the calls that are named here.
template <auto& table, auto member, class Result>
constexpr Failure failureOf() {
    using Table = std::remove_reference_t<decltype(table)>;
    if (isCall<member>(&FileCalls::GetFileAttributesW) ||
        isCall<member>(&ProcessCalls::WaitForSingleObject))
        return Failure::allOnes;
    if (isCall<member>(&ProcessCalls::LocalFree) || isCall<member>(&ServiceCalls::LocalFree))
        return Failure::nonNull;
    if (std::is_same_v<Result, NoResult> || std::is_same_v<Table, ActionCalls>)
        return Failure::never;
    if (std::is_same_v<Table, RegistryCalls>)
        return Failure::nonZeroErrorCode;
    if (std::is_same_v<Result, HRESULT>)
        return Failure::negativeCode;
    if (std::is_same_v<Result, HANDLE>)
        return Failure::invalid;
    return Failure::zero;
}

template <Failure rule, class Result>
bool saysFailure(Result result) {
    if constexpr (rule == Failure::never)
        return false;
    else if constexpr (rule == Failure::zero)
        return !result;
    else if constexpr (rule == Failure::invalid)
        return result == nullptr || result == INVALID_HANDLE_VALUE;
    else if constexpr (rule == Failure::allOnes)
        return result == 0xFFFFFFFF;
    else if constexpr (rule == Failure::nonNull)
        return result != nullptr;
    else if constexpr (rule == Failure::negativeCode)
        return result < 0;
    else
        return result != 0;
}

/// The error code of a call that says it failed, where `lastError` was the thread's behind it.
template <Failure rule, class Result>
uint32_t errorOfFailure(Result result, DWORD lastError) {
    if constexpr (rule == Failure::nonZeroErrorCode || rule == Failure::negativeCode)
        return static_cast<uint32_t>(result);
    else
        return lastError;
}
