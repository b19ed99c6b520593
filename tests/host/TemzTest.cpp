// The host program as deployment systems and scripts run it: with its streams redirected.

#include <gmock/gmock.h>
#include <windows.h>

#include <memory>
#include <sstream>
#include <vector>

#include "HostProgram.h"
#include "SetupTest.h"
#include "host/CommandLine.h"
#include "host/Version.h"
#include "support/LockedFile.h"
#include "support/ReportedWindows.h"
#include "support/Requirements.h"
#include "support/Restart.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

namespace {

class TemzTest : public SetupTest {
protected:
    /// A product of two files, with the first of them shipped.
    void shipHalf() const {
        ship(L"a.txt", "a");
        writeScript(file("a.txt") + file("lacking.txt") + file("a.txt"));
    }

    /// The last line's list of a.txt, which has been left to the restart.
    std::string waiting() const {
        return " Until the machine is restarted (Restart, not Shut down) these wait: " +
               utf8(app(L"a.txt")) + ".";
    }

    /// A product that has a function of this library tell about the host.
    void writeAction(const std::wstring& library) const {
        ship(L"install.xml",
             "<Script><Product><Directory Id='APPLICATIONROOTDIRECTORY' Path='C:'/>"
             "<InstallExecuteSequence><Fragment><CustomAction DllFile='" +
                 utf8(library) + "' DllEntry='tellStart' Return='check'/></Fragment>" +
                 "</InstallExecuteSequence></Product></Script>");
    }
};

constexpr size_t codeEnd = 4;  // of a line of `temz help codes`

const std::string closeIt =
    "      Close the program, or give the file KillProcess or SupportDelayInstall in the script.\n";

std::string held(const std::string& action) {
    return "temz: " + action + " failed: the file is in use by another program. [error 32]\n";
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string failedAfter(const std::string& actions, const std::string& rest = {}) {
    return "Failed after " + actions + ". What was done before stays." + rest + "\n";
}

TEST_F(TemzTest, InstallsUpgradesAndRemovesAProduct) {
    writeScript(file("a.txt") + file("b.txt"));
    ship(L"a.txt", "a1");
    ship(L"b.txt", "b1");

    const ProgramRun install = temz(L"install install.xml");
    EXPECT_EQ(install.exitCode, 0u);
    EXPECT_EQ(install.output, "Copying a.txt\nCopying b.txt\nDone: 2 actions.\n");
    EXPECT_EQ(install.error, "");
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a1"), Pair(L"b.txt", "b1")));

    ship(L"a.txt", "a2");
    const ProgramRun upgrade = temz(L"upgrade install.xml");
    EXPECT_EQ(upgrade.exitCode, 0u);
    EXPECT_EQ(upgrade.output, install.output);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a2"), Pair(L"b.txt", "b1")));

    const ProgramRun uninstall = temz(L"uninstall install.xml");
    EXPECT_EQ(uninstall.exitCode, 0u);
    EXPECT_EQ(uninstall.output, "Deleting a.txt\nDeleting b.txt\nDone: 2 actions.\n");
    EXPECT_EQ(uninstall.error, "");
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(TemzTest, TellsARunInLinesOfJson) {
    ship(L"a.txt", "a");
    writeScript(file("a.txt"));
    const std::string call = R"("event":"call","group":"file","name":"CopyFileW")";

    for (const wchar_t* options : {L"--json", L"--json --verbose"}) {
        const ProgramRun run = temz(L"install install.xml " + std::wstring(options));

        EXPECT_EQ(run.exitCode, 0u);
        EXPECT_THAT(run.output, StartsWith(R"({"event":"start","schema":"temz-run-1",)"));
        EXPECT_THAT(run.output, HasSubstr(R"({"event":"action-end","number":1,"fate":"done",)"));
        EXPECT_EQ(run.output.find(call) != std::string::npos, options != std::wstring(L"--json"));
        EXPECT_THAT(run.output, HasSubstr("\n{\"event\":\"end\",\"exitCode\":0,"));
        EXPECT_EQ(run.error, "");
    }
}

TEST_F(TemzTest, LetsScriptsSeeTheTrueVersionOfWindows) {
    REQUIRES_WINE("reports another version of Windows");
    const ReportedWindows windows(L"temz.exe", L"win10");
    ship(L"a.txt", "a");
    writeScript("<Condition Expression='OS_MAJOR_VERSION E 10'>" + file("a.txt") + "</Condition>");

    EXPECT_EQ(temz(L"install install.xml").exitCode, 0u);

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
}

TEST_F(TemzTest, HasMadeItselfSafeBeforeTheScriptRuns) {
    writeAction(testProgramDirectory() + L"\\temz_start_probe.dll");

    EXPECT_EQ(temz(L"install install.xml").error,
              "temz: Custom action tellStart failed: error mode 32771, an apartment. [error 1]\n" +
                  failedAfter("0 of 1 action (1603)"));
}

TEST_F(TemzTest, LooksForLibrariesWithoutAPathInTheSystemDirectoryOnly) {
    const std::wstring name = L"temz_start_probe.dll";
    std::filesystem::copy_file(testProgramDirectory() + L"\\" + name, setup(name));
    writeAction(name);

    EXPECT_EQ(
        temz(L"install install.xml").error,
        "temz: Failed to load library(temz_start_probe.dll): the library, or one that it needs, "
        "isn't there. [error 126]\n"
        "      Give its whole path in the script, and link what it needs statically.\n" +
            failedAfter("0 of 1 action (1603)"));
}

TEST_F(TemzTest, TellsThatARestartIsNeeded) {
    REQUIRES_WINE("leaves a replacement to the next restart, which takes elevation");
    const TakesBackReplacements replacements;
    ship(L"a.txt", "new");
    writeScript(file("a.txt", "SupportDelayInstall='yes'"));
    folder.write(L"app\\a.txt", "old");
    ProgramRun run;
    {
        const LockedFile inUse(app(L"a.txt"));
        run = temz(L"install install.xml");
    }

    EXPECT_EQ(run.exitCode, 3010u);
    EXPECT_EQ(run.output, "Copying a.txt\nDone: 1 action." + waiting() + "\n");
    EXPECT_EQ(run.error, "");
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "old"), Pair(L"a.txt!@#$%", "new")));
}

TEST_F(TemzTest, FailsEvenIfARestartIsNeeded) {
    REQUIRES_WINE("leaves a replacement to the next restart, which takes elevation");
    const TakesBackReplacements replacements;
    ship(L"a.txt", "new");
    writeScript(file("a.txt", "SupportDelayInstall='yes'") + file("lacking.txt"));
    folder.write(L"app\\a.txt", "old");
    const LockedFile inUse(app(L"a.txt"));

    const ProgramRun run = temz(L"install install.xml");

    EXPECT_EQ(run.exitCode, 3017u);
    EXPECT_EQ(run.output, "Copying a.txt\nCopying lacking.txt\n");
    EXPECT_EQ(run.error, missing("lacking.txt") + failedAfter("1 of 2 actions (3017)", waiting()));
}

TEST_F(TemzTest, NeedsARestartEvenIfAFailureIsIgnored) {
    REQUIRES_WINE("leaves a replacement to the next restart, which takes elevation");
    const TakesBackReplacements replacements;
    ship(L"a.txt", "new");
    writeScript(file("a.txt", "SupportDelayInstall='yes'") + file("lacking.txt"));
    folder.write(L"app\\a.txt", "old");
    const LockedFile inUse(app(L"a.txt"));

    EXPECT_EQ(temz(L"install install.xml --on-error=ignore").exitCode, 3017u);
    EXPECT_EQ(temz(L"install install.xml --on-error=ignore --accept-ignored").exitCode, 3010u);
}

TEST_F(TemzTest, EndsAtTheFirstFailureWhereNobodyCanBeAsked) {
    shipHalf();
    for (const wchar_t* option : {L"", L" --on-error=abort"}) {
        const ProgramRun run = temz(L"install install.xml" + std::wstring(option));

        EXPECT_EQ(run.exitCode, 1603u);
        EXPECT_EQ(run.output, "Copying a.txt\nCopying lacking.txt\n");
        EXPECT_EQ(run.error, missing("lacking.txt") + failedAfter("1 of 3 actions (1603)"));
        EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
    }
}

TEST_F(TemzTest, GoesOnWhenToldToIgnoreFailuresAndTellsWhatIsLeftOut) {
    shipHalf();
    const std::string copied = "Copying a.txt\nCopying lacking.txt\nCopying a.txt\n";
    const std::string leftOut = " Left out: Copying lacking.txt (the file to copy isn't there).";

    const ProgramRun failed = temz(L"install install.xml --on-error ignore");
    EXPECT_EQ(failed.exitCode, 1603u);
    EXPECT_EQ(failed.output, copied);
    EXPECT_EQ(failed.error, missing("lacking.txt") + failedAfter("2 of 3 actions (1603)", leftOut));

    const ProgramRun accepted = temz(L"install install.xml --on-error=ignore --accept-ignored");
    EXPECT_EQ(accepted.exitCode, 0u);
    EXPECT_EQ(accepted.output, copied + "Done: 2 actions." + leftOut + "\n");
    EXPECT_EQ(accepted.error, missing("lacking.txt"));
}

TEST_F(TemzTest, TriesAsOftenAgainAsItIsTold) {
    writeScript(file("lacking.txt") + file("other.txt"));

    const ProgramRun run = temz(L"--on-error=retry:2,0 install install.xml");

    const std::string failed = missing("lacking.txt");
    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, "Copying lacking.txt\n");
    EXPECT_EQ(run.error, failed + failed + failed + failedAfter("0 of 2 actions (1603)"));
}

TEST_F(TemzTest, GoesOnWhenARetrySucceeds) {
    ship(L"a.txt", "new");
    ship(L"b.txt", "b");
    writeScript(file("a.txt") + file("b.txt"));
    folder.write(L"app\\a.txt", "old");
    auto inUse = std::make_unique<LockedFile>(app(L"a.txt"));
    Pipe errors;
    const HandlePtr process = startProgram(
        L"\"" + setup(L"temz.exe") + L"\" install install.xml --on-error=retry:999999999,0",
        folder.path(L"setup"), {nullptr, nullptr, errors.writer.get()});
    errors.writer.reset();

    // The file is free from the first failure on.
    char text[4096];
    DWORD size = 0;
    ASSERT_TRUE(ReadFile(errors.reader.get(), text, sizeof text, &size, nullptr));
    inUse.reset();
    EXPECT_THAT(withoutReturns({text, size}), StartsWith(held("Copying a.txt") + places("a.txt")));
    while (ReadFile(errors.reader.get(), text, sizeof text, &size, nullptr)) {
    }

    EXPECT_EQ(waitForProgram(process.get()), 0u);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "new"), Pair(L"b.txt", "b")));
}

TEST_F(TemzTest, TellsWhichFileCouldNotBeDeleted) {
    writeScript(file("a.txt"));
    folder.write(L"app\\a.txt", "old");
    const LockedFile inUse(app(L"a.txt"));

    const ProgramRun run = temz(L"uninstall install.xml");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, "Deleting a.txt\n");
    EXPECT_EQ(run.error, held("Deleting a.txt") + "      at " + utf8(app(L"a.txt")) + "\n" +
                             closeIt + failedAfter("0 of 1 action (1603)"));
}

TEST_F(TemzTest, SurvivesTheFailureOfWhatIsNotVitalButTellsOfIt) {
    writeScript(file("lacking.txt", "Vital='no'"));

    const ProgramRun run = temz(L"install install.xml");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output,
              "Copying lacking.txt\nDone: 0 actions. Left out: Copying lacking.txt (the file to "
              "copy isn't there).\n");
    EXPECT_EQ(run.error, missing("lacking.txt"));
}

TEST_F(TemzTest, FailsWhateverItIsToldWhenTheScriptIsWrong) {
    ship(L"a.txt", "a");
    writeScript(file("lacking.txt") + file("a.txt") + "<Feature/>");

    const ProgramRun run = temz(L"install install.xml --no-check --on-error=ignore");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, "Copying lacking.txt\nCopying a.txt\n");
    EXPECT_EQ(run.error,
              missing("lacking.txt") +
                  "temz: (Component,All) has a illegal child element(Feature).\n" +
                  failedAfter("1 action (1603)",
                              " Left out: Copying lacking.txt (the file to copy isn't there)."));
}

TEST_F(TemzTest, FailsWithoutAnInstallSequence) {
    ship(L"install.xml", "<Script><Product/></Script>");

    const ProgramRun run = temz(L"install install.xml --no-check");

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.error,
              "temz: Failed to create install element.\n" + failedAfter("0 actions (1603)"));
}

TEST_F(TemzTest, DoesNothingWithoutComplaintWhenThereIsNothingToDo) {
    writeScript("");

    const ProgramRun run = temz(L"install install.xml");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output, "Done: 0 actions.\n");
    EXPECT_EQ(run.error, "");
}

TEST_F(TemzTest, WritesTheCautionsOfTheMode) {
    writeScript(
        "<Caution Title='Welcome' On='install'/><Caution Title='Farewell' On='uninstall'/>"
        "<Caution Title='Read me'/>");

    EXPECT_EQ(temz(L"install install.xml").output,
              "Caution: Welcome\nCaution: Read me\nDone: 2 actions.\n");
    EXPECT_EQ(temz(L"uninstall install.xml").output,
              "Caution: Farewell\nCaution: Read me\nDone: 2 actions.\n");
}

TEST_F(TemzTest, FindsFilesBesideItselfWhereverTheScriptIs) {
    ship(L"a.txt", "a");
    writeScript(file("a.txt"), L"my scripts\\install it.xml");

    EXPECT_EQ(temz(L"install \"my scripts\\install it.xml\"").exitCode, 0u);
    EXPECT_EQ(temz(L"install \"" + setup(L"my scripts\\install it.xml") + L"\"").exitCode, 0u);

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
}

TEST_F(TemzTest, RunsWithoutAnyStreams) {
    ship(L"a.txt", "a");
    writeScript(file("a.txt") + file("lacking.txt"));

    const HandlePtr process = startProgram(L"\"" + setup(L"temz.exe") + L"\" install install.xml",
                                           folder.path(L"setup"), {});

    EXPECT_EQ(waitForProgram(process.get()), 1603u);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
}

TEST_F(TemzTest, WritesUtf8) {
    REQUIRES_CODE_PAGE(1252);
    const std::wstring script = L"Einf\u00FChrung.xml";
    writeScript("<Caution Title='Caf\u00E9'/>" + file("Pr\u00E9nom.txt"), script);

    const ProgramRun run = temz(L"install " + script);

    EXPECT_EQ(run.exitCode, 1603u);
    EXPECT_EQ(run.output, "Caution: Caf\u00E9\nCopying Pr\u00E9nom.txt\n");
    EXPECT_EQ(run.error, missing("Pr\u00E9nom.txt") + failedAfter("1 of 2 actions (1603)"));
}

TEST_F(TemzTest, ReadsUtf8) {
    REQUIRES_MANIFEST_CODE_PAGE();
    const std::wstring name = L"\u00C5ngstr\u00F6m \u5B89\u88C5 \u0634.txt";
    ship(name, "a");
    const std::string content = file(utf8(name));
    for (const std::string opening :
         {"", "<?xml version='1.0' encoding='UTF-8'?>", "\xEF\xBB\xBF"}) {
        SCOPED_TRACE(opening);
        writeScript(content);
        ship(L"install.xml", opening + readFile(setup(L"install.xml")));

        const ProgramRun run = temz(L"install install.xml");

        EXPECT_EQ(run.exitCode, 0u);
        EXPECT_EQ(run.error, "");
        EXPECT_THAT(installedFiles(), ElementsAre(Pair(name, "a")));
        EXPECT_EQ(temz(L"uninstall install.xml").exitCode, 0u);
        EXPECT_THAT(installedFiles(), IsEmpty());
    }
}

TEST_F(TemzTest, WarnsOfAScriptThatIsNotUtf8) {
    REQUIRES_MANIFEST_CODE_PAGE();
    ship(L"a.txt", "a");
    writeScript("<!-- Pr\xE9nom -->" + file("a.txt"));

    const ProgramRun run = temz(L"install install.xml");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.error,
              "temz: install.xml may be misread: It isn't UTF-8, which is the active code page.\n");
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
}

TEST_F(TemzTest, LoadsAScriptFromAFolderOfAnyAlphabet) {
    REQUIRES_MANIFEST_CODE_PAGE();
    const std::wstring script = L"\u5F20\u4F1F\\\u0634.xml";
    ship(L"a.txt", "a");
    writeScript(file("a.txt"), script);

    EXPECT_EQ(temz(L"install " + script).exitCode, 0u);
    EXPECT_EQ(temz(L"install \"" + setup(script) + L"\"").exitCode, 0u);

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(L"a.txt", "a")));
}

TEST_F(TemzTest, TellsWhyAScriptCannotBeOpened) {
    const std::wstring held = folder.write(L"setup\\held.xml", "<Script/>");
    const LockedFile inUse(held);
    const struct {
        std::wstring script;
        std::string reason;
    } scripts[] = {
        {L"lacking.xml", systemError(ERROR_FILE_NOT_FOUND)},
        {L"lacking\\install.xml", systemError(ERROR_PATH_NOT_FOUND)},
        {folder.path(), systemError(ERROR_ACCESS_DENIED)},
        {held, systemError(ERROR_SHARING_VIOLATION)},
        {L"\u5B89\u88C5.xml", systemError(ERROR_FILE_NOT_FOUND)},
    };
    for (const auto& [script, reason] : scripts) {
        const ProgramRun run = temz(L"install " + script);

        EXPECT_EQ(run.exitCode, 1619u);
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.error, "temz: " + utf8(script) + " can't be opened: " + reason +
                                 "\nNothing was done (1619).\n");
    }
}

TEST_F(TemzTest, OpensAScriptThatIsBeingWritten) {
    writeScript("");
    const HandlePtr writer(CreateFileW(setup(L"install.xml").c_str(), GENERIC_WRITE,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                       0, nullptr));

    EXPECT_EQ(temz(L"install install.xml").exitCode, 0u);
}

TEST_F(TemzTest, TellsWhyAScriptCannotBeLoaded) {
    const std::string noXml = "It is no XML that the engine can read.";
    const struct {
        const char* content;
        std::string reason;
    } scripts[] = {
        {"", noXml},
        {"<Script><Product></Script>", noXml},
        {"<!-- nothing -->", "There is no root element."},
        {"<Script><product/></Script>", "There is no Product element."},
    };
    for (const auto& [content, reason] : scripts) {
        ship(L"install.xml", content);

        const ProgramRun run = temz(L"install install.xml --no-check");

        EXPECT_EQ(run.exitCode, 1620u) << content;
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.error,
                  "temz: install.xml can't be loaded: " + reason + "\nNothing was done (1620).\n");
    }
}

// A script that can be installed and then never be removed would be worse than none.
TEST_F(TemzTest, DoesNotStartWhatWouldEndHalfWayInAnyMode) {
    ship(L"a.txt", "a");
    writeScript(file("a.txt") +
                "<ServiceControll On='uninstall' Name='s' Action='stop' Wait='no'/>");
    for (const wchar_t* mode : {L"install", L"upgrade", L"uninstall"}) {
        const ProgramRun run = temz(std::wstring(mode) + L" install.xml");

        EXPECT_EQ(run.exitCode, 1620u);
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.error,
                    testing::HasSubstr(": error TZ203: `ServiceControll` is no element"));
        EXPECT_THAT(run.error,
                    testing::HasSubstr("install.xml isn't started: a run would surely end "
                                       "half-way."));
        EXPECT_THAT(installedFiles(), testing::IsEmpty());
    }
    EXPECT_EQ(temz(L"install install.xml --no-check").exitCode, 1603u);
}

TEST_F(TemzTest, CheckTellsFaultsAndRunsNothing) {
    ship(L"a.txt", "a");
    writeScript("<Fille Name='a.txt' Source='a.txt'/>");

    const ProgramRun faulty = temz(L"check install.xml");
    EXPECT_EQ(faulty.exitCode, 1u);
    EXPECT_THAT(faulty.output, testing::StartsWith("install.xml:"));
    EXPECT_THAT(faulty.output,
                testing::HasSubstr(": error TZ203: `Fille` is no element that may "
                                   "stand in `Component`.\n       help: did you mean "
                                   "`File`?\n"));
    EXPECT_THAT(faulty.output, testing::EndsWith("Nothing was run.\n"));
    EXPECT_EQ(temz(L"check install.xml --ignore TZ203").exitCode, 0u);

    writeScript(file("a.txt"));
    const ProgramRun fine = temz(L"check install.xml");
    EXPECT_EQ(fine.exitCode, 0u) << fine.output;
    EXPECT_THAT(installedFiles(), testing::IsEmpty());
}

TEST_F(TemzTest, CheckSaysWhenItCannotCheck) {
    writeScript("");
    for (const wchar_t* arguments : {L"missing.xml", L"install.xml --previous missing.xml",
                                     L"install.xml --sarif no\\file.sarif"}) {
        const ProgramRun run = temz(std::wstring(L"check ") + arguments);
        EXPECT_EQ(run.exitCode, 2u) << utf8(arguments);
        EXPECT_THAT(run.error, testing::HasSubstr("can't be ")) << utf8(arguments);
    }
}

TEST_F(TemzTest, RefusesAWrongCommandLine) {
    ship(L"a.txt", "a");
    writeScript(file("a.txt"));
    const struct {
        std::wstring arguments;
        std::string problem;
    } commandLines[] = {
        {L"", "The command is missing."},
        {L"remove install.xml", "remove is no command."},
        {L"install", "The SCRIPT is missing."},
        {L"install install.xml more", "more is one argument too many."},
        {L"install install.xml --force", "--force is no option."},
        {L"install install.xml --on-error=Abort",
         "--on-error can't be \"Abort\", only abort|ignore|retry:N[,SECONDS]."},
    };
    for (const auto& [arguments, problem] : commandLines) {
        const ProgramRun run = temz(arguments);

        EXPECT_EQ(run.exitCode, 1639u) << problem;
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.error, "temz: " + problem + " See temz help.\n");
    }
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(TemzTest, ExplainsItselfWhenAsked) {
    ship(L"a.txt", "a");
    writeScript(file("a.txt"));
    for (const wchar_t* arguments :
         {L"-h", L"--help", L"/?", L"help", L"install install.xml --help"}) {
        const ProgramRun run = temz(arguments);

        EXPECT_EQ(run.exitCode, 0u);
        EXPECT_EQ(run.output, utf8(usage()));
        EXPECT_EQ(run.error, "");
    }
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(TemzTest, TellsItsVersion) {
    EXPECT_EQ(temz(L"--version").output, utf8(L"temz " + programVersion() + L"\n"));
}

TEST_F(TemzTest, ExplainsCodesAndMessages) {
    const struct {
        const wchar_t* arguments;
        std::string answer;
    } questions[] = {
        {L"explain 1618",
         "Another run goes on on this machine. Nothing was done.\n"
         "Run the command again when that has ended, or let --wait=SECONDS wait for it.\n"},
        {L"explain 5", "Windows: " + utf8(systemMessage(ERROR_ACCESS_DENIED)) +
                           "\nRun it from an administrator's prompt.\n"},
        {L"explain \"temz: There is no root element.\"",
         "The file holds no element.\nName an install script.\n"},
    };
    for (const auto& [arguments, answer] : questions) {
        const ProgramRun run = temz(arguments);
        EXPECT_EQ(run.exitCode, 0u);
        EXPECT_EQ(run.output, answer);
    }
    EXPECT_EQ(temz(L"explain nonsense").exitCode, 1639u);
}

// The README's rows are those of `temz help codes`, each with the meaning that stands there.
TEST_F(TemzTest, EndsWithTheCodesThatTheReadmeLists) {
    const std::string output = temz(L"help codes").output;
    const std::string readme = readFile(testProgramDirectory() + L"\\README.md");
    std::string rows;
    for (const std::string& line : linesOf(output))
        if (line.find_first_not_of(' ') < codeEnd)
            rows +=
                "| " +
                line.substr(line.find_first_not_of(' '), codeEnd - line.find_first_not_of(' ')) +
                " | " + line.substr(codeEnd + 2) + " |\n";
    EXPECT_NE(readme.find("| Code | Meaning |\n|---|---|\n" + rows), std::string::npos) << rows;
}

}  // namespace
