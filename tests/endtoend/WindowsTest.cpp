// The version of Windows and the code page of a run; these tests are run under several of both.

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <string>

#include "support/HostTest.h"
#include "support/Requirements.h"

namespace {

/// What the run is told to be, or what it is when it isn't told.
std::string told(const char* name, const char* otherwise) {
    const char* const value = std::getenv(name);
    return value ? value : otherwise;
}

class WindowsTest : public HostTest {
protected:
    void SetUp() override { REQUIRES_WINE("elsewhere a run has what the machine is"); }
};

TEST_F(WindowsTest, HasTheVersionOfTheRun) {
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    EXPECT_TRUE(GetVersionExW(&version));

    EXPECT_EQ(std::to_string(version.dwMajorVersion) + "." + std::to_string(version.dwMinorVersion),
              told("TEMZ_WINDOWS", "6.1"));
}

TEST_F(WindowsTest, HasTheCodePageOfTheRun) {
    EXPECT_EQ(std::to_string(GetACP()), told("TEMZ_CODE_PAGE", "1252"));
}

TEST_F(WindowsTest, TellsItsVersionToScripts) {
    const std::string version = told("TEMZ_WINDOWS", "6.1");
    const size_t dot = version.find('.');
    ASSERT_TRUE(
        load("<Script><Product><InstallExecuteSequence><Condition "
             "Expression='OS_MAJOR_VERSION E " +
             version.substr(0, dot) + " AND OS_MINOR_VERSION E " + version.substr(dot + 1) +
             "'><Fragment><Caution Title='so it is'/></Fragment></Condition>"
             "</InstallExecuteSequence></Product></Script>"));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    ASSERT_FALSE(observer.updates.empty());
    EXPECT_EQ(observer.updates.back().text2, L"so it is");
}

}  // namespace
