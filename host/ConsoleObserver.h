#pragma once

#include <temz/IterfaceObserver.h>
#include <temz/IterfaceProduct.h>

#include <optional>
#include <string>

#include "CommandLine.h"

/// Shows a run on the console and decides what happens when a vital action fails.
class ConsoleObserver final : public IterfaceObserver {
public:
    /// Without a policy the user is asked, or the run aborted where nobody can answer.
    explicit ConsoleObserver(std::optional<ErrorPolicy> policy);

    void update(IterfaceProduct* product) override;
    ObserverAnswer askOnError(ErrorInfo* error) override;

    /// Draws the bar to its end, or just leaves its line when the run has failed.
    void finish(bool success);

    /// Whether the user has chosen to end the run.
    bool abortedByUser() const { return userAborted; }
    /// Whether the run was ended here, so that its failure has been told already.
    bool failureReported() const { return aborted; }

private:
    void refillRetries();
    void drawBar(unsigned percent, const std::wstring& action);
    void leaveBar();
    ObserverAnswer decide();
    ObserverAnswer askUser();

    std::optional<ErrorPolicy> policy;
    unsigned retriesLeft = 0;   // of the current action
    bool retrying = false;      // the next action announced is the one that failed
    std::wstring failedAction;  // the last one
    bool terminal;
    bool barDrawn = false;
    unsigned highest = 0;  // percent: the bar never goes back
    bool userAborted = false;
    bool aborted = false;
};
