#include "expression/CVariableElement.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "support/ClassLayout.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

namespace {

/// A variable's element from a document of its own.
class CVariableElementTest : public ScriptTest {
protected:
    bool make(const wchar_t* xml) {
        EXPECT_TRUE(parseDocument(*document, xml));
        root = getRootElement(*document);
        element = std::make_unique<CVariableElement>(*root, context);
        return element->readDeclaredAttributes(context, message) &&
               element->resolveDerivedAttributes(context, message);
    }

    XmlDocumentPtr document = makeDocument();
    XmlHandlePtr root;
    std::unique_ptr<CVariableElement> element;
    std::wstring message;
};

TEST_F(CVariableElementTest, AddsNeitherFieldsNorVirtualOperationsToAnElement) {
    EXPECT_EQ(sizeof(CVariableElement), sizeof(CElement));
    EXPECT_EQ(slotOf(&CVariableElement::getVariableType), notVirtual);
    EXPECT_EQ(slotOf(&CVariableElement::getValueText), notVirtual);
    EXPECT_EQ(slotOf(&CVariableElement::setValueText), notVirtual);
}

TEST_F(CVariableElementTest, IsNamedByItsId) {
    EXPECT_TRUE(make(L"<VariableConst Id='V' Value='a' Type='string'/>"));

    EXPECT_STREQ(element->getId(), L"V");
    EXPECT_EQ(element->describe(), L"(VariableConst,V)");
}

TEST_F(CVariableElementTest, RequiresValueThenType) {
    constexpr std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"<Variable Id='V'/>", L"(Variable,V) cant get the require explicit Valueattribute."},
        {L"<Variable Id='V' Type='int'/>",
         L"(Variable,V) cant get the require explicit Valueattribute."},
        {L"<Variable Id='V' Value=''/>",
         L"(Variable,V) cant get the require explicit Typeattribute."},
        {L"<Variable Id='V' value='1' type='int'/>",
         L"(Variable,V) cant get the require explicit Valueattribute."}};
    for (const auto& [xml, failure] : rows) {
        EXPECT_FALSE(make(xml));
        EXPECT_EQ(message, failure);
    }
}

TEST_F(CVariableElementTest, DeclaresNothingButValueAndType) {
    ASSERT_TRUE(make(L"<Variable Id='V' Value='a' Type='string' On='install'/>"));
    std::vector<AttributeDeclaration> declared;
    std::vector<AttributeDeclaration> derived(1);

    element->getAttributes(declared);
    element->getDerivedAttributes(derived);

    ASSERT_EQ(declared.size(), 2u);
    EXPECT_STREQ(declared[0].name, L"Value");
    EXPECT_TRUE(declared[0].required);
    EXPECT_STREQ(declared[1].name, L"Type");
    EXPECT_TRUE(declared[1].required);
    EXPECT_TRUE(derived.empty());
}

TEST_F(CVariableElementTest, TextsStayLiteral) {
    ASSERT_TRUE(make(L"<Variable Id='V' Value='[X]#Y]' Type='#Z'/>"));
    AttributeRecord type;

    EXPECT_FALSE(element->isExpandable());
    EXPECT_EQ(element->getValueText(), L"[X]#Y]");
    ASSERT_TRUE(element->getAttribute(L"Type", type));
    EXPECT_EQ(type.value, L"#Z");
}

TEST_F(CVariableElementTest, TypeIsKnownByItsExactWord) {
    constexpr std::pair<const wchar_t*, int32_t> rows[] = {
        {L"string", 1}, {L"int", 2},     {L"String", 0}, {L"Int", 0},   {L"INT", 0}, {L"", 0},
        {L"int ", 0},   {L"integer", 0}, {L"strin", 0},  {L"[int]", 0}, {L"2", 0}};
    for (const auto& [word, type] : rows) {
        ASSERT_TRUE(make((std::wstring(L"<Variable Value='' Type='") + word + L"'/>").c_str()));
        EXPECT_EQ(element->getVariableType(), type) << testing::PrintToString(word);
    }
}

TEST_F(CVariableElementTest, ElementWithoutATypeIsOfNone) {
    EXPECT_FALSE(make(L"<Variable Value='1'/>"));

    EXPECT_EQ(element->getVariableType(), 0);
}

TEST_F(CVariableElementTest, ReadingAMissingValueThrows) {
    EXPECT_FALSE(make(L"<Variable Id='V' Type='string'/>"));

    EXPECT_EQ(thrownBy([&] { element->getValueText(); }),
              L"(Variable,V) can't get value attribute.");
}

TEST_F(CVariableElementTest, AssignmentToAMissingValueDoesNothing) {
    EXPECT_FALSE(make(L"<Variable Id='V' Type='string'/>"));
    AttributeRecord value;

    element->setValueText(L"new");

    EXPECT_FALSE(element->getAttribute(L"Value", value));
}

TEST_F(CVariableElementTest, ExchangeGivesTheOldTextForTheNew) {
    ASSERT_TRUE(make(L"<Variable Id='V' Value='old' Type='string'/>"));
    std::wstring text = L"new";

    element->exchangeValueText(text);

    EXPECT_EQ(text, L"old");
    EXPECT_EQ(element->getValueText(), L"new");
    EXPECT_EQ(element->getVariableType(), 1);
}

TEST_F(CVariableElementTest, AssignmentReplacesTheTextInMemoryAlone) {
    ASSERT_TRUE(make(L"<Variable Id='V' Value='old' Type='string'/>"));
    std::wstring written;

    element->setValueText(L"[new]");
    element->setValueText(L"newer");

    EXPECT_EQ(element->getValueText(), L"newer");
    EXPECT_EQ(element->getVariableType(), 1);
    ASSERT_TRUE(getAttributeText(root.get(), L"Value", written));
    EXPECT_EQ(written, L"old");
}

}  // namespace
