#pragma once

#include <memory>
#include <string>

/// Null-terminated texts on the heap. A null owner stands for "no text".
using WideText = std::unique_ptr<wchar_t[]>;
using NarrowText = std::unique_ptr<char[]>;

/// Converts from the active code page (CP_ACP). Null for a null text, a failed conversion and
/// exhausted memory. When the system can't tell the size, one line with its error code goes to
/// standard output.
WideText toWideText(const char* text);

/// Converts to the active code page (CP_ACP). Null for a null text, a failed conversion and
/// exhausted memory.
NarrowText toNarrowText(const wchar_t* text);

/// The text as it is after a way through the active code page and back.
WideText roundTripWideText(const wchar_t* text);

/// The same, but for exhausted memory, which leaves as std::bad_alloc.
WideText toWideTextOrThrow(const char* text);
NarrowText toNarrowTextOrThrow(const wchar_t* text);

/// toWideTextOrThrow into a text of the caller's. False, with `wide` as it may be, where that gives
/// null.
bool convertOrThrow(const char* text, std::wstring& wide);

/// toNarrowText, appended to a text of the caller's. False, with `narrow` as it was, where that
/// gives null.
bool appendNarrow(std::string& narrow, const wchar_t* text);

/// toWideTextOrThrow for a text that is only looked at: a short one takes no memory.
class PassingText {
public:
    explicit PassingText(const char* text);
    PassingText(const PassingText&) = delete;
    PassingText& operator=(const PassingText&) = delete;
    ~PassingText() = default;

    /// Null where toWideTextOrThrow gives null.
    const wchar_t* get() const { return converted; }
    explicit operator bool() const { return converted != nullptr; }

private:
    wchar_t inPlace[32];  // the names of all elements are shorter
    WideText onHeap;
    const wchar_t* converted = nullptr;
};

/// Converts from the active code page to UTF-8. The results of the conversions aren't tested: what
/// can't be converted leaves an empty text. Null for a null text and for exhausted memory.
NarrowText ansiToUtf8(const char* text);
