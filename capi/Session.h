#pragma once

#include <temz/temz.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/CContext.h"
#include "logging/IterfaceProduct.h"

/// What stands behind a temz_context: one engine object with its host's observer and tracer. Its
/// operations are called when they are due; they give a status and let std::bad_alloc out. Nothing
/// of a script stays behind its unload, whatever the engine leaves.
class Session {
public:
    Session() { context->keepVariableElements(variableElements); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    temz_status load(const temz_char* path);
    void unload();
    bool isLoaded() const { return context->getProduct() != nullptr; }

    /// Carries out the script in a mode that is one.
    temz_status run(temz_mode mode);
    /// The same without changing anything. What is assumed must be possible.
    temz_status plan(temz_mode mode, const temz_planner& planner);
    /// Whether a plan can assume this; otherwise failure() names it.
    temz_status checkAssumption(const temz_assumption& assumption);
    /// The state of the last run, or of the one that is going on. Needs a loaded script.
    temz_outcome outcome() const;

    /// Each needs a loaded script; what it finds is in `text`, why it doesn't in failure().
    temz_status findVariable(const temz_char* name, std::wstring& text);
    temz_status findDirectory(const temz_char* id, std::wstring& text);
    /// Why the last of load, findVariable and findDirectory failed; empty when it didn't.
    const std::wstring& failure() const { return lastFailure; }

    std::optional<temz_observer> observer;
    std::optional<temz_tracer> tracer;
    uint64_t actionValue = 0;

private:
    /// Makes the product ready for a run in a mode.
    IterfaceProduct& prepareProduct(temz_mode mode);
    temz_status runProduct(IterfaceProduct& product);

    std::vector<ElementPtr> variableElements;
    const std::unique_ptr<CContext> context = std::make_unique<CContext>();
    std::wstring lastFailure;
    int32_t result = 0;  // of the last run
};
