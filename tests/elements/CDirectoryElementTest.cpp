#include "elements/CDirectoryElement.h"

#include <gmock/gmock.h>

#include <cwchar>

#include "elements/ElementFactory.h"
#include "expression/CStringVariable.h"
#include "support/FakeCall.h"
#include "support/LogFile.h"
#include "support/ScriptTest.h"
#include "system/ShellCalls.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using FakeFolders = FakeCall<shellCalls, &ShellCalls::SHGetSpecialFolderPathW>;

/// The same answer for each folder of the system.
auto everyFolderIs(const wchar_t* path) {
    return [path](HWND, wchar_t* buffer, int, BOOL) {
        wcscpy(buffer, path);
        return TRUE;
    };
}

BOOL noFolder(HWND, wchar_t*, int, BOOL) {
    return FALSE;
}

class DirectoryTest : public ScriptTest {
protected:
    ElementPtr make(const wchar_t* id) {
        return CreateElement(context.findElementById(L"Directory", id).get(), context);
    }

    /// The attribute `Path` of a directory, or why it can't be made.
    std::wstring path(const wchar_t* id) {
        AttributeRecord record;
        const ElementPtr directory = make(id);
        if (!directory)
            return L"failed: " + getLastCreateError();
        EXPECT_TRUE(directory->getAttribute(L"Path", record));
        return record.value;
    }

    /// What getDirectory gives, or the message of its failure.
    std::wstring directory(const wchar_t* id) {
        std::wstring path = L"of before";
        if (!context.getProduct()->getDirectory(path, id, &context))
            return L"failed: " + errorMessage();
        return path;
    }
};

using CDirectoryElementTest = DirectoryTest;
using GetDirectoryTest = DirectoryTest;

TEST_F(CDirectoryElementTest, PathIsItsOneAttribute) {
    ASSERT_TRUE(loadProduct("<Directory Id='D' Path='C:\\d' Other='o'/>"));
    const ElementPtr element = make(L"D");
    std::vector<AttributeDeclaration> list;

    element->getAttributes(list);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_STREQ(list[0].name, L"Path");
    EXPECT_FALSE(list[0].required);

    element->getDerivedAttributes(list);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_STREQ(list[0].name, L"Path");
    EXPECT_TRUE(list[0].required);

    AttributeRecord record;
    EXPECT_FALSE(element->getAttribute(L"Other", record));
}

TEST_F(CDirectoryElementTest, ItsPathIsExpandedAndCumulative) {
    ASSERT_TRUE(loadProduct("<Directory Id='D' Path='C:\\d'/>"));
    const ElementPtr element = make(L"D");

    EXPECT_TRUE(element->isExpandable());
    EXPECT_TRUE(element->isCumulativeAttribute(L"Path"));
    for (const wchar_t* name : {L"path", L"PATH", L"Pat", L"Paths", L"", L"Id"})
        EXPECT_FALSE(element->isCumulativeAttribute(name)) << name;
    EXPECT_FALSE(element->isCumulativeAttribute(nullptr));
}

TEST_F(CDirectoryElementTest, JoinsParentAndOwnTextByOneSeparatorAtMost) {
    ASSERT_TRUE(loadProduct("<Directory Id='D' Path='C:\\d'/>"));
    const ElementPtr element = make(L"D");
    const struct {
        const wchar_t* parent;
        const wchar_t* own;
        const wchar_t* joined;
    } rows[] = {
        {L"C:\\p", L"a", L"C:\\p\\a"},
        {L"C:\\p\\", L"a", L"C:\\p\\a"},
        {L"C:/p/", L"a", L"C:/p/a"},
        {L"", L"a", L"a"},
        {L"", L"", L""},
        {L"C:\\p", L"", L"C:\\p\\"},
        {L"C:\\p\\", L"", L"C:\\p\\"},
        {L"C:\\p", L"\\a", L"C:\\p\\\\a"},
        {L"C:\\p/", L"/a", L"C:\\p//a"},
        {L"C:\\p", L"D:\\a/b\\", L"C:\\p\\D:\\a/b\\"},
        {L"C:\\p\\\\", L"a", L"C:\\p\\\\a"},
        {L"\\", L"..\\a", L"\\..\\a"},
    };
    for (const auto& row : rows) {
        std::wstring value = row.own;
        EXPECT_TRUE(element->combineWithParent(row.parent, value));
        EXPECT_EQ(value, row.joined);
    }
}

TEST_F(CDirectoryElementTest, FolderWordAsIdIsADefaultForPathAlone) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='WindowsFolder' Path='own'/>"
                    "<Directory Id='windowsfolder' Path='own'/>"));
    const FakeFolders folders(everyFolderIs(L"X:\\Win"));
    AttributeRecord record;

    EXPECT_FALSE(make(L"WindowsFolder")->getDefaultAttribute(record, L"path"));
    EXPECT_FALSE(make(L"WindowsFolder")->getDefaultAttribute(record, L"Id"));
    EXPECT_FALSE(make(L"windowsfolder")->getDefaultAttribute(record, L"Path"));
    EXPECT_STREQ(record.name, L"");

    EXPECT_TRUE(make(L"WindowsFolder")->getDefaultAttribute(record, L"Path"));
    EXPECT_STREQ(record.name, L"Path");
    EXPECT_EQ(record.value, L"X:\\Win");
}

TEST_F(CDirectoryElementTest, FolderThatTheSystemLacksIsNoDefault) {
    ASSERT_TRUE(loadProduct("<Directory Id='WindowsFolder' Path='own'/>"));
    const ElementPtr element = make(L"WindowsFolder");
    const LogFile log;
    const FakeFolders folders(&noFolder);
    AttributeRecord record;

    EXPECT_FALSE(element->getDefaultAttribute(record, L"Path"));

    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] Failed to get the WindowsFolder"));
}

TEST_F(CDirectoryElementTest, PathGrowsAlongTheEnclosingDirectories) {
    ASSERT_TRUE(loadProduct(R"(<Directory Id='ProgramFilesFolder'>
                                 <Directory Id='ROOT' Path='Vendor\App'>
                                   <Directory Id='BIN' Path='bin'>
                                     <Directory Id='SAME'/>
                                   </Directory>
                                 </Directory>
                               </Directory>)"));
    const FakeFolders folders(everyFolderIs(L"C:\\Program Files"));

    EXPECT_EQ(path(L"ProgramFilesFolder"), L"C:\\Program Files");
    EXPECT_EQ(path(L"ROOT"), L"C:\\Program Files\\Vendor\\App");
    EXPECT_EQ(path(L"BIN"), L"C:\\Program Files\\Vendor\\App\\bin");
    EXPECT_EQ(path(L"SAME"), L"C:\\Program Files\\Vendor\\App\\bin");
    EXPECT_EQ(directory(L"BIN"), L"C:\\Program Files\\Vendor\\App\\bin\\");
}

TEST_F(CDirectoryElementTest, TextsAreJoinedAsTheyStand) {
    ASSERT_TRUE(loadProduct(R"(<Directory Id='A' Path='C:/a/'>
                                 <Directory Id='AB' Path='b'/>
                                 <Directory Id='AE' Path=''/>
                                 <Directory Id='AC' Path='\c/'/>
                               </Directory>
                               <Directory Id='D' Path='C:\d'>
                                 <Directory Id='DE' Path=''><Directory Id='DEF' Path='f'/></Directory>
                                 <Directory Id='DX' Path='X:\x'/>
                               </Directory>
                               <Directory Id='E' Path=''><Directory Id='EF' Path='f'/></Directory>)"));
    EXPECT_EQ(path(L"AB"), L"C:/a/b");
    EXPECT_EQ(path(L"AE"), L"C:/a/");
    EXPECT_EQ(path(L"AC"), L"C:/a/\\c/");
    EXPECT_EQ(path(L"DE"), L"C:\\d\\");
    EXPECT_EQ(path(L"DEF"), L"C:\\d\\f");
    EXPECT_EQ(path(L"DX"), L"C:\\d\\X:\\x");
    EXPECT_EQ(path(L"E"), L"");
    EXPECT_EQ(path(L"EF"), L"f");
}

TEST_F(CDirectoryElementTest, OwnPathComesBeforeTheFolderOfItsId) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='WindowsFolder' Path='C:\\own'>"
                    "<Directory Id='D' Path='d'/></Directory>"));
    EXPECT_EQ(path(L"WindowsFolder"), L"C:\\own");
    EXPECT_EQ(path(L"D"), L"C:\\own\\d");
}

TEST_F(CDirectoryElementTest, FolderOfItsIdComesBeforeTheParentsPath) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='P' Path='C:\\p'><Directory Id='WindowsFolder'/>"
                    "</Directory>"));
    const FakeFolders folders(everyFolderIs(L"X:\\Win"));
    EXPECT_EQ(path(L"WindowsFolder"), L"X:\\Win");
}

TEST_F(CDirectoryElementTest, FolderThatTheSystemLacksLeavesTheParentsPath) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='P' Path='C:\\p'><Directory Id='WindowsFolder'/>"
                    "</Directory>"));
    const LogFile log;
    const FakeFolders folders(&noFolder);

    EXPECT_EQ(path(L"WindowsFolder"), L"C:\\p");

    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] Failed to get the WindowsFolder"));
}

TEST_F(CDirectoryElementTest, WithoutAnyPathItCanNotBeMade) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='D'><Directory Id='C'/></Directory>"
                    "<Directory Id='programfilesfolder'/>"));
    EXPECT_EQ(path(L"D"),
              L"failed: Create Element error:"
              L"(Directory,D) can't get Path attribute from  parent element.");
    EXPECT_EQ(path(L"C"),
              L"failed: Create Element error:"
              L"(Directory,C) can't create parent element when get the Path attribute.");
    EXPECT_EQ(path(L"programfilesfolder"),
              L"failed: Create Element error:"
              L"(Directory,programfilesfolder) can't get Path attribute from  parent element.");
}

TEST_F(CDirectoryElementTest, ParentThatCanNotBeMadeLeavesTheOwnTextAlone) {
    ASSERT_TRUE(loadProduct("<Directory Id='D'><Directory Id='C' Path='c'/></Directory>"));
    EXPECT_EQ(path(L"C"), L"c");
}

TEST_F(CDirectoryElementTest, ReferencesInItsPathAreReplacedBeforeItIsJoined) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='T' Path='#TARGET'/>"
                    "<Directory Id='P' Path='C:\\p'>"
                    "  <Directory Id='PT' Path='#TARGET'/>"
                    "  <Directory Id='PP' Path='[T]sub'/>"
                    "</Directory>",
                    "<Variable Id='TARGET' Type='string' Value='D:\\t'/>"));
    EXPECT_EQ(path(L"T"), L"D:\\t");
    EXPECT_EQ(path(L"PT"), L"C:\\p\\D:\\t");
    EXPECT_EQ(path(L"PP"), L"C:\\p\\D:\\t\\sub");
}

TEST_F(CDirectoryElementTest, ReferenceThatCanNotBeResolvedIsTold) {
    ASSERT_TRUE(loadProduct("<Directory Id='D' Path='[NONE]d'/><Directory Id='E' Path='e]'/>"));
    EXPECT_EQ(path(L"D"), L"failed: Create Element error:[NONE] mismatch.");
    EXPECT_EQ(path(L"E"), L"failed: Create Element error:] can't be the first");
}

TEST_F(CDirectoryElementTest, ReferenceStandsForTheDirectoryWhereThatIsDefined) {
    ASSERT_TRUE(
        loadProduct("<Directory Id='OTHER' Path='C:\\other'>"
                    "  <DirectoryRef Id='D' Path='ignored'>"
                    "    <Directory Id='IN_REF' Path='in'/>"
                    "  </DirectoryRef>"
                    "</Directory>"
                    "<Directory Id='P' Path='C:\\p'><Directory Id='D' Path='d'/></Directory>"));
    EXPECT_EQ(path(L"IN_REF"), L"C:\\p\\d\\in");

    const XmlHandlePtr parent = context.findElementById(L"DirectoryRef", L"D");
    const ElementPtr reference = CreateElement(parent.get(), context);
    ASSERT_NE(reference, nullptr);
    EXPECT_EQ(reference->describe(), L"(Directory,D)");
}

TEST_F(CDirectoryElementTest, ReferenceToNoDirectoryFails) {
    ASSERT_TRUE(
        loadProduct("<Feature Id='NONE'/><DirectoryRef Id='NONE'>"
                    "<Directory Id='A'/><Directory Id='B' Path='b'/></DirectoryRef>"));

    EXPECT_EQ(createDirectoryRefElement(L"DirectoryRef", L"NONE", context), nullptr);
    EXPECT_EQ(getLastCreateError(),
              L"(Directory,NONE) element can't create(get the node is null).");

    EXPECT_EQ(path(L"A"),
              L"failed: Create Element error:"
              L"(Directory,A) can't create parent element when get the Path attribute.");
    EXPECT_EQ(path(L"B"), L"b");
}

struct Word {
    const wchar_t* word;
    int folder;
};

constexpr Word words[] = {
    {L"ProgramFilesFolder", 38}, {L"WindowsFolder", 36},   {L"System32Folder", 37},
    {L"SysWOW64Folder", 41},     {L"StartMenuFolder", 22}, {L"ProgramMenuFolder", 23},
    {L"DesktopFolder", 25},
};

TEST_F(GetDirectoryTest, FolderWordsNeedNoElement) {
    ASSERT_TRUE(loadProduct(""));
    int asked = 0;
    const FakeFolders folders([&](HWND, wchar_t* buffer, int folder, BOOL create) {
        EXPECT_FALSE(create);
        asked = folder;
        wcscpy(buffer, L"X:\\Folder");
        return TRUE;
    });
    for (const Word& row : words) {
        EXPECT_EQ(directory(row.word), L"X:\\Folder\\");
        EXPECT_EQ(asked, row.folder);
    }
}

TEST_F(GetDirectoryTest, FolderWordWinsOverAnElementOfThatId) {
    ASSERT_TRUE(loadProduct("<Directory Id='ProgramFilesFolder' Path='C:\\own'/>"));
    const FakeFolders folders(everyFolderIs(L"X:\\Programs"));
    EXPECT_EQ(directory(L"ProgramFilesFolder"), L"X:\\Programs\\");
    EXPECT_EQ(path(L"ProgramFilesFolder"), L"C:\\own");
}

TEST_F(GetDirectoryTest, FolderThatTheSystemLacksIsSoughtAsAnElement) {
    ASSERT_TRUE(loadProduct("<Directory Id='WindowsFolder' Path='C:\\own'/>"));
    const LogFile log;
    const FakeFolders folders(&noFolder);

    EXPECT_EQ(directory(L"WindowsFolder"), L"C:\\own\\");
    EXPECT_EQ(directory(L"DesktopFolder"),
              L"failed: Get directory error:can't get the DesktopFolder directory");

    EXPECT_THAT(log.lines(), ElementsAre("[ERROR] Failed to get the WindowsFolder",
                                         "[ERROR] Failed to get the DesktopFolder"));
}

TEST_F(GetDirectoryTest, FolderWordInAnotherCaseIsAnOrdinaryId) {
    ASSERT_TRUE(loadProduct("<Directory Id='windowsFolder' Path='C:\\own'/>"));
    const LogFile log;
    EXPECT_EQ(directory(L"windowsFolder"), L"C:\\own\\");
    EXPECT_EQ(directory(L"WINDOWSFOLDER"),
              L"failed: Get directory error:can't get the WINDOWSFOLDER directory");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(GetDirectoryTest, ResultEndsInASeparatorUnlessItIsEmpty) {
    ASSERT_TRUE(loadProduct(R"(<Directory Id='PLAIN' Path='C:\a'/>
                               <Directory Id='BACK' Path='C:\a\'/>
                               <Directory Id='FORWARD' Path='C:/a/'/>
                               <Directory Id='COLON' Path='C:'/>
                               <Directory Id='SEPARATOR' Path='/'/>
                               <Directory Id='EMPTY' Path=''/>)"));
    EXPECT_EQ(directory(L"PLAIN"), L"C:\\a\\");
    EXPECT_EQ(directory(L"BACK"), L"C:\\a\\");
    EXPECT_EQ(directory(L"FORWARD"), L"C:/a/");
    EXPECT_EQ(directory(L"COLON"), L"C:\\");
    EXPECT_EQ(directory(L"SEPARATOR"), L"/");
    EXPECT_EQ(directory(L"EMPTY"), L"");
}

TEST_F(GetDirectoryTest, SystemsFolderEndsInASeparatorUnlessItIsEmpty) {
    ASSERT_TRUE(loadProduct(""));
    for (const wchar_t* path : {L"", L"X:\\", L"X:/"}) {
        const FakeFolders folders(everyFolderIs(path));
        EXPECT_EQ(directory(L"WindowsFolder"), path);
    }
}

TEST_F(GetDirectoryTest, FirstDirectoryOfAnIdBelowTheProductCounts) {
    ASSERT_TRUE(
        load("<Root><Directory Id='OUT' Path='C:\\out'/><Product>"
             "<Feature Id='D'/>"
             "<Fragment><Directory Id='D' Path='C:\\first'>"
             "<Directory Id='D' Path='second'/></Directory></Fragment>"
             "<Directory Id='D' Path='C:\\third'/>"
             "</Product></Root>"));
    EXPECT_EQ(directory(L"D"), L"C:\\first\\");
    EXPECT_EQ(directory(L"OUT"), L"failed: Get directory error:can't get the OUT directory");
}

TEST_F(GetDirectoryTest, UnknownIdIsTold) {
    ASSERT_TRUE(loadProduct("<Directory Path='C:\\a'/><Directory Id='D' Path='C:\\d'/>"));
    EXPECT_EQ(directory(L"NONE"), L"failed: Get directory error:can't get the NONE directory");
    EXPECT_EQ(directory(L"d"), L"failed: Get directory error:can't get the d directory");
    EXPECT_EQ(directory(L""), L"failed: Get directory error:can't get the  directory");
}

TEST_F(GetDirectoryTest, ElementThatCanNotBeMadeIsTold) {
    ASSERT_TRUE(loadProduct("<Directory Id='D'/><Directory Id='R' Path='#NONE'/>"));
    EXPECT_EQ(directory(L"D"),
              L"failed: Get directory error:Create Element error:"
              L"(Directory,D) can't get Path attribute from  parent element.");
    EXPECT_EQ(directory(L"R"), L"failed: Get directory error:Create Element error:#NONE mismatch.");
}

TEST_F(GetDirectoryTest, FailureReplacesTheWholeErrorInfo) {
    ASSERT_TRUE(loadProduct(""));
    ErrorInfo& error = context.getProduct()->errorInfo;
    error = {ACTION_COPY_FILE, L"file", L"other", 5, L"old"};

    EXPECT_EQ(directory(L"NONE"), L"failed: Get directory error:can't get the NONE directory");

    EXPECT_EQ(error.code, 1u);
    EXPECT_STREQ(error.text1, L"");
    EXPECT_STREQ(error.text2, L"");
    EXPECT_EQ(error.systemError, 0u);
}

TEST_F(GetDirectoryTest, SuccessLeavesTheErrorInfoAlone) {
    ASSERT_TRUE(loadProduct("<Directory Id='D' Path='C:\\d'/>"));
    ErrorInfo& error = context.getProduct()->errorInfo;
    error = {ACTION_COPY_FILE, L"file", L"", 5, L"old"};

    EXPECT_EQ(directory(L"D"), L"C:\\d\\");

    EXPECT_EQ(error.code, static_cast<uint32_t>(ACTION_COPY_FILE));
    EXPECT_STREQ(error.message, L"old");
}

TEST_F(GetDirectoryTest, EachLookUpResolvesAnew) {
    ASSERT_TRUE(loadProduct("<Directory Id='P' Path='#V'><Directory Id='D' Path='d'/></Directory>",
                            "<Variable Id='V' Type='string' Value='C:\\one'/>"));
    EXPECT_EQ(directory(L"D"), L"C:\\one\\d\\");

    static_cast<CStringVariable*>(context.findVariable(L"V"))->setString(L"C:\\two");

    EXPECT_EQ(directory(L"D"), L"C:\\two\\d\\");
}

}  // namespace
