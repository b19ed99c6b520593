#pragma once

#include <gmock/gmock.h>

#include <set>
#include <string>

#include "plan/RecordedRun.h"
#include "plan/Rehearsal.h"
#include "support/TestFolder.h"

/// Notes the changing calls that arrive at the machine: there must be none.
class MachineWatch {
public:
    template <auto& table, auto member, class Result, class... Arguments>
    Result around(const char* name, Result (*real)(Arguments...),
                  std::type_identity_t<Arguments>... arguments) {
        if constexpr (ChangingCalls::has<member>)
            changes.emplace(name);
        return real(arguments...);
    }

    std::set<std::string> changes;
};

/// A test of calls in a dry run.
class PlanTest : public testing::Test {
protected:
    ~PlanTest() override { EXPECT_THAT(watch.changes, testing::IsEmpty()); }

    /// The kinds and objects of what has been planned so far.
    std::vector<std::pair<ChangeKind, std::wstring>> changes() const {
        std::vector<std::pair<ChangeKind, std::wstring>> all;
        for (const Change& change : planned.changes)
            all.emplace_back(change.kind, change.object);
        return all;
    }
    const Change& lastChange() const { return planned.changes.back(); }

    const TestFolder folder;
    PlannedChanges planned;
    MachineWatch watch;
    const CallWrapper<MachineWatch> watching{watch};
    Rehearsal rehearsal{planned};
    const CallWrapper<Rehearsal> rehearsing{rehearsal};
};

/// The error of a call that has failed; 0 for one that hasn't.
inline DWORD errorOf(bool succeeded) {
    return succeeded ? 0 : GetLastError();
}
