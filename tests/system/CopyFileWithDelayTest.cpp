#include <gmock/gmock.h>

#include <string>

#include "support/FakeFileCalls.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/Requirements.h"
#include "support/TestFolder.h"
#include "support/Text.h"
#include "system/FileOperations.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CopyFileWithDelayTest : public testing::Test {
protected:
    int32_t copyWithDelay() { return copyFileWithDelay(source.c_str(), target.c_str(), true); }
    int32_t copyAtOnce() { return copyFileWithDelay(source.c_str(), target.c_str(), false); }

    const TestFolder folder;
    const LogFile log;
    const std::wstring source = folder.write(L"source.dll", "new");
    const std::wstring target = folder.write(L"target.dll", "old");
    const std::wstring staging = target + L"!@#$%";
};

TEST_F(CopyFileWithDelayTest, ReplacesTheTarget) {
    for (const bool delayAllowed : {false, true}) {
        writeFile(target, "old");

        EXPECT_EQ(copyFileWithDelay(source.c_str(), target.c_str(), delayAllowed), 0);

        EXPECT_EQ(readFile(target), "new");
        EXPECT_EQ(readFile(source), "new");
        EXPECT_FALSE(exists(staging));
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CopyFileWithDelayTest, MakesATargetThatWasNotThere) {
    deleteFile(target.c_str());

    EXPECT_EQ(copyAtOnce(), 0);

    EXPECT_EQ(readFile(target), "new");
}

TEST_F(CopyFileWithDelayTest, CopiesOnceWhenThatSucceeds) {
    const FakeCopy copy([&](std::wstring from, std::wstring to, BOOL failIfExists) {
        EXPECT_EQ(from, source);
        EXPECT_EQ(to, target);
        EXPECT_FALSE(failIfExists);
        return answer(ERROR_SUCCESS);
    });

    EXPECT_EQ(copyWithDelay(), 0);

    EXPECT_EQ(copy.count, 1);
}

TEST_F(CopyFileWithDelayTest, ClearsALeftoverStagingFile) {
    for (const DWORD attributes : {FILE_ATTRIBUTE_NORMAL, FILE_ATTRIBUTE_READONLY})
        for (const bool delayAllowed : {false, true}) {
            writeFile(staging, "stale");
            SetFileAttributesW(staging.c_str(), attributes);

            EXPECT_EQ(copyFileWithDelay(source.c_str(), target.c_str(), delayAllowed), 0);

            EXPECT_FALSE(exists(staging));
            EXPECT_EQ(readFile(target), "new");
        }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CopyFileWithDelayTest, ClearsTheStagingFileBeforeItCopies) {
    writeFile(staging, "stale");
    const FakeCopy copy([&](auto...) {
        EXPECT_FALSE(exists(staging));
        return answer(ERROR_DISK_FULL);
    });

    EXPECT_EQ(copyAtOnce(), ERROR_DISK_FULL);
}

TEST_F(CopyFileWithDelayTest, StuckStagingFileLeavesSourceAndTargetUntouched) {
    writeFile(staging, "stale");
    const LockedFile held(staging);
    const FakeCopy copy([](auto...) { return answer(ERROR_SUCCESS); });

    EXPECT_EQ(copyAtOnce(), -1);
    EXPECT_EQ(copyWithDelay(), -1);

    EXPECT_EQ(copy.count, 0);
    EXPECT_EQ(readFile(source), "new");
    EXPECT_EQ(readFile(target), "old");
    const std::string line = "[ERROR] Failed to delete File " + narrow(staging);
    EXPECT_THAT(log.lines(), ElementsAre(line, line));
}

TEST_F(CopyFileWithDelayTest, HeldTargetGivesTheErrorWhenNoDelayIsAllowed) {
    const LockedFile held(target);
    const FakeMove move([](auto...) { return answer(ERROR_SUCCESS); });

    EXPECT_EQ(copyAtOnce(), ERROR_SHARING_VIOLATION);

    EXPECT_FALSE(exists(staging));
    EXPECT_EQ(move.count, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CopyFileWithDelayTest, HeldTargetIsReplacedAtTheNextRestart) {
    const FakeMove move([&](std::wstring from, std::wstring to, DWORD flags) {
        EXPECT_EQ(from, staging);
        EXPECT_EQ(to, target);
        EXPECT_EQ(flags, 5u);
        return answer(ERROR_SUCCESS);
    });
    {
        const LockedFile held(target);
        EXPECT_EQ(copyWithDelay(), -2);
    }
    EXPECT_EQ(move.count, 1);
    EXPECT_EQ(readFile(staging), "new");
    EXPECT_EQ(readFile(target), "old");
    EXPECT_THAT(log.lines(),
                ElementsAre("[WARNNING] Succeed to MoveFileEx, file=" + narrow(source)));
}

TEST_F(CopyFileWithDelayTest, ReadOnlyTargetIsDeniedOrLeftToTheNextRestart) {
    REQUIRES_ORDINARY_USER();
    SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_READONLY);
    const FakeMove move([](auto...) { return answer(ERROR_SUCCESS); });

    EXPECT_EQ(copyAtOnce(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(copyWithDelay(), -2);

    EXPECT_EQ(readFile(target), "old");
    EXPECT_EQ(readFile(staging), "new");
}

TEST_F(CopyFileWithDelayTest, AnyFailureOfTheCopyIsAReasonForTheDelay) {
    for (const DWORD error : {ERROR_SUCCESS, ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED,
                              ERROR_SHARING_VIOLATION, ERROR_DISK_FULL}) {
        const FakeMove move([](auto...) { return answer(ERROR_SUCCESS); });
        const FakeCopy copy([&](auto from, auto to, BOOL failIfExists) {
            if (to != target)
                return copy.real(from, to, failIfExists);
            SetLastError(error);
            return FALSE;
        });

        EXPECT_EQ(copyWithDelay(), -2) << error;

        EXPECT_EQ(readFile(staging), "new") << error;
    }
}

TEST_F(CopyFileWithDelayTest, MissingSourceGivesTheErrorAndRegistersNothing) {
    deleteFile(source.c_str());
    const FakeCopy copy([&](auto... arguments) { return copy.real(arguments...); });
    const FakeMove move([](auto...) { return answer(ERROR_SUCCESS); });

    EXPECT_EQ(copyWithDelay(), ERROR_FILE_NOT_FOUND);

    EXPECT_EQ(copy.count, 2);
    EXPECT_EQ(move.count, 0);
    EXPECT_EQ(readFile(target), "old");
    EXPECT_FALSE(exists(staging));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CopyFileWithDelayTest, FailedStagingGivesItsOwnError) {
    const FakeCopy copy([&](auto, auto to, auto) {
        return answer(to == staging ? ERROR_DISK_FULL : ERROR_SHARING_VIOLATION);
    });

    EXPECT_EQ(copyWithDelay(), ERROR_DISK_FULL);

    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CopyFileWithDelayTest, FailedCopyWithoutAnErrorIsStillAFailure) {
    const FakeCopy copy([](auto...) { return failWithoutError(); });

    EXPECT_EQ(copyAtOnce(), -1);
    EXPECT_EQ(copyWithDelay(), -1);

    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CopyFileWithDelayTest, TellsThatTheRegistrationWasRefused) {
    const LockedFile held(target);
    const FakeMove move([](auto...) { return answer(ERROR_ACCESS_DENIED); });

    EXPECT_EQ(copyWithDelay(), ERROR_ACCESS_DENIED);

    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] MoveFileEx error code=5"));
}

TEST_F(CopyFileWithDelayTest, RefusedRegistrationWithoutAnErrorIsStillAFailure) {
    const LockedFile held(target);
    const FakeMove move([](auto...) { return failWithoutError(); });

    EXPECT_EQ(copyWithDelay(), -1);

    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] MoveFileEx error code=0"));
}

TEST_F(CopyFileWithDelayTest, StagingFileOfARefusedRegistrationStaysUntilTheNextCall) {
    {
        const LockedFile held(target);
        const FakeMove move([](auto...) { return answer(ERROR_ACCESS_DENIED); });
        copyWithDelay();
    }
    EXPECT_EQ(readFile(staging), "new");
    EXPECT_EQ(readFile(target), "old");

    EXPECT_EQ(copyAtOnce(), 0);

    EXPECT_FALSE(exists(staging));
}

}  // namespace
