// A library's very first exception, thrown when there is no memory at all: each in a process of its
// own.

#include <gtest/gtest.h>
#include <temz/temz.h>

#include <cstdlib>
#include <limits>
#include <thread>

#include "FailingMalloc.h"

namespace {

constexpr size_t all = std::numeric_limits<size_t>::max();
constexpr int answered = 42;

template <class Function>
Function findFunction(HMODULE library, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

bool engineIsNull(HMODULE library) {
    return findFunction<void* (*)()>(library, "CreateContextObject")() == nullptr;
}

bool statusIsNoMemory(HMODULE library) {
    temz_context* context = nullptr;
    const auto create = findFunction<decltype(&temz_create)>(library, "temz_create");
    return create(&context) == TEMZ_NO_MEMORY && context == nullptr;
}

/// Asks the library when there is no memory, and ends the process with the answer.
[[noreturn]] void askWithoutMemory(const wchar_t* libraryName, bool (*question)(HMODULE)) {
    const HMODULE library = LoadLibraryW(libraryName);
    const FailingMalloc failing(0, all, library);
    // The second time, what the first exception has used up must be there again.
    const bool first = question(library);
    std::_Exit(first && question(library) ? answered : EXIT_FAILURE);
}

class FirstExceptionTest : public testing::Test {
protected:
    FirstExceptionTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(FirstExceptionTest, LeavesTheFactoryAsNull) {
    EXPECT_EXIT(askWithoutMemory(L"TEMZ.dll", &engineIsNull), testing::ExitedWithCode(answered),
                "");
}

TEST_F(FirstExceptionTest, LeavesTheInterfaceForEveryLanguageAsAStatus) {
    EXPECT_EXIT(askWithoutMemory(L"TEMZC.dll", &statusIsNoMemory),
                testing::ExitedWithCode(answered), "");
}

TEST_F(FirstExceptionTest, MayBeThatOfAThreadThatBeganLater) {
    const auto inThread = [] {
        LoadLibraryW(L"TEMZ.dll");
        std::thread(askWithoutMemory, L"TEMZ.dll", &engineIsNull).join();
    };
    EXPECT_EXIT(inThread(), testing::ExitedWithCode(answered), "");
}

}  // namespace
