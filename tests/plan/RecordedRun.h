#pragma once

#include <deque>
#include <string>
#include <vector>

#include "plan/Change.h"
#include "support/RecordingObserver.h"

/// What a run has done and told.
struct RecordedRun {
    int32_t result = 0;
    /// Each call that changes something, in order, as it was asked for: "group.call(arguments)",
    /// and "fails with 5" behind one that did.
    std::vector<std::wstring> calls;
    /// What the host was told.
    std::vector<std::wstring> heard;
};

/// Makes all lines one text, which shows a difference best.
std::wstring linesOf(const RecordedRun& run);

/// Runs a script by the call tables as they are.
RecordedRun runScript(const std::wstring& script, int32_t mode,
                      const std::deque<int32_t>& answers = {});

/// Collects what a dry run tells.
class PlannedChanges final : public ChangeListener {
public:
    void planned(const Change& change) override { changes.push_back(change); }

    std::vector<Change> changes;
};

/// The dry run of the same.
RecordedRun rehearseScript(const std::wstring& script, int32_t mode, PlannedChanges& planned,
                           const std::deque<int32_t>& answers = {});
