// The same promise for a script that is planned or checked, by the interface for every language.

#include <gtest/gtest.h>
#include <temz/temz.h>
#include <windows.h>

#include <ostream>
#include <utility>

#include "DeepScripts.h"
#include "support/OwnStack.h"
#include "support/TestFolder.h"
#include "support/TestKey.h"
#include "support/Text.h"

namespace {

/// A script that comes to a Caution, "deep", at its end.
struct DeepScript {
    const char* name;
    std::string definitions;
    std::string sequence;
};

void PrintTo(const DeepScript& script, std::ostream* out) {
    *out << script.name;
}

constexpr char atTheEnd[] = "<Fragment><Caution Title='deep'/></Fragment>";

class PlanStackTest : public testing::TestWithParam<DeepScript> {
protected:
    PlanStackTest() { EXPECT_EQ(temz_create(&context), TEMZ_OK); }
    ~PlanStackTest() override { EXPECT_EQ(temz_free(context), TEMZ_OK); }

    void write(const std::string& definitions, const std::string& sequence) const {
        folder.write(L"script.xml", "<Script><Product>" + definitions + "<InstallExecuteSequence>" +
                                        sequence + "</InstallExecuteSequence></Product></Script>");
    }

    /// Plans an uninstallation by the script, and tells the steps to `step`.
    temz_status planOnStack(void (*step)(void*, const temz_step*), void* user) {
        temz_planner planner{};
        planner.size = sizeof planner;
        planner.user = user;
        planner.step = step;
        temz_status status = TEMZ_INTERNAL;
        onStackOf(stackSize, [&] {
            EXPECT_EQ(temz_load(context, path().c_str()), TEMZ_OK);
            status = temz_plan(context, TEMZ_UNINSTALL, &planner, nullptr);
            EXPECT_EQ(temz_unload(context), TEMZ_OK);
        });
        return status;
    }

    temz_status checkOnStack() const {
        const std::wstring script = path();
        temz_check_request request{};
        request.size = sizeof request;
        request.script = script.c_str();
        request.finding = [](void*, const temz_finding*) {};
        temz_status status = TEMZ_INTERNAL;
        onStackOf(stackSize, [&] { status = temz_check(&request); });
        return status;
    }

    std::wstring path() const { return folder.path(L"script.xml"); }

    const TestFolder folder;
    temz_context* context = nullptr;
};

TEST_P(PlanStackTest, IsEnoughForAPlan) {
    write(GetParam().definitions, GetParam().sequence);
    std::wstring lastTitle;

    const temz_status status = planOnStack(
        [](void* user, const temz_step* step) {
            if (step->kind == TEMZ_STEP_ACTION)
                *static_cast<std::wstring*>(user) = step->detail;
        },
        &lastTitle);

    EXPECT_EQ(status, TEMZ_OK);
    EXPECT_EQ(lastTitle, L"deep");
}

TEST_P(PlanStackTest, IsEnoughForACheck) {
    write(GetParam().definitions, GetParam().sequence);

    EXPECT_EQ(checkOnStack(), TEMZ_OK);
}

INSTANTIATE_TEST_SUITE_P(
    , PlanStackTest,
    testing::Values(
        DeepScript{"Fragments", "", nested(252, "<Fragment>", "</Fragment>", caution)},
        DeepScript{"Features", "",
                   nested(251, "<Feature>", "</Feature>",
                          "<Component>" + std::string(caution) + "</Component>")},
        DeepScript{"Conditions", "",
                   nested(252, "<Condition Expression='1'>", "</Condition>", caution)},
        DeepScript{"FalseConditions", "",
                   "<Condition Expression='0'>" +
                       nested(250, "<Fragment>", "</Fragment>", caution) + "</Condition>" +
                       atTheEnd},
        DeepScript{"RegistryKeys", "",
                   "<Condition Expression='1'><RegistryKey Root='HKEY_CURRENT_USER' "
                   "Action='create' Key='Software\\temz-none'>" +
                       nested(249, "<RegistryKey Action='create' Key=''>", "</RegistryKey>", "") +
                       "</RegistryKey></Condition>" + atTheEnd},
        DeepScript{"AMixture", "",
                   nested(126, "<Condition Expression='1'><Fragment>", "</Fragment></Condition>",
                          caution)},
        DeepScript{
            "TheLongestChain", directories(longestChain - 1, byText),
            nested(251, "<Fragment>", "</Fragment>", "<Caution Title='[D510]'/>") + atTheEnd},
        DeepScript{"AThousandReferences",
                   numbered(2, 1000, "<Fragment Id='F^'><FragmentRef Id='F$'/></Fragment>") +
                       "<Fragment Id='F1000'>" + caution + "</Fragment>",
                   "<FragmentRef Id='F1'/>"},
        DeepScript{"AThousandReferencesInConditions",
                   numbered(2, 1000,
                            "<Feature Id='F^'><Condition Expression='1'><FeatureRef Id='F$'/>"
                            "</Condition></Feature>") +
                       "<Feature Id='F1000'><Component>" + caution + "</Component></Feature>",
                   "<FeatureRef Id='F1'/>"},
        DeepScript{"AThousandReferencesLeftOut",
                   numbered(2, 1000, "<Fragment Id='F^'><FragmentRef Id='F$'/></Fragment>") +
                       "<Fragment Id='F1000'>" + caution + "</Fragment>",
                   "<Condition Expression='0'><FragmentRef Id='F1'/></Condition>" +
                       std::string(atTheEnd)}),
    [](const auto& info) { return info.param.name; });

class PlanTreeStackTest : public PlanStackTest {
protected:
    /// How many changes a plan of the sequence tells.
    int changes(const std::string& sequence) {
        write("", sequence);
        int count = 0;
        EXPECT_EQ(planOnStack(
                      [](void* user, const temz_step* step) {
                          *static_cast<int*>(user) += step->kind == TEMZ_STEP_CHANGE;
                      },
                      &count),
                  TEMZ_OK);
        return count;
    }
};

TEST_F(PlanTreeStackTest, IsEnoughForTheDeepestDirectoryTree) {
    const std::wstring root = folder.makeDirectory(L"tree");
    constexpr size_t longestPath = MAX_PATH - 3;  // with a separator and "*" behind it
    int directories = 1;
    for (std::wstring path = root; path.size() + 2 <= longestPath; ++directories) {
        path += L"\\d";
        ASSERT_TRUE(CreateDirectoryW(path.c_str(), nullptr));
    }

    EXPECT_EQ(changes("<Fragment><RemoveDirectory Path='" + narrow(root) + "'/></Fragment>"),
              directories);
}

TEST_F(PlanTreeStackTest, IsEnoughForTheDeepestRegistryTree) {
    constexpr int levels = 500;
    const TestKey key;
    HKEY above = nullptr;
    RegCreateKeyW(HKEY_CURRENT_USER, key.path(L"tree").c_str(), &above);
    for (int level = 0; level < levels; ++level) {
        HKEY below = nullptr;
        ASSERT_EQ(RegCreateKeyW(above, L"k", &below), ERROR_SUCCESS);
        RegCloseKey(std::exchange(above, below));
    }
    RegCloseKey(above);

    EXPECT_EQ(changes("<Condition Expression='1'><RegistryKey Root='HKEY_CURRENT_USER' "
                      "Action='remove' Key='" +
                      narrow(key.path(L"tree")) + "'/></Condition>"),
              levels + 1);
}

}  // namespace
