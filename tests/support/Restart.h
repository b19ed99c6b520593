#pragma once

#include <optional>
#include <string>

/// Does what the system does when it starts: carries out the replacements that wait for it. Only
/// Wine can be restarted.
void restart();

/// The replacements that wait for a restart, as the system notes them; none when none does.
std::optional<std::wstring> pendingReplacements();

/// Takes back, at its end, the replacements that were left to a restart while it lived.
class TakesBackReplacements {
public:
    TakesBackReplacements() = default;
    TakesBackReplacements(const TakesBackReplacements&) = delete;
    TakesBackReplacements& operator=(const TakesBackReplacements&) = delete;
    ~TakesBackReplacements();

private:
    const std::optional<std::wstring> before = pendingReplacements();
};
