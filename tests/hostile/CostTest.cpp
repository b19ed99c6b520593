// Large scripts in the shapes that cost most: to load one, or to refuse it, takes work in
// proportion to its size.

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "engine/CContext.h"
#include "hostile/GuardedAllocation.h"
#include "logging/CSubject.h"
#include "support/Sweep.h"
#include "support/TestFolder.h"

namespace {

/// Of a script; all of them are a megabyte only where there is time.
const size_t wholeSize = sweepsAreWhole() ? 1'000'000 : 200'000;

std::string repeated(std::string_view text, size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    while (times-- != 0)
        all += text;
    return all;
}

/// As often as it takes for the whole size.
std::string filled(std::string_view text) {
    return repeated(text, wholeSize / text.size());
}

/// The same with a number in place of each "$".
std::string numbered(std::string_view text) {
    std::string all;
    for (size_t number = 0; all.size() < wholeSize; ++number)
        for (const char letter : text)
            letter == '$' ? all += std::to_string(number) : all += letter;
    return all;
}

std::string product(const std::string& content, const std::string& variables = {}) {
    return "<S>" + variables + "<Product>" + content + "</Product></S>";
}

/// A run that asks for the directory D.
std::string asking(const std::string& directories, const std::string& variables = {}) {
    return product(directories +
                       "<InstallExecuteSequence><Fragment><Caution Title='[D]'/></Fragment>"
                       "</InstallExecuteSequence>",
                   variables);
}

/// "D" with the text of "D1" many times over, that with the text of "D2", and so on.
std::string multiplying(size_t levels, size_t times, const std::string& last) {
    std::string all;
    for (size_t level = 0; level <= levels; ++level) {
        const std::string name = level == 0 ? "" : std::to_string(level);
        const std::string path =
            level == levels ? last : repeated("[D" + std::to_string(level + 1) + "]", times);
        all += "<Directory Id='D" + name + "' Path='" + path + "'/>";
    }
    return all;
}

std::string longNames() {
    std::string text;
    while (text.size() < wholeSize)
        text += "<e " + repeated("n", 3000) + std::to_string(text.size()) + "='' " +
                repeated("n", 3000) + "='' />";
    return text;
}

struct Shape {
    const char* name;
    std::string (*script)();
};

const Shape shapes[] = {
    {"AttributesOfOneElement", [] { return product("<a " + numbered("a$='' ") + "/>"); }},
    {"AttributesAsManyAsMayBe",
     [] {
         std::string all;
         while (all.size() < wholeSize) {
             all += "<a";
             for (size_t i = 0; i < maxElementAttributes; ++i)
                 all += " a" + std::to_string(i) + "=''";
             all += "/>";
         }
         return product(all);
     }},
    {"AttributesWithLongNames", [] { return product(longNames()); }},
    {"AttributesTwice", [] { return "<S " + filled("a='' "); }},
    {"Elements", [] { return product(filled("<a/>")); }},
    {"ElementsNested",
     [] { return product(filled(repeated("<a>", 254) + repeated("</a>", 254))); }},
    {"ElementsUnclosed", [] { return filled("<a>"); }},
    {"ElementsWithoutRoot", [] { return filled("<a/>"); }},
    {"EndTags", [] { return filled("</a>"); }},
    {"Angles", [] { return filled("<"); }},
    {"Name", [] { return "<" + filled("n") + "/>"; }},
    {"NamesOfTwoTags", [] { return product("<" + filled("n") + "></" + filled("n") + ">"); }},
    {"Text", [] { return product(filled("x")); }},
    {"TextOfBlanks", [] { return product(filled(" ")); }},
    {"TextOfLines", [] { return product(filled("\r\n")); }},
    {"TextOfAmpersands", [] { return product(filled("&")); }},
    {"TextOfReferences", [] { return product(filled("&#65;")); }},
    {"TextOfOpenReferences", [] { return product(filled("&#6")); }},
    {"TextOfOneReference", [] { return product("&#" + filled("0") + ";"); }},
    {"TextOfEntities", [] { return product(filled("&amp;")); }},
    {"TextOfUtf8", [] { return "<?xml?>" + product(filled("\xE4\xB8\xAD")); }},
    {"TextOfWrongBytes", [] { return "<?xml?>" + product(filled("\xFF\xC0")); }},
    {"Value", [] { return product("<a b='" + filled("v") + "'/>"); }},
    {"ValueWithoutEnd", [] { return "<S a='" + filled("v"); }},
    {"Comment", [] { return "<!--" + filled("-") + "-->" + product(""); }},
    {"CommentsOpen", [] { return filled("<!--"); }},
    {"Comments", [] { return product(filled("<!---->")); }},
    {"CharacterData", [] { return product("<![CDATA[" + filled("]") + "]]>"); }},
    {"CharacterDatas", [] { return product(filled("<![CDATA[]]>")); }},
    {"Declaration", [] { return "<?xml " + filled("version='' ") + "?>" + product(""); }},
    {"Declarations", [] { return filled("<?xml?>") + product(""); }},
    {"DocumentType", [] { return "<!DOCTYPE S [" + filled("<!ENTITY a 'b'>") + "]>"; }},
    {"Blanks", [] { return filled(" ") + product(""); }},
    {"ByteOrderMarks", [] { return "<?xml?>" + filled("\xEF\xBB\xBF") + product(""); }},
    {"Variables", [] { return product("", numbered("<Variable Id='a$' Type='int' Value='1'/>")); }},
    {"VariablesOfUnknownType",
     [] { return product("", filled("<Variable Id='a' Type='' Value=''/>")); }},
    {"VariablesOfOneName",
     [] { return product("", filled("<Variable Id='a' Type='string' Value='x'/>")); }},
    {"VariableWithoutType", [] { return product("", filled("<Variable/>")); }},
    {"Products", [] { return "<S>" + filled("<Product/>") + "</S>"; }},
    {"Directories", [] { return asking(numbered("<Directory Id='D$' Path='p'/>")); }},
    {"DirectoriesOfOneId", [] { return asking(filled("<Directory Id='D' Path='p'/>")); }},
    {"DirectoriesInAChain",
     [] {
         return asking("<Directory Id='D' Path='[D0]'/>" +
                       numbered("<Directory Id='D$' Path='[D0$]'/>"));
     }},
    {"DirectoriesThatDouble", [] { return asking(multiplying(40, 2, "p")); }},
    {"DirectoriesThatDoubleALongText", [] { return asking(multiplying(40, 2, filled("p"))); }},
    {"DirectoriesThatDoubleNothing", [] { return asking(multiplying(40, 2, "")); }},
    {"DirectoriesThatMultiplyByThousands", [] { return asking(multiplying(20, 10'000, "p")); }},
    {"DirectoriesNestedInALongOne",
     [] {
         return asking("<Directory Path='" + filled("p") + "'>" +
                       repeated("<Directory Path='p'>", 240) + "<Directory Id='D'/>" +
                       repeated("</Directory>", 241));
     }},
    {"ReferencesToAFolder",
     [] { return asking("<Directory Id='D' Path='" + filled("[WindowsFolder]") + "'/>"); }},
    {"ReferencesToVariables",
     [] {
         return asking("<Directory Id='D' Path='" + filled("#V") + "'/>",
                       "<Variable Id='V' Type='string' Value='" + filled("v") + "'/>");
     }},
    {"ReferencesPastManyVariables",
     [] {
         return asking("<Directory Id='D' Path='" + filled("#V") + "'/>",
                       numbered("<Variable Id='a$' Type='int' Value='1'/>") +
                           "<Variable Id='V' Type='string' Value=''/>");
     }},
    {"EscapesInAText", [] { return asking("<Directory Id='D' Path='" + filled("##") + "'/>"); }},
    {"DefinitionsInAPlace",
     [] {
         return asking("<Directory Id='D' Path='" + filled("[E]") + "'/><Caution Title='" +
                       filled("t") + "'><Directory Id='E' Path='e'/></Caution>");
     }},
};

void PrintTo(const Shape& shape, std::ostream* out) {
    *out << shape.name;
}

class CostTest : public testing::TestWithParam<Shape> {};
INSTANTIATE_TEST_SUITE_P(Of, CostTest, testing::ValuesIn(shapes),
                         [](const auto& shape) { return shape.param.name; });

}  // namespace

TEST_P(CostTest, GrowsNoFasterThanTheScript) {
    const TestFolder folder;
    const std::string text = GetParam().script();
    const std::wstring file = folder.write(L"script.xml", text);
    CContext context;
    const GivenOut before = givenOutSoFar();

    const bool isLoaded = context.load(file.c_str());

    const GivenOut loaded = givenOutSoFar();
    EXPECT_LT(loaded.blocks - before.blocks, text.size());
    EXPECT_LT(loaded.bytes - before.bytes, 200 * text.size() + 100'000);
    if (!isLoaded)
        return;

    std::wstring path;
    context.getProduct()->getDirectory(path, L"D", &context);

    EXPECT_LT(givenOutSoFar().bytes - loaded.bytes, 30 * text.size() + 100'000'000);
}
