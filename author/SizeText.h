#pragma once

#include <cstdint>
#include <cwchar>
#include <iterator>
#include <string>

/// A number of bytes for people: "1 byte", "812 KB", "41.2 MB".
inline std::wstring sizeText(uint64_t bytes) {
    constexpr const wchar_t* units[] = {L"KB", L"MB", L"GB", L"TB"};
    if (bytes < 1024)
        return std::to_wstring(bytes) + (bytes == 1 ? L" byte" : L" bytes");
    double size = static_cast<double>(bytes) / 1024;
    size_t unit = 0;
    while (size >= 999.5 && unit + 1 < std::size(units)) {
        size /= 1024;
        ++unit;
    }
    wchar_t text[32];
    std::swprintf(text, std::size(text), size < 99.95 && unit > 0 ? L"%.1f %ls" : L"%.0f %ls", size,
                  units[unit]);
    return text;
}
