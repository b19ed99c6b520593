#include "host/VerifyReport.h"

#include <gmock/gmock.h>

#include "FakeConsole.h"

namespace {

/// What is found after an install and an uninstall.
const std::vector<Difference> differences = {
    {Aftermath::left, ThingKind::file, L"C:\\app\\a.txt", L"since the install"},
    {Aftermath::changed, ThingKind::file, L"C:\\b.ini", L"4 bytes, were 3"},
};

TEST(VerifyReportTest, HasALineOfJsonForEachDifferenceAndTheirNumbersAtTheEnd) {
    const FakeConsole console;

    makeVerifyReport(true)->finished(differences, Ending::faultsFound);

    EXPECT_EQ(console.output,
              LR"({"event":"difference","what":"left","kind":"file","name":"C:\\app\\a.txt",)"
              LR"("detail":"since the install"})"
              L"\n"
              LR"({"event":"difference","what":"changed","kind":"file","name":"C:\\b.ini",)"
              LR"("detail":"4 bytes, were 3"})"
              L"\n"
              LR"({"event":"end","exitCode":1,"left":1,"changed":1,"lost":0,"reason":""})"
              L"\n");
    EXPECT_EQ(console.error, L"");
}

TEST(VerifyReportTest, HasTheDifferencesUnderWhatHasComeOfThem) {
    const FakeConsole console;

    makeVerifyReport(false)->finished(differences, Ending::failed);

    EXPECT_EQ(console.output,
              L"--- the machine, compared with before the install\n"
              L"Left behind:\n    file      C:\\app\\a.txt  (since the install)\n"
              L"Changed:\n    file      C:\\b.ini  (4 bytes, were 3)\n");
    EXPECT_EQ(console.error, L"temz: A run has failed.\n");
}

}  // namespace
