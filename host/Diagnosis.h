#pragma once

#include <temz/temz.h>

#include <string>
#include <vector>

#include "Report.h"
#include "author/SystemText.h"

/// Facts of the machine by which a failure is explained; tests replace them.
struct Witnesses {
    std::vector<std::wstring> (*holdersOf)(const std::wstring& path);
    bool (*isElevated)();
    unsigned long (*attributesOf)(const std::wstring& path);    ///< GetFileAttributesW
    std::wstring (*dependantsOf)(const std::wstring& service);  ///< those that run; may be empty
};
extern const Witnesses realWitnesses;

/// What has failed, why, and what to do about it: from the engine's record, from the calls of the
/// action, and where neither says enough, from the machine.
Failure diagnose(const Action& action, const temz_error& error, const Witnesses& witnesses);

/// Whether a failure is that of the action announced last. An element may also fail before it
/// announces anything, or not even be made; the action before it is done then.
bool isFailureOf(const Action& action, const temz_error& error);

/// An action with its texts: "Copying app.exe".
std::wstring describeAction(uint32_t code, const std::wstring& text1, const std::wstring& text2);

/// The places that an action works on, from its calls: the first has both for a copy, and only a
/// target for all else that has a path. Empty texts where there is none.
struct Places {
    std::wstring source;
    std::wstring target;
};
Places placesOf(const Action& action);

/// A call with its arguments: "CopyFileW(a, b, 0)".
std::wstring callText(const std::wstring& name, const std::vector<std::wstring>& arguments);
inline std::wstring callText(const Call& call) {
    return callText(call.name, call.arguments);
}

/// What to do about an error code of the system's, whatever the call; empty when there is nothing
/// to say.
std::wstring adviceOn(uint32_t code);
