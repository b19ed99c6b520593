#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "expression/CExpression.h"
#include "expression/CVariableElement.h"
#include "support/NaiveEvaluator.h"
#include "support/Random.h"
#include "support/ScriptTest.h"
#include "support/Text.h"

namespace {

using Symbols = std::vector<std::wstring>;

const std::vector<NaiveVariable> scriptVariables = {
    {L"A", true, false, L"1"},
    {L"B", true, false, L"-7"},
    {L"N-1", true, false, L"2147483647"},
    {L"ZERO", true, true, L"0"},
    {L"BAD", true, false, L"1 2"},
    {L"WORSE", true, true, L""},
    {L"S", false, false, L"abc"},
    {L"T", false, false, L"abcd"},
    {L"\"q\"", false, false, L"Abc"},
    {L"EMPTY", false, false, L""},
    {L"HIGH", false, true, L"abc\xFFE0"},
    {L"PAIR", false, true, L"abc\xD83D\xDE00"},
    {L"A", false, false, L"behind the first of that name"},
    {L"OS_BIT", false, false, L"behind the one of the system"},
    {L"AND", true, false, L"1"},
    {L"5", true, false, L"6"},
};

const Symbols binaryOperators = {L"L", L"G", L"E", L"LE", L"GE", L"NE", L"AND", L"OR"};

const Symbols delimiterSymbols = {L"(", L")", L"!", L"="};

const Symbols integers = {L"A",  L"B",   L"N-1",        L"ZERO",        L"OS_BIT", L"0", L"1",
                          L"-7", L"007", L"2147483648", L"-2147483649", L"64",     L"5", L"-0"};
const Symbols texts = {L"S", L"T", L"\"q\"", L"EMPTY", L"HIGH", L"PAIR"};
const Symbols mixture = {L"A", L"S", L"BAD", L"WORSE", L"1", L"HIGH", L"OS_BIT", L"B", L"0"};

// Texts that are easily taken for something else.
const Symbols oddities = {
    L"#",   L"-",    L"--5",  L"+5",      L"5a",     L"0x10", L"le",   L"Or", L"and", L"LEVEL",
    L"A-1", L"B\tA", L"A\nE", L"UNKNOWN", L"E(B)",   L"A#",   L"#A",   L"\"", L"!=",  L"==",
    L"()",  L"AND(", L")OR",  L"A\xA0",   L"\xDE00", L"=A=",  L"!!B!", L"1E", L"a"};

/// Makes expressions: valid ones by the grammar, and worse ones.
class ExpressionMaker {
public:
    Symbols makeValid() {
        const size_t kind = random.below(5);
        operands = kind == 0 ? &texts : kind == 1 ? &mixture : &integers;
        Symbols symbols;
        addExpression(symbols, 3);
        return symbols;
    }

    Symbols makeDamaged() {
        Symbols symbols = makeValid();
        for (size_t changes = 1 + random.below(3); changes > 0 && !symbols.empty(); --changes)
            change(symbols);
        return symbols;
    }

    Symbols makeSoup() {
        Symbols symbols(random.below(8));
        std::generate(symbols.begin(), symbols.end(), [this] { return anySymbol(); });
        return symbols;
    }

    std::wstring makeCharacters() {
        constexpr std::wstring_view characters = L"ABST ()!=#LGENOR01-\t ";
        std::wstring text(random.below(12), L' ');
        std::generate(text.begin(), text.end(), [&] { return random.pick(characters); });
        return text;
    }

    /// Writes the symbols with blanks where they are needed, and some where they aren't.
    std::wstring write(const Symbols& symbols) {
        std::wstring text(random.below(2), L' ');
        bool behindName = false;
        bool behindWordOperator = false;
        for (const std::wstring& symbol : symbols) {
            const bool isWordOperator = contains(binaryOperators, symbol);
            const bool isName = !isWordOperator && !contains(delimiterSymbols, symbol);
            const bool needsBlank = behindWordOperator || isWordOperator || (behindName && isName);
            text.append(needsBlank + (random.percent(30) ? random.below(3) : 0), L' ');
            text += symbol;
            behindName = isName;
            behindWordOperator = isWordOperator;
        }
        return text.append(random.below(2), L' ');
    }

    /// Writes them with blanks wherever chance puts them.
    std::wstring writeCarelessly(const Symbols& symbols) {
        std::wstring text;
        for (const std::wstring& symbol : symbols)
            text += symbol + std::wstring(random.percent(85) ? 1 : 0, L' ');
        return text;
    }

private:
    static bool contains(const Symbols& symbols, const std::wstring& symbol) {
        return std::find(symbols.begin(), symbols.end(), symbol) != symbols.end();
    }

    void addExpression(Symbols& symbols, size_t depth) {
        if (random.percent(25)) {
            symbols.insert(symbols.end(), {random.pick(*operands), L"="});
            return addExpression(symbols, depth);
        }
        addTerm(symbols, depth);
        while (random.percent(45)) {
            symbols.push_back(random.percent(3) ? L"=" : random.pick(binaryOperators));
            addTerm(symbols, depth);
        }
    }

    void addTerm(Symbols& symbols, size_t depth) {
        while (random.percent(15))
            symbols.push_back(L"!");
        if (depth == 0 || random.percent(70))
            return symbols.push_back(random.pick(*operands));
        symbols.push_back(L"(");
        addExpression(symbols, depth - 1);
        symbols.push_back(L")");
    }

    void change(Symbols& symbols) {
        const auto place = symbols.begin() + static_cast<ptrdiff_t>(random.below(symbols.size()));
        switch (random.below(4)) {
            case 0:
                symbols.erase(place);
                break;
            case 1:
                symbols.insert(place, anySymbol());
                break;
            case 2:
                *place = anySymbol();
                break;
            default:
                std::swap(*place, symbols.back());
        }
    }

    std::wstring anySymbol() {
        switch (random.below(5)) {
            case 0:
                return random.pick(binaryOperators);
            case 1:
                return random.pick(delimiterSymbols);
            case 2:
                return random.pick(oddities);
            case 3:
                return random.pick(integers);
            default:
                return random.pick(mixture);
        }
    }

    Random random{20240229};
    const Symbols* operands = &integers;
};

/// Compares CExpression with the naive evaluator: result, message and all variables afterwards.
class RandomExpressionTest : public ScriptTest {
protected:
    void SetUp() override {
        std::wstring xml = L"<Root>";
        for (const NaiveVariable& variable : scriptVariables)
            xml += (variable.isConst ? L"<VariableConst Id='" : L"<Variable Id='") + variable.name +
                   L"' Type='" + (variable.isInt ? L"int" : L"string") + L"' Value=''/>";
        ASSERT_TRUE(load(narrow(xml + L"<Product/></Root>")));
        for (const wchar_t* name : {L"OS_BIT", L"OS_MAJOR_VERSION", L"OS_MINOR_VERSION"})
            initial.push_back(
                {name, true, true, std::to_wstring(context.findVariable(name)->getInt())});
        initial.insert(initial.end(), scriptVariables.begin(), scriptVariables.end());
    }

    /// Compares on expressions of a kind, up to the first difference.
    template <class Make>
    void compareMany(Make make) {
        for (int number = 0; number < 6000; ++number) {
            const std::wstring expression = make();
            const std::wstring expected = workOutNaively(expression);
            ASSERT_EQ(workOut(expression), expected)
                << "expression " << number << ": " << testing::PrintToString(expression);
            messages.push_back(expected);
        }
    }

    /// How many expressions of those compared had this in what became of them.
    size_t countWith(const wchar_t* part) const {
        return static_cast<size_t>(std::count_if(
            messages.begin(), messages.end(),
            [part](const std::wstring& text) { return text.find(part) != std::wstring::npos; }));
    }

    ExpressionMaker maker;

private:
    std::wstring workOutNaively(const std::wstring& expression) {
        std::vector<NaiveVariable> variables = initial;
        const NaiveOutcome outcome = evaluateNaively(expression, variables);
        std::wstring told = describe(outcome);
        for (const NaiveVariable& variable : initial)
            told += L"; " + variable.name + L": " + findNaive(variables, variable.name)->text;
        return told;
    }

    std::wstring workOut(const std::wstring& expression) {
        for (const NaiveVariable& variable : initial)
            if (CVariableElement* element = elementOf(variable.name))
                element->setValueText(findNaive(initial, variable.name)->text);
        NaiveOutcome outcome = {};
        try {
            outcome.value = machine.evaluate(expression.c_str(), context);
        } catch (const std::wstring& message) {
            outcome.message = message;
        }
        std::wstring told = describe(outcome);
        for (const NaiveVariable& variable : initial)
            told += L"; " + variable.name + L": " + valueOf(variable.name);
        return told;
    }

    static std::wstring describe(const NaiveOutcome& outcome) {
        return outcome.message.empty() ? outcome.value ? L"true" : L"false" : outcome.message;
    }

    CVariableElement* elementOf(const std::wstring& name) const {
        return context.findVariable(name.c_str())->element;
    }

    std::wstring valueOf(const std::wstring& name) const {
        const CVariableElement* element = elementOf(name);
        return element ? element->getValueText()
                       : std::to_wstring(context.findVariable(name.c_str())->getInt());
    }

    std::vector<NaiveVariable> initial;  // with those of the system
    std::vector<std::wstring> messages;
    CExpression machine;  // one for all, to see that none leaves anything to the next
};

TEST_F(RandomExpressionTest, ValidExpressionsAreWorkedOut) {
    compareMany([this] { return maker.write(maker.makeValid()); });

    EXPECT_EQ(countWith(L"Grammar error:"), 0u);
    EXPECT_EQ(countWith(L" '(' didn't math"), 0u);
    EXPECT_GT(6000 - countWith(L"expression error:"), 3000u);
}

TEST_F(RandomExpressionTest, DamagedExpressionsFailAlike) {
    compareMany([this] { return maker.write(maker.makeDamaged()); });

    for (const wchar_t* message :
         {L" can't be in front of operand.", L" can't be in front of '('.",
          L" can't be in front of unary operation.", L" can't be in front of ')'.",
          L" can't be in front of end.", L" can't be in front of binary operation.",
          L" operand naming is legal.", L"Reference undefined variable:",
          L":It can't compare between different type variables.",
          L":It can't assign value between different type operands.",
          L":It can't assign value between operands with different type.",
          L":It can't be assignment in const operand.",
          L":It can't assign value to a const variable.", L":(Variable,BAD) is not int variable.",
          L":(VariableConst,WORSE) is not int variable.", L": '(' didn't math ')' int precede.",
          L": '(' didn't math ')'."})
        EXPECT_GT(countWith(message), 0u) << message;
}

TEST_F(RandomExpressionTest, BlanksAtRandomMatterAlike) {
    compareMany([this] { return maker.writeCarelessly(maker.makeValid()); });
}

TEST_F(RandomExpressionTest, SymbolsAtRandomFailAlike) {
    compareMany([this] { return maker.writeCarelessly(maker.makeSoup()); });
}

TEST_F(RandomExpressionTest, CharactersAtRandomFailAlike) {
    compareMany([this] { return maker.makeCharacters(); });
}

}  // namespace
