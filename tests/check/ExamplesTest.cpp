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

// The one note is on a file that an example gives to the user for good.
TEST(Examples, HaveNothingButTheNoteOnWhatStaysByDesign) {
    ASSERT_GE(examples().size(), 6U);
    for (const fs::path& script : examples())
        checkScript({script.wstring(), {}, {}}, [&](const Finding& finding) {
            EXPECT_STREQ(finding.kind->code, L"TZ602")
                << script << ":" << finding.place.line << ":" << finding.place.column << " "
                << narrow(finding.text) << " " << narrow(finding.help);
        });
}
