#include "expression/CStringVariable.h"

#include <gtest/gtest.h>

#include "expression/CVariableElement.h"
#include "support/ClassLayout.h"
#include "support/Heard.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

namespace {

class CStringVariableTest : public ScriptTest {
protected:
    CStringVariable& variable(const wchar_t* name) {
        return static_cast<CStringVariable&>(*context.findVariable(name));
    }
};

TEST_F(CStringVariableTest, ReadsNameAndTextFromItsElement) {
    ASSERT_TRUE(loadProduct("", "<Variable Id='V' Type='string' Value='[a]'/>"));

    EXPECT_EQ(variable(L"V").type, VARIABLE_STRING);
    EXPECT_STREQ(variable(L"V").getName(), L"V");
    EXPECT_EQ(variable(L"V").getString(), L"[a]");
    EXPECT_EQ(variable(L"V").element->getValueText(), L"[a]");
}

TEST_F(CStringVariableTest, IsWhatItsMakerSays) {
    const CStringVariable writable(nullptr, false);
    const CStringVariable constant(nullptr, true);

    EXPECT_EQ(writable.type, 1);
    EXPECT_FALSE(writable.isConst);
    EXPECT_TRUE(constant.isConst);
    EXPECT_EQ(constant.element, nullptr);
}

TEST_F(CStringVariableTest, AddsNothingToTheFieldsOfEveryVariable) {
    EXPECT_EQ(sizeof(CStringVariable), sizeof(CVariable));
    EXPECT_EQ(slotOf(&CStringVariable::setString), notVirtual);
}

TEST_F(CStringVariableTest, HasNoInteger) {
    ASSERT_TRUE(loadProduct("", "<Variable Id='V' Type='string' Value='12'/>"));

    EXPECT_EQ(thrownBy([&] { variable(L"V").getInt(); }), L"It doesn't support getInt method.");
}

TEST_F(CStringVariableTest, AssignedTextIsSeenByAllReaders) {
    ASSERT_TRUE(
        loadProduct("<InstallExecuteSequence><Fragment><Caution Title='#V'/></Fragment>"
                    "</InstallExecuteSequence>",
                    "<Variable Id='V' Type='string' Value='old'/>"));
    std::wstring given;

    variable(L"V").setString(L"new");

    EXPECT_EQ(variable(L"V").getString(), L"new");
    EXPECT_EQ(variable(L"V").element->getValueText(), L"new");
    EXPECT_TRUE(context.getVariable(given, L"V"));
    EXPECT_EQ(given, L"new");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(heardTitles(observer), std::vector<std::wstring>{L"new"});
}

TEST_F(CStringVariableTest, AssignmentLastsOnlyAsLongAsTheLoadedScript) {
    constexpr char script[] = "<Variable Id='V' Type='string' Value='old'/>";
    ASSERT_TRUE(loadProduct("", script));
    variable(L"V").setString(L"new");
    context.unload();

    ASSERT_TRUE(loadProduct("", script));

    EXPECT_EQ(variable(L"V").getString(), L"old");
}

TEST_F(CStringVariableTest, ConstOneCanBeReadButNotAssigned) {
    ASSERT_TRUE(
        loadProduct("<InstallExecuteSequence><Fragment><Caution Title='a #V'/></Fragment>"
                    "</InstallExecuteSequence>",
                    "<VariableConst Id='V' Type='string' Value='old'/>"));

    EXPECT_EQ(thrownBy([&] { variable(L"V").setString(L"new"); }),
              L"It can't assign value to a const variable.");

    EXPECT_EQ(run(), 0);
    EXPECT_EQ(heardTitles(observer), std::vector<std::wstring>{L"a old"});
}

// Nothing relies on it but whoever still holds the pointer.
TEST_F(CStringVariableTest, ElementOutlivesTheLoadedScript) {
    ASSERT_TRUE(loadProduct("", "<Variable Id='V' Type='string' Value='v'/>"));
    const CVariableElement* element = variable(L"V").element;

    context.unload();

    EXPECT_EQ(element->getValueText(), L"v");
}

TEST_F(CStringVariableTest, ElementWithoutAValueThrowsWhenRead) {
    const XmlDocumentPtr document = makeDocument();
    ASSERT_TRUE(parseDocument(*document, L"<Variable Id='V' Type='string'/>"));
    CVariableElement element(*getRootElement(*document), context);
    CStringVariable bare(&element, false);

    bare.setString(L"new");

    EXPECT_STREQ(bare.getName(), L"V");
    EXPECT_EQ(thrownBy([&] { bare.getString(); }), L"(Variable,V) can't get value attribute.");
}

}  // namespace
