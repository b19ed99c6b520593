#pragma once

#include <string>

#include "support/Requirements.h"
#include "support/TemporaryKey.h"

/// For the life of the object, the version of Windows that a program is started under, as Wine
/// names it: "win7", "win10" and so on.
class ReportedWindows {
public:
    ReportedWindows(const std::wstring& program, const std::wstring& version)
        : settings(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\" + program) {
        EXPECT_TRUE(runsUnderWine());
        settings.set(nullptr, L"Version", version);
    }

private:
    const TemporaryKey settings;
};
