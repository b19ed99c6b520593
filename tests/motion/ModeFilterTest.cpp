// In which modes an element is visited.

#include <gmock/gmock.h>

#include "support/LogFile.h"
#include "support/MotionElementTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using ModeFilterTest = MotionElementTest;

TEST_F(ModeFilterTest, OnLetsAnElementPassInItsModes) {
    struct Row {
        const char* attributes;
        bool install;
        bool uninstall;
        bool upgrade;
        bool other;
    };
    constexpr Row rows[] = {
        {"", true, true, true, true},
        {"On=''", true, true, true, true},
        {"On='install'", true, false, false, false},
        {"On='uninstall'", false, true, false, false},
        {"On='upgrade'", false, false, true, false},
        {"On='installupgrade'", true, false, true, false},
        {"On='Install'", false, false, false, false},
        {"On=' '", false, false, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.attributes);
        const MotionProbe& element = makeProbe(row.attributes);
        const auto passesIn = [&](int32_t mode) {
            context.runMode = mode;
            return element.passesOnFilter(context);
        };
        EXPECT_EQ(passesIn(RUNMODE_INSTALL), row.install);
        EXPECT_EQ(passesIn(RUNMODE_UNINSTALL), row.uninstall);
        EXPECT_EQ(passesIn(RUNMODE_UPGRADE), row.upgrade);
        for (const int32_t mode : {3, -1, 32, -32})
            EXPECT_EQ(passesIn(mode), row.other) << mode;
    }
}

TEST_F(ModeFilterTest, UnknownOnIsToldInTheLogInEveryMode) {
    for (const char* word : {"Install", "install ", "installUpgrade", "both", "upgrad"}) {
        const LogFile log;
        const MotionProbe& element = makeProbe("On='" + std::string(word) + "'");
        for (const int32_t mode : {RUNMODE_INSTALL, RUNMODE_UNINSTALL, RUNMODE_UPGRADE}) {
            context.runMode = mode;
            EXPECT_FALSE(element.passesOnFilter(context));
        }
        const std::string line =
            "[WARNNING] (Probe,P) " + std::string(word) + " attribute is unknown.";
        EXPECT_THAT(log.lines(), ElementsAre(line, line, line));
    }
}

TEST_F(ModeFilterTest, KeywordThatDoesNotMatchTheModeIsNoMatterForTheLog) {
    const LogFile log;
    const MotionProbe& element = makeProbe("On='uninstall'");
    context.runMode = 99;

    EXPECT_FALSE(element.passesOnFilter(context));

    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ModeFilterTest, OnThatAClassDoesNotDeclareIsNotRead) {
    ASSERT_TRUE(loadProduct("<Plain Id='P' On='uninstall'/>"));
    PlainElement plain(L"Plain", L"P", context);
    std::wstring message;
    ASSERT_TRUE(plain.readDeclaredAttributes(context, message));

    for (const int32_t mode : {0, 1, 2, 99}) {
        context.runMode = mode;
        EXPECT_TRUE(plain.passesOnFilter(context));
    }
}

}  // namespace
