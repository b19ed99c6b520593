#pragma once

// What the host program that is interrupted and its tests have in common.

/// Where a run can be ended: at one of the calls by which the engine changes the machine.
/// "before" it is made; "halfway", with half of the file written that it writes.
inline constexpr wchar_t beforeCall[] = L"before";
inline constexpr wchar_t halfwayInCall[] = L"halfway";

/// The exit code of a host program that was ended so.
inline constexpr unsigned endedAtMoment = 99;
