#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/RecordingObserver.h"

/// What an observer was told of, notification by notification: the titles, which are the second
/// texts, and the percentages.
inline std::vector<std::wstring> heardTitles(const RecordingObserver& observer) {
    std::vector<std::wstring> titles;
    for (const RecordingObserver::Notification& update : observer.updates)
        titles.push_back(update.text2);
    return titles;
}

inline std::vector<uint32_t> heardProgress(const RecordingObserver& observer) {
    std::vector<uint32_t> progress;
    for (const RecordingObserver::Notification& update : observer.updates)
        progress.push_back(update.progress);
    return progress;
}
