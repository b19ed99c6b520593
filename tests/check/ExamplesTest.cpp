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

// The notes are on a file that an example gives to the user for good, and on directories that small
// examples leave behind.
TEST(Examples, HaveNothingButNotesOnWhatStays) {
    ASSERT_GE(examples().size(), 6U);
    for (const fs::path& script : examples())
        checkScript({script.wstring(), {}, {}}, [&](const Finding& finding) {
            EXPECT_EQ(finding.kind->severity, Severity::note)
                << script << ":" << finding.place.line << ":" << finding.place.column << " "
                << narrow(finding.text) << " " << narrow(finding.help);
        });
}
