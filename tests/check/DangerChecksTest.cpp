#include "check/CCheckTest.h"

using DangerChecksTest = CCheckTest;

namespace {

/// A product that installs one file below the directory OUTER and removes this path at uninstall.
std::string removing(const std::string& path, const std::string& inProduct = R"(Id="Lantern")",
                     const std::string& outer = R"(Id="OUTER" Path="Works")") {
    return "<Root><Product " + inProduct + "><Directory Id=\"ProgramFilesFolder\"><Directory " +
           outer +
           "><Directory Path=\"bin\"><Component Id=\"C\"><File Name=\"a\" "
           "Source=\"a\"/></Component>"
           "</Directory></Directory></Directory><InstallExecuteSequence><Feature>"
           "<ComponentRef Id=\"C\"/></Feature><Fragment On=\"uninstall\">\n"
           "<RemoveDirectory Path=\"[OUTER]bin\"/><RemoveDirectory Path=\"" +
           path + "\"/></Fragment></InstallExecuteSequence></Product></Root>";
}

constexpr std::string_view at = "2:60 ";

}  // namespace

TEST_F(DangerChecksTest, ADirectoryThatIsCalledLikeTheProductIsItsOwn) {
    EXPECT_EQ(findingsIn(removing("[OUTER]", R"(Id="Lantern")", R"(Id="OUTER" Path="lantern")")),
              "");
    EXPECT_EQ(findingsIn(removing("C:\\Program Files\\Lantern", R"(Id="Lantern")",
                                  R"(Id="OUTER" Path="Lantern")")),
              "");
    for (const char* product : {R"(Id="Lantern")", R"(Id="orks")", ""})
        EXPECT_EQ(findingsIn(removing("[OUTER]", product)),
                  std::string(at) +
                      "TZ703 `[ProgramFilesFolder]\\Works` is above what the product "
                      "installs, and may hold others.\n");
}

TEST_F(DangerChecksTest, OfTwoDirectoriesThatAreCalledLikeTheProductTheInnerIsItsOwn) {
    EXPECT_EQ(findingsIn(removing("[OUTER]", R"(Id="bin")", R"(Id="OUTER" Path="bin")")),
              std::string(at) +
                  "TZ703 `[ProgramFilesFolder]\\bin` is above what the product "
                  "installs, and may hold others.\n");
}

TEST_F(DangerChecksTest, AFolderOfTheSystemIsOneHoweverItIsWritten) {
    for (const char* path :
         {"C:\\Windows", "c:\\windows", "C:/Windows/System32/", "C:\\Program Files", "D:\\Users",
          "[ProgramFilesFolder]", "[ProgramFilesFolder]Common Files", "[WindowsFolder]system32"}) {
        const std::string found = findingsIn(removing(path));
        EXPECT_TRUE(found.starts_with(std::string(at) + "TZ701 `")) << path << ": " << found;
        EXPECT_TRUE(found.ends_with("` is a folder of the system.\n")) << path;
    }
}

TEST_F(DangerChecksTest, ADirectoryInAFolderOfTheSystemIsNone) {
    EXPECT_EQ(
        findingsIn(removing("C:\\Windows\\Lantern")),
        std::string(at) + "TZ704 `C:\\Windows\\Lantern` is beside what the product installs.\n");
    EXPECT_EQ(findingsIn(removing("lantern")),
              std::string(at) + "TZ704 `lantern` is beside what the product installs.\n");
}
