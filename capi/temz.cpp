// The functions of temz.h: what each demands of its arguments and of the moment, and which text or
// record it gives.

#include <temz/temz.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "author/check/Finding.h"
#include "author/schema/Schema.h"
#include "capi/Gate.h"
#include "capi/Records.h"
#include "capi/Session.h"
#include "capi/Shortage.h"

struct temz_context {
    Session session;
};

namespace {

using Use = Gate::Use;

Gate gate;
/// All that were made and not yet freed. Any other pointer is a misuse that is told.
std::vector<temz_context*> contexts;

bool isContext(const temz_context* context) {
    return std::find(contexts.begin(), contexts.end(), context) != contexts.end();
}

/// Passes with the session of a context.
template <class Body>
temz_status passWith(Use use, temz_context* context, Body body) {
    return gate.pass(use, [&] {
        if (context == nullptr)
            return temz_status{TEMZ_NULL_ARGUMENT};
        return isContext(context) ? body(context->session) : temz_status{TEMZ_BAD_CONTEXT};
    });
}

/// Passes with a session that has a script.
template <class Body>
temz_status passLoaded(Use use, temz_context* context, Body body) {
    return passWith(use, context, [&](Session& session) {
        return session.isLoaded() ? body(session) : temz_status{TEMZ_NOT_LOADED};
    });
}

temz_status giveText(const std::wstring& text, temz_char* buffer, size_t capacity, size_t* length) {
    if (buffer == nullptr && capacity != 0)
        return TEMZ_NULL_ARGUMENT;
    const size_t needed = text.size() + 1;
    if (length != nullptr)
        *length = needed;
    if (buffer == nullptr)
        return TEMZ_OK;
    if (capacity < needed)
        return TEMZ_BUFFER_TOO_SMALL;
    std::copy_n(text.c_str(), needed, buffer);
    return TEMZ_OK;
}

/// A question for a text by a name, of a script.
temz_status giveFound(temz_status (Session::*find)(const temz_char*, std::wstring&),
                      temz_context* context, const temz_char* name, temz_char* buffer,
                      size_t capacity, size_t* length) {
    return passLoaded(Use::asking, context, [&](Session& session) {
        if (name == nullptr)
            return temz_status{TEMZ_NULL_ARGUMENT};
        std::wstring text;
        const temz_status status = (session.*find)(name, text);
        return status == TEMZ_OK ? giveText(text, buffer, capacity, length) : status;
    });
}

/// Takes over a record of the host's, or that there is none.
template <class Record>
temz_status takeRecord(std::optional<Record>& target, const Record* record) {
    if (record != nullptr && !hasSizeOfRecord(*record))
        return TEMZ_BAD_SIZE;
    target.reset();
    if (record != nullptr)
        target = readRecord(*record);
    return TEMZ_OK;
}

#define SAME_NUMBER(theirs, ours) \
    static_assert(static_cast<int>(theirs) == static_cast<int>(ours), "numbers of the interface")
SAME_NUMBER(TEMZ_SEVERITY_ERROR, Severity::error);
SAME_NUMBER(TEMZ_SEVERITY_WARNING, Severity::warning);
SAME_NUMBER(TEMZ_SEVERITY_NOTE, Severity::note);
#undef SAME_NUMBER

temz_severity severityOf(const FindingKind& kind) {
    return static_cast<temz_severity>(kind.severity);
}

/// Hands a finding to the host.
void tellFinding(const temz_check_request& request, const Finding& found) {
    temz_finding finding{};
    finding.size = sizeof finding;
    finding.severity = severityOf(*found.kind);
    finding.ends_run = found.endsRun ? 1 : 0;
    finding.line = found.place.line;
    finding.column = found.place.column;
    finding.length = found.place.length;
    finding.code = found.kind->code;
    finding.file = found.file.c_str();
    finding.text = found.text.c_str();
    finding.help = found.help.c_str();
    finding.source_line = found.sourceLine.c_str();
    request.finding(request.user, &finding);
}

/// Tells the host what a run has come to, however it ends.
class OutcomeScope {
public:
    OutcomeScope(const Session& session, temz_outcome* outcome)
        : session(session), outcome(outcome) {}
    OutcomeScope(const OutcomeScope&) = delete;
    OutcomeScope& operator=(const OutcomeScope&) = delete;
    ~OutcomeScope() {
        if (outcome != nullptr)
            writeRecord(*outcome, session.outcome());
    }

private:
    const Session& session;
    temz_outcome* const outcome;
};

bool isMode(temz_mode mode) {
    return mode >= TEMZ_INSTALL && mode <= TEMZ_UPGRADE;
}

/// What a run and a plan demand of their common arguments.
temz_status checkRun(temz_context* context, temz_mode mode, const temz_outcome* outcome) {
    if (context == nullptr)
        return TEMZ_NULL_ARGUMENT;
    if (!isContext(context))
        return TEMZ_BAD_CONTEXT;
    if (!context->session.isLoaded())
        return TEMZ_NOT_LOADED;
    if (!isMode(mode))
        return TEMZ_BAD_MODE;
    return outcome == nullptr || hasSizeOfRecord(*outcome) ? TEMZ_OK : TEMZ_BAD_SIZE;
}

temz_status checkPlanner(Session& session, const temz_planner* planner) {
    if (planner == nullptr)
        return TEMZ_OK;
    if (!hasSizeOfRecord(*planner))
        return TEMZ_BAD_SIZE;
    if (planner->assumptions == nullptr && planner->assumption_count > 0)
        return TEMZ_NULL_ARGUMENT;
    for (uint32_t i = 0; i < planner->assumption_count; ++i)
        if (const temz_status status = session.checkAssumption(planner->assumptions[i]))
            return status;
    return TEMZ_OK;
}

}  // namespace

uint32_t temz_version() {
    return TEMZ_VERSION;
}

temz_status temz_check_version(uint32_t header_version) {
    const bool sameMajor = header_version >> 24 == TEMZ_VERSION_MAJOR;
    return sameMajor && header_version <= TEMZ_VERSION ? TEMZ_OK : TEMZ_VERSION_MISMATCH;
}

const temz_char* temz_status_text(temz_status status) {
    switch (status) {
#define STATUS_TEXT(name, number, text) \
    case name:                          \
        return L##text;
        TEMZ_STATUS_LIST(STATUS_TEXT)
#undef STATUS_TEXT
        default:
            return L"Unknown status.";
    }
}

temz_status temz_create(temz_context** context) {
    if (context == nullptr)
        return TEMZ_NULL_ARGUMENT;
    *context = nullptr;
    return gate.pass(Use::changing, [&] {
        auto made = std::make_unique<temz_context>();
        contexts.push_back(made.get());
        *context = made.release();
        return temz_status{TEMZ_OK};
    });
}

temz_status temz_free(temz_context* context) {
    if (context == nullptr)
        return TEMZ_OK;
    return passWith(Use::changing, context, [&](Session&) {
        contexts.erase(std::find(contexts.begin(), contexts.end(), context));
        std::default_delete<temz_context>()(context);
        return temz_status{TEMZ_OK};
    });
}

temz_status temz_load(temz_context* context, const temz_char* path) {
    return passWith(Use::changing, context, [&](Session& session) {
        if (path == nullptr)
            return temz_status{TEMZ_NULL_ARGUMENT};
        if (session.isLoaded())
            return temz_status{TEMZ_ALREADY_LOADED};
        const temz_status status = Shortage().statusOf([&] { return session.load(path); });
        // What was loaded may lack something.
        if (status == TEMZ_NO_MEMORY)
            session.unload();
        return status;
    });
}

temz_status temz_unload(temz_context* context) {
    return passWith(Use::changing, context, [](Session& session) {
        session.unload();
        return temz_status{TEMZ_OK};
    });
}

temz_status temz_set_observer(temz_context* context, const temz_observer* observer) {
    return passWith(Use::asking, context,
                    [&](Session& session) { return takeRecord(session.observer, observer); });
}

temz_status temz_set_tracer(temz_context* context, const temz_tracer* tracer) {
    return passWith(Use::asking, context, [&](Session& session) {
        if (tracer != nullptr && hasSizeOfRecord(*tracer) && tracer->call == nullptr &&
            tracer->permit == nullptr)
            return temz_status{TEMZ_NULL_ARGUMENT};
        return takeRecord(session.tracer, tracer);
    });
}

temz_status temz_set_action_value(temz_context* context, uint64_t value) {
    return passWith(Use::asking, context, [&](Session& session) {
        session.actionValue = value;
        return temz_status{TEMZ_OK};
    });
}

temz_status temz_run(temz_context* context, temz_mode mode, temz_outcome* outcome) {
    const auto prepare = [&] { return checkRun(context, mode, outcome); };
    return gate.passRun(prepare, [&] {
        const OutcomeScope told(context->session, outcome);
        return Shortage().statusOf([&] { return context->session.run(mode); });
    });
}

temz_status temz_plan(temz_context* context, temz_mode mode, const temz_planner* planner,
                      temz_outcome* outcome) {
    temz_planner taken{};
    const auto prepare = [&]() -> temz_status {
        if (const temz_status status = checkRun(context, mode, outcome))
            return status;
        if (const temz_status status = checkPlanner(context->session, planner))
            return status;
        if (planner != nullptr)
            taken = readRecord(*planner);
        return TEMZ_OK;
    };
    return gate.passRun(prepare, [&] {
        const OutcomeScope told(context->session, outcome);
        return Shortage().statusOf([&] { return context->session.plan(mode, taken); });
    });
}

temz_status temz_get_outcome(temz_context* context, temz_outcome* outcome) {
    return passLoaded(Use::asking, context, [&](Session& session) {
        if (outcome == nullptr)
            return temz_status{TEMZ_NULL_ARGUMENT};
        if (!hasSizeOfRecord(*outcome))
            return temz_status{TEMZ_BAD_SIZE};
        writeRecord(*outcome, session.outcome());
        return temz_status{TEMZ_OK};
    });
}

temz_status temz_last_failure(temz_context* context, temz_char* buffer, size_t capacity,
                              size_t* length) {
    return passWith(Use::asking, context, [&](Session& session) {
        return giveText(session.failure(), buffer, capacity, length);
    });
}

temz_status temz_get_variable(temz_context* context, const temz_char* name, temz_char* buffer,
                              size_t capacity, size_t* length) {
    return giveFound(&Session::findVariable, context, name, buffer, capacity, length);
}

temz_status temz_get_directory(temz_context* context, const temz_char* id, temz_char* buffer,
                               size_t capacity, size_t* length) {
    return giveFound(&Session::findDirectory, context, id, buffer, capacity, length);
}

temz_status temz_check(const temz_check_request* request) {
    temz_check_request taken{};
    const auto prepare = [&]() -> temz_status {
        if (request == nullptr)
            return TEMZ_NULL_ARGUMENT;
        if (!hasSizeOfRecord(*request))
            return TEMZ_BAD_SIZE;
        taken = readRecord(*request);
        return taken.script && taken.finding ? TEMZ_OK : TEMZ_NULL_ARGUMENT;
    };
    return gate.passRun(prepare, [&]() -> temz_status {
        const auto textOf = [](const temz_char* text) { return text ? text : L""; };
        const CheckRequest checked{taken.script, textOf(taken.payload), textOf(taken.previous)};
        return Shortage().statusOf([&]() -> temz_status {
            const CheckEnd end =
                checkScript(checked, [&](const Finding& found) { tellFinding(taken, found); });
            return end == CheckEnd::done ? TEMZ_OK : TEMZ_NOT_READABLE;
        });
    });
}

temz_status temz_get_finding_kind(uint32_t index, temz_finding_kind* kind) {
    if (kind == nullptr)
        return TEMZ_NULL_ARGUMENT;
    if (!hasSizeOfRecord(*kind))
        return TEMZ_BAD_SIZE;
    if (index >= findingKinds().size())
        return TEMZ_NOT_FOUND;
    const FindingKind& row = findingKinds()[index];
    temz_finding_kind told{};
    told.severity = severityOf(row);
    told.code = row.code;
    told.meaning = row.meaning;
    told.remedy = row.remedy;
    writeRecord(*kind, told);
    return TEMZ_OK;
}

temz_status temz_schema(temz_char* buffer, size_t capacity, size_t* length) {
    return gate.pass(Use::asking,
                     [&] { return giveText(scriptSchema(), buffer, capacity, length); });
}
