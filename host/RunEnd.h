#pragma once

#include <temz/temz.h>

#include "ExitCodes.h"

/// What decides how a run of a loaded script has ended.
struct RunEnd {
    temz_status status = TEMZ_OK;  ///< temz_run's
    bool endedByUser = false;      ///< by an answer, or by a stop while a retry was waited for
    bool incomplete = false;       ///< a vital action was ignored, and that isn't accepted
    bool restartNeeded = false;
    bool notElevated = false;  ///< the first failure wants an administrator
};

Ending endingOf(const RunEnd& end);
