#include "CHostTest.h"
#include "support/LockedFile.h"
#include "support/Requirements.h"
#include "support/Restart.h"

namespace {

using RestartTest = CHostTest;

TEST_F(RestartTest, OutcomeTellsOfAFileThatWaitsForOne) {
    REQUIRES_WINE("leaves a replacement to the next restart, which takes elevation");
    const TakesBackReplacements replacements;
    temz_outcome outcome{};
    outcome.size = sizeof outcome;
    ASSERT_EQ(load(fileScript("SupportDelayInstall='yes'")), TEMZ_OK);
    folder.write(L"app\\a.txt", "old");
    {
        const LockedFile lock(app(L"a.txt"));
        EXPECT_EQ(temz_run(context, TEMZ_UPGRADE, &outcome), TEMZ_OK);
    }
    EXPECT_EQ(outcome.restart, 1u);
    EXPECT_EQ(outcome.result, 0);
    restart();
    EXPECT_EQ(readFile(app(L"a.txt")), "new");

    EXPECT_EQ(temz_run(context, TEMZ_UPGRADE, &outcome), TEMZ_OK);
    EXPECT_EQ(outcome.restart, 0u);
}

}  // namespace
