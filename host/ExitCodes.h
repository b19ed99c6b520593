#pragma once

#include <span>

/// How a call of the program can end.
enum class Ending {
    done,
    restartNeeded,
    stoppedByUser,
    failed,
    failedWithRestart,
    otherRunGoesOn,
    scriptNotOpened,
    scriptNotLoaded,
    logNotOpened,
    badCommandLine,
    notElevated,
    faultsFound,
    notChecked,
    outputNotWritten,
    folderNotUsable,
    machineDiffers,
};

/// The exit code of an ending, of those that deployment systems know from winerror.h, unless it is
/// of a command that changes nothing, and what it means: for `temz help codes`, `temz explain` and
/// the documents.
struct ExitCode {
    Ending ending;
    int code;
    const wchar_t* meaning;
    const wchar_t* nextStep;  ///< what to do about it; empty where there is nothing to do
    bool ownMeaning = false;  ///< the system means something else by it
};

std::span<const ExitCode> exitCodes();
int exitCodeOf(Ending ending);

/// Whether all that was to be done is done.
bool succeeded(Ending ending);
