#pragma once

#include <functional>
#include <utility>

/// Replaces one call of a call table for the life of the object:
///
///     FakeCall<fileCalls, &FileCalls::CopyFileW> copy([](auto...) { return FALSE; });
///
/// All other calls stay real. `real` is what the table held before, and `count` how often the fake
/// was called.
template <auto& table, auto member,
          class Function = std::remove_pointer_t<std::remove_reference_t<decltype(table.*member)>>>
class FakeCall;

template <auto& table, auto member, class Result, class... Arguments>
class FakeCall<table, member, Result(Arguments...)> {
public:
    explicit FakeCall(std::function<Result(Arguments...)> fake) : real(table.*member) {
        count = 0;
        handler = std::move(fake);
        table.*member = &call;
    }
    FakeCall(const FakeCall&) = delete;
    FakeCall& operator=(const FakeCall&) = delete;
    ~FakeCall() {
        table.*member = real;
        handler = nullptr;
    }

    Result (*const real)(Arguments...);
    static inline int count = 0;

private:
    static Result call(Arguments... arguments) {
        ++count;
        return handler(arguments...);
    }

    static inline std::function<Result(Arguments...)> handler;
};
