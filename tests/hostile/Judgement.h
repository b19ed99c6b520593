#pragma once

#include <deque>
#include <string>

#include "author/check/Finding.h"
#include "support/TestFolder.h"

/// What became of a script, and what a check had said of it.
struct Judgement {
    enum Outcome {
        refused,     ///< it isn't loaded, and nobody is told why
        unloadable,  ///< it isn't loaded, and `message` tells why
        fails,       ///< a run in one of the modes fails
        runs,        ///< a run in each mode succeeds
        notRun,      ///< because of what a check had said
    };
    Outcome outcome;
    std::wstring message;  ///< of the load, or of the first run that failed

    bool refusalFound = false;       ///< a check says that it isn't loaded for its XML
    bool endOfProcessFound = false;  ///< that it ends the process, or may
    bool largeRemovalFound = false;  ///< that it removes what may be large
    bool endOfRunFound = false;      ///< that a run in one of the modes ends half-way for sure
    std::string findings;            ///< for people, a line each
};

/// Whether a script is run that a check says to end the process, or to remove what is as large as a
/// folder of the system: that is rehearsed, too, but takes its time.
enum class Care { runAlways, runUnlessFound };

/// A current directory for the life of the object, so far down in a folder of its own that relative
/// paths lead to nothing else.
class DeepDirectory {
public:
    DeepDirectory();
    DeepDirectory(const DeepDirectory&) = delete;
    DeepDirectory& operator=(const DeepDirectory&) = delete;
    ~DeepDirectory();

private:
    const TestFolder folder;
    wchar_t before[260] = {};
};

/// Checks a script, loads it, and rehearses a run of it in each mode on the real machine, where
/// nothing changes; who is asked on an error gives these answers, and then aborts. A script that
/// ends the process ends it here, too.
Judgement judgeScript(const std::wstring& file, Care care = Care::runAlways,
                      const std::deque<int32_t>& answers = {});
