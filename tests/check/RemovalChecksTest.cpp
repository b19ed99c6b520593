#include "check/CPartsTest.h"

using RemovalChecksTest = CPartsTest;

namespace {

std::string call(const std::string& library) {
    return R"(<Fragment><CustomAction DllFile=")" + library +
           R"(" DllEntry="e" Return="no"/></Fragment>)";
}

/// A call into a library, in a product that has its root directory.
Parts callWithRoot(const std::string& library) {
    return {.sequence = call(library),
            .product = R"(<Directory Id="APPLICATIONROOTDIRECTORY" Path="C:\y"/>)",
            .changing = true};
}

/// A call into a.dll behind the component D of this definition.
Parts callBeside(const std::string& component) {
    return {.sequence = R"(<Feature><ComponentRef Id="D"/></Feature>)" + call("a.dll"),
            .product = component};
}

const std::string rootUnused =
    "TZ207 Nothing uses `Directory` `APPLICATIONROOTDIRECTORY`. -> remove it, or refer to it "
    "as [Id].\n";
const std::string rootMissing =
    "TZ509 There is no `Directory` with the Id `APPLICATIONROOTDIRECTORY`, without which no "
    "function is called. -> give the product's Directory this Id.\n";

}  // namespace

TEST_F(RemovalChecksTest, AWholeDriveAndAFolderOfTheSystemAreNotTheProducts) {
    const Case cases[] = {
        {{.component = file("a"), .sequence = removal("1:"), .changing = true},
         "TZ704 `1:` is beside what the product installs. -> make sure that it is the product's "
         "alone.\n"},
        {{.component = file("a"), .sequence = removal("C:"), .changing = true},
         "TZ702 `C:` is a whole drive. -> name the product's directory.\n"},
        {{.component = file("a"), .sequence = removal("ab"), .changing = true},
         "TZ704 `ab` is beside what the product installs. -> make sure that it is the product's "
         "alone.\n"},
        {{.component = file("a"), .sequence = removal(R"(\)"), .changing = true},
         "TZ702 `\\` is a whole drive. -> name the product's directory.\n"},
        {{.component = file("a"), .sequence = removal("/"), .changing = true},
         "TZ702 `/` is a whole drive. -> name the product's directory.\n"},
        {{.component = file("a"), .sequence = removal("#V"), .changing = true}, ""},
        {{.component = file("a"), .sequence = removal(""), .changing = true},
         "TZ507 The `Path` is empty. -> fill it.\n"},
        {{.component = file("a"), .sequence = removal(R"([R]\..)"), .changing = true}, ""},
        {{.component = file("a"), .sequence = removal(R"(C:\x\y)"), .changing = true}, ""},
        {{.component = file("a"), .sequence = removal(R"(C:\a\b\c\d)"), .changing = true},
         "TZ704 `C:\\a\\b\\c\\d` is beside what the product installs. -> make sure that it is the "
         "product's alone.\n"},
        {{.component = file(R"(a\b\c\d)"), .sequence = removal(R"([R]a\b\e)")},
         "TZ703 `C:\\x` is above what the product installs, and may hold others. -> remove the "
         "product's own directory alone.\n"},
        {{.component = file(R"(a\b\c\d)"), .sequence = removal(R"([R]a\b)")},
         "TZ703 `C:\\x` is above what the product installs, and may hold others. -> remove the "
         "product's own directory alone.\n"},
        {{.component = file("a"),
          .sequence =
              R"(<Fragment><FileSearch Name="a" Path="C:\y" Expression="CHANGED = W"/><RemoveDirectory Path="#CHANGED"/></Fragment>)",
          .variables = R"(<Variable Id="CHANGED" Type="string" Value=""/>)",
          .changing = true},
         ""},
    };
    expectTold(cases);
}

TEST_F(RemovalChecksTest, ALibraryIsNamedByItsWholePath) {
    const Case cases[] = {
        {callWithRoot("#V"), rootUnused},
        {callWithRoot(""), rootUnused + "TZ507 The `DllFile` is empty. -> fill it.\n"},
        {callWithRoot("a.dll"),
         rootUnused +
             "TZ706 `a.dll` is named without its path. -> name it with its whole path, such as "
             "[APPLICATIONROOTDIRECTORY]a.dll.\n"},
        {callBeside(
             R"(<DirectoryRef Id="R"><Component Id="D"><File Name="A.dll" Source="a"/></Component></DirectoryRef>)"),
         rootMissing +
             "TZ706 `a.dll` is named without its path. -> name it with its whole path, such as "
             "[R]a.dll.\n"},
        {callBeside(
             R"(<Directory Path="C:\y"><Component Id="D"><File Name="A.dll" Source="a"/></Component></Directory>)"),
         "TZ609 `C:\\y` stays after uninstall, empty or not. -> remove it by a RemoveDirectory "
         "On=\"uninstall\" at the end of the sequence.\n" +
             rootMissing +
             "TZ706 `a.dll` is named without its path. -> name it with its whole path, such as "
             "[R]a.dll.\n"
             "TZ704 `C:\\x` is beside what the product installs. -> make sure that it is the "
             "product's alone.\n"},
        {callBeside(
             R"(<Directory Id="Y" Path="C:\y"><Component Id="D"><Condition Expression="OS_MAJOR_VERSION E 6"><File Name="A.dll" Source="a"/></Condition></Component></Directory>)"),
         "TZ609 `C:\\y` stays after uninstall, empty or not. -> add <RemoveDirectory "
         "Path=\"[Y]\"/> to a Fragment On=\"uninstall\" at the end of the sequence.\n" +
             rootMissing +
             "TZ706 `a.dll` is named without its path. -> name it with its whole path, such as "
             "[Y]a.dll.\n"
             "TZ704 `C:\\x` is beside what the product installs. -> make sure that it is the "
             "product's alone.\n"},
        {callBeside(
             R"(<Directory Id="ProgramFilesFolder"><Component Id="D"><File Name="b.dll" Source="a"/></Component></Directory>)"),
         rootMissing +
             "TZ706 `a.dll` is named without its path. -> name it with its whole path, such as "
             "[R]a.dll.\n"
             "TZ704 `C:\\x` is beside what the product installs. -> make sure that it is the "
             "product's alone.\n"},
    };
    expectTold(cases);
}
