// No exception may leave a callback. Where one does all the same, and its thrower was compiled as
// the library was, it ends there, and neither the context nor other threads are shut out for good.

#include <gmock/gmock.h>
#include <windows.h>

#include "CHostTest.h"

namespace {

class ThrowingCallbackTest : public CHostTest {
protected:
    ThrowingCallbackTest() { EXPECT_EQ(temz_load(context, script.c_str()), TEMZ_OK); }

    static temz_answer throwFromObserver(void*, const temz_outcome*) { throw 1; }
    static temz_answer throwFromPermit(void*, const temz_call*) { throw 1; }

    void observe(decltype(temz_observer::update) update, decltype(temz_observer::ask) ask) {
        const temz_observer observer = {sizeof observer, nullptr, update, ask};
        EXPECT_EQ(temz_set_observer(context, &observer), TEMZ_OK);
    }

    /// Afterwards all is as if it had never been.
    void expectGoodRun() {
        EXPECT_EQ(temz_set_observer(context, nullptr), TEMZ_OK);
        EXPECT_EQ(temz_set_tracer(context, nullptr), TEMZ_OK);
        EXPECT_EQ(temz_run(context, TEMZ_INSTALL, nullptr), TEMZ_OK);
        EXPECT_EQ(readFile(app(L"a.txt")), "new");
    }

    const std::wstring script = folder.write(L"script.xml", fileScript());
};

TEST_F(ThrowingCallbackTest, UpdateEndsTheRun) {
    observe(throwFromObserver, nullptr);
    EXPECT_EQ(temz_run(context, TEMZ_INSTALL, nullptr), TEMZ_INTERNAL);
    EXPECT_FALSE(exists(app(L"a.txt")));
    expectGoodRun();
}

TEST_F(ThrowingCallbackTest, AskEndsTheRun) {
    folder.makeDirectory(L"app\\a.txt");
    observe(nullptr, throwFromObserver);
    EXPECT_EQ(temz_run(context, TEMZ_INSTALL, nullptr), TEMZ_INTERNAL);
    temz_outcome outcome{};
    outcome.size = sizeof outcome;
    EXPECT_EQ(temz_get_outcome(context, &outcome), TEMZ_OK);
    EXPECT_EQ(outcome.result, -1);
    EXPECT_EQ(outcome.error.code, uint32_t{TEMZ_ACTION_COPY_FILE});
    RemoveDirectoryW(app(L"a.txt").c_str());
    expectGoodRun();
}

TEST_F(ThrowingCallbackTest, PermitEndsTheRunBeforeTheChange) {
    const temz_tracer tracer = {sizeof tracer, nullptr, nullptr, throwFromPermit};
    EXPECT_EQ(temz_set_tracer(context, &tracer), TEMZ_OK);
    EXPECT_EQ(temz_run(context, TEMZ_INSTALL, nullptr), TEMZ_INTERNAL);
    EXPECT_FALSE(exists(app(L"")));
    expectGoodRun();
}

TEST_F(ThrowingCallbackTest, StepEndsThePlan) {
    const temz_planner planner = {sizeof planner, 0, nullptr, nullptr,
                                  [](void*, const temz_step*) { throw 1; }};
    EXPECT_EQ(temz_plan(context, TEMZ_INSTALL, &planner, nullptr), TEMZ_INTERNAL);
    expectGoodRun();
}

TEST_F(ThrowingCallbackTest, FindingEndsTheCheck) {
    const std::wstring faulty = folder.write(L"faulty.xml", fileScript("Onn='install'"));
    temz_check_request request{};
    request.size = sizeof request;
    request.script = faulty.c_str();
    request.finding = [](void*, const temz_finding*) { throw 1; };
    EXPECT_EQ(temz_check(&request), TEMZ_INTERNAL);
    expectGoodRun();
}

}  // namespace
