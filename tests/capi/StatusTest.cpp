// Each function answers each status that the header documents for it. What leads to them is one
// table, which is held to the header.

#include <gmock/gmock.h>
#include <windows.h>

#include <functional>
#include <map>
#include <regex>
#include <set>
#include <utility>

#include "CHostTest.h"
#include "FailingMalloc.h"

namespace {

/// A host with what functions are given: all of it is there before memory runs short.
class Host final : public CHostTest {
public:
    Host() {
        EXPECT_EQ(temz_create(&freed), TEMZ_OK);
        EXPECT_EQ(temz_free(freed), TEMZ_OK);
        outcome.size = sizeof outcome;
        planner.size = sizeof planner;
        kind.size = sizeof kind;
        check.size = sizeof check;
        check.script = script.c_str();
        check.finding = [](void*, const temz_finding*) {};
    }

    temz_status loadScript() { return temz_load(context, script.c_str()); }

    /// Runs the script, and does `body` in its first update.
    temz_status runDoing(std::function<temz_answer()> body) {
        begin(std::move(body));
        return temz_run(context, TEMZ_INSTALL, &outcome);
    }
    temz_status planDoing(std::function<temz_answer()> body) {
        begin(std::move(body));
        return temz_plan(context, TEMZ_INSTALL, nullptr, &outcome);
    }

    const std::wstring script = folder.write(L"script.xml", fileScript());
    const std::wstring failing =
        folder.write(L"failing.xml",
                     "<S><Product><InstallExecuteSequence><Caution/></InstallExecuteSequence>"
                     "</Product></S>");
    const std::wstring numbers =
        folder.write(L"numbers.xml", "<S><Variable Id='N' Type='int' Value='1'/><Product/></S>");
    temz_context* freed = nullptr;
    temz_outcome outcome{};
    temz_planner planner{};
    temz_check_request check{};
    temz_finding_kind kind{};
    wchar_t text[TEMZ_TEXT_LENGTH] = L"";

    using CHostTest::context;
    using CHostTest::folder;

private:
    void TestBody() override {}

    void begin(std::function<temz_answer()> body) {
        inUpdate = std::move(body);
        const temz_observer observer = {sizeof observer, this,
                                        [](void* user, const temz_outcome*) -> temz_answer {
                                            const auto doing = std::exchange(
                                                static_cast<Host*>(user)->inUpdate, nullptr);
                                            return doing ? doing() : temz_answer{TEMZ_CONTINUE};
                                        },
                                        nullptr};
        EXPECT_EQ(temz_set_observer(context, &observer), TEMZ_OK);
        EXPECT_EQ(loadScript(), TEMZ_OK);
    }

    std::function<temz_answer()> inUpdate;
};

/// A call of one function, for a context or for one that is none.
using Call = std::function<temz_status(Host& host, temz_context* context)>;
using Answer = std::function<temz_status(Host& host)>;
using FunctionAndStatus = std::pair<std::string, std::string>;

temz_status onAnotherThread(Host& host, const Call& call) {
    struct Calling {
        Host& host;
        const Call& call;
        temz_status status;
    } calling{host, call, -1};
    const HANDLE thread = CreateThread(
        nullptr, 0,
        [](void* argument) -> DWORD {
            auto& self = *static_cast<Calling*>(argument);
            self.status = self.call(self.host, self.host.context);
            return 0;
        },
        &calling, 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    return calling.status;
}

/// What a call answers inside a callback of a run, or, from another thread, while that stands
/// there.
temz_status duringRun(Host& host, const Call& call, bool fromAnotherThread) {
    temz_status status = -1;
    host.runDoing([&] {
        status = fromAnotherThread ? onAnotherThread(host, call) : call(host, host.context);
        return TEMZ_CONTINUE;
    });
    return status;
}

temz_status withoutMemory(Host& host, const Call& call) {
    const FailingMalloc failing(0);
    return call(host, host.context);
}

/// What a call answers when the script is loaded.
temz_status loaded(Host& host, const Call& call) {
    EXPECT_EQ(host.loadScript(), TEMZ_OK);
    return call(host, host.context);
}

Call create() {
    return [](Host&, auto*) {
        temz_context* made = nullptr;
        const temz_status status = temz_create(&made);
        EXPECT_EQ(temz_free(made), TEMZ_OK);
        return status;
    };
}
Call load() {
    return [](Host& host, auto* context) { return temz_load(context, host.script.c_str()); };
}
Call run(temz_mode mode = TEMZ_INSTALL) {
    return [=](Host& host, auto* context) { return temz_run(context, mode, &host.outcome); };
}
Call plan(temz_mode mode = TEMZ_INSTALL) {
    return [=](Host& host, auto* context) {
        return temz_plan(context, mode, &host.planner, &host.outcome);
    };
}
Call getOutcome() {
    return [](Host& host, auto* context) { return temz_get_outcome(context, &host.outcome); };
}
Call lastFailure(size_t capacity = TEMZ_TEXT_LENGTH) {
    return [=](Host& host, auto* context) {
        return temz_last_failure(context, host.text, capacity, nullptr);
    };
}
Call getVariable(const wchar_t* name = L"V", size_t capacity = TEMZ_TEXT_LENGTH) {
    return [=](Host& host, auto* context) {
        return temz_get_variable(context, name, host.text, capacity, nullptr);
    };
}
Call getDirectory(const wchar_t* id = L"D", size_t capacity = TEMZ_TEXT_LENGTH) {
    return [=](Host& host, auto* context) {
        return temz_get_directory(context, id, host.text, capacity, nullptr);
    };
}
Call checkScript() {
    return [](Host& host, auto*) { return temz_check(&host.check); };
}
Call schema(size_t capacity = 1 << 20) {
    return [=](Host&, auto*) {
        static wchar_t text[1 << 20];
        return temz_schema(text, capacity, nullptr);
    };
}
Call setTracer(uint32_t size, bool hasFunction) {
    return [=](Host&, auto* context) {
        temz_tracer tracer{};
        tracer.size = size;
        if (hasFunction)
            tracer.call = [](void*, const temz_call*) {};
        return temz_set_tracer(context, &tracer);
    };
}
Call setObserver(uint32_t size) {
    return [=](Host&, auto* context) {
        temz_observer observer{};
        observer.size = size;
        return temz_set_observer(context, &observer);
    };
}

/// Who takes a context: called at the wrong moment, or with another.
struct ContextFunction {
    const char* name;
    Call call;
    bool changes;  ///< and isn't for a callback
};
const ContextFunction contextFunctions[] = {
    {"temz_load", load(), true},
    {"temz_unload", [](Host&, auto* context) { return temz_unload(context); }, true},
    {"temz_set_observer", setObserver(sizeof(temz_observer)), false},
    {"temz_set_tracer", setTracer(sizeof(temz_tracer), true), false},
    {"temz_set_action_value",
     [](Host&, auto* context) { return temz_set_action_value(context, 1); }, false},
    {"temz_run", run(), true},
    {"temz_plan", plan(), true},
    {"temz_get_outcome", getOutcome(), false},
    {"temz_last_failure", lastFailure(), false},
    {"temz_get_variable", getVariable(), false},
    {"temz_get_directory", getDirectory(), false},
};

std::map<FunctionAndStatus, Answer> answersToWrongMoments() {
    std::map<FunctionAndStatus, Answer> answers;
    const auto addBusy = [&](const std::string& name, const Call& call, bool changes) {
        answers[{name, "TEMZ_BUSY"}] = [=](Host& host) { return duringRun(host, call, true); };
        if (changes)
            answers[{name, "TEMZ_IN_CALLBACK"}] = [=](Host& host) {
                return duringRun(host, call, false);
            };
    };
    for (const auto& [name, call, changes] : contextFunctions) {
        addBusy(name, call, changes);
        answers[{name, "TEMZ_NULL_ARGUMENT"}] = [=](Host& host) { return call(host, nullptr); };
        answers[{name, "TEMZ_BAD_CONTEXT"}] = [=](Host& host) { return call(host, host.freed); };
        answers[{name, "TEMZ_OK"}] = [=](Host& host) {
            return name == std::string_view("temz_load") ? call(host, host.context)
                                                         : loaded(host, call);
        };
    }
    addBusy(
        "temz_free", [](Host&, auto* context) { return temz_free(context); }, true);
    addBusy("temz_create", create(), true);
    addBusy("temz_check", checkScript(), true);
    addBusy("temz_schema", schema(), false);
    return answers;
}

temz_status checkAssumption(Host& host, const temz_char* name, const temz_char* value) {
    const temz_assumption assumption = {name, value};
    host.planner.assumption_count = 1;
    host.planner.assumptions = &assumption;
    EXPECT_EQ(temz_load(host.context, host.numbers.c_str()), TEMZ_OK);
    return plan()(host, host.context);
}

[[noreturn]] temz_answer throwNumber() {
    throw 1;
}

std::map<FunctionAndStatus, Answer> answersToArguments() {
    return {
        {{"temz_check_version", "TEMZ_OK"}, [](Host&) { return temz_check_version(TEMZ_VERSION); }},
        {{"temz_check_version", "TEMZ_VERSION_MISMATCH"},
         [](Host&) { return temz_check_version(TEMZ_VERSION + 1); }},

        {{"temz_create", "TEMZ_OK"}, [](Host& host) { return create()(host, nullptr); }},
        {{"temz_create", "TEMZ_NULL_ARGUMENT"}, [](Host&) { return temz_create(nullptr); }},
        {{"temz_create", "TEMZ_NO_MEMORY"},
         [](Host& host) { return withoutMemory(host, create()); }},
        {{"temz_free", "TEMZ_OK"}, [](Host&) { return temz_free(nullptr); }},
        {{"temz_free", "TEMZ_BAD_CONTEXT"}, [](Host& host) { return temz_free(host.freed); }},

        {{"temz_load", "TEMZ_LOAD_FAILED"},
         [](Host& host) { return temz_load(host.context, L"missing.xml"); }},
        {{"temz_load", "TEMZ_ALREADY_LOADED"}, [](Host& host) { return loaded(host, load()); }},
        {{"temz_load", "TEMZ_NO_MEMORY"}, [](Host& host) { return withoutMemory(host, load()); }},

        {{"temz_set_observer", "TEMZ_BAD_SIZE"},
         [](Host& host) { return setObserver(sizeof(temz_observer) - 1)(host, host.context); }},
        {{"temz_set_tracer", "TEMZ_BAD_SIZE"},
         [](Host& host) { return setTracer(sizeof(temz_tracer) - 1, true)(host, host.context); }},

        {{"temz_run", "TEMZ_RUN_FAILED"},
         [](Host& host) {
             EXPECT_EQ(temz_load(host.context, host.failing.c_str()), TEMZ_OK);
             return run()(host, host.context);
         }},
        {{"temz_run", "TEMZ_STOPPED"},
         [](Host& host) { return host.runDoing([] { return temz_answer{TEMZ_STOP}; }); }},
        {{"temz_run", "TEMZ_NO_MEMORY"},
         [](Host& host) {
             EXPECT_EQ(host.loadScript(), TEMZ_OK);
             return withoutMemory(host, run());
         }},
        {{"temz_run", "TEMZ_BAD_MODE"}, [](Host& host) { return loaded(host, run(3)); }},
        {{"temz_run", "TEMZ_BAD_SIZE"},
         [](Host& host) {
             host.outcome.size = 0;
             return loaded(host, run());
         }},
        {{"temz_run", "TEMZ_NOT_LOADED"}, [](Host& host) { return run()(host, host.context); }},
        {{"temz_run", "TEMZ_INTERNAL"}, [](Host& host) { return host.runDoing(throwNumber); }},

        {{"temz_plan", "TEMZ_RUN_FAILED"},
         [](Host& host) {
             EXPECT_EQ(temz_load(host.context, host.failing.c_str()), TEMZ_OK);
             return plan()(host, host.context);
         }},
        {{"temz_plan", "TEMZ_STOPPED"},
         [](Host& host) { return host.planDoing([] { return temz_answer{TEMZ_STOP}; }); }},
        {{"temz_plan", "TEMZ_NOT_FOUND"},
         [](Host& host) { return checkAssumption(host, L"M", L"1"); }},
        {{"temz_plan", "TEMZ_BAD_VALUE"},
         [](Host& host) { return checkAssumption(host, L"N", L"x"); }},
        {{"temz_plan", "TEMZ_NO_MEMORY"},
         [](Host& host) {
             EXPECT_EQ(host.loadScript(), TEMZ_OK);
             return withoutMemory(host, plan());
         }},
        {{"temz_plan", "TEMZ_BAD_MODE"}, [](Host& host) { return loaded(host, plan(-1)); }},
        {{"temz_plan", "TEMZ_BAD_SIZE"},
         [](Host& host) {
             host.planner.size = 0;
             return loaded(host, plan());
         }},
        {{"temz_plan", "TEMZ_NOT_LOADED"}, [](Host& host) { return plan()(host, host.context); }},
        {{"temz_plan", "TEMZ_INTERNAL"}, [](Host& host) { return host.planDoing(throwNumber); }},

        {{"temz_get_outcome", "TEMZ_BAD_SIZE"},
         [](Host& host) {
             host.outcome.size = 0;
             return loaded(host, getOutcome());
         }},
        {{"temz_get_outcome", "TEMZ_NOT_LOADED"},
         [](Host& host) { return getOutcome()(host, host.context); }},

        {{"temz_last_failure", "TEMZ_BUFFER_TOO_SMALL"},
         [](Host& host) { return lastFailure(0)(host, host.context); }},
        {{"temz_get_variable", "TEMZ_BUFFER_TOO_SMALL"},
         [](Host& host) { return loaded(host, getVariable(L"V", 1)); }},
        {{"temz_get_variable", "TEMZ_NOT_FOUND"},
         [](Host& host) { return loaded(host, getVariable(L"none")); }},
        {{"temz_get_variable", "TEMZ_NOT_LOADED"},
         [](Host& host) { return getVariable()(host, host.context); }},
        {{"temz_get_variable", "TEMZ_NO_MEMORY"},
         [](Host& host) {
             EXPECT_EQ(host.loadScript(), TEMZ_OK);
             return withoutMemory(host, getVariable());
         }},
        {{"temz_get_directory", "TEMZ_BUFFER_TOO_SMALL"},
         [](Host& host) { return loaded(host, getDirectory(L"D", 1)); }},
        {{"temz_get_directory", "TEMZ_NOT_FOUND"},
         [](Host& host) { return loaded(host, getDirectory(L"none")); }},
        {{"temz_get_directory", "TEMZ_NOT_LOADED"},
         [](Host& host) { return getDirectory()(host, host.context); }},
        {{"temz_get_directory", "TEMZ_NO_MEMORY"},
         [](Host& host) {
             EXPECT_EQ(host.loadScript(), TEMZ_OK);
             return withoutMemory(host, getDirectory());
         }},

        {{"temz_check", "TEMZ_OK"}, [](Host& host) { return checkScript()(host, nullptr); }},
        {{"temz_check", "TEMZ_NOT_READABLE"},
         [](Host& host) {
             host.check.script = L"missing.xml";
             return checkScript()(host, nullptr);
         }},
        {{"temz_check", "TEMZ_NULL_ARGUMENT"}, [](Host&) { return temz_check(nullptr); }},
        {{"temz_check", "TEMZ_BAD_SIZE"},
         [](Host& host) {
             host.check.size = 0;
             return checkScript()(host, nullptr);
         }},
        {{"temz_check", "TEMZ_NO_MEMORY"},
         [](Host& host) { return withoutMemory(host, checkScript()); }},

        {{"temz_get_finding_kind", "TEMZ_OK"},
         [](Host& host) { return temz_get_finding_kind(0, &host.kind); }},
        {{"temz_get_finding_kind", "TEMZ_NOT_FOUND"},
         [](Host& host) { return temz_get_finding_kind(UINT32_MAX, &host.kind); }},
        {{"temz_get_finding_kind", "TEMZ_NULL_ARGUMENT"},
         [](Host&) { return temz_get_finding_kind(0, nullptr); }},
        {{"temz_get_finding_kind", "TEMZ_BAD_SIZE"},
         [](Host& host) {
             host.kind.size = 0;
             return temz_get_finding_kind(0, &host.kind);
         }},

        {{"temz_schema", "TEMZ_OK"}, [](Host& host) { return schema()(host, nullptr); }},
        {{"temz_schema", "TEMZ_BUFFER_TOO_SMALL"},
         [](Host& host) { return schema(1)(host, nullptr); }},
        {{"temz_schema", "TEMZ_NULL_ARGUMENT"},
         [](Host&) { return temz_schema(nullptr, 1, nullptr); }},
        {{"temz_schema", "TEMZ_NO_MEMORY"},
         [](Host& host) { return withoutMemory(host, schema()); }},
    };
}

std::map<FunctionAndStatus, Answer> allAnswers() {
    std::map<FunctionAndStatus, Answer> answers = answersToWrongMoments();
    answers.merge(answersToArguments());
    return answers;
}

/// What the header tells that nothing leads to: the text is there already.
const FunctionAndStatus unreachable = {"temz_last_failure", "TEMZ_NO_MEMORY"};

const std::map<std::string, temz_status>& statuses() {
    static const std::map<std::string, temz_status> all = {
#define STATUS_NAME(name, number, text) {#name, name},
        TEMZ_STATUS_LIST(STATUS_NAME)
#undef STATUS_NAME
    };
    return all;
}

/// The statuses that a comment of the header names.
std::set<std::string> statusesIn(const std::string& comment) {
    static const std::regex word("TEMZ_[A-Z_]+");
    std::set<std::string> named;
    for (std::sregex_iterator found(comment.begin(), comment.end(), word), end; found != end;
         ++found)
        if (statuses().contains(found->str()))
            named.insert(found->str());
    return named;
}

std::set<FunctionAndStatus> documentedStatuses() {
    static const std::regex function(R"(TEMZ_API temz_status (temz_\w+)\(([^;]*)\);)");
    const std::string header = readFile(testProgramDirectory() + L"\\temz.h");
    std::set<std::string> ofTexts;
    std::set<FunctionAndStatus> documented;
    for (std::sregex_iterator found(header.begin(), header.end(), function), end; found != end;
         ++found) {
        const std::string name = found->str(1);
        const std::string arguments = found->str(2);
        const std::string before = found->prefix();
        std::set<std::string> named = statusesIn(before.substr(before.rfind("/*")));
        // A comment of its own stands over the functions that give a text of a context.
        if (before.find("Each of these gives a text") != std::string::npos)
            ofTexts = statusesIn(before.substr(before.find("Each of these gives a text")));
        const bool takesContext = arguments.starts_with("temz_context* ");
        if (takesContext && arguments.find("capacity") != std::string::npos)
            named.insert(ofTexts.begin(), ofTexts.end());
        // What holds for all of them stands at the top of the header.
        named.insert("TEMZ_OK");
        if (takesContext && name != "temz_free")
            named.insert("TEMZ_NULL_ARGUMENT");
        for (const std::string& status : named)
            documented.emplace(name, status);
    }
    return documented;
}

TEST(StatusTest, TableHasEachThatTheHeaderTells) {
    std::set<FunctionAndStatus> reached = {unreachable};
    for (const auto& [functionAndStatus, answer] : allAnswers())
        reached.insert(functionAndStatus);

    EXPECT_THAT(reached, testing::ContainerEq(documentedStatuses()));
}

TEST(StatusTest, IsAnsweredAndTheContextWorksOn) {
    for (const auto& [functionAndStatus, answer] : allAnswers()) {
        const auto& [function, status] = functionAndStatus;
        SCOPED_TRACE(function + " " + status);
        Host host;

        EXPECT_EQ(answer(host), statuses().at(status));

        EXPECT_EQ(temz_unload(host.context), TEMZ_OK);
        EXPECT_EQ(temz_set_observer(host.context, nullptr), TEMZ_OK);
        EXPECT_EQ(host.loadScript(), TEMZ_OK);
        EXPECT_EQ(temz_run(host.context, TEMZ_INSTALL, nullptr), TEMZ_OK);
    }
}

}  // namespace
