#pragma once

#include <cstdint>
#include <string>

enum class ChangeKind {
    fileAdded,
    fileReplaced,
    fileRemoved,
    fileAtRestart,
    attributesChanged,
    directoryAdded,
    directoryRemoved,
    keyAdded,
    keyRemoved,
    valueSet,
    serviceStarted,
    serviceStopped,
    serviceRemoved,
    serviceChanged,
    linkWritten,
    processEnded,
    programStarted,
    libraryLoaded,
    actionCalled,
};

/// One change that a run would have made, as it would be seen on the machine. (Calls that would
/// fail are no Change.)
struct Change {
    ChangeKind kind;
    std::wstring object;
    std::wstring source;
    std::wstring before;
    std::wstring after;
    uint64_t bytes = 0;
    uint64_t bytesBefore = 0;
    bool sameContent = false;
    bool unforeseeable = false;
};

class ChangeListener {
public:
    virtual void planned(const Change&) = 0;

protected:
    ~ChangeListener() = default;
};
