#pragma once

#include <deque>
#include <string>
#include <vector>

// A test of the DLL has the headers that a host has, a test of the engine's parts its sources.
#if __has_include(<temz/IterfaceObserver.h>)
#include <temz/IterfaceObserver.h>
#include <temz/IterfaceProduct.h>
#else
#include "logging/IterfaceObserver.h"
#include "logging/IterfaceProduct.h"
#endif

/// An observer that remembers what it heard and answers from a prepared list.
class RecordingObserver final : public IterfaceObserver {
public:
    struct Notification {
        uint32_t code;
        std::wstring text1;
        std::wstring text2;
        uint32_t progress;
        bool operator==(const Notification&) const = default;
    };

    void update(IterfaceProduct* product) override {
        const ActionInfo& info = product->actionInfo;
        updates.push_back({info.code, info.text1, info.text2, product->progress});
    }

    ObserverAnswer askOnError(ErrorInfo* error) override {
        failures.push_back(*error);
        if (answers.empty())
            return ANSWER_ABORT;
        const int32_t answer = answers.front();
        answers.pop_front();
        return static_cast<ObserverAnswer>(answer);
    }

    std::vector<Notification> updates;
    std::vector<ErrorInfo> failures;
    std::deque<int32_t> answers;  ///< given one by one, then ANSWER_ABORT
};
