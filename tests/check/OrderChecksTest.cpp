#include "check/CCheckTest.h"

using OrderChecksTest = CCheckTest;

namespace {

/// A product with one library, the fragments `Use` and `Stop`, and this sequence.
std::string inSequence(const std::string& sequence) {
    return R"(<Root><Product><Directory Id="ProgramFilesFolder">
<Directory Id="APPLICATIONROOTDIRECTORY" Path="Lantern"><Component Id="C">
<File Name="a.dll" Source="a.dll"/></Component></Directory></Directory>
<Fragment Id="Use"><CustomAction DllFile="[APPLICATIONROOTDIRECTORY]a.dll" DllEntry="e" Return="no"/></Fragment>
<Fragment Id="Stop"><ServiceControl Name="s" Action="stop" Wait="yes"/></Fragment>
<InstallExecuteSequence>)" +
           sequence +
           R"(<Fragment On="uninstall"><RemoveDirectory Path="[APPLICATIONROOTDIRECTORY]"/></Fragment>
</InstallExecuteSequence></Product></Root>)";
}

std::string use(const std::string& mode) {
    return "<Fragment On=\"" + mode + "\"><FragmentRef Id=\"Use\"/></Fragment>\n";
}

constexpr const char* files = "<Feature><ComponentRef Id=\"C\"/></Feature>\n";

/// The codes of these findings alone, but for a fragment that a sequence doesn't need.
std::string codesOf(const std::vector<Finding>& findings) {
    std::string codes;
    for (const Finding& finding : findings)
        if (narrow(finding.kind->code) != "TZ207")
            codes += narrow(finding.kind->code) + " ";
    return codes;
}

}  // namespace

TEST_F(OrderChecksTest, AnActionIsJudgedInEachModeByWhereThatReachesIt) {
    EXPECT_EQ(codesOf(check(inSequence(use("uninstall") + files + use("installupgrade")))), "");
    EXPECT_EQ(codesOf(check(inSequence(use("installupgrade") + files + use("uninstall")))),
              "TZ524 TZ525 ");
    EXPECT_EQ(codesOf(check(inSequence(files + use("uninstall")))), "TZ525 ");
    EXPECT_EQ(codesOf(check(inSequence(use("install") + files))), "TZ524 ");
}

TEST_F(OrderChecksTest, AServiceIsStoppedOnlyInTheModesOfThePlace) {
    const std::string stop = "<FragmentRef Id=\"Stop\"/></Fragment>";
    const std::string remove =
        R"(<Fragment On="uninstall"><ServiceControl Name="s" Action="remove" Wait="no"/></Fragment>)";
    EXPECT_EQ(codesOf(check(inSequence(files + ("<Fragment On=\"install\">" + stop) + remove +
                                       "<Fragment On=\"uninstall\">" + stop))),
              "TZ709 ");
    EXPECT_EQ(codesOf(check(inSequence(files + ("<Fragment On=\"install\">" + stop) +
                                       "<Fragment On=\"uninstall\">" + stop + remove))),
              "");
}
