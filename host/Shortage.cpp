#include "Shortage.h"

#include "Console.h"

Ending endForLackOfMemory(Verb verb) {
    writeWithoutMemory(Stream::error, L"temz: ");
    writeWithoutMemory(Stream::error, temz_status_text(TEMZ_NO_MEMORY));
    writeWithoutMemory(Stream::error, L"\n");
    // As a shortage that the library tells of ends them.
    const bool isOfRuns = verb == Verb::run || verb == Verb::plan || verb == Verb::verify;
    return isOfRuns ? Ending::failed : Ending::notCarriedOut;
}
