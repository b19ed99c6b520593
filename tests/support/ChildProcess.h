#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

/// Runs `body` in a process of its own, where nothing process-wide has been set yet. What it
/// expects in vain fails the test.
inline void inFreshProcess(const std::function<void()>& body) {
    EXPECT_EXIT(
        {
            body();
            std::exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
        },
        testing::ExitedWithCode(EXIT_SUCCESS), "");
}

/// For EXPECT_EXIT: the status of a process that met a text too long for its field.
inline testing::ExitedWithCode endedByInvalidParameter() {
    return testing::ExitedWithCode(static_cast<int>(0xC0000417));
}
