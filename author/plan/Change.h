#pragma once

#include <cstdint>
#include <string>

enum class ChangeKind {
    fileAdded,
    fileReplaced,
    fileRemoved,
    fileAtRestart,  ///< it is replaced by its source at the next restart
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

/// One change that a run would have made, as it would be seen on the machine. A call that would
/// fail is none.
struct Change {
    ChangeKind kind;
    std::wstring
        object;  ///< whole path, key, "key\value", name of a service, program, "library!entry"
    std::wstring source;  ///< of a file: where it comes from; of a program: its parameters; of a
                          ///< link: what it leads to
    /// Texts for people: "1.3.0.0, 800 KB, 2024-01-01 10:00", a value of the registry, "running".
    /// Empty where there is nothing.
    std::wstring before;
    std::wstring after;
    uint64_t bytes = 0;  ///< that it takes on the disk
    uint64_t bytesBefore = 0;
    bool sameContent = false;    ///< of a file that is replaced, or a value
    bool unforeseeable = false;  ///< what it does beyond this can't be foreseen
};

class ChangeListener {
public:
    /// A call has been answered that would have changed this.
    virtual void planned(const Change& change) = 0;
    /// Whether it wants to know of files what only reading them tells: their versions, and whether
    /// contents are the same.
    virtual bool wantsContents() const { return true; }

protected:
    ~ChangeListener() = default;
};
