#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "elements/TextExpansion.h"
#include "expression/CExpression.h"
#include "support/Random.h"
#include "support/ScriptTest.h"
#include "support/Thrown.h"

namespace {

constexpr int mutants = 50000;  // of each kind of text
constexpr size_t longest = 200;

/// Changes a few characters of a text at random.
class Mutator {
public:
    explicit Mutator(const wchar_t* telling) : telling(telling) {}

    std::wstring mutateOneOf(const std::vector<std::wstring>& texts) {
        std::wstring text = random.pick(texts);
        for (size_t changes = 1 + random.below(6); changes > 0; --changes)
            change(text);
        if (text.size() > longest)
            text.resize(longest);
        return text;
    }

private:
    void change(std::wstring& text) {
        const size_t place = random.below(text.size() + 1);
        const size_t length = std::min(random.below(8), text.size() - place);
        switch (random.below(6)) {
            case 0:
                text.erase(place, length);
                break;
            case 1:
                text.insert(random.below(text.size() + 1), text.substr(place, length));
                break;
            case 2:
                text.insert(place, 1, random.pick(telling));
                break;
            case 3:
                text.insert(place, 1, anyUnit());
                break;
            case 4:
                text.replace(place, std::min<size_t>(length, 1), 1, random.pick(telling));
                break;
            default:
                flipBit(text, place);
        }
    }

    void flipBit(std::wstring& text, size_t place) {
        if (place < text.size())
            text[place] = static_cast<wchar_t>(text[place] ^ (1U << random.below(16)));
        if (place < text.size() && text[place] == L'\0')
            text.erase(place);
    }

    wchar_t anyUnit() { return static_cast<wchar_t>(1 + random.below(0xFFFF)); }

    Random random{19991231};
    const std::wstring telling;  // the characters that mean something
};

/// A message that quotes a part of its source between two fixed texts.
struct QuotingMessage {
    const wchar_t* before;
    const wchar_t* behind;
};

bool quotes(const QuotingMessage& told, std::wstring message, const std::wstring& source) {
    const std::wstring behind = told.behind;
    if (!message.starts_with(told.before) || !message.ends_with(behind))
        return false;
    message.erase(message.size() - behind.size());
    const std::wstring quoted = message.substr(std::wstring(told.before).size());
    return quoted == L"#" || (!quoted.empty() && source.find(quoted) != std::wstring::npos);
}

const QuotingMessage quotingMessages[] = {
    {L"Grammar error:The symbol ", L" can't be in front of operand."},
    {L"Grammar error:The symbol ", L" can't be in front of '('."},
    {L"Grammar error:The symbol ", L" can't be in front of unary operation."},
    {L"Grammar error:The symbol ", L" can't be in front of ')'."},
    {L"Grammar error:The symbol ", L" can't be in front of end."},
    {L"Grammar error:The symbol ", L" can't be in front of binary operation."},
    {L"", L" operand naming is legal."},
    {L"Reference undefined variable:", L""},
};

constexpr wchar_t unreadable[] = L"(Variable,BAD) is not int variable.";

const std::wstring plainMessages[] = {
    L" '(' didn't math ')'.",
    L" '(' didn't math ')' int precede.",
    L"It can't compare between different type variables.",
    L"It can't assign value between different type operands.",
    L"It can't assign value between operands with different type.",
    L"It can't be assignment in const operand.",
    L"It can't assign value to a const variable.",
    unreadable,
};

bool isTold(const std::wstring& message, const std::wstring& source) {
    return std::count(std::begin(plainMessages), std::end(plainMessages), message) > 0 ||
           std::any_of(std::begin(quotingMessages), std::end(quotingMessages),
                       [&](const QuotingMessage& told) { return quotes(told, message, source); });
}

const std::vector<std::wstring> expressions = {
    L"OS_BIT E 64 AND ( ! A OR B GE 3 )",
    L"A = B = 3",
    L"( ( A ) )",
    L"! ! S",
    L"(A)AND(B)",
    L"A L B L 1 G -2147483649",
    L"S E T OR S NE T",
    L"S = T",
    L"N = 1 E 1",
    L"BAD E 1 AND A",
    L"OS_BIT = 32",
    L"A LE B AND (B = 007) GE 99999999999",
    L"((((((((((1))))))))))",
    L"!!!!!!!!!!A",
    L"A=B=A=B=A=B",
    L"  A   E   B  ",
    L"A != B == 1",
    L"",
};

const std::vector<std::wstring> attributeTexts = {
    L"#A",      L"#A#B",       L"#A[DIR]tail",
    L"[DIR]#A", L"##",         L"a##b",
    L"#[x#]",   L"[DIR]\\a.b", L"#A text",
    L"[A[B]]",  L"[]",         L"[UNKNOWN]",
    L"#OS_BIT", L"#A#",        L"[ProgramFilesFolder]x",
    L"plain",   L"[DIR][DIR]", L"",
};

/// "] can't be the first", or the source of a reference and " mismatch.".
bool isToldOfReference(const std::wstring& message, const std::wstring& source) {
    if (message == L"] can't be the first")
        return source.find(L']') != std::wstring::npos;
    return quotes({L"", L" mismatch."}, message, source) &&
           (message.front() == L'#' || message.front() == L'[');
}

class MutationTest : public ScriptTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(loadProduct("<Directory Id='DIR' Path='C:\\d'/>",
                                "<Variable Id='A' Type='int' Value='1'/>"
                                "<Variable Id='B' Type='int' Value='5'/>"
                                "<Variable Id='N' Type='int' Value='-5'/>"
                                "<Variable Id='BAD' Type='int' Value='1 2'/>"
                                "<Variable Id='S' Type='string' Value='abc'/>"
                                "<VariableConst Id='T' Type='string' Value='abcd'/>"
                                "<Variable Id='A text' Type='string' Value='blank'/>"));
    }
};

TEST_F(MutationTest, ExpressionEndsInAResultOrAToldMessage) {
    Mutator mutator(L"()!=# LGENADORSTB0189-\t\"");
    CExpression machine;
    size_t results = 0;
    for (int number = 0; number < mutants; ++number) {
        const std::wstring source = mutator.mutateOneOf(expressions);
        SCOPED_TRACE(testing::PrintToString(source));
        const std::wstring quotation = L"\"" + source + L"\" expression error:";

        const std::wstring message = thrownBy([&] { machine.evaluate(source.c_str(), context); });

        // What fails as the result is asked for its truth doesn't quote the expression.
        const bool isUnreadable = message == unreadable && source.find(L"BAD") != source.npos;
        if (message == L"<nothing>" || isUnreadable)
            ++results;
        else
            ASSERT_TRUE(message.starts_with(quotation) &&
                        isTold(message.substr(quotation.size()), source))
                << testing::PrintToString(message);
    }
    EXPECT_GT(results, 1000u);
    EXPECT_LT(results, mutants - 1000u);
}

TEST_F(MutationTest, AttributeTextIsExpandedOrFailsWithAToldMessage) {
    Mutator mutator(L"#[]ABDIRtext\\ _");
    size_t results = 0;
    for (int number = 0; number < mutants; ++number) {
        const std::wstring source = mutator.mutateOneOf(attributeTexts);
        SCOPED_TRACE(testing::PrintToString(source));
        std::wstring text = source;
        std::wstring message;

        if (expandText(text, context, message)) {
            ++results;
            ASSERT_EQ(message, L"");
        } else {
            ASSERT_EQ(text, source);
            ASSERT_TRUE(isToldOfReference(message, source)) << testing::PrintToString(message);
        }
    }
    EXPECT_GT(results, 1000u);
    EXPECT_LT(results, mutants - 1000u);
}

}  // namespace
