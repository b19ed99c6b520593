// Scripts with non-ASCII names; run under several code pages.

#include <gmock/gmock.h>
#include <windows.h>

#include "support/HostTest.h"
#include "support/LockedFile.h"
#include "support/LogFile.h"
#include "support/Requirements.h"
#include "support/Restart.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

/// Names that the active code page can express.
struct Names {
    std::wstring script;
    std::wstring id;
    std::wstring directory;
    std::wstring file;
    std::wstring text;
    std::string encoding;  ///< the code page, as a script declares it
};

// The bytes of the Japanese and of the Chinese directory hold a backslash and square brackets.
const Names westernNames = {L"Einführung.xml",    L"Größe",
                            L"Prénoms à ñandú",   L"Liesmich é.txt",
                            L"¡Señor, ¿qué tal?", "windows-1252"};
const Names japaneseNames = {L"セットアップ.xml", L"寸法",    L"ソゼゾ 表", L"読んで 〒.txt",
                             L"こんにちは、世界", "Shift_JIS"};
const Names chineseNames = {L"安装.xml", L"程序", L"乕乗乚 é", L"说明 ü.txt", L"你好，世界", "GBK"};
const Names namesOfAllKinds = {L"Установка 安装.xml", L"Größe ソ",          L"乕 ñ 表 שם",
                               L"说明 é.txt",         L"¿世界? \U0001F600", "UTF-8"};

const Names& namesIn(UINT codePage) {
    switch (codePage) {
        case 932:
            return japaneseNames;
        case 936:
            return chineseNames;
        case CP_UTF8:
            return namesOfAllKinds;
        default:
            return westernNames;
    }
}

class CodePageTest : public HostTest {
protected:
    void SetUp() override { REQUIRES_CODE_PAGE(1252, 932, 936, 65001); }

    /// A script in which every name is one of `names`, in the code page.
    std::string script(std::string_view content, const std::string& declaration = {}) const {
        const std::string id = narrow(names.id);
        return declaration + "<Script><Variable Id='" + id + "' Type='string' Value='" +
               narrow(names.directory) + "'/><Product Id='" + id + "'><Directory Path='" +
               narrow(app()) + "'><Directory Id='" + id + "' Path='#" + id + "'><Component Id='" +
               id + "'>" + file(names.file, content, "Id='" + id + "' SupportDelayInstall='yes'") +
               "</Component></Directory></Directory><InstallExecuteSequence><Feature Id='" + id +
               "'><ComponentRef Id='" + id + "'/></Feature><Fragment><Caution Title='" +
               narrow(names.text) + " [" + id + "]'/></Fragment></InstallExecuteSequence>" +
               "</Product></Script>";
    }

    const Names& names = namesIn(GetACP());
    const std::wstring target = names.directory + L"\\" + names.file;
};

TEST_F(CodePageTest, ServesNamesOfAllKinds) {
    const std::wstring path = folder.write(names.script, script("new"));
    ASSERT_TRUE(context->load(path.c_str()));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_THAT(installedFiles(), ElementsAre(Pair(target, "new")));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);
    EXPECT_THAT(installedFiles(), IsEmpty());
}

TEST_F(CodePageTest, ReachesTheHostAsWideText) {
    ASSERT_TRUE(load(script("new")));
    std::wstring directory;
    std::wstring value;

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
    EXPECT_TRUE(product().getDirectory(directory, names.id.c_str(), context));
    EXPECT_TRUE(context->getVariable(value, names.id.c_str()));

    const std::wstring path = app(names.directory) + L"\\";
    EXPECT_EQ(directory, path);
    EXPECT_EQ(value, names.directory);
    ASSERT_EQ(observer.updates.size(), 2u);
    EXPECT_EQ(observer.updates[0].text1, names.file);
    EXPECT_EQ(observer.updates[1].text2, names.text + L" " + path);
}

TEST_F(CodePageTest, ReachesTheHostInMessages) {
    ASSERT_TRUE(load("<Script><Product><InstallExecuteSequence><Feature Id='" + narrow(names.id) +
                     "'><File Id='x'/></Feature></InstallExecuteSequence>" +
                     "</Product></Script>"));
    std::wstring ignored;

    EXPECT_EQ(run(RUNMODE_INSTALL), -1);
    EXPECT_EQ(product().errorInfo.message,
              L"(Feature," + names.id + L") has a illegal child element(File)");
    EXPECT_FALSE(context->getVariable(ignored, names.id.c_str()));
    EXPECT_EQ(context->getLastError(), names.id + L" variable is no exist.");
}

TEST_F(CodePageTest, ReachesTheLogAsNarrowText) {
    const LogFile log;
    ASSERT_TRUE(load(script("new")));

    EXPECT_EQ(run(RUNMODE_UNINSTALL), 0);

    EXPECT_THAT(log.lines(), ElementsAre("[WARNNING] delete file " + narrow(app(target))));
}

TEST_F(CodePageTest, ServesTargetsThatWaitForTheNextRestart) {
    REQUIRES_WINE("restarts the machine");
    folder.write(L"app\\" + target, "old");
    ASSERT_TRUE(load(script("new")));
    {
        const LockedFile lock(app(target));
        EXPECT_EQ(run(RUNMODE_UPGRADE), 0);
    }
    EXPECT_TRUE(product().rebootRequired);
    EXPECT_THAT(installedFiles(), Contains(Pair(target + L"!@#$%", "new")));

    restart();

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(target, "new")));
}

TEST_F(CodePageTest, ServesAScriptThatDeclaresIt) {
    ASSERT_TRUE(load(script("new", "<?xml version='1.0' encoding='" + names.encoding + "'?>")));

    EXPECT_EQ(run(RUNMODE_INSTALL), 0);

    EXPECT_THAT(installedFiles(), ElementsAre(Pair(target, "new")));
}

TEST_F(CodePageTest, IsTakenForTheEncodingOfEveryScript) {
    // The bytes of "héros" in UTF-8, and what they spell in the code page.
    const std::string bytes = "h\xC3\xA9ros";
    wchar_t spelled[16] = {};
    MultiByteToWideChar(CP_ACP, 0, bytes.c_str(), -1, spelled, 16);
    ASSERT_EQ(std::wstring(spelled) == L"h\u00E9ros", GetACP() == CP_UTF8);
    for (const std::string opening :
         {"", "<?xml version='1.0'?>", "<?xml version='1.0' encoding='UTF-8'?>", "\xEF\xBB\xBF"}) {
        SCOPED_TRACE(opening);
        context->unload();
        ASSERT_TRUE(load(opening + "<S><Variable Id='V' Type='string' Value='" + bytes +
                         "'/><Product/></S>"));
        std::wstring value;

        EXPECT_TRUE(context->getVariable(value, L"V"));

        EXPECT_EQ(value, spelled);
    }
}

TEST_F(CodePageTest, BarsScriptsWhoseNamesItCannotExpress) {
    REQUIRES_CODE_PAGE(1252, 932, 936);
    const std::wstring path = folder.write(L"\u0634.xml", script("new"));

    EXPECT_FALSE(context->load(path.c_str()));

    EXPECT_EQ(context->getLastError(), L"");
    ASSERT_TRUE(load(script("new")));
    EXPECT_EQ(run(RUNMODE_INSTALL), 0);
}

}  // namespace
