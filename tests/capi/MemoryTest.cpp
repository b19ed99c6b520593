// Where the memory of the library ends it tells so, and works on with what there is afterwards.

#include <gmock/gmock.h>

#include <functional>
#include <ostream>
#include <set>

#include "CHostTest.h"
#include "FailingMalloc.h"

using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;

namespace {

enum class Shortage : size_t { passing = 1, lasting = SIZE_MAX };

void PrintTo(Shortage shortage, std::ostream* out) {
    *out << (shortage == Shortage::passing ? "passing" : "lasting");
}

/// A shortage that begins at one allocation after the other.
class MemoryTest : public CHostTest, public testing::WithParamInterface<Shortage> {
protected:
    /// What `call` answers wherever memory ends, until it needs no more than there is.
    std::set<temz_status> answers(const std::function<void()>& prepare,
                                  const std::function<temz_status()>& call) {
        std::set<temz_status> statuses;
        bool failed = true;
        for (size_t succeeding = 0; failed; ++succeeding) {
            prepare();
            const FailingMalloc failing(succeeding, static_cast<size_t>(GetParam()));
            const temz_status status = call();
            failed = failing.hasFailed();
            if (failed)
                statuses.insert(status);
            else
                EXPECT_EQ(status, TEMZ_OK);
        }
        return statuses;
    }

    void loadAnew() {
        EXPECT_EQ(temz_unload(context), TEMZ_OK);
        EXPECT_EQ(temz_load(context, script.c_str()), TEMZ_OK);
    }

    const std::wstring script = folder.write(L"script.xml", fileScript());
};

TEST_P(MemoryTest, EndsInCreate) {
    temz_context* made = nullptr;

    const auto statuses = answers(
        [&] {
            EXPECT_EQ(temz_free(made), TEMZ_OK);
            made = context;
        },
        [&] {
            const temz_status status = temz_create(&made);
            EXPECT_EQ(made == nullptr, status != TEMZ_OK);
            return status;
        });

    EXPECT_EQ(temz_free(made), TEMZ_OK);
    EXPECT_THAT(statuses, ElementsAre(TEMZ_NO_MEMORY));
}

// The engine itself tells some shortages as a script that can't be loaded, or loads it without what
// there was no memory for.
TEST_P(MemoryTest, EndsInLoad) {
    bool loaded = false;

    const auto statuses = answers(
        [&] {
            if (loaded) {
                EXPECT_EQ(temz_unload(context), TEMZ_OK);
            }
        },
        [&] {
            const temz_status status = temz_load(context, script.c_str());
            loaded = status == TEMZ_OK;
            return status;
        });

    EXPECT_THAT(statuses, ElementsAre(TEMZ_NO_MEMORY));
    EXPECT_EQ(temz_run(context, TEMZ_INSTALL, nullptr), TEMZ_OK);
}

// The engine itself tells some shortages as a failure of an action, or does without.
TEST_P(MemoryTest, EndsInRun) {
    const auto statuses =
        answers([&] { loadAnew(); }, [&] { return temz_run(context, TEMZ_INSTALL, nullptr); });

    EXPECT_THAT(statuses, ElementsAre(TEMZ_NO_MEMORY));
    EXPECT_EQ(readFile(app(L"a.txt")), "new");
}

TEST_P(MemoryTest, EndsInTracedRun) {
    size_t calls = 0;
    const temz_tracer tracer = {sizeof tracer, &calls,
                                [](void* user, const temz_call*) { ++*static_cast<size_t*>(user); },
                                nullptr};
    EXPECT_EQ(temz_set_tracer(context, &tracer), TEMZ_OK);

    const auto statuses =
        answers([&] { loadAnew(); }, [&] { return temz_run(context, TEMZ_INSTALL, nullptr); });

    EXPECT_THAT(statuses, ElementsAre(TEMZ_NO_MEMORY));
    EXPECT_EQ(readFile(app(L"a.txt")), "new");
    EXPECT_GT(calls, 0u);
}

// Where a run does without, or fails, a plan isn't what a run would do.
TEST_P(MemoryTest, EndsInPlan) {
    size_t steps = 0;
    const temz_planner planner = {
        sizeof planner, 0, nullptr, &steps,
        [](void* user, const temz_step*) { ++*static_cast<size_t*>(user); }};

    const auto statuses = answers(
        [&] {
            loadAnew();
            steps = 0;
        },
        [&] { return temz_plan(context, TEMZ_INSTALL, &planner, nullptr); });

    EXPECT_THAT(statuses, ElementsAre(TEMZ_NO_MEMORY));
    EXPECT_EQ(steps, 8u);
    EXPECT_FALSE(exists(app(L"")));
    EXPECT_EQ(temz_run(context, TEMZ_INSTALL, nullptr), TEMZ_OK);
}

TEST_P(MemoryTest, EndsInCheck) {
    size_t findings = 0;
    const std::wstring faulty = folder.write(L"faulty.xml", fileScript("Onn='install'"));
    const temz_check_request request = {
        sizeof request, faulty.c_str(),
        nullptr,        nullptr,
        &findings,      [](void* user, const temz_finding*) { ++*static_cast<size_t*>(user); }};

    const auto statuses = answers([&] { findings = 0; }, [&] { return temz_check(&request); });

    EXPECT_THAT(statuses, ElementsAre(TEMZ_NO_MEMORY));
    EXPECT_GE(findings, 1u);
}

TEST_P(MemoryTest, EndsInQuestions) {
    wchar_t text[TEMZ_TEXT_LENGTH];
    loadAnew();
    const auto asking = [&](auto question, const wchar_t* name) {
        return answers(
            [&] { loadAnew(); },
            [=, this, &text] { return question(context, name, text, TEMZ_TEXT_LENGTH, nullptr); });
    };

    EXPECT_THAT(asking(temz_get_variable, L"V"), ElementsAre(TEMZ_NO_MEMORY));
    EXPECT_THAT(asking(temz_get_directory, L"D"), ElementsAre(TEMZ_NO_MEMORY));
    EXPECT_EQ(temz_get_directory(context, L"D", text, TEMZ_TEXT_LENGTH, nullptr), TEMZ_OK);
    EXPECT_EQ(text, app(L""));
}

INSTANTIATE_TEST_SUITE_P(Each, MemoryTest, testing::Values(Shortage::passing, Shortage::lasting),
                         testing::PrintToStringParamName());

}  // namespace
