// What becomes of a run when the disk that it installs to is full.

#include <gmock/gmock.h>
#include <windows.h>

#include <map>
#include <optional>

#include "support/PayloadFolder.h"
#include "support/Restart.h"
#include "support/ScriptTest.h"
#include "support/ShellLinkFile.h"
#include "support/SmallDisk.h"
#include "support/Text.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

namespace {

constexpr size_t block = 4096;

/// A product of three files whose second has no room. What lies on the disk is told by its sizes.
class FullDiskTest : public ScriptTest {
protected:
    void SetUp() override {
        REQUIRES_SMALL_DISK();
        disk.emplace(app, uint64_t{16} * block);
    }
    void TearDown() override { disk.reset(); }

    std::string file(const std::wstring& name, size_t size, const std::string& attributes) const {
        return "<File Name='" + narrow(name) + "' Source='" +
               narrow(payload.write(name, std::string(size, 'n'))) + "' " + attributes + "/>";
    }

    bool loadComponent(const std::string& elements) {
        return loadProduct("<Directory Path='" + narrow(app) + "'><Component Id='C'>" + elements +
                           "</Component></Directory><InstallExecuteSequence><Feature>"
                           "<ComponentRef Id='C'/></Feature></InstallExecuteSequence>");
    }
    bool loadFiles(const std::string& attributes = {}) {
        return loadComponent(file(L"a", block, {}) + file(L"b", 3 * block, attributes) +
                             file(L"c", block, {}));
    }

    /// The files there with their sizes; without what fills the disk.
    std::map<std::wstring, size_t> sizes() const {
        std::map<std::wstring, size_t> all;
        for (const auto& entry : std::filesystem::directory_iterator(app))
            all[entry.path().filename().wstring()] = entry.file_size();
        all.erase(L"filler");
        return all;
    }

    void expectHealed() {
        disk->makeRoom();
        EXPECT_EQ(run(), 0);
        EXPECT_THAT(sizes(),
                    ElementsAre(Pair(L"a", block), Pair(L"b", 3 * block), Pair(L"c", block)));
        EXPECT_EQ(readFile(app + L"\\b"), std::string(3 * block, 'n'));
        EXPECT_FALSE(context.getProduct()->rebootRequired);
    }

    const PayloadFolder payload;
    const std::wstring app = folder.makeDirectory(L"app");
    std::optional<SmallDisk> disk;
};

TEST_F(FullDiskTest, EndsTheRunWithTheSystemsCodeAndLeavesAPartOfTheFile) {
    ASSERT_TRUE(loadFiles());
    disk->fill(2 * block);

    EXPECT_EQ(run(), ERROR_DISK_FULL);

    const ErrorInfo& error = context.getProduct()->errorInfo;
    EXPECT_EQ(error.code, ACTION_COPY_FILE);
    EXPECT_STREQ(error.text1, L"b");
    EXPECT_EQ(error.systemError, DWORD{ERROR_DISK_FULL});
    EXPECT_EQ(error.message, systemMessage(ERROR_DISK_FULL));
    EXPECT_THAT(sizes(), ElementsAre(Pair(L"a", block), Pair(L"b", block)));
    expectHealed();
}

TEST_F(FullDiskTest, CostsTheFileThatWasToBeReplaced) {
    ASSERT_TRUE(loadFiles());
    writeFile(app + L"\\b", "old");
    disk->fill(2 * block);

    EXPECT_EQ(run(RUNMODE_UPGRADE), ERROR_DISK_FULL);

    EXPECT_THAT(sizes(), ElementsAre(Pair(L"a", block), Pair(L"b", 2 * block)));
    EXPECT_THAT(readFile(app + L"\\b"), StartsWith("nnn"));
    expectHealed();
}

TEST_F(FullDiskTest, LeavesNothingToTheRestart) {
    ASSERT_TRUE(loadFiles("SupportDelayInstall='yes'"));
    disk->fill(2 * block);

    EXPECT_EQ(run(), ERROR_DISK_FULL);

    EXPECT_FALSE(context.getProduct()->rebootRequired);
    EXPECT_FALSE(pendingReplacements());
    EXPECT_THAT(sizes(), ElementsAre(Pair(L"a", block), Pair(L"b", block), Pair(L"b!@#$%", 0)));
    expectHealed();
}

TEST_F(FullDiskTest, HasNoRoomForTheFilesBehindOneThatTheScriptCanDoWithout) {
    ASSERT_TRUE(loadFiles("Vital='no'"));
    disk->fill(2 * block);

    EXPECT_EQ(run(), ERROR_DISK_FULL);

    EXPECT_STREQ(context.getProduct()->errorInfo.text1, L"c");
    EXPECT_THAT(sizes(), ElementsAre(Pair(L"a", block), Pair(L"b", block), Pair(L"c", 0)));
    expectHealed();
}

TEST_F(FullDiskTest, GoesUnnoticedByAShortcut) {
    ASSERT_TRUE(loadComponent("<Shortcut Name='link' Description='' Target='C:\\a.exe'/>"));
    disk->fill();

    EXPECT_EQ(run(), 0);

    EXPECT_THAT(sizes(), IsEmpty());
    disk->makeRoom();
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(ShellLinkFile(app + L"\\link.lnk").target, L"C:\\a.exe");
}

TEST_F(FullDiskTest, KeepsNoUninstallFromMakingRoom) {
    ASSERT_TRUE(loadFiles());
    ASSERT_EQ(run(), 0);
    disk->fill();

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_THAT(sizes(), IsEmpty());
    EXPECT_EQ(disk->room(), 5 * block);
}

}  // namespace
