#include "ExitCodes.h"

#include <windows.h>

#include <algorithm>

namespace {

// Not in every winerror.h.
constexpr int failRebootRequired = 3017;
constexpr int elevationRequired = 740;

constexpr ExitCode codes[] = {
    {Ending::done, ERROR_SUCCESS, L"All was done.", L""},
    {Ending::restartNeeded, ERROR_SUCCESS_REBOOT_REQUIRED,
     L"All was done, and files wait for the next restart of the machine.",
     L"Restart the machine: Restart, not Shut down."},
    {Ending::stoppedByUser, ERROR_INSTALL_USEREXIT,
     L"The user has ended the run, or Windows the session. What was done before stays.",
     L"Run the same command again, or uninstall."},
    {Ending::failed, ERROR_INSTALL_FAILURE,
     L"The run has failed, or a vital action was left out. What was done before stays.",
     L"Do what the failure says, and run the same command again. --log tells every step."},
    {Ending::failedWithRestart, failRebootRequired,
     L"The run has failed, and files that it did replace wait for the next restart.",
     L"Do what the failure says, restart the machine, and run the same command again."},
    {Ending::otherRunGoesOn, ERROR_INSTALL_ALREADY_RUNNING,
     L"Another run goes on on this machine. Nothing was done.",
     L"Run the command again when that has ended, or let --wait=SECONDS wait for it."},
    {Ending::scriptNotOpened, ERROR_INSTALL_PACKAGE_OPEN_FAILED,
     L"The script can't be opened. Nothing was done.", L"Look at its path and its rights."},
    {Ending::scriptNotLoaded, ERROR_INSTALL_PACKAGE_INVALID,
     L"The script can't be loaded, a run would surely end half-way, or the plan isn't of this run. "
     L"Nothing was done.",
     L"Mend the script, of which temz check tells all that is wrong, or have a plan of this run "
     L"made "
     L"and approved."},
    {Ending::logNotOpened, ERROR_INSTALL_LOG_FAILURE, L"The log can't be opened. Nothing was done.",
     L"Name a file in a directory that is there and can be written to."},
    {Ending::badCommandLine, ERROR_INVALID_COMMAND_LINE,
     L"The command line is wrong. Nothing was done.", L"See temz help."},
    {Ending::notElevated, elevationRequired,
     L"The first action that failed wants an administrator, and the program isn't run as one.",
     L"Run it from an administrator's prompt."},
    {Ending::faultsFound, 1,
     L"A check has found errors, a plan a failure, or a verification something left behind.",
     L"Mend the script by what was told.", true},
    {Ending::notCarriedOut, 2,
     L"A command that runs nothing can't be carried out, or its result can't be written.",
     L"Do what the message says.", true},
};

}  // namespace

std::span<const ExitCode> exitCodes() {
    return codes;
}

int exitCodeOf(Ending ending) {
    const auto* row =
        std::find_if(std::begin(codes), std::end(codes),
                     [ending](const ExitCode& code) { return code.ending == ending; });
    return row->code;
}

bool succeeded(Ending ending) {
    return ending == Ending::done || ending == Ending::restartNeeded;
}
