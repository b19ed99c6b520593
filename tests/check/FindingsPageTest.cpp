// The page of the findings, docs/findings.md, against the table that it is made from.

#include <gtest/gtest.h>

#include <sstream>

#include "author/check/Finding.h"
#include "support/TestFolder.h"
#include "support/Text.h"

namespace {

std::string rowOf(const FindingKind& kind) {
    constexpr const char* weights[] = {"error", "warning", "note"};
    return std::string("| ") + narrow(kind.code) + " | " +
           weights[static_cast<size_t>(kind.severity)] + (kind.endsRun ? ", ends the run" : "") +
           " | " + narrow(kind.meaning) + " | " + narrow(kind.remedy) + " |\n";
}

}  // namespace

TEST(FindingsPageTest, HasARowForEachKindInOrderOfTheirCodesAndNoOther) {
    std::string expected;
    for (const FindingKind& kind : findingKinds())
        expected += rowOf(kind);

    std::istringstream page(readFile(testProgramDirectory() + L"\\findings.md"));
    std::string rows;
    for (std::string line; std::getline(page, line);)
        if (line.starts_with("| TZ"))
            rows += line + "\n";
    EXPECT_EQ(rows, expected);
}
