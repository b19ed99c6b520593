#include "system/TextConversion.h"

#include <cstdio>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <new>

#include "system/Exhaustion.h"
#include "system/TextCalls.h"

WideText toWideTextOrThrow(const char* text) {
    if (text == nullptr)
        return nullptr;
    const int length = textCalls.MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    if (length == 0) {
        std::printf("MultiByteToWideChar calc size error=%u\n",
                    static_cast<unsigned>(GetLastError()));
        return nullptr;
    }
    WideText wide(new wchar_t[length]);
    if (!textCalls.MultiByteToWideChar(CP_ACP, 0, text, -1, wide.get(), length))
        return nullptr;
    return wide;
}

// No code page makes more characters of a text than it has bytes. Should one, or should the system
// fail, the longer way finds out. The terminator comes to stand on the string's own.
bool convertOrThrow(const char* text, std::wstring& wide) {
    if (text == nullptr)
        return false;
    wide.resize(std::strlen(text));
    const int length = textCalls.MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(),
                                                     static_cast<int>(wide.size() + 1));
    if (length > 0) {
        wide.resize(length - 1);
        return true;
    }
    const WideText converted = toWideTextOrThrow(text);
    if (converted)
        wide = converted.get();
    return converted != nullptr;
}

PassingText::PassingText(const char* text) {
    if (text && textCalls.MultiByteToWideChar(CP_ACP, 0, text, -1, inPlace,
                                              static_cast<int>(std::size(inPlace)))) {
        converted = inPlace;
    } else {
        onHeap = toWideTextOrThrow(text);
        converted = onHeap.get();
    }
}

NarrowText toNarrowTextOrThrow(const wchar_t* text) {
    if (text == nullptr)
        return nullptr;
    const int length =
        textCalls.WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (length == 0)
        return nullptr;
    NarrowText narrow(new char[length]);
    if (!textCalls.WideCharToMultiByte(CP_ACP, 0, text, -1, narrow.get(), length, nullptr, nullptr))
        return nullptr;
    return narrow;
}

// Three bytes for a character of UTF-16 are enough for what Windows takes as its active code page.
// If not, or should the system fail, the longer way finds out.
bool appendNarrow(std::string& narrow, const wchar_t* text) try {
    if (text == nullptr)
        return false;
    const size_t begin = narrow.size();
    const size_t room = 3 * std::wcslen(text);
    narrow.resize(begin + room);
    const int length = textCalls.WideCharToMultiByte(CP_ACP, 0, text, -1, narrow.data() + begin,
                                                     static_cast<int>(room + 1), nullptr, nullptr);
    narrow.resize(length > 0 ? begin + length - 1 : begin);
    if (length > 0)
        return true;
    const NarrowText converted = toNarrowText(text);
    if (converted)
        narrow += converted.get();
    return converted != nullptr;
} catch (const std::bad_alloc&) {
    return false;
}

WideText toWideText(const char* text) {
    return nullIfExhausted([text] { return toWideTextOrThrow(text); });
}

NarrowText toNarrowText(const wchar_t* text) {
    return nullIfExhausted([text] { return toNarrowTextOrThrow(text); });
}

WideText roundTripWideText(const wchar_t* text) {
    return toWideText(toNarrowText(text).get());
}

NarrowText ansiToUtf8(const char* text) {
    if (text == nullptr)
        return nullptr;
    const int wideLength = textCalls.MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    WideText wide(new (std::nothrow) wchar_t[wideLength + 1]());
    if (!wide)
        return nullptr;
    textCalls.MultiByteToWideChar(CP_ACP, 0, text, -1, wide.get(), wideLength);

    const int length =
        textCalls.WideCharToMultiByte(CP_UTF8, 0, wide.get(), -1, nullptr, 0, nullptr, nullptr);
    NarrowText utf8(new (std::nothrow) char[length + 1]());
    if (utf8)
        textCalls.WideCharToMultiByte(CP_UTF8, 0, wide.get(), -1, utf8.get(), length, nullptr,
                                      nullptr);
    return utf8;
}
