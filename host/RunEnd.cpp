#include "RunEnd.h"

Ending endingOf(const RunEnd& end) {
    if (end.status == TEMZ_STOPPED || end.endedByUser)
        return Ending::stoppedByUser;
    if (end.status == TEMZ_OK && !end.incomplete)
        return end.restartNeeded ? Ending::restartNeeded : Ending::done;
    if (end.notElevated)
        return Ending::notElevated;
    return end.restartNeeded ? Ending::failedWithRestart : Ending::failed;
}
