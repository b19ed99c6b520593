// What becomes of a run, and of its log, when the log can't be written.

#include <gmock/gmock.h>
#include <windows.h>

#include <functional>
#include <memory>
#include <optional>

#include "support/FolderPutAside.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/Requirements.h"
#include "support/ScriptTest.h"
#include "support/SmallDisk.h"
#include "support/Text.h"

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::EndsWith;

namespace {

/// A host that does something before the n-th action.
class MeddlingObserver final : public IterfaceObserver {
public:
    MeddlingObserver(int action, std::function<void()> meddle)
        : action(action), meddle(std::move(meddle)) {}

    void update(IterfaceProduct*) override {
        if (++actions == action)
            meddle();
    }
    ObserverAnswer askOnError(ErrorInfo*) override { return ANSWER_ABORT; }

private:
    int actions = 0;
    const int action;
    const std::function<void()> meddle;
};

/// A product of five files, whose uninstall leaves a line for each.
class LogTroubleTest : public ScriptTest {
protected:
    static constexpr int fileCount = 5;

    LogTroubleTest() {
        std::string files;
        for (int i = 1; i <= fileCount; ++i) {
            const std::wstring name = L"app\\" + std::to_wstring(i);
            lines.push_back("[WARNNING] delete file " + narrow(folder.write(name, "")));
            files += "<File Name='" + std::to_string(i) + "' Source='none'/>";
        }
        EXPECT_TRUE(loadProduct("<Directory Path='" + narrow(folder.path(L"app")) +
                                "'><Component Id='C'>" + files +
                                "</Component></Directory><InstallExecuteSequence><Feature>"
                                "<ComponentRef Id='C'/></Feature></InstallExecuteSequence>"));
    }

    /// Makes the run, as if nothing were the matter, in which something happens before an action.
    void runWith(int action, const std::function<void()>& meddle) {
        MeddlingObserver meddler(action, meddle);
        context.runMode = RUNMODE_UNINSTALL;
        context.getProduct()->observer = &meddler;
        EXPECT_EQ(context.getProduct()->run(&context), 0);
        context.getProduct()->observer = nullptr;
        EXPECT_TRUE(std::filesystem::is_empty(folder.path(L"app")));
    }

    /// The lines of the run but for those of some of its actions.
    std::vector<std::string> linesFrom(int first) const {
        return {lines.begin() + first - 1, lines.end()};
    }
    std::vector<std::string> linesUpTo(int last) const {
        return {lines.begin(), lines.begin() + last};
    }

    std::vector<std::string> lines;
};

TEST_F(LogTroubleTest, LinesAreLostOnlyWhileAnotherProgramHoldsTheFile) {
    const LogFile log;
    writeFile(logPath, "");
    std::optional<LockedFile> held(logPath);

    runWith(3, [&held] { held.reset(); });

    EXPECT_THAT(log.lines(), ElementsAreArray(linesFrom(3)));
}

TEST_F(LogTroubleTest, LinesAreLostFromWhenTheFileIsReadOnly) {
    REQUIRES_ORDINARY_USER();
    const LogFile log;

    runWith(3, [] { SetFileAttributesW(logPath, FILE_ATTRIBUTE_READONLY); });

    SetFileAttributesW(logPath, FILE_ATTRIBUTE_NORMAL);
    EXPECT_THAT(log.lines(), ElementsAreArray(linesUpTo(2)));
}

TEST_F(LogTroubleTest, LinesAreLostUntilItsDirectoryIsThere) {
    const FolderPutAside none(logFolder);
    std::unique_ptr<LogFile> log;

    runWith(3, [&log] { log = std::make_unique<LogFile>(); });

    EXPECT_THAT(log->lines(), ElementsAreArray(linesFrom(3)));
}

TEST_F(LogTroubleTest, NoRunWaitsForAProgramThatLocksThePlaceWhereLinesTakeTurns) {
    const LogFile log;
    writeFile(logPath, "");
    const HANDLE other = CreateFileW(logPath, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                     nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_TRUE(LockFile(other, 0, MAXLONG, 1, 0));

    runWith(3, [other] { CloseHandle(other); });

    EXPECT_THAT(log.lines(), ElementsAreArray(lines));
}

/// A log whose disk is full.
class FullLogDiskTest : public LogTroubleTest {
protected:
    void SetUp() override {
        REQUIRES_SMALL_DISK();
        log.emplace();
        disk.emplace(logFolder, uint64_t{64} * 1024);
    }
    void TearDown() override { disk.reset(); }

    std::optional<LogFile> log;
    std::optional<SmallDisk> disk;
};

TEST_F(FullLogDiskTest, LosesLinesUntilThereIsRoomAgain) {
    disk->fill();

    runWith(3, [this] { disk->makeRoom(); });

    EXPECT_THAT(log->lines(), ElementsAreArray(linesFrom(3)));
}

// The file has room for 100 bytes more in its last block, and the disk for no further block. A line
// takes some 80.
TEST_F(FullLogDiskTest, CutsTheLineAtWhichItBecomesFullAndGoesOnBehindItWhenThereIsRoom) {
    const std::string before(4096 - 100 - 2, '.');
    writeFile(logPath, before + "\r\n");
    disk->fill();

    runWith(4, [this] {
        EXPECT_EQ(readFile(logPath).size(), 4096u);
        disk->makeRoom();
    });

    EXPECT_THAT(log->lines(),
                ElementsAre(before, lines[0], EndsWith(lines[3].substr(10)), lines[4]));
}

}  // namespace
