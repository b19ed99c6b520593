#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <sstream>
#include <utility>
#include <vector>

#include "expression/CExpression.h"
#include "expression/CIntVariable.h"
#include "support/ScriptTest.h"

namespace {

/// A node of the tree that the grammar makes of an expression.
struct Node {
    std::wstring symbol;
    std::vector<Node> children;
};

/// Builds the tree of an expression whose symbols all stand between blanks, by recursive descent:
/// an operation of each level holds those of the tighter ones.
class Parser {
public:
    explicit Parser(const std::wstring& expression) : symbols(expression) { take(); }

    Node assignment() {
        Node left = leftGrouped(0);
        if (current != L"=")
            return left;
        take();
        return {L"=", {left, assignment()}};
    }

private:
    Node leftGrouped(size_t level) {
        static const std::vector<std::wstring> levels[] = {
            {L"OR"}, {L"AND"}, {L"E", L"NE"}, {L"L", L"G", L"LE", L"GE"}};
        if (level == std::size(levels))
            return term();
        Node left = leftGrouped(level + 1);
        while (std::ranges::count(levels[level], current)) {
            const std::wstring symbol = take();
            left = {symbol, {left, leftGrouped(level + 1)}};
        }
        return left;
    }

    Node term() {
        const std::wstring symbol = take();
        if (symbol == L"!")
            return {symbol, {term()}};
        if (symbol != L"(")
            return {symbol, {}};
        Node inner = assignment();
        take();
        return inner;
    }

    /// The current symbol; the next one is current then.
    std::wstring take() {
        std::wstring next;
        symbols >> next;
        return std::exchange(current, next);
    }

    std::wistringstream symbols;
    std::wstring current;
};

using Variables = std::map<std::wstring, int32_t>;

/// Works out a tree from its leaves on, with variables that are read when an operation needs them.
class Evaluator {
public:
    explicit Evaluator(Variables& variables) : variables(variables) {}

    /// Throws a message when a result is assigned to.
    bool truth(const Node& tree) { return valueOf(tree).read() != 0; }

private:
    struct Value {
        int32_t constant = 0;
        int32_t* variable = nullptr;
        int32_t read() const { return variable ? *variable : constant; }
    };

    Value valueOf(const Node& node) {
        if (node.children.empty())
            return {0, &variables.at(node.symbol)};
        const Value a = valueOf(node.children[0]);
        if (node.symbol == L"!")
            return {!a.read()};
        const Value b = valueOf(node.children[1]);
        if (node.symbol != L"=")
            return {compute(a.read(), node.symbol, b.read())};
        if (a.variable == nullptr)
            throw std::wstring(L"It can't be assignment in const operand.");
        *a.variable = b.read();
        return a;
    }

    static bool compute(int32_t a, const std::wstring& symbol, int32_t b) {
        return symbol == L"L"     ? a < b
               : symbol == L"G"   ? a > b
               : symbol == L"LE"  ? a <= b
               : symbol == L"GE"  ? a >= b
               : symbol == L"E"   ? a == b
               : symbol == L"NE"  ? a != b
               : symbol == L"AND" ? a && b
                                  : a || b;
    }

    Variables& variables;
};

class PrecedenceTest : public ScriptTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(loadProduct("", R"(<Variable Id='A' Type='int' Value=''/>
                                       <Variable Id='B' Type='int' Value=''/>
                                       <Variable Id='C' Type='int' Value=''/>)"));
    }

    CIntVariable& variable(const wchar_t* name) {
        return static_cast<CIntVariable&>(*context.findVariable(name));
    }

    /// What the expression makes of the variables' values: its own, or a failure, and theirs.
    std::wstring evaluated(const std::wstring& expression, const Variables& values) {
        for (const auto& [name, value] : values)
            variable(name.c_str()).setInt(value);
        const std::wstring outcome =
            outcomeOf([&] { return machine.evaluate(expression.c_str(), context); });
        return outcome + told({{L"A", variable(L"A").getInt()},
                               {L"B", variable(L"B").getInt()},
                               {L"C", variable(L"C").getInt()}});
    }

    /// The same by the grammar.
    static std::wstring expected(const std::wstring& expression, Variables values) {
        const Node tree = Parser(expression).assignment();
        const std::wstring outcome = outcomeOf([&] { return Evaluator(values).truth(tree); },
                                               L"\"" + expression + L"\" expression error:");
        return outcome + told(values);
    }

    template <class Evaluation>
    static std::wstring outcomeOf(Evaluation evaluation, const std::wstring& wrapper = {}) {
        try {
            return evaluation() ? L"true" : L"false";
        } catch (const std::wstring& message) {
            return wrapper + message;
        }
    }

    static std::wstring told(const Variables& values) {
        std::wstring text;
        for (const auto& [name, value] : values)
            text += L" " + name + L"=" + std::to_wstring(value);
        return text;
    }

    CExpression machine;
};

/// The form with "x" and "y" replaced by operators.
std::wstring fill(std::wstring form, const std::wstring& x, const std::wstring& y) {
    form.replace(form.find(L'x'), 1, x);
    return form.replace(form.find(L'y'), 1, y);
}

constexpr const wchar_t* operators[] = {L"L", L"G", L"E", L"LE", L"GE", L"NE", L"AND", L"OR", L"="};

constexpr const wchar_t* forms[] = {
    L"A x B y C",         L"( A x B ) y C",     L"A x ( B y C )",     L"( A x B y C )",
    L"! A x B y C",       L"A x ! B y C",       L"A x B y ! C",       L"! ! A x B y C",
    L"! ( A x B ) y C",   L"A x ! ( B y C )",   L"! ( A x B y C )",   L"A x ( ( B ) y C )",
    L"A x ( B = C ) y B", L"( A ) x ( B ) y C", L"A x ( B ) y ! ! C",
};

TEST_F(PrecedenceTest, EveryPairOfOperatorsGroupsAsTheGrammarTells) {
    for (const wchar_t* form : forms)
        for (const wchar_t* x : operators)
            for (const wchar_t* y : operators)
                for (int32_t values = 0; values < 27; ++values) {
                    const std::wstring expression = fill(form, x, y);
                    const Variables variables = {
                        {L"A", values / 9}, {L"B", values / 3 % 3}, {L"C", values % 3}};
                    ASSERT_EQ(evaluated(expression, variables), expected(expression, variables))
                        << expression << told(variables);
                }
}

}  // namespace
