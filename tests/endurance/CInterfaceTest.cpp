// The interface for every language leaves nothing of a context: its sessions free all.

#include <gmock/gmock.h>
#include <temz/temz.h>
#include <windows.h>

#include <functional>
#include <map>
#include <string>

#include "endurance/ProcessSize.h"
#include "support/PayloadFolder.h"
#include "support/Requirements.h"
#include "support/TestFolder.h"
#include "support/Text.h"

using testing::IsEmpty;

namespace {

class CInterfaceTest : public testing::Test {
protected:
    void SetUp() override { REQUIRES_WINE("tells what is in its heaps block by block"); }

    CInterfaceTest() {
        const std::string app = narrow(folder.path(L"app"));
        script = folder.write(
            L"script.xml",
            "<Script><Variable Id='V' Type='string' Value='a text of 20 letters'/>"
            "<Variable Id='N' Type='int' Value='1'/><Product>"
            "<Directory Id='APPLICATIONROOTDIRECTORY' Path='" +
                app + "'><Component Id='C'><File Name='a.txt' Source='" +
                narrow(payload.write(L"a.txt", "new")) +
                "'/></Component></Directory><InstallExecuteSequence>"
                "<Condition Expression='N E 1 AND OS_BIT E 64'>"
                "<Feature><ComponentRef Id='C'/></Feature></Condition><Fragment>"
                "<CustomAction DllFile='temz_test_actions.dll' DllEntry='countCalls' "
                "Return='ignore'/><FileSearch Name='notepad.exe' Path='[WindowsFolder]' "
                "MinVersion='0.1' Expression='N = 2'/><RemoveDirectory Path='" +
                app + "\\none'/></Fragment></InstallExecuteSequence></Product></Script>");
    }

    /// By how much the process has grown when something is done so many times; what the first
    /// times need is left out.
    static std::map<std::string, int64_t> growthBy(int times, const std::function<void()>& deed) {
        for (int i = 0; i < 10; ++i)
            deed();
        const ProcessSize before;
        for (int i = 0; i < times; ++i)
            deed();
        return ProcessSize() - before;
    }

    const TestFolder folder;
    const PayloadFolder payload;
    std::wstring script;
};

TEST_F(CInterfaceTest, LeavesNothingOfAThousandContexts) {
    temz_mode mode = TEMZ_INSTALL;
    EXPECT_THAT(growthBy(1000,
                         [&] {
                             temz_context* context = nullptr;
                             temz_create(&context);
                             EXPECT_EQ(temz_load(context, script.c_str()), TEMZ_OK);
                             temz_outcome outcome{};
                             outcome.size = sizeof outcome;
                             EXPECT_EQ(temz_run(context, mode, &outcome), TEMZ_OK);
                             mode = (mode + 1) % 3;
                             temz_unload(context);
                             temz_free(context);
                         }),
                IsEmpty());
}

TEST_F(CInterfaceTest, LeavesNothingOfContextsThatAreFreedLoaded) {
    EXPECT_THAT(growthBy(100,
                         [this] {
                             temz_context* context = nullptr;
                             temz_create(&context);
                             EXPECT_EQ(temz_load(context, script.c_str()), TEMZ_OK);
                             temz_free(context);
                         }),
                IsEmpty());
}

TEST_F(CInterfaceTest, LeavesNothingOfLoadsThatFail) {
    const std::wstring bad = folder.write(
        L"bad.xml",
        "<Script><Variable Id='V' Type='string' Value='a text of 20 letters'/></Script>");
    temz_context* context = nullptr;
    temz_create(&context);

    EXPECT_THAT(
        growthBy(100, [&] { EXPECT_EQ(temz_load(context, bad.c_str()), TEMZ_LOAD_FAILED); }),
        IsEmpty());
    temz_free(context);
}

TEST_F(CInterfaceTest, LeavesNothingOfPlansAndChecks) {
    EXPECT_THAT(growthBy(100,
                         [this] {
                             temz_context* context = nullptr;
                             temz_create(&context);
                             EXPECT_EQ(temz_load(context, script.c_str()), TEMZ_OK);
                             temz_planner planner{};
                             planner.size = sizeof planner;
                             planner.step = [](void*, const temz_step*) {};
                             temz_outcome outcome{};
                             outcome.size = sizeof outcome;
                             EXPECT_EQ(temz_plan(context, TEMZ_INSTALL, &planner, &outcome),
                                       TEMZ_OK);
                             temz_free(context);
                             temz_check_request request{};
                             request.size = sizeof request;
                             request.script = script.c_str();
                             request.finding = [](void*, const temz_finding*) {};
                             EXPECT_EQ(temz_check(&request), TEMZ_OK);
                         }),
                IsEmpty());
}

}  // namespace
