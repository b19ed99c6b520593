#include <gmock/gmock.h>

#include "SetupTest.h"

using testing::EndsWith;
using testing::StartsWith;

namespace {

using SchemaCommandTest = SetupTest;

TEST_F(SchemaCommandTest, ShowsTheSchemaOrWritesIt) {
    const ProgramRun shown = temz(L"schema");
    const ProgramRun written = temz(L"schema --out install.xsd");

    EXPECT_EQ(shown.exitCode, 0u);
    EXPECT_THAT(shown.output,
                StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xs:schema "));
    EXPECT_THAT(shown.output, EndsWith("</xs:schema>\n"));
    EXPECT_EQ(written.exitCode, 0u);
    EXPECT_EQ(written.output, "");
    // The file has the line ends of Windows.
    std::string content = readFile(setup(L"install.xsd"));
    EXPECT_NE(std::erase(content, '\r'), 0u);
    EXPECT_EQ(content, shown.output);
}

TEST_F(SchemaCommandTest, ReplacesNoFile) {
    ship(L"install.xsd", "an author's own");

    const ProgramRun run = temz(L"schema --out install.xsd");

    EXPECT_EQ(run.exitCode, 2u);
    EXPECT_EQ(run.error,
              "temz: install.xsd is there already, and isn't replaced. Remove it, or name another "
              "file.\n");
    EXPECT_EQ(readFile(setup(L"install.xsd")), "an author's own");
}

TEST_F(SchemaCommandTest, TellsThatItCannotBeWritten) {
    const ProgramRun run = temz(L"schema --out missing\\install.xsd");

    EXPECT_EQ(run.exitCode, 2u);
    EXPECT_EQ(run.error, "temz: missing\\install.xsd can't be written: " + systemError(3) + "\n");
}

}  // namespace
