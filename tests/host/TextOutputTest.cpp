#include "host/TextOutput.h"

#include <gmock/gmock.h>

#include "FakeConsole.h"
#include "SetupTest.h"
#include "host/Diagnosis.h"
#include "host/WriteBytes.h"
#include "support/FakeCall.h"

namespace {

/// A text that goes to the output or to a file.
class TextOutputTest : public testing::Test {
protected:
    const TestFolder folder;
    const std::wstring file = folder.path(L"text.txt");
    FakeConsole console;
};

TEST_F(TextOutputTest, GoesToTheOutputOrToAFileThatIsNotThere) {
    EXPECT_EQ(giveText(L"a\n", L""), Ending::done);
    EXPECT_EQ(giveText(L"b\n", file), Ending::done);
    EXPECT_EQ(console.output, L"a\n");
    EXPECT_EQ(readFile(file), "b\r\n");
    EXPECT_EQ(console.error, L"");
}

TEST_F(TextOutputTest, IsNotGivenWhereTheOutputCannotBeWritten) {
    console.writeError = ERROR_DISK_FULL;

    EXPECT_EQ(giveText(L"a\n", L""), Ending::notCarriedOut);

    EXPECT_EQ(console.error,
              L"temz: The output can't be written: " + systemTextWithCode(ERROR_DISK_FULL) + L"\n");
}

TEST_F(TextOutputTest, IsNotGivenWhereTheFileCannotHoldAllOfIt) {
    const struct {
        BOOL success;
        DWORD error;
        DWORD told;
    } writes[] = {
        {FALSE, ERROR_WRITE_PROTECT, ERROR_WRITE_PROTECT},
        {TRUE, ERROR_SUCCESS, ERROR_DISK_FULL},  // not all of it was written
    };
    for (const auto& [success, error, told] : writes) {
        console.error.clear();
        DeleteFileW(file.c_str());
        const FakeCall<writeCalls, &WriteCalls::WriteFile> write(
            [success, error](HANDLE, const void*, DWORD size, DWORD* written, OVERLAPPED*) {
                *written = size - 1;
                SetLastError(error);
                return success;
            });
        EXPECT_EQ(giveText(L"a\n", file), Ending::notCarriedOut);
        EXPECT_EQ(console.error,
                  L"temz: " + file + L" can't be written: " + systemTextWithCode(told) + L"\n");
        EXPECT_EQ(writeTextFile(file, L"a\n"),
                  file + L" can't be written: " + systemTextWithCode(told));
    }
}

using TextOutputOfTemzTest = SetupTest;

TEST_F(TextOutputOfTemzTest, IsToldOfWhereItIsLedToWhatCannotBeWritten) {
    const HandlePtr output = openInput(folder.write(L"output.txt", ""));
    const HandlePtr error = openOutput(folder.path(L"error.txt"));

    const HandlePtr process = startProgram(L"\"" + setup(L"temz.exe") + L"\" schema", folder.path(),
                                           {nullptr, output.get(), error.get()});

    EXPECT_EQ(waitForProgram(process.get()), 2u);
    EXPECT_EQ(withoutReturns(readFile(folder.path(L"error.txt"))),
              "temz: The output can't be written: " + systemError(ERROR_ACCESS_DENIED) + "\n");
}

}  // namespace
