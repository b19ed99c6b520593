// Mistakes that authors of scripts make, one at a time, in a script that is right.

#include <algorithm>
#include <ostream>
#include <regex>
#include <set>
#include <vector>

#include "check/CCheckTest.h"
#include "check/mistakes/Mistake.h"

void PrintTo(const Mistake& mistake, std::ostream* out) {
    *out << mistake.what;
}

namespace {

std::vector<Mistake> allMistakes() {
    std::vector<Mistake> all;
    for (const auto table : {mistakesInStructure(), mistakesInAttributes(), mistakesInTexts(),
                             mistakesInFiles(), mistakesInOrder()})
        all.insert(all.end(), table.begin(), table.end());
    return all;
}

/// The script that is right; it stands beside the test program.
const std::string& rightScript() {
    static const std::string script = readFile(testProgramDirectory() + L"\\mistakes.xml");
    return script;
}

size_t occurrences(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

std::string replaced(std::string text, const std::string& part, const std::string& by) {
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + by.size()))
        text.replace(at, part.size(), by);
    return text;
}

/// UTF-16 units of a text in UTF-8. A byte that is none of UTF-8 counts as a character.
uint32_t unitsIn(std::string_view text) {
    uint32_t units = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if ((byte & 0xC0) != 0x80)
            units += byte >= 0xF0 && byte < 0xF8 ? 2 : 1;
    }
    return units;
}

/// A script with a mistake, and where it is.
struct Broken {
    std::string script;
    Place place;
};

/// Takes the braces out of a script and tells the place that they were around; of a script without
/// braces none.
Broken withoutBraces(const std::string& script) {
    const size_t open = script.find('{');
    const size_t close = script.find('}');
    if (open == std::string::npos)
        return {script, {}};
    const size_t lineStart = script.rfind('\n', open) + 1;
    const std::string_view text = script;
    return {script.substr(0, open) + script.substr(open + 1, close - open - 1) +
                script.substr(close + 1),
            {static_cast<uint32_t>(std::count(script.begin(), script.begin() + open, '\n') + 1),
             unitsIn(text.substr(lineStart, open - lineStart)) + 1,
             unitsIn(text.substr(open + 1, close - open - 1))}};
}

Broken broken(const Mistake& mistake) {
    EXPECT_EQ(occurrences(rightScript(), mistake.find), mistake.times) << mistake.find;
    std::string script = replaced(rightScript(), mistake.find, mistake.instead);
    if (!mistake.at.empty()) {
        const std::string unmarked = withoutBraces(mistake.at).script;
        EXPECT_EQ(occurrences(script, unmarked), 1u) << unmarked;
        script = replaced(script, unmarked, mistake.at);
    }
    return withoutBraces(script);
}

/// A setup as the script installs it, with its version before.
class SetupToCheck : public CCheckTest {
protected:
    SetupToCheck() {
        request.previous = folder.write(L"previous.xml", rightScript());
        request.payload = folder.makeDirectory(L"setup");
        const std::regex source("Source=\"([^\"]*)\"");
        for (std::sregex_iterator found(rightScript().begin(), rightScript().end(), source), end;
             found != end; ++found) {
            const std::string name = (*found)[1];
            folder.write(L"setup\\" + std::wstring(name.begin(), name.end()), name);
        }
    }

    CheckRequest request;
};

class AuthorsMistakesTest : public SetupToCheck, public testing::WithParamInterface<Mistake> {};
using RightScriptTest = SetupToCheck;

/// One mistake and all that is told for it: of what comes of a mistake nothing is.
struct Alone {
    std::string what;
    std::string find;
    std::string instead;
    std::string codes;
};

void PrintTo(const Alone& mistake, std::ostream* out) {
    *out << mistake.what;
}

const Alone alone[] = {
    {"a misspelt product", "Product", "Prodcut", "TZ201 "},
    {"a component that nobody refers to", R"(<ComponentRef Id="Menu"/>)", "", "TZ207 "},
    {"a misspelt reference", R"(<ComponentRef Id="Program"/>)", R"(<ComponentRef Id="Porgram"/>)",
     "TZ207 TZ209 "},
    {"a misspelt mode", R"(<Component Id="Program" )", R"(<Component Id="Program" On="instal" )",
     "TZ321 "},
    {"a fault in the one expression that reads a variable", "EDITION E PAID", "EDITION E 1",
     "TZ413 "},
    {"an integer in words that is read twice", R"(Id="MODERN" Type="int" Value="0")",
     R"(Id="MODERN" Type="int" Value="no")", "TZ415 "},
    {"a root in short above another key", R"(Action="create" Root="HKEY_LOCAL_MACHINE")",
     R"(Action="create" Root="HKLM")", "TZ326 "},
    {"a key that stays with those in it", R"(<ComponentRef Id="NoKeys"/>)", "", "TZ604 TZ207 "},
    {"a key made at uninstall with those in it", R"(<Component Id="Keys" On="installupgrade">)",
     R"(<Component Id="Keys">)", "TZ605 "},
    {"a path on a component", R"(<Component Id="Settings" )",
     R"(<Component Id="Settings" Path="C:\Lantern" )", "TZ311 "},
    {"a misspelt source", R"(Source="payload\manual.txt")", R"(Source="payload\manuel.txt")",
     "TZ521 "},
    {"a source of the author's machine", R"(Source="payload\lantern.ico")",
     R"(Source="C:\build\lantern.ico")", "TZ518 "},
    {"a program started behind a condition that may know of it",
     R"(<Fragment Id="Leave" On="uninstall">)",
     R"(<Condition Expression="HAS_SETTINGS E 1"><ShellExcute File="[DATA]..\sync.exe" Return="no"/>
        <ShellExcute File="[APPLICATIONROOTDIRECTORY]sync.exe" Return="no"/></Condition>
        <Fragment Id="Leave" On="uninstall">)",
     ""},
};

class AloneTest : public SetupToCheck, public testing::WithParamInterface<Alone> {};

/// A finding on a line, as an editor reads it.
std::string line(const Finding& finding) {
    return std::to_string(finding.place.line) + ":" + std::to_string(finding.place.column) + "+" +
           std::to_string(finding.place.length) + " " + narrow(finding.kind->code) + " " +
           narrow(finding.text) + " help: " + narrow(finding.help) + "\n";
}

std::string lines(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings)
        text += line(finding);
    return text;
}

/// Letters alone, as names of tests are made of: "a misspelt element" is AMisspeltElement.
template <class Row>
std::string testName(const testing::TestParamInfo<Row>& mistake) {
    std::string name;
    bool capital = true;
    for (const char letter : mistake.param.what) {
        if (isalnum(static_cast<unsigned char>(letter)))
            name += capital ? static_cast<char>(toupper(letter)) : letter;
        capital = letter == ' ' || letter == '-';
    }
    return name;
}

}  // namespace

TEST_F(RightScriptTest, HasNothingThatIsFound) {
    EXPECT_EQ(lines(check(rightScript(), request)), "");
}

TEST_P(AuthorsMistakesTest, IsFoundWithItsPlaceAndItsRemedy) {
    const Mistake& mistake = GetParam();
    const auto [script, place] = broken(mistake);
    const std::vector<Finding> findings = check(script, request);
    SCOPED_TRACE(lines(findings));

    const auto found = std::find_if(findings.begin(), findings.end(), [&](const Finding& finding) {
        return narrow(finding.kind->code) == mistake.code && finding.place == place;
    });
    ASSERT_NE(found, findings.end()) << mistake.code << " isn't told at " << place.line << ":"
                                     << place.column << "+" << place.length;
    EXPECT_FALSE(found->help.empty()) << "A finding tells how it is mended.";
    EXPECT_NE(narrow(found->help).find(mistake.help), std::string::npos) << mistake.help;

    std::set<std::string> errors;
    for (const Finding& finding : findings)
        if (finding.kind->severity == Severity::error)
            errors.insert(narrow(finding.kind->code));
    errors.erase(mistake.code);
    EXPECT_EQ(errors, mistake.alsoErrors);
}

INSTANTIATE_TEST_SUITE_P(Of, AuthorsMistakesTest, testing::ValuesIn(allMistakes()),
                         testName<Mistake>);

TEST_P(AloneTest, IsToldWithoutWhatComesOfIt) {
    const std::vector<Finding> findings =
        check(replaced(rightScript(), GetParam().find, GetParam().instead), request);
    std::string codes;
    for (const Finding& finding : findings)
        codes += narrow(finding.kind->code) + " ";
    EXPECT_EQ(codes, GetParam().codes) << lines(findings);
}

INSTANTIATE_TEST_SUITE_P(Of, AloneTest, testing::ValuesIn(alone), testName<Alone>);

// Those that a change of one place in this script can't bring about have tests of their own.
TEST(AuthorsMistakes, AreOfEveryKindThatIsToldButForThoseTestedElsewhere) {
    std::set<std::string> codes{"TZ102", "TZ107", "TZ216", "TZ523"};
    for (const Mistake& mistake : allMistakes())
        codes.insert(mistake.code);
    for (const FindingKind& kind : findingKinds())
        EXPECT_TRUE(codes.contains(narrow(kind.code))) << narrow(kind.code);
}

TEST_F(RightScriptTest, EndsHalfWayWhereWhatIsUsedIsGoneOrCannotBeMade) {
    const auto endsRun = [this](const std::string& find, const std::string& instead) {
        for (const Finding& finding : check(replaced(rightScript(), find, instead), request))
            if (finding.endsRun)
                return narrow(finding.kind->code);
        return std::string();
    };
    EXPECT_EQ(endsRun(R"(Name="lantern.ico")", "Name=\"" + std::string(260, 'x') + "\""), "TZ511");
    EXPECT_EQ(endsRun(R"(<Fragment Id="Farewell" On="uninstall">)",
                      R"(<Fragment Id="Farewell" On="uninstall"><CustomAction DllEntry="Late"
                         DllFile="[APPLICATIONROOTDIRECTORY]action.dll" Return="check"/>)"),
              "TZ525");
    EXPECT_EQ(endsRun(R"(<Fragment Id="Survey">)",
                      R"(<Fragment On="install"><CustomAction DllEntry="Early"
                         DllFile="[APPLICATIONROOTDIRECTORY]action.dll" Return="check"/></Fragment>
                         <Fragment Id="Survey">)"),
              "")
        << "The file may be there from an install before.";
}

TEST_F(RightScriptTest, IsToldOfItsFaultsInWholeSentences) {
    const auto textOf = [this](const std::string& find, const std::string& instead) {
        return narrow(check(replaced(rightScript(), find, instead), request).front().text);
    };
    EXPECT_EQ(
        textOf(R"(<Directory Id="DOC" Path="doc">)", R"(<Directory Id="DOC" Path="[DOC]doc">)"),
        "`Directory` `DOC` needs itself to be made.");
    EXPECT_EQ(textOf(R"(Value="640")", R"(Value="")"), "An empty text is no decimal number.");
    EXPECT_EQ(
        textOf(R"(<Directory Id="ProgramMenuFolder">)", R"(<Directory Id="ProgramMenusFolder">)"),
        "`ProgramMenusFolder` is no folder of the system, so what stands in it goes to a path "
        "relative to the working directory.");
}
