#include "author/check/ExpressionReading.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <iterator>
#include <limits>
#include <utility>

#include "author/check/Report.h"
#include "expression/CIntOperand.h"
#include "expression/CStringOperand.h"
#include "expression/CVariable.h"
#include "expression/Operations.h"
#include "expression/Symbols.h"
#include "system/TextParsing.h"

namespace {

constexpr wchar_t blank = L' ';
constexpr wchar_t assignment[] = L"=";

/// What other languages write, and the word for it.
struct ForeignOperator {
    std::wstring_view sign;
    const wchar_t* word;
};

constexpr ForeignOperator foreignOperators[] = {
    {L"==", L"E"},  {L"!=", L"NE"}, {L"<>", L"NE"}, {L">=", L"GE"},  {L"=>", L"GE"}, {L"<=", L"LE"},
    {L"=<", L"LE"}, {L">", L"G"},   {L"<", L"L"},   {L"&&", L"AND"}, {L"&", L"AND"}, {L"||", L"OR"},
    {L"|", L"OR"},  {L"EQ", L"E"},  {L"GT", L"G"},  {L"LT", L"L"},   {L"IS", L"E"},  {L"eq", L"E"},
    {L"gt", L"G"},  {L"lt", L"L"},  {L"is", L"E"},  {L"not", L"!"},  {L"NOT", L"!"}, {L"Not", L"!"},
};

/// How to say what stands at this place of an expression; empty for no operator of another
/// language. Signs are known in front of anything, words by themselves.
std::wstring foreignOperatorHelp(std::wstring_view expression, const ExpressionToken& token) {
    const std::wstring_view rest = expression.substr(std::min(token.from, expression.size()));
    for (const ForeignOperator& row : foreignOperators) {
        const bool isWord = std::iswalpha(row.sign.front()) != 0;
        if (isWord ? token.text != row.sign : !rest.starts_with(row.sign))
            continue;
        // What the language itself would cut isn't misspelt.
        const bool isCut =
            std::any_of(std::begin(delimiters), std::end(delimiters),
                        [&](const wchar_t* mark) { return row.sign.front() == *mark; });
        return isCut ? std::wstring(L"compare by ") + row.word + L"." : didYouMean(row.word);
    }
    return {};
}

bool isWordOperator(const std::wstring& word) {
    return std::any_of(wordOperators().begin(), wordOperators().end(),
                       [&](const wchar_t* text) { return word == text; });
}

void cutWord(const std::wstring& word, size_t from, std::vector<ExpressionToken>& tokens) {
    if (isWordOperator(word)) {
        tokens.push_back({word, from, true});
        return;
    }
    int32_t delimiter = -1;
    for (const wchar_t* rest = word.c_str(); rest && *rest;) {
        const size_t offset = from + static_cast<size_t>(rest - word.c_str());
        const WideText piece = nextPiece(rest, delimiters, std::size(delimiters), rest, delimiter);
        tokens.push_back({piece.get(), offset, delimiter >= 0});
    }
}

/// A text that operations can work with and that belongs to no script.
class FixedText final : public CVariable {
public:
    explicit FixedText(std::wstring text)
        : CVariable(VARIABLE_STRING, nullptr, true), text(std::move(text)) {}
    const wchar_t* getName() const override { return L""; }
    std::wstring getString() const override { return text; }

private:
    std::wstring text;
};

/// An operand as far as it is known. One that isn't stands for any value of its type.
struct Value {
    VariableType type = VARIABLE_INT;
    bool known = false;
    int32_t number = 0;
    std::wstring text;
    const ScriptVariable* variable = nullptr;  // null for a number and for a result
    ExpressionToken token;                     // what it came from

    bool isTrue() const { return type == VARIABLE_INT ? number != 0 : !text.empty(); }
};

class ExpressionReader {
public:
    ExpressionReader(const ScriptVariables& variables, NearMiss& nearMiss)
        : variables(variables), nearMiss(nearMiss) {}

    ExpressionResult read(const std::wstring& expression) {
        text = expression;
        operations.push_back({{endSymbol, expression.size(), true}, PRIORITY_END});
        try {
            for (const ExpressionToken& token : tokensOf(expression))
                take(token);
            take({endSymbol, expression.size(), true});
            if (!operands.empty())
                conclude(operands.back());
        } catch (const Stop&) {
        }
        return std::move(result);
    }

private:
    struct Stop {};
    struct Pending {
        ExpressionToken token;
        int32_t priority;
    };

    [[noreturn]] void stop(Fault fault, const ExpressionToken& token, std::wstring what,
                           std::wstring help = {}) {
        result.faults.push_back({fault, token.from, token.text.size(), true, std::move(what),
                                 std::move(help), noElement});
        throw Stop();
    }

    void take(const ExpressionToken& token) {
        std::wstring message;
        if (!token.isOperation && !checkOperandName(token.text.c_str(), message))
            stop(Fault::expressionGrammar, token,
                 inMarks(token.text) + L" stands where a number or a variable must stand.",
                 L"put blanks around " + inMarks(token.text) + L".");
        if (!checkGrammar(previous.c_str(), token.text.c_str(), message))
            stopAtGrammar(token);
        if (token.isOperation)
            takeOperation(token);
        else
            operands.push_back(valueOf(token));
        previous = token.text;
    }

    [[noreturn]] void stopAtGrammar(const ExpressionToken& token) {
        const bool atEnd = token.text == endSymbol && token.isOperation;
        if (atEnd && previous == endSymbol)
            stop(Fault::expressionGrammar, token, L"The expression is empty.");
        if (atEnd)
            stop(Fault::expressionGrammar, token,
                 L"The expression ends behind " + inMarks(previous) + L".");
        if (previous == endSymbol)
            stop(Fault::expressionGrammar, token,
                 L"The expression can't begin with " + inMarks(token.text) + L".");
        std::wstring help = foreignOperatorHelp(text, token);
        if (help.empty() && token.text == assignment && previous == assignment)
            help = L"compare by E.";
        if (help.empty() && getSymbolClass(token.text.c_str()) == SYMBOL_OPERAND)
            help = didYouMean(nearMiss.find(token.text, wordOperators()));
        if (help.empty() && getSymbolClass(previous.c_str()) == SYMBOL_OPERAND)
            help = didYouMean(nearMiss.find(previous, wordOperators()));
        stop(Fault::expressionGrammar, token,
             inMarks(token.text) + L" can't stand behind " + inMarks(previous) + L".", help);
    }

    Value valueOf(const ExpressionToken& token) {
        Value value;
        value.token = token;
        if (parseIntText(token.text.c_str(), value.number)) {
            value.known = true;
            checkRange(token, value.number);
            return value;
        }
        value.variable = variables.find(token.text);
        if (value.variable == nullptr) {
            std::wstring help = didYouMean(nearMiss.findAlike(token.text, variables.names()));
            if (help.empty())
                help = foreignOperatorHelp(text, token);
            if (help.empty())
                help = didYouMean(nearMiss.find(token.text, wordOperators()));
            if (help.empty() && token.text.find_first_of(L"\"'\t\n") != std::wstring::npos)
                help = L"there are no literal texts: compare with a VariableConst, on one line.";
            stop(Fault::expressionVariable, token,
                 inMarks(token.text) + L" is no variable of this script.", help);
        }
        value.type = value.variable->type;
        value.known = value.variable->hasKnownValue();
        if (value.type == VARIABLE_STRING)
            value.text = value.variable->value;
        else if (value.known && !parseIntText(value.variable->value.c_str(), value.number))
            value.known = false;
        return value;
    }

    /// The engine takes a number beyond the limits for the limit, and says nothing.
    void checkRange(const ExpressionToken& token, int32_t number) {
        using Limits = std::numeric_limits<int32_t>;
        if ((number != Limits::max() && number != Limits::min()) ||
            token.text == std::to_wstring(number))
            return;
        result.faults.push_back(
            {Fault::integerOutOfRange,
             token.from,
             token.text.size(),
             false,
             inMarks(token.text) + L" counts as " + std::to_wstring(number) + L".",
             {},
             noElement});
    }

    void takeOperation(const ExpressionToken& token) {
        const int32_t priority = createOperation(token.text.c_str())->getPriority();
        while (!operations.empty()) {
            Decision decision = Decision::match;
            try {
                decision = decide(operations.back().priority, priority);
            } catch (const std::wstring&) {
                stop(Fault::expressionGrammar, operations.back().token,
                     L"The `)` has no `(` in front of it.");
            }
            if (decision == Decision::push) {
                operations.push_back({token, priority});
                return;
            }
            const Pending top = operations.back();
            operations.pop_back();
            if (decision == Decision::match)
                return;
            reduce(top);
        }
    }

    void reduce(const Pending& operation) {
        switch (operation.priority) {
            case PRIORITY_NOT:
                return reduceNot(operation.token);
            case PRIORITY_ASSIGNMENT:
                return assign(operation.token);
            case PRIORITY_RELATION:
            case PRIORITY_EQUALITY:
                return compare(operation.token);
            case PRIORITY_AND:
            case PRIORITY_OR:
                return combine(operation.token);
            default:
                stop(Fault::expressionGrammar, operation.token,
                     inMarks(operation.token.text) + L" has no counterpart.");
        }
    }

    Value pop() {
        Value value = std::move(operands.back());
        operands.pop_back();
        return value;
    }

    void reduceNot(const ExpressionToken& token) {
        const Value a = pop();
        readValue(a, true);
        Value truth;
        truth.token = token;
        truth.known = a.known;
        truth.number = a.isTrue() ? 0 : 1;
        operands.push_back(truth);
    }

    void compare(const ExpressionToken& token) {
        const Value b = pop();
        const Value a = pop();
        if (a.type != b.type)
            stop(Fault::expressionTypes, token,
                 L"An integer and a text can't be compared: " + describe(a) + L" and " +
                     describe(b) + L".");
        readValue(a, true);
        readValue(b, true);
        operands.push_back(computed(token, a, b, a.known && b.known));
    }

    /// The right side isn't asked when the left one decides.
    void combine(const ExpressionToken& token) {
        const Value b = pop();
        const Value a = pop();
        const bool decides = token.text == L"AND" ? !a.isTrue() : a.isTrue();
        readValue(a, true);
        if (!a.known || !decides)
            readValue(b, a.known);
        const bool rightDecides = token.text == L"AND" ? !b.isTrue() : b.isTrue();
        operands.push_back(computed(
            token, a, b,
            (a.known && (decides || b.known)) || (b.known && rightDecides && !readFails(a))));
    }

    void assign(const ExpressionToken& token) {
        const Value b = pop();
        Value& a = operands.back();
        result.assigns = true;
        if (a.type != b.type)
            stop(Fault::expressionTypes, token,
                 describe(b) + L" can't be assigned to " + describe(a) + L".");
        if (a.variable == nullptr)
            stop(Fault::assignmentToConst, token, inMarks(a.token.text) + L" is no variable.",
                 L"compare by E.");
        readValue(b, true);
        if (a.variable->isConst)
            stop(
                Fault::assignmentToConst, token,
                inMarks(a.variable->name) + L" is constant and can't be assigned to.",
                a.variable->isBuiltIn ? L"compare by E." : L"make it a Variable, or compare by E.");
        a.known = b.known;
        a.number = b.number;
        a.text = b.text;
        assigned = a.variable;
    }

    static std::wstring describe(const Value& value) {
        const std::wstring type = value.type == VARIABLE_INT ? L"integer " : L"text ";
        return type + inMarks(value.token.text);
    }

    static bool readFails(const Value& value) {
        int32_t ignored = 0;
        return value.variable && value.type == VARIABLE_INT && !value.variable->isBuiltIn &&
               !parseIntText(value.variable->value.c_str(), ignored);
    }

    void readValue(const Value& value, bool surely) {
        if (value.variable && value.variable != assigned)
            value.variable->read = true;
        if (!readFails(value) || value.variable == assigned)
            return;
        result.faults.push_back({Fault::notAnInteger, value.token.from, value.token.text.size(),
                                 surely && !value.variable->assigned,
                                 L"The Value of " + inMarks(value.variable->name) + L", " +
                                     inMarks(value.variable->value) + L", is no integer.",
                                 L"give it a decimal number without blanks.",
                                 value.variable->element});
        if (surely && !value.variable->assigned)
            throw Stop();
    }

    void conclude(const Value& value) {
        readValue(value, true);
        if (value.known && result.faults.empty())
            result.value = value.isTrue();
    }

    /// Lets the engine's own operation work on the values, or on what stands for them.
    Value computed(const ExpressionToken& token, const Value& a, const Value& b, bool known) {
        FixedText left(a.text);
        FixedText right(b.text);
        OperandStack stack;
        push(stack, a, left);
        push(stack, b, right);
        createOperation(token.text.c_str())->execute(stack);
        Value value;
        value.token = token;
        value.known = known;
        value.number = popOperand(stack)->getInt();
        return value;
    }

    static void push(OperandStack& stack, const Value& value, FixedText& text) {
        if (value.type == VARIABLE_INT)
            stack.push(makeOwned<OperandPtr, CIntOperand>(value.number));
        else
            stack.push(makeOwned<OperandPtr, CStringOperand>(&text));
    }

    const ScriptVariables& variables;
    NearMiss& nearMiss;
    std::wstring_view text;
    ExpressionResult result;
    std::vector<Pending> operations;
    std::vector<Value> operands;
    std::wstring previous = endSymbol;
    const ScriptVariable* assigned = nullptr;
};

}  // namespace

std::vector<ExpressionToken> tokensOf(const std::wstring& expression) {
    std::vector<ExpressionToken> tokens;
    for (size_t at = 0; at < expression.size();) {
        if (expression[at] == blank) {
            ++at;
            continue;
        }
        const size_t end = std::min(expression.find(blank, at), expression.size());
        cutWord(expression.substr(at, end - at), at, tokens);
        at = end;
    }
    return tokens;
}

ExpressionResult readExpression(const std::wstring& expression, const ScriptVariables& variables,
                                NearMiss& nearMiss) {
    return ExpressionReader(variables, nearMiss).read(expression);
}
