#include "host/RunWarnings.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cstring>
#include <cwchar>

#include "SetupTest.h"
#include "host/Machine.h"
#include "host/MachineCalls.h"
#include "support/FakeCall.h"
#include "support/Requirements.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr auto yes = [] { return true; };
constexpr auto no = [] { return false; };
template <FolderTrust trust>
FolderTrust finding(const std::wstring& folder) {
    return folder == L"C:\\InstallLog" ? trust : FolderTrust::trusted;
}

TEST(RunWarningsTest, WarnsOfNothingWhereAllIsWell) {
    EXPECT_THAT(runWarnings({no, finding<FolderTrust::trusted>}), IsEmpty());
}

TEST(RunWarningsTest, WarnsOfADownloadAndOfALogThatOthersHaveInHand) {
    EXPECT_THAT(
        runWarnings({yes, finding<FolderTrust::isLink>}),
        ElementsAre(HasSubstr(L"is marked as downloaded"),
                    L"The engine's log is written to C:\\InstallLog, which is a link, so it goes "
                    L"where the link's maker wants. Take the folder away."));
    EXPECT_THAT(
        runWarnings({no, finding<FolderTrust::isForeign>}),
        ElementsAre(L"The engine's log is written to C:\\InstallLog, which belongs to another "
                    L"user, who may lead it elsewhere. Take the folder away."));
}

TEST(TrustInTest, TrustsWhatIsThisUsersAndWhatIsNotThere) {
    const TestFolder folder;
    folder.makeDirectory(L"own");
    EXPECT_EQ(ownerOf(folder.path(L"own")), userId());
    EXPECT_EQ(trustIn(folder.path(L"own")), FolderTrust::trusted);
    EXPECT_EQ(trustIn(folder.path(L"none")), FolderTrust::trusted);
}

TEST(TrustInTest, DoesNotTrustALink) {
    REQUIRES_WINE("takes a link of the system below for one, of which there is always this");
    EXPECT_EQ(trustIn(L"Z:\\proc\\self\\cwd"), FolderTrust::isLink);
}

TEST(TrustInTest, TrustsThoseWhoMayDoAnythingAndNobodyElse) {
    const TestFolder folder;
    const struct {
        const wchar_t* owner;
        FolderTrust trust;
    } owners[] = {
        {L"S-1-5-18", FolderTrust::trusted},
        {L"S-1-5-32-544", FolderTrust::trusted},
        {L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464", FolderTrust::trusted},
        {L"S-1-5-21-1-2-3-1001", FolderTrust::isForeign},
    };
    for (const auto& [owner, trust] : owners) {
        int questions = 0;
        const FakeCall<machineCalls, &MachineCalls::ConvertSidToStringSidW> convert(
            [&, owner = owner](PSID id, wchar_t** text) -> BOOL {
                if (++questions > 1)  // the user, who isn't the owner
                    return convert.real(id, text);
                const size_t size = (std::wcslen(owner) + 1) * sizeof(wchar_t);
                *text = static_cast<wchar_t*>(LocalAlloc(LMEM_FIXED, size));
                std::memcpy(*text, owner, size);
                return TRUE;
            });
        EXPECT_EQ(trustIn(folder.path()), trust) << owner;
    }
}

TEST(TrustInTest, DoesNotTrustWhatBelongsToAnotherUser) {
    REQUIRES_WINE("asks who owns what belongs to the system below");
    REQUIRES_ORDINARY_USER();
    EXPECT_EQ(trustIn(L"Z:\\etc"), FolderTrust::isForeign);
}

/// Wine has no streams, but keeps a file of that name beside the other.
class DownloadTest : public SetupTest {
protected:
    void mark() const { ship(L"temz.exe:Zone.Identifier", "[ZoneTransfer]\r\nZoneId=3\r\n"); }
};

TEST_F(DownloadTest, IsKnownByItsMark) {
    EXPECT_FALSE(isMarkedAsDownloaded(setup(L"temz.exe")));
    mark();
    EXPECT_TRUE(isMarkedAsDownloaded(setup(L"temz.exe")));
}

TEST_F(DownloadTest, IsToldOnceUnlessFailuresAloneAreWanted) {
    writeScript("");
    mark();

    const ProgramRun run = temz(L"install install.xml");
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.error,
              "temz: This program is marked as downloaded, and files that were unpacked with it "
              "pass the mark on to what is installed. Unblock the archive and unpack it anew.\n");
    EXPECT_EQ(temz(L"install install.xml --quiet").error, "");
}

}  // namespace
