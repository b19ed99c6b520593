#pragma once

#include <windows.h>

#include <cwchar>
#include <string_view>

/// A text without an end that knows whether anybody has read on behind it: it stands in front of a
/// guarded page, whose guard goes with the first access.
class WatchedText {
public:
    explicit WatchedText(std::wstring_view text) {
        DWORD before = 0;
        VirtualProtect(page(1), pageSize, PAGE_READWRITE | PAGE_GUARD, &before);
        start = reinterpret_cast<wchar_t*>(page(1)) - text.size();
        wmemcpy(start, text.data(), text.size());
    }
    WatchedText(const WatchedText&) = delete;
    WatchedText& operator=(const WatchedText&) = delete;
    ~WatchedText() {
        VirtualFree(pages, 0, MEM_RELEASE);
        RemoveVectoredExceptionHandler(handler);
    }

    const wchar_t* text() const { return start; }

    bool wasReadBehind() const {
        MEMORY_BASIC_INFORMATION information = {};
        VirtualQuery(page(1), &information, sizeof information);
        return (information.Protect & PAGE_GUARD) == 0;
    }

private:
    static LONG CALLBACK goOn(EXCEPTION_POINTERS* exception) {
        return exception->ExceptionRecord->ExceptionCode == STATUS_GUARD_PAGE_VIOLATION
                   ? EXCEPTION_CONTINUE_EXECUTION
                   : EXCEPTION_CONTINUE_SEARCH;
    }

    char* page(size_t number) const { return static_cast<char*>(pages) + number * pageSize; }

    static constexpr size_t pageSize = 4096;

    void* const handler = AddVectoredExceptionHandler(1, &goOn);
    void* const pages =
        VirtualAlloc(nullptr, 2 * pageSize, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    wchar_t* start = nullptr;
};
