#pragma once

#include <temz/temz.h>

#include <string>

/// The version of the program: that of the interface it was built with.
inline std::wstring programVersion() {
    return std::to_wstring(TEMZ_VERSION_MAJOR) + L"." + std::to_wstring(TEMZ_VERSION_MINOR) + L"." +
           std::to_wstring(TEMZ_VERSION_PATCH);
}
