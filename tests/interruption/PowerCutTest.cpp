#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <memory>

#include "interruption/CutProgram.h"
#include "interruption/Moment.h"
#include "interruption/Product.h"
#include "support/Random.h"
#include "support/Requirements.h"
#include "support/Restart.h"
#include "support/Sweep.h"

using testing::IsEmpty;

namespace {

constexpr wchar_t host[] = L"temz_interrupted_host.exe";

/// What a stage of the product's life comes to when nothing disturbs it.
struct Course {
    /// The moments at which it can be ended, as arguments for the host program.
    std::vector<std::string> moments;
    MachineState after;         ///< at its end
    MachineState afterRestart;  ///< and once the machine has been restarted
    DWORD duration = 0;         ///< in milliseconds
};

constexpr Stage life[] = {Stage::install, Stage::upgrade, Stage::uninstall};

std::optional<DWORD> runHost(const Product& product, Stage stage, const std::wstring& moment = {}) {
    return CutProgram(host, product.argumentsFor(stage) + L" " + moment).waitForEnd();
}

/// A product that has been through its life once, undisturbed.
struct ExemplaryLife {
    ExemplaryLife() {
        product.beginLife();
        for (const Stage stage : life)
            courses.push_back(runUndisturbed(stage));
    }

    Course runUndisturbed(Stage stage) {
        Course course;
        const TestFolder folder;
        const std::wstring list = folder.path(L"moments");
        product.prepare(stage);
        const ULONGLONG start = GetTickCount64();
        EXPECT_EQ(runHost(product, stage, L"list \"" + list + L"\""), 0u);
        course.duration = static_cast<DWORD>(GetTickCount64() - start);
        course.after = product.state();
        product.letGo();
        restart();
        course.afterRestart = product.state();
        std::ifstream lines{std::filesystem::path(list)};
        for (std::string line; std::getline(lines, line);)
            course.moments.push_back(line);
        return course;
    }

    Product product;
    std::vector<Course> courses;
};

/// Takes the product through its life, in which each stage is interrupted and then run again.
class PowerCutTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (runsUnderWine())
            exemplary = std::make_unique<ExemplaryLife>();
    }
    static void TearDownTestSuite() { exemplary.reset(); }

    void SetUp() override { REQUIRES_WINE("restarts the machine"); }

    static Product& product() { return exemplary->product; }
    static const Course& courseOf(Stage stage) {
        return exemplary->courses[static_cast<size_t>(stage)];
    }

    /// Runs until a moment, as the first of those whose text holds `what`.
    void interrupt(Stage stage, std::string_view what) {
        const auto& moments = courseOf(stage).moments;
        const auto moment = std::find_if(moments.begin(), moments.end(), [what](const auto& text) {
            return text.find(what) != std::string::npos;
        });
        ASSERT_NE(moment, moments.end());
        interruptAt(stage, *moment);
    }

    /// Runs until a moment.
    void interruptAt(Stage stage, const std::string& moment) {
        product().prepare(stage);
        const std::string arguments = moment.substr(0, moment.rfind(' '));
        ASSERT_EQ(runHost(product(), stage, std::wstring(arguments.begin(), arguments.end())),
                  endedAtMoment);
    }

    /// After the interruption the run is made again, at once, and comes to the same.
    void finishAtOnce(Stage stage) {
        EXPECT_TRUE(product().settle());
        EXPECT_EQ(runHost(product(), stage), 0u);
        EXPECT_THAT(differences(product().state(), courseOf(stage).after), IsEmpty());
        product().letGo();
        restart();
        EXPECT_THAT(differences(product().state(), courseOf(stage).afterRestart), IsEmpty());
    }

    /// After the interruption the machine starts anew, and then the run is made again.
    void finishAfterRestart(Stage stage) {
        product().letGo();
        restart();
        EXPECT_EQ(runHost(product(), stage), 0u);
        EXPECT_THAT(differences(product().state(), courseOf(stage).afterRestart), IsEmpty());
    }

    void finish(Stage stage, bool restarted) {
        if (restarted)
            finishAfterRestart(stage);
        else
            finishAtOnce(stage);
    }

    static inline std::unique_ptr<ExemplaryLife> exemplary;
};

TEST_F(PowerCutTest, AtAnyCallThatChangesTheMachineIsMadeGoodByTheSameRun) {
    size_t lives = 0;
    for (const Course& course : exemplary->courses) {
        ASSERT_GE(course.moments.size(), 200u);
        lives = std::max(lives, course.moments.size());
    }

    for (size_t i = 0; i < lives; i += sweepStride(37)) {
        product().beginLife();
        for (const Stage stage : life) {
            const auto& moments = courseOf(stage).moments;
            const std::string& moment = moments[i * moments.size() / lives];
            SCOPED_TRACE(testing::Message() << "stage " << static_cast<int>(stage) << " ended "
                                            << moment << ", life " << i);
            interruptAt(stage, moment);
            finish(stage, i % 2 != 0);
            if (HasFailure())
                return;
        }
    }
}

TEST_F(PowerCutTest, AtAnyOtherMomentIsMadeGoodByTheSameRun) {
    Random random(1);
    for (size_t i = 0; i < 100; i += sweepStride(25)) {
        product().beginLife();
        for (const Stage stage : life) {
            const auto moment = static_cast<DWORD>(random.below(courseOf(stage).duration + 1));
            SCOPED_TRACE(testing::Message() << "stage " << static_cast<int>(stage)
                                            << " ended after " << moment << " ms, life " << i);
            product().prepare(stage);
            {
                const CutProgram program(host, product().argumentsFor(stage));
                program.waitForEnd(moment);
                program.cut();
            }
            finish(stage, i % 2 != 0);
            if (HasFailure())
                return;
        }
    }
}

// What stays for good, unless the same file is copied again.
TEST_F(PowerCutTest, LeavesAStagedFileOfWhichTheRestartKnowsNothing) {
    product().beginLife();

    interrupt(Stage::install, "MoveFileExW");
    product().letGo();
    restart();

    EXPECT_EQ(readFile(product().app(L"shared.dll")), "another's");
    EXPECT_EQ(readFile(product().app(L"shared.dll!@#$%")), "shared 1");
}

}  // namespace
