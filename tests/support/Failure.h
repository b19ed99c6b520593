#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <tuple>
#include <utility>

#include "support/RecordingObserver.h"

/// The values of an ErrorInfo, to be compared as a whole.
struct Failure {
    explicit Failure(const ErrorInfo& error)
        : Failure(error.code, error.text1, error.text2, error.systemError, error.message) {}
    Failure(uint32_t code, std::wstring text1, std::wstring text2, uint32_t systemError,
            std::wstring message)
        : code(code),
          text1(std::move(text1)),
          text2(std::move(text2)),
          systemError(systemError),
          message(std::move(message)) {}
    bool operator==(const Failure&) const = default;

    uint32_t code;
    std::wstring text1;
    std::wstring text2;
    uint32_t systemError;
    std::wstring message;
};

/// A failure that its message alone tells.
inline Failure messageFailure(const std::wstring& message) {
    return {ERROR_CODE_MESSAGE, L"", L"", 0, message};
}

/// What an action leaves at its start, and a success keeps.
inline const Failure noFailure = messageFailure(L"");

inline void PrintTo(const Failure& failure, std::ostream* out) {
    *out << testing::PrintToString(std::make_tuple(failure.code, failure.text1, failure.text2,
                                                   failure.systemError, failure.message));
}
