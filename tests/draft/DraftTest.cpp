#include "author/draft/Draft.h"

#include <gmock/gmock.h>

#include "support/Text.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

/// A payload with these files at its top.
Payload flat(const std::vector<std::wstring>& files) {
    return {L"payload", files, {}};
}

std::wstring product(const Payload& payload, Notes& notes,
                     const std::wstring& name = L"My Product") {
    return draftProduct(name, payload, notes);
}

std::wstring product(const Payload& payload, const std::wstring& name = L"My Product") {
    Notes notes;
    return product(payload, notes, name);
}

std::wstring part(const Payload& payload) {
    Notes notes;
    return draftPart(payload, notes);
}

TEST(DraftPart, HasAComponentForEachDirectoryAndAReferenceToEach) {
    const Payload payload{
        L"payload", {L"a.txt", L"b.txt"}, {{L"in", {}, {{L"deep", {L"c.txt"}, {}}}}}};

    EXPECT_EQ(part(payload),
              LR"(<!-- Into the Directory that these files go to: -->
<Component Id="payload">
    <File Name="a.txt" Source="payload\a.txt"/>
    <File Name="b.txt" Source="payload\b.txt"/>
</Component>
<Directory Path="in">
    <Directory Path="deep">
        <Component Id="payload\in\deep">
            <File Name="c.txt" Source="payload\in\deep\c.txt"/>
        </Component>
    </Directory>
</Directory>
<!-- Into a Feature of the InstallExecuteSequence: -->
<ComponentRef Id="payload"/>
<ComponentRef Id="payload\in\deep"/>
)");
}

TEST(DraftPart, WritesNamesSoThatTheyMeanThemselves) {
    const Payload payload{L"p#", {L"[a] & 'b' ##.txt"}, {}};

    const std::wstring text = part(payload);

    EXPECT_THAT(text, HasSubstr(L"<Component Id=\"p#\">"));
    EXPECT_THAT(text, HasSubstr(L"<File Name=\"#[a#] &amp; 'b' ####.txt\" "
                                L"Source=\"p##\\#[a#] &amp; 'b' ####.txt\"/>"));
}

TEST(DraftPart, TellsThatItNeedsUtf8) {
    Notes notes;
    draftPart(flat({L"M\u00FCsli.txt"}), notes);
    EXPECT_THAT(notes, ElementsAre(L"The script isn't all ASCII. It is UTF-8, which temz.exe reads "
                                   L"on Windows 10, version 1903, and later."));
    notes.clear();
    draftPart(flat({L"Muesli.txt"}), notes);
    EXPECT_THAT(notes, IsEmpty());
}

TEST(DraftProduct, HasTheOnlyProgramInTheStartMenu) {
    const std::wstring text = product(flat({L"a.txt", L"Tool.EXE"}));

    EXPECT_THAT(text, HasSubstr(L"<Shortcut Name=\"My Product\" Description=\"My Product\" "
                                L"Target=\"[ROOT]Tool.EXE\" WorkingDirectory=\"[ROOT]\"/>"));
    EXPECT_THAT(text, HasSubstr(L"<ComponentRef Id=\"Shortcut: My Product\"/>"));
    EXPECT_THAT(text, HasSubstr(L"<RemoveDirectory Path=\"[MENU]\"/>"));
}

TEST(DraftProduct, TakesOfSeveralProgramsTheOneWithItsName) {
    EXPECT_THAT(product(flat({L"helper.exe", L"myproduct.exe"})),
                HasSubstr(L"Target=\"[ROOT]myproduct.exe\""));
}

TEST(DraftProduct, TellsThatThereIsNoShortcut) {
    for (const Payload& payload : {flat({L"a.txt"}), flat({L"a.exe", L"b.exe"}),
                                   Payload{L"p", {}, {{L"bin", {L"a.exe"}, {}}}}}) {
        Notes notes;
        EXPECT_THAT(product(payload, notes), Not(HasSubstr(L"MENU")));
        EXPECT_THAT(notes, ElementsAre(HasSubstr(L"There is no shortcut")));
    }
}

TEST(DraftProduct, TellsOfAPathThatWindowsDoesNotMake) {
    constexpr size_t front = 52 + std::size(L"\\My Product\\") - 1;
    for (const size_t length : {259, 260}) {
        Notes notes;
        const std::wstring name(length - front - 3, L'x');
        product({L"payload", {}, {{L"in", {name}, {}}}}, notes);
        std::erase_if(notes,
                      [](const std::wstring& note) { return note.find(L"gets") == note.npos; });
        if (length < 260)
            EXPECT_THAT(notes, IsEmpty());
        else
            EXPECT_THAT(
                notes, ElementsAre(L"in\\" + name +
                                   L" gets a path of up to 260 characters, and Windows makes files "
                                   L"of up to 259. Shorten the names."));
    }
}

TEST(ProductName, IsNoneOfADirectoryThatWindowsHasInTheSamePlace) {
    for (const wchar_t* name :
         {L"Common Files", L"windows nt", L"WindowsApps", L"Accessories", L"Startup"})
        EXPECT_EQ(faultOfProductName(name),
                  L"that is a directory of Windows, which an uninstall would remove.");
    for (const wchar_t* name : {L"Common", L"Windows NT Tools", L"Lantern"})
        EXPECT_EQ(faultOfProductName(name), L"");
}

TEST(DraftProduct, CallsItsDirectoriesByItsName) {
    const std::wstring text = product(flat({L"a#.exe"}), L"R&D [1] #2");

    EXPECT_THAT(text, HasSubstr(L"<Product Id=\"R&amp;D [1] #2\">"));
    EXPECT_THAT(text, HasSubstr(L"<Directory Id=\"ROOT\" Path=\"R&amp;D #[1#] ##2\">"));
    EXPECT_THAT(text, HasSubstr(L"<Directory Id=\"MENU\" Path=\"R&amp;D #[1#] ##2\">"));
    EXPECT_THAT(text, HasSubstr(L"Target=\"[ROOT]a##.exe\""));
}

}  // namespace
