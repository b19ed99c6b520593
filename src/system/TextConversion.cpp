#include "system/TextConversion.h"

#include <cstdio>
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
