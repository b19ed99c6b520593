#pragma once

/// The exit code of a host program that was ended at the moment that it was given.
inline constexpr unsigned endedAtMoment = 99;
