#include "host/Findings.h"

#include <gmock/gmock.h>

namespace {

/// The finding of the documents' example.
ScriptFinding example() {
    ScriptFinding finding;
    finding.severity = TEMZ_SEVERITY_ERROR;
    finding.line = 31;
    finding.column = 17;
    finding.length = 6;
    finding.code = L"TZ203";
    finding.file = L"install.xml";
    finding.text = L"`Fille` is no element that may stand in `Component`.";
    finding.help = L"did you mean `File`?";
    finding.sourceLine = LR"(                <Fille Name="a.txt" Source="payload\a.txt"/>)";
    return finding;
}

TEST(FindingsTest, TellsALineThatEditorsKnow) {
    EXPECT_EQ(findingLine(example()),
              L"install.xml:31:17: error TZ203: `Fille` is no element that may stand in "
              L"`Component`.");
    EXPECT_EQ(findingText(example(), 0),
              findingLine(example()) + L"\n       help: did you mean `File`?\n");
}

TEST(FindingsTest, MarksWhatIsWrongInItsLine) {
    EXPECT_EQ(findingText(example(), 80),
              findingLine(example()) +
                  L"\n    31 |                 <Fille Name=\"a.txt\" Source=\"payload\\a.txt\"/>\n"
                  L"       |                 ^~~~~~\n"
                  L"       help: did you mean `File`?\n");
}

TEST(FindingsTest, TellsOfAWholeFileWithoutAPlace) {
    ScriptFinding finding = example();
    finding.line = finding.column = finding.length = 0;
    finding.sourceLine.clear();
    finding.help.clear();
    finding.severity = TEMZ_SEVERITY_NOTE;
    EXPECT_EQ(findingText(finding, 80),
              L"install.xml: note TZ203: `Fille` is no element that may stand in `Component`.\n");
}

TEST(FindingsTest, MarksNothingWhereTheLineIsTooLongToBeTold) {
    ScriptFinding finding = example();
    finding.sourceLine.clear();
    EXPECT_EQ(findingText(finding, 80), findingText(finding, 0));
}

/// The line with the mark, of a finding in this source line.
std::wstring markOf(const std::wstring& source, uint32_t column, uint32_t length, size_t width) {
    ScriptFinding finding = example();
    finding.sourceLine = source;
    finding.column = column;
    finding.length = length;
    finding.help.clear();
    const std::wstring text = findingText(finding, width);
    return text.substr(text.find(L'\n') + 1);
}

TEST(FindingsTest, CountsColumnsAsATerminalShowsThem) {
    EXPECT_EQ(markOf(L"\t安x", 3, 1, 80), L"    31 |  安x\n       |    ^\n");
    EXPECT_EQ(markOf(L"安全", 1, 2, 80), L"    31 | 安全\n       | ^~~~\n");
    EXPECT_EQ(markOf(L"\U0001F4BEx", 3, 1, 80), L"    31 | \U0001F4BEx\n       |   ^\n");
    EXPECT_EQ(markOf(L"\uFF21x", 2, 1, 80), L"    31 | \uFF21x\n       |   ^\n");
}

TEST(FindingsTest, ShowsThePartOfALongLineThatItIsAbout) {
    const std::wstring source = std::wstring(1000, L'a') + L"bad" + std::wstring(1000, L'c');
    const std::wstring shown = markOf(source, 1001, 3, 60);

    EXPECT_EQ(shown, L"    31 | " + std::wstring(17, L'a') + L"bad" + std::wstring(31, L'c') +
                         L"\n       | " + std::wstring(17, L' ') + L"^~~\n");
}

TEST(FindingsTest, MarksNoFurtherThanTheTerminalIsWide) {
    const std::wstring source(500, L'a');
    EXPECT_EQ(markOf(source, 1, 500, 60), L"    31 | " + std::wstring(51, L'a') + L"\n       | ^" +
                                              std::wstring(50, L'~') + L"\n");
    EXPECT_EQ(markOf(L"ab", 7, 3, 60), L"    31 | ab\n       |   ^\n");
}

FindingCounts counts(std::initializer_list<temz_severity> severities) {
    std::vector<ScriptFinding> findings;
    for (const temz_severity severity : severities) {
        findings.push_back(example());
        findings.back().severity = severity;
    }
    return FindingCounts(findings);
}

TEST(FindingsTest, CountsByWeight) {
    constexpr temz_severity error = TEMZ_SEVERITY_ERROR;
    constexpr temz_severity warning = TEMZ_SEVERITY_WARNING;
    constexpr temz_severity note = TEMZ_SEVERITY_NOTE;
    EXPECT_EQ(countText(counts({})), L"No findings. Nothing was run.");
    EXPECT_EQ(countText(counts({warning, error})),
              L"2 findings: 1 error, 1 warning. Nothing was run.");
    EXPECT_EQ(countText(counts({note})), L"1 finding: 1 note. Nothing was run.");
    EXPECT_EQ(countText(counts({error, error, note, note, note})),
              L"5 findings: 2 errors, 3 notes. Nothing was run.");
}

TEST(FindingsTest, ListsEachKindWithWhatToDo) {
    const std::wstring table = findingTable();
    size_t kinds = 0;
    forEachFindingKind([&](const temz_finding_kind& kind) {
        ++kinds;
        EXPECT_NE(table.find(std::wstring(kind.code) + L"  " + severityWord(kind.severity) + L": " +
                             kind.meaning + L"\n       " + kind.remedy + L"\n"),
                  std::wstring::npos)
            << kind.code;
    });
    EXPECT_GT(kinds, 20u);
}

}  // namespace
