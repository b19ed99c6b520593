#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cstddef>
#include <functional>

/// Does something on a thread that has a stack of this many bytes, and waits for its end.
inline void onStackOf(size_t bytes, const std::function<void()>& action) {
    const auto call = [](void* action) -> DWORD {
        (*static_cast<const std::function<void()>*>(action))();
        return 0;
    };
    const HANDLE thread =
        CreateThread(nullptr, bytes, call, const_cast<std::function<void()>*>(&action),
                     STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    ASSERT_NE(thread, nullptr) << GetLastError();
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}
