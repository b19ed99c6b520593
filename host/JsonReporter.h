#pragma once

#include <string>

#include "Report.h"

/// Writes a run to the standard output as one JSON object a line, which run.schema.json describes.
class JsonReporter final : public Reporter {
public:
    enum class Detail { actions, calls };

    explicit JsonReporter(Detail detail) : detail(detail) {}

    void started(const RunHeader& header) override;
    void began(const Action& action) override;
    void called(const Call& call) override;
    void failed(const Action& action, const Failure& failure, unsigned attempt) override;
    void ended(const Action& action, Fate fate) override;
    void warned(const std::wstring& text) override;
    void finished(const RunSummary& summary) override;

private:
    const Detail detail;
};
