#include "system/HexText.h"

#include <cstring>
#include <new>
#include <utility>

namespace {

/// The value of a hexadecimal digit, or -1.
int digitValue(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    return -1;
}

}  // namespace

NarrowText bytesToHexText(const uint8_t* bytes, size_t count) {
    constexpr char digits[] = "0123456789ABCDEF";
    if (bytes == nullptr || count == 0)
        return nullptr;
    NarrowText text(new (std::nothrow) char[count * 2 + 1]);
    if (!text)
        return nullptr;
    for (size_t i = 0; i < count; ++i) {
        text[i * 2] = digits[bytes[i] >> 4];
        text[i * 2 + 1] = digits[bytes[i] & 0xF];
    }
    text[count * 2] = '\0';
    return text;
}

bool hexTextToBytes(const char* text, std::unique_ptr<uint8_t[]>& bytes, size_t& count) {
    if (text == nullptr)
        return false;
    const size_t length = std::strlen(text);
    if (length % 2 != 0)
        return false;
    std::unique_ptr<uint8_t[]> buffer(new (std::nothrow) uint8_t[length / 2]);
    if (!buffer)
        return false;
    for (size_t i = 0; i < length / 2; ++i) {
        const int high = digitValue(text[i * 2]);
        const int low = digitValue(text[i * 2 + 1]);
        if (high < 0 || low < 0)
            return false;
        buffer[i] = static_cast<uint8_t>(high * 16 + low);
    }
    bytes = std::move(buffer);
    count = length / 2;
    return true;
}

bool spacedHexToBytes(const char* text, uint8_t* bytes, size_t& count) {
    size_t written = 0;
    int held = 0;
    int value = 0;
    const auto put = [&] {
        if (held > 0)
            bytes[written++] = static_cast<uint8_t>(value);
        held = 0;
    };

    for (; *text; ++text) {
        if (*text == ' ') {
            put();
            continue;
        }
        const int digit = digitValue(*text);
        if (digit < 0)
            return false;
        if (held == 2)
            put();
        value = held == 0 ? digit : value * 16 + digit;
        ++held;
    }
    put();
    count = written;
    return true;
}
