#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>

/// How much a finding weighs. An error: a run will fail, or end the process, at least on some
/// machines. A warning: surely not what was meant. A note: worth a look.
enum class Severity { error, warning, note };

/// A kind of finding; one row of the table that findingKinds gives.
struct FindingKind {
    const wchar_t* code;  ///< "TZ203"; the first digit tells the family
    Severity severity;
    bool endsRun;            ///< whether a finding of this kind can end a run for sure
    const wchar_t* meaning;  ///< what is wrong, in a sentence
    const wchar_t* remedy;   ///< how it is mended, in a sentence
};

/// A place in a file. Lines and columns count from 1, columns and lengths in UTF-16 units of the
/// line. All 0: the file as a whole.
struct Place {
    uint32_t line = 0;
    uint32_t column = 0;
    uint32_t length = 0;
    bool operator==(const Place&) const = default;
};

/// One thing that was found.
struct Finding {
    const FindingKind* kind;
    /// A run in one of the three modes surely ends half-way because of this, or never starts, or
    /// the process ends: whatever the machine is like. An action that always fails counts, though
    /// a host that is asked may ignore it.
    bool endsRun;
    std::wstring file;
    Place place;
    std::wstring text;        ///< what is wrong here, naming the thing; a sentence
    std::wstring help;        ///< how to mend it; may be empty
    std::wstring sourceLine;  ///< the line of the place; empty for the file, or of over 1000 bytes
};

/// What is to be checked. `payload` is the folder that the sources of files stand in, `previous`
/// the script of the version before; both may be empty, and what they are needed for isn't told.
struct CheckRequest {
    std::wstring script;
    std::wstring payload;
    std::wstring previous;
};

enum class CheckEnd {
    done,
    notReadable,  ///< the script, the previous one or the payload can't be read; nothing is told
};

/// Reads a script as the engine would and tells all that is wrong with it, in order of place.
/// Nothing is run and nothing changed. Findings are told after all checks have been made.
CheckEnd checkScript(const CheckRequest& request, const std::function<void(const Finding&)>& tell);

/// All kinds of findings, in order of code.
std::span<const FindingKind> findingKinds();
