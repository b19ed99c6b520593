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

TEST_F(TextOutputTest, IsTheResultOfWhatRunsNothing) {
    EXPECT_EQ(endOfTelling(Verb::check, Ending::faultsFound), Ending::faultsFound);
    EXPECT_EQ(console.error, L"");

    console.outputError = ERROR_DISK_FULL;
    const struct {
        Verb verb;
        Ending ending;
        Ending then;
    } ends[] = {
        {Verb::check, Ending::faultsFound, Ending::notCarriedOut},
        {Verb::plan, Ending::done, Ending::notCarriedOut},
        {Verb::help, Ending::done, Ending::notCarriedOut},
        {Verb::plan, Ending::failed, Ending::failed},
        {Verb::run, Ending::done, Ending::done},
        {Verb::verify, Ending::faultsFound, Ending::faultsFound},
    };
    for (const auto& [verb, ending, then] : ends) {
        console.error.clear();
        EXPECT_EQ(endOfTelling(verb, ending), then);
        EXPECT_EQ(console.error, then == ending ? L""
                                                : L"temz: The output can't be written: " +
                                                      systemTextWithCode(ERROR_DISK_FULL) + L"\n");
    }
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
    ship(L"install.xml", "<Script><Product><InstallExecuteSequence/></Product></Script>");
    for (const wchar_t* arguments :
         {L"schema", L"check install.xml", L"check install.xml --json", L"plan install.xml",
          L"plan install.xml --json", L"help codes", L"explain 32", L"--version"}) {
        const HandlePtr output = openInput(folder.write(L"output.txt", ""));
        const HandlePtr error = openOutput(folder.path(L"error.txt"));

        const HandlePtr process =
            startProgram(L"\"" + setup(L"temz.exe") + L"\" " + arguments, folder.path(L"setup"),
                         {nullptr, output.get(), error.get()});

        EXPECT_EQ(waitForProgram(process.get()), 2u) << utf8(arguments);
        EXPECT_EQ(withoutReturns(readFile(folder.path(L"error.txt"))),
                  "temz: The output can't be written: " + systemError(ERROR_ACCESS_DENIED) + "\n");
    }
}

TEST_F(TextOutputOfTemzTest, IsForNobodyWhereThereIsNone) {
    ship(L"install.xml", "<Script><Product><InstallExecuteSequence/></Product></Script>");

    const HandlePtr process = startProgram(L"\"" + setup(L"temz.exe") + L"\" check install.xml",
                                           folder.path(L"setup"), {}, DETACHED_PROCESS);

    EXPECT_EQ(waitForProgram(process.get()), 0u);
}

}  // namespace
