#include "host/Sarif.h"

#include <gmock/gmock.h>

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

ScriptFinding findingIn(const wchar_t* file) {
    ScriptFinding finding;
    finding.severity = TEMZ_SEVERITY_WARNING;
    finding.line = 31;
    finding.column = 17;
    finding.length = 6;
    finding.code = L"TZ203";
    finding.file = file;
    finding.text = L"That is \"wrong\".";
    finding.help = L"Mend it.";
    return finding;
}

TEST(SarifTest, HasTheKindsOfFindingsAlsoWhereThereIsNone) {
    const std::wstring text = sarifText({});

    EXPECT_THAT(text, StartsWith(L"{\"$schema\":\"https://docs.oasis-open.org/sarif/"));
    EXPECT_THAT(text, HasSubstr(LR"({"id":"TZ203","shortDescription":{"text":")"));
    EXPECT_THAT(text, EndsWith(LR"("columnKind":"utf16CodeUnits","results":[]}]})"
                               L"\n"));
}

TEST(SarifTest, TellsEachFindingWithItsPlace) {
    EXPECT_THAT(
        sarifText({findingIn(L"a.xml"), findingIn(L"b.xml")}),
        EndsWith(
            LR"("results":[{"ruleId":"TZ203","level":"warning","message":{"text":"That is \"wrong\". Mend it."},)"
            LR"("locations":[{"physicalLocation":{"artifactLocation":{"uri":"a.xml"},)"
            LR"("region":{"startLine":31,"startColumn":17,"endColumn":23}}}]},)"
            LR"({"ruleId":"TZ203","level":"warning","message":{"text":"That is \"wrong\". Mend it."},)"
            LR"("locations":[{"physicalLocation":{"artifactLocation":{"uri":"b.xml"},)"
            LR"("region":{"startLine":31,"startColumn":17,"endColumn":23}}}]}]}]})"
            L"\n"));
}

TEST(SarifTest, LeavesOutWhatAFindingLacks) {
    ScriptFinding finding = findingIn(L"a.xml");
    finding.line = 0;
    finding.help.clear();

    EXPECT_THAT(sarifText({finding}),
                HasSubstr(LR"("message":{"text":"That is \"wrong\"."},"locations":)"
                          LR"([{"physicalLocation":{"artifactLocation":{"uri":"a.xml"}}}])"));
}

TEST(SarifTest, WritesPathsAsAddresses) {
    const struct {
        const wchar_t* path;
        const wchar_t* address;
    } paths[] = {
        {L"C:\\a b\\\u00E4#%.xml", L"file:///C:/a%20b/%C3%A4%23%25.xml"},
        {L"\\\\server\\share\\a.xml", L"file://server/share/a.xml"},
        {L"..\\a-b_c~1.xml", L"../a-b_c~1.xml"},
        {L"a", L"a"},
        {L"\u5B89/a.xml", L"%E5%AE%89/a.xml"},
    };
    for (const auto& [path, address] : paths)
        EXPECT_THAT(sarifText({findingIn(path)}),
                    HasSubstr(std::wstring(L"\"uri\":\"") + address + L"\""));
}

}  // namespace
