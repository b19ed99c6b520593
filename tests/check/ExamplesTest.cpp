#include <filesystem>

#include "check/CCheckTest.h"

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> examples() {
    std::vector<fs::path> scripts;
    for (const auto& entry : fs::recursive_directory_iterator(EXAMPLES_FOLDER))
        if (entry.path().extension() == L".xml")
            scripts.push_back(entry.path());
    return scripts;
}

}  // namespace

// The example product gives a file to the user for good, and that a check says so belongs to it.
TEST(Examples, HaveNothingThatACheckFinds) {
    ASSERT_GE(examples().size(), 6U);
    std::string found;
    for (const fs::path& script : examples())
        checkScript({script.wstring(), {}, {}}, [&](const Finding& finding) {
            found += narrow(script.filename().wstring()) + ": " + narrow(finding.kind->code) + " " +
                     narrow(finding.text) + "\n";
        });
    EXPECT_EQ(found,
              "install.xml: TZ602 `[ProgramFilesFolder]\\Example Works\\Greeter\\doc\\notes.txt` "
              "is put in place at install alone, and stays for good.\n");
}
