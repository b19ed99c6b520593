#include "support/NaiveEvaluator.h"

#include <algorithm>
#include <cwchar>
#include <map>
#include <sstream>

namespace {

struct Token {
    std::wstring text;
    bool isOperand;
};

/// Looser operators have higher levels.
const std::map<std::wstring, int> levels = {
    {L"L", 1},  {L"G", 1},   {L"LE", 1}, {L"GE", 1}, {L"E", 2},
    {L"NE", 2}, {L"AND", 3}, {L"OR", 4}, {L"=", 5},
};
constexpr int loosest = 5;

bool isWordOperator(const std::wstring& word) {
    return word != L"=" && levels.count(word) > 0;
}

bool isReserved(const std::wstring& text) {
    return levels.count(text) > 0 || text == L"(" || text == L")" || text == L"!" || text == L"#";
}

std::vector<Token> cutWord(const std::wstring& word) {
    if (isWordOperator(word))
        return {{word, false}};
    std::vector<Token> tokens;
    bool openName = false;
    for (const wchar_t character : word) {
        const bool isDelimiter = std::wstring(L"()!=").find(character) != std::wstring::npos;
        if (isDelimiter || !openName)
            tokens.push_back({std::wstring(1, character), !isDelimiter});
        else
            tokens.back().text += character;
        openName = !isDelimiter;
    }
    return tokens;
}

/// The symbols of the expression, and the one that ends it.
std::vector<Token> cut(const std::wstring& expression) {
    std::vector<Token> tokens;
    std::wistringstream words(expression);
    for (std::wstring word; std::getline(words, word, L' ');)
        for (const Token& token : cutWord(word))
            tokens.push_back(token);
    tokens.push_back({L"#", false});
    return tokens;
}

bool isInteger(const std::wstring& text) {
    const std::wstring digits = text.substr(text.rfind(L'-', 0) == 0 ? 1 : 0);
    return !digits.empty() && digits.find_first_not_of(L"0123456789") == std::wstring::npos;
}

int32_t toInteger(const std::wstring& text) {
    return static_cast<int32_t>(
        std::clamp(std::wcstod(text.c_str(), nullptr), -2147483648.0, 2147483647.0));
}

/// Reads and works out one expression. A symbol is checked when it is first looked at. An operation
/// is carried out no sooner than when the symbol behind its last operand has been looked at, so
/// that a misplaced symbol goes before a failing operation.
class Reader {
public:
    Reader(const std::wstring& expression, std::vector<NaiveVariable>& variables)
        : tokens(cut(expression)), variables(variables) {}

    /// A number, or a variable that is looked at when it is used.
    struct Value {
        int32_t number = 0;
        NaiveVariable* variable = nullptr;

        bool isInt() const { return variable == nullptr || variable->isInt; }
    };

    Value readAll() {
        const Value value = readExpression(loosest);
        if (look().text == L")") {
            take();
            look();
            throw std::wstring(L" '(' didn't math ')' int precede.");
        }
        return value;
    }

    static bool isTrue(const Value& value) {
        return value.isInt() ? numberOf(value) != 0 : !value.variable->text.empty();
    }

private:
    const Token& look() {
        if (checked <= place)
            check(tokens[place]);
        checked = place + 1;
        return tokens[place];
    }

    Token take() {
        look();
        previous = tokens[place];
        return tokens[place++];
    }

    void check(const Token& token) const {
        if (token.isOperand && isReserved(token.text))
            throw token.text + L" operand naming is legal.";
        const bool startsTerm = token.isOperand || token.text == L"(" || token.text == L"!";
        const bool behindTerm = previous.isOperand || previous.text == L")";
        if (startsTerm == behindTerm)
            throw L"Grammar error:The symbol " + previous.text + L" can't be in front of " +
                kindOf(token) + L".";
    }

    static std::wstring kindOf(const Token& token) {
        if (token.isOperand)
            return L"operand";
        if (token.text == L"(" || token.text == L")")
            return L"'" + token.text + L"'";
        if (token.text == L"#")
            return L"end";
        return token.text == L"!" ? L"unary operation" : L"binary operation";
    }

    /// Reads as far as the operators are of the level or of a tighter one.
    Value readExpression(int level) {
        Value left = readTerm();
        while (true) {
            const auto found = levels.find(look().text);
            if (found == levels.end() || found->second > level)
                return left;
            const std::wstring symbol = take().text;
            const bool fromTheRight = symbol == L"=";
            const Value right = readExpression(fromTheRight ? found->second : found->second - 1);
            left = apply(symbol, left, right);
        }
    }

    Value readTerm() {
        const Token token = take();
        if (token.isOperand)
            return makeOperand(token.text);
        if (token.text == L"!") {
            const Value negated = readTerm();
            look();
            return {isTrue(negated) ? 0 : 1};
        }
        const Value group = readExpression(loosest);
        if (look().text != L")")
            throw std::wstring(L" '(' didn't math ')'.");
        take();
        return group;
    }

    Value makeOperand(const std::wstring& text) {
        if (isInteger(text))
            return {toInteger(text)};
        NaiveVariable* variable = findNaive(variables, text);
        if (variable == nullptr)
            throw L"Reference undefined variable:" + text;
        return {0, variable};
    }

    static int32_t numberOf(const Value& value) {
        if (value.variable == nullptr)
            return value.number;
        const NaiveVariable& variable = *value.variable;
        if (!isInteger(variable.text))
            throw(variable.isConst ? L"(VariableConst," : L"(Variable,") + variable.name +
                L") is not int variable.";
        return toInteger(variable.text);
    }

    static Value apply(const std::wstring& symbol, const Value& left, const Value& right) {
        if (symbol == L"=")
            return assign(left, right);
        if (symbol == L"AND")
            return {isTrue(left) && isTrue(right)};
        if (symbol == L"OR")
            return {isTrue(left) || isTrue(right)};
        const int order = compare(left, right);
        if (symbol == L"E" || symbol == L"NE")
            return {(order == 0) == (symbol == L"E")};
        const bool orEqual = symbol.size() == 2;
        return {(orEqual && order == 0) || (symbol[0] == L'L' ? order < 0 : order > 0)};
    }

    /// Below, at or above 0, as the left value is.
    static int compare(const Value& left, const Value& right) {
        if (left.isInt() != right.isInt())
            throw std::wstring(L"It can't compare between different type variables.");
        if (left.isInt()) {
            const int32_t rightNumber = numberOf(right);
            const int32_t leftNumber = numberOf(left);
            return (leftNumber > rightNumber) - (leftNumber < rightNumber);
        }
        const std::wstring& a = left.variable->text;
        const std::wstring& b = right.variable->text;
        return std::u16string(a.begin(), a.end()).compare(std::u16string(b.begin(), b.end()));
    }

    static Value assign(const Value& left, const Value& right) {
        if (left.isInt() != right.isInt())
            throw std::wstring(
                left.isInt() ? L"It can't assign value between different type operands."
                             : L"It can't assign value between operands with different type.");
        if (left.variable == nullptr)
            throw std::wstring(L"It can't be assignment in const operand.");
        const std::wstring text =
            left.isInt() ? std::to_wstring(numberOf(right)) : right.variable->text;
        if (left.variable->isConst)
            throw std::wstring(L"It can't assign value to a const variable.");
        left.variable->text = text;
        return left;
    }

    const std::vector<Token> tokens;
    std::vector<NaiveVariable>& variables;
    Token previous = {L"#", false};
    size_t place = 0;
    size_t checked = 0;
};

}  // namespace

NaiveVariable* findNaive(std::vector<NaiveVariable>& variables, const std::wstring& name) {
    const auto found = std::find_if(variables.begin(), variables.end(),
                                    [&](const NaiveVariable& row) { return row.name == name; });
    return found == variables.end() ? nullptr : &*found;
}

NaiveOutcome evaluateNaively(const std::wstring& expression,
                             std::vector<NaiveVariable>& variables) {
    Reader::Value value;
    try {
        value = Reader(expression, variables).readAll();
    } catch (const std::wstring& message) {
        return {false, L"\"" + expression + L"\" expression error:" + message};
    }
    try {
        return {Reader::isTrue(value), {}};
    } catch (const std::wstring& message) {
        return {false, message};
    }
}
