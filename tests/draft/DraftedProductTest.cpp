// What temz new and temz harvest write, through the life of the product that it installs.

#include <gmock/gmock.h>

#include "SetupTest.h"
#include "support/Requirements.h"

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

using Tree = std::map<std::wstring, std::string>;

class DraftedProductTest : public SetupTest {
protected:
    void SetUp() override { REQUIRES_WINE("installs products"); }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(installed, ignored);
    }

    /// Writes files of the payload, which say what they are called.
    void pay(const std::vector<std::wstring>& files) const {
        for (const std::wstring& file : files)
            ship(L"payload\\" + file, utf8(file));
    }

    /// Drafts install.xml.
    ProgramRun draft() const {
        return temz(L"new --name \"" + product + L"\" --payload payload --out install.xml");
    }

    /// What verify tells of a life with an upgrade in the middle.
    ProgramRun live() const {
        return temz(L"verify install.xml --upgrade-from install.xml --on-this-machine --json");
    }

    void expectToBeClean(size_t files, size_t links) const {
        EXPECT_EQ(draft().exitCode, 0u);
        const ProgramRun run = live();
        EXPECT_EQ(run.exitCode, 0u) << run.output << run.error;
        EXPECT_THAT(run.output, HasSubstr("\"file\":" + std::to_string(files) + ","));
        EXPECT_THAT(run.output, HasSubstr("\"link\":" + std::to_string(links) + ","));
    }

    static Tree treeOf(const fs::path& folder) {
        Tree tree;
        for (const auto& entry : fs::recursive_directory_iterator(folder))
            if (entry.is_regular_file())
                tree[fs::relative(entry.path(), folder).wstring()] =
                    readFile(entry.path().wstring());
        return tree;
    }

    const std::wstring product = L"R&D's [1] #2 M\u00FCsli";
    const std::wstring installed = L"C:\\Program Files\\" + product;
};

TEST_F(DraftedProductTest, IsCleanWithOneFile) {
    pay({L"a.exe"});
    expectToBeClean(1, 1);
}

TEST_F(DraftedProductTest, IsCleanWith500Files) {
    for (int i = 0; i < 500; ++i)
        pay({L"d" + std::to_wstring(i % 20) + L"\\f" + std::to_wstring(i) + L".txt"});
    expectToBeClean(500, 0);
}

TEST_F(DraftedProductTest, IsCleanWith5000Files) {
    for (int i = 0; i < 5000; ++i)
        pay({L"d" + std::to_wstring(i % 7) + L"\\e" + std::to_wstring(i % 30) + L"\\f" +
             std::to_wstring(i) + L".txt"});
    expectToBeClean(5000, 0);
}

TEST_F(DraftedProductTest, IsCleanWithADeepTree) {
    std::wstring place;
    for (int i = 0; i < 40; ++i) {
        place += L"d\\";
        pay({place + L"f.txt"});
    }
    expectToBeClean(40, 0);
}

TEST_F(DraftedProductTest, InstallsFilesWhateverTheyAreCalled) {
    pay({L"a b.exe", L" a.txt", L"#.txt", L"a#.txt", L"##a#b##", L"[ROOT]a.txt", L"[", L"]", L"#[",
         L"a & b &amp; c.txt", L"it's.txt", L"100%.txt", L"!@#$%.txt", L"{a};=,+~`^().txt",
         L"M\u00FCsli.txt", L"\u4E2D\u6587\\\u5B89\u88C5.txt", L"\xD83D\xDE00.txt",
         L"in [x]\\# a\\&\\deep.txt"});

    EXPECT_EQ(draft().exitCode, 0u);
    ASSERT_EQ(temz(L"install install.xml").exitCode, 0u);
    EXPECT_EQ(treeOf(installed), treeOf(setup(L"payload")));
    EXPECT_EQ(temz(L"upgrade install.xml").exitCode, 0u);
    EXPECT_EQ(treeOf(installed), treeOf(setup(L"payload")));
    EXPECT_EQ(temz(L"uninstall install.xml").exitCode, 0u);
    EXPECT_FALSE(fs::exists(installed));
}

TEST_F(DraftedProductTest, IsCleanWithAnyNames) {
    pay({L"[a] b#.exe", L"in [x]\\# a\\&\\deep.txt", L"\u4E2D\u6587\\\u5B89\u88C5.txt"});
    expectToBeClean(3, 1);
}

TEST_F(DraftedProductTest, PassesTheCheck) {
    pay({L"[a] b#.exe", L"in [x]\\# a\\&\\deep.txt", L"a & b.txt",
         L"\u4E2D\u6587\\\u5B89\u88C5.txt"});
    draft();

    const ProgramRun run = temz(L"check install.xml --payload payload --warnings-as-errors");

    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output, "No findings. Nothing was run.\n");
    ship(L"payload\\more.txt", "");
    EXPECT_NE(temz(L"check install.xml --payload payload --warnings-as-errors").exitCode, 0u);
}

TEST_F(DraftedProductTest, IsDraftedAlikeEachTime) {
    pay({L"b.exe", L"a.txt", L"c\\d.txt"});
    draft();
    const std::string script = readFile(setup(L"install.xml"));
    fs::remove(setup(L"install.xml"));
    draft();
    EXPECT_EQ(readFile(setup(L"install.xml")), script);
}

TEST_F(DraftedProductTest, ReplacesNoScript) {
    pay({L"a.txt"});
    ship(L"install.xml", "an author's own");
    for (const wchar_t* command : {L"new --name P --payload payload --out install.xml",
                                   L"harvest payload --out install.xml"}) {
        const ProgramRun run = temz(command);
        EXPECT_EQ(run.exitCode, 2u);
        EXPECT_THAT(run.error, HasSubstr("install.xml is there already"));
        EXPECT_EQ(readFile(setup(L"install.xml")), "an author's own");
    }
}

TEST_F(DraftedProductTest, CanBePutTogetherFromAPart) {
    pay({L"a.txt", L"in\\b.txt"});
    const ProgramRun part = temz(L"harvest payload");
    EXPECT_EQ(part.exitCode, 0u);
    const size_t references = part.output.find("<ComponentRef");
    ship(L"install.xml", "<Script><Product><Directory Id='APP' Path='" + utf8(folder.path(L"app")) +
                             "'>" + part.output.substr(0, references) +
                             "</Directory><InstallExecuteSequence><Feature>" +
                             part.output.substr(references) +
                             "</Feature></InstallExecuteSequence></Product></Script>");

    EXPECT_EQ(temz(L"install install.xml").exitCode, 0u);
    EXPECT_EQ(treeOf(folder.path(L"app")), treeOf(setup(L"payload")));
}

TEST_F(DraftedProductTest, PassesTheCheckWithFoldersAlone) {
    pay({L"bin\\a.exe"});
    draft();
    EXPECT_EQ(temz(L"check install.xml --payload payload").output,
              "No findings. Nothing was run.\n");
}

TEST_F(DraftedProductTest, PassesTheCheckWithTheLongestName) {
    pay({L"a.exe"});
    const auto draft = [this](size_t length) {
        return temz(L"new --payload payload --out install.xml --name " +
                    std::wstring(length, L'x'));
    };
    const ProgramRun refused = draft(101);
    EXPECT_EQ(refused.exitCode, 1639u);
    EXPECT_THAT(refused.error, HasSubstr("it has 101 characters; a product's name can have 100."));
    EXPECT_FALSE(exists(setup(L"install.xml")));

    EXPECT_EQ(draft(100).exitCode, 0u);
    EXPECT_EQ(temz(L"check install.xml --payload payload").output,
              "No findings. Nothing was run.\n");
}

TEST_F(DraftedProductTest, IsRefusedWithAReason) {
    pay({L"a.txt"});
    const ProgramRun named = temz(L"new --name a:b --payload payload");
    EXPECT_EQ(named.exitCode, 1639u);
    EXPECT_EQ(named.error,
              "temz: The product's directory can't be called a:b: Windows allows no "
              "control character and none of <>:\"/\\|?* in a name.\n");
    const ProgramRun absent = temz(L"harvest absent");
    EXPECT_EQ(absent.exitCode, 2u);
    EXPECT_THAT(absent.error, HasSubstr("absent can't be read: " + systemError(3) + "\n"));
    EXPECT_THAT(absent.output, IsEmpty());
}

}  // namespace
