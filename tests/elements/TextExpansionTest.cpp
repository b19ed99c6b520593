#include "elements/TextExpansion.h"

#include <gtest/gtest.h>

#include "support/ScriptTest.h"

namespace {

class TextExpansionTest : public ScriptTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(loadProduct(R"(<Directory Id='DIR' Path='C:\d'/>
                                   <Directory Id='A' Path='C:\a'/>
                                   <Directory Id='MARKS' Path='#MARKS'/>
                                   <Directory Id='EMPTY' Path=''/>)",
                                R"(<Variable Id='A' Type='string' Value='alpha'/>
                                   <VariableConst Id='B' Type='string' Value='beta'/>
                                   <Variable Id='A text' Type='string' Value='blank'/>
                                   <Variable Id='EMPTY' Type='string' Value=''/>
                                   <Variable Id='MARKS' Type='string' Value='[A]#B]'/>
                                   <Variable Id='NUMBER' Type='int' Value='5'/>)"));
    }

    /// The expanded text, or the message behind "failed: ". A failure must leave the text alone.
    std::wstring expand(const std::wstring& source) {
        std::wstring text = source;
        std::wstring message = L"of before";
        if (expandText(text, context, message))
            return text;
        EXPECT_EQ(text, source);
        return L"failed: " + message;
    }

    struct Case {
        const wchar_t* source;
        const wchar_t* result;
    };
};

TEST_F(TextExpansionTest, ReplacesReferencesByTheirValues) {
    for (const Case& row : std::initializer_list<Case>{
             {L"", L""},
             {L"plain text\\ with 'all' {else}", L"plain text\\ with 'all' {else}"},
             {L"#A", L"alpha"},
             {L"#B", L"beta"},
             {L"a#A", L"aalpha"},
             {L"#A#B", L"alphabeta"},
             {L"#A#B#A", L"alphabetaalpha"},
             {L"#A text", L"blank"},
             {L"#EMPTY", L""},
             {L"[DIR]", L"C:\\d\\"},
             {L"a[DIR]b", L"aC:\\d\\b"},
             {L"[DIR][A]", L"C:\\d\\C:\\a\\"},
             {L"[EMPTY]", L""},
             {L"[DIR]#A", L"C:\\d\\alpha"},
             {L"#A[DIR]tail", L"alphaC:\\d\\tail"},
         })
        EXPECT_EQ(expand(row.source), row.result) << row.source;
}

TEST_F(TextExpansionTest, NumberSignEscapesTheMarks) {
    for (const Case& row : std::initializer_list<Case>{
             {L"##", L"#"},
             {L"#[", L"["},
             {L"#]", L"]"},
             {L"a##b", L"a#b"},
             {L"#[x#]", L"[x]"},
             {L"####", L"##"},
             {L"###A", L"#alpha"},
             {L"##A", L"#A"},
             {L"#A##", L"alpha#"},
             {L"#A#[B#]", L"alpha[B]"},
             {L"#[DIR#][DIR]##", L"[DIR]C:\\d\\#"},
         })
        EXPECT_EQ(expand(row.source), row.result) << row.source;
}

TEST_F(TextExpansionTest, ValuesAreNotScannedAgain) {
    EXPECT_EQ(expand(L"#MARKS"), L"[A]#B]");
    EXPECT_EQ(expand(L"[MARKS]#A"), L"[A]#B]\\alpha");
}

TEST_F(TextExpansionTest, ClosingBracketNeedsAnOpenReference) {
    for (const wchar_t* source : {L"]", L"a]b", L"[DIR]]", L"##]", L"#A[DIR]a]", L"][UNKNOWN]"})
        EXPECT_EQ(expand(source), L"failed: ] can't be the first") << source;
}

TEST_F(TextExpansionTest, ReferenceThatCanNotBeResolvedFailsWithItsSource) {
    for (const Case& row : std::initializer_list<Case>{
             // Directories.
             {L"[", L"failed: [ mismatch."},
             {L"[A", L"failed: [A mismatch."},
             {L"[]", L"failed: [] mismatch."},
             {L"[[", L"failed: [[ mismatch."},
             {L"[#", L"failed: [# mismatch."},
             {L"[A#", L"failed: [A# mismatch."},
             {L"[A[B]]", L"failed: [A[ mismatch."},
             {L"[UNKNOWN]", L"failed: [UNKNOWN] mismatch."},
             {L"[dir]", L"failed: [dir] mismatch."},
             {L"[DIR ]", L"failed: [DIR ] mismatch."},
             // Variables.
             {L"#", L"failed: # mismatch."},
             {L"a#", L"failed: # mismatch."},
             {L"#A]", L"failed: #A] mismatch."},
             {L"#UNKNOWN", L"failed: #UNKNOWN mismatch."},
             {L"#UNKNOWN#", L"failed: #UNKNOWN# mismatch."},
             {L"#UNKNOWN[DIR]", L"failed: #UNKNOWN[ mismatch."},
             {L"#a", L"failed: #a mismatch."},
             {L"#A more", L"failed: #A more mismatch."},
             {L"#NUMBER", L"failed: #NUMBER mismatch."},
             {L"#OS_BIT", L"failed: #OS_BIT mismatch."},
             // A mark that ends one reference opens the next.
             {L"#A#", L"failed: # mismatch."},
             {L"#A[", L"failed: [ mismatch."},
             {L"###", L"failed: # mismatch."},
             // The first failure ends it.
             {L"text[X][Y]", L"failed: [X] mismatch."},
             {L"#A#X[Y", L"failed: #X[ mismatch."},
         })
        EXPECT_EQ(expand(row.source), row.result) << row.source;
}

TEST_F(TextExpansionTest, ResolvedReferenceEmptiesTheMessage) {
    for (std::wstring source : {L"##", L"#A", L"a[DIR]b"}) {
        std::wstring message = L"of before";
        EXPECT_TRUE(expandText(source, context, message));
        EXPECT_EQ(message, L"");
    }
}

TEST_F(TextExpansionTest, FailedLookUpKeepsItsOwnReport) {
    expand(L"[UNKNOWN]");
    EXPECT_EQ(errorMessage(), L"Get directory error:can't get the UNKNOWN directory");

    expand(L"#UNKNOWN");
    EXPECT_EQ(context.getLastError(), L"UNKNOWN variable is no exist.");

    expand(L"#OS_BIT");
    EXPECT_EQ(context.getLastError(), L"It doesn't support getString method.");
}

TEST_F(TextExpansionTest, MisplacedMarkIsFoundWithoutALookUp) {
    expand(L"[]");
    expand(L"[UNKNOWN");
    expand(L"[UNKNOWN#");
    expand(L"#UNKNOWN]");

    EXPECT_EQ(errorMessage(), L"");
    EXPECT_EQ(context.getLastError(), L"");
}

}  // namespace
