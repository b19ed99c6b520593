#include "expression/Operations.h"

#include <gmock/gmock.h>

#include <typeinfo>
#include <vector>

#include "expression/CIntOperand.h"
#include "support/ClassLayout.h"
#include "support/Thrown.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Calls = std::vector<std::string>;

/// What an operand answers to the questions of operations.
struct Answers {
    int32_t boolean = 0;
    int32_t greater = 0;
    int32_t less = 0;
    int32_t equal = 0;
};

/// An operand that answers as it is told and notes what is asked of it.
class ProbeOperand final : public COperand {
public:
    ProbeOperand(std::string name, Answers answers, Calls& calls)
        : name(std::move(name)), answers(answers), calls(calls) {}

    COperand& assign(COperand* right) override {
        note(" = ", right);
        if (refusesAssignment)
            throw std::wstring(L"refused");
        return *this;
    }
    int32_t getBoolean() const override {
        calls.push_back(name);
        return answers.boolean;
    }
    int32_t GreaterThan(COperand* other) const override {
        note(" > ", other);
        return answers.greater;
    }
    int32_t LessThan(COperand* other) const override {
        note(" < ", other);
        return answers.less;
    }
    int32_t Equal(COperand* other) const override {
        note(" == ", other);
        return answers.equal;
    }

    bool refusesAssignment = false;

private:
    void note(const char* question, COperand* other) const {
        calls.push_back(name + question + static_cast<ProbeOperand*>(other)->name);
    }

    std::string name;
    Answers answers;
    Calls& calls;
};

class OperationsTest : public testing::Test {
protected:
    void push(const char* name, Answers answers = {}) {
        operands.push(makeOwned<OperandPtr, ProbeOperand>(name, answers, calls));
    }

    /// The calls that the operation makes to the operands that have been pushed.
    Calls callsOf(const wchar_t* symbol) {
        calls.clear();
        createOperation(symbol)->execute(operands);
        return calls;
    }

    /// Takes the result off the stack. It must be a constant.
    int32_t popResult() {
        const OperandPtr result = popOperand(operands);
        CIntOperand other(1);
        EXPECT_EQ(typeid(*result.get()), typeid(CIntOperand));
        EXPECT_EQ(thrownBy([&] { result->assign(&other); }),
                  L"It can't be assignment in const operand.");
        return result->getInt();
    }

    Calls calls;
    OperandStack operands;
};

TEST_F(OperationsTest, TablesHoldTheirOperationsInOrder) {
    EXPECT_EQ(slotOf(&COperation::execute), 0u);
    EXPECT_EQ(slotOf(&COperation::getPriority), 1u);
    EXPECT_EQ(slotOf(&CUnaryOperation::compute), 2u);
    EXPECT_EQ(slotOf(&CBinaryOperation::compute), 2u);
    EXPECT_EQ(slotOf(&Extended<COperation>::next), 2u);
    EXPECT_EQ(slotOf(&Extended<CMarkOperation>::next), 2u);
    EXPECT_EQ(slotOf(&Extended<CUnaryOperation>::next), 3u);
    EXPECT_EQ(slotOf(&Extended<CBinaryOperation>::next), 3u);
}

TEST_F(OperationsTest, HoldNothing) {
    EXPECT_EQ(sizeof(COperation), sizeof(void*));
    EXPECT_EQ(sizeof(CAsignmentOperation), sizeof(void*));
    EXPECT_EQ(sizeof(CNoOperation), sizeof(void*));
    EXPECT_EQ(sizeof(CEqualOperation), sizeof(void*));
    EXPECT_FALSE(std::has_virtual_destructor_v<COperation>);
}

TEST_F(OperationsTest, EverySymbolMakesItsClassOfItsPriority) {
    const struct {
        const wchar_t* symbol;
        const std::type_info& type;
        int32_t priority;
    } rows[] = {
        {L"#", typeid(CEndOperation), 9},
        {L"(", typeid(CLeftParenthesisOperation), 1},
        {L")", typeid(CRigthParenthesisOperation), 8},
        {L"=", typeid(CAsignmentOperation), 7},
        {L"!", typeid(CNoOperation), 2},
        {L"AND", typeid(CAndOperation), 5},
        {L"OR", typeid(COrOperation), 6},
        {L"G", typeid(CGreaterOperation), 3},
        {L"L", typeid(CLessOperation), 3},
        {L"E", typeid(CEqualOperation), 4},
        {L"GE", typeid(CGEOperation), 3},
        {L"LE", typeid(CLEOperation), 3},
        {L"NE", typeid(CNEOperation), 4},
    };
    for (const auto& row : rows) {
        const OperationPtr operation = createOperation(row.symbol);
        EXPECT_EQ(typeid(*operation.get()), row.type) << row.symbol;
        EXPECT_EQ(operation->getPriority(), row.priority) << row.symbol;
    }
}

TEST_F(OperationsTest, OtherTextMakesNone) {
    for (const wchar_t* text : {L"", L"A", L"le", L"and", L"GEE", L"##", L"==", L"!=", L" ", L"5"})
        EXPECT_EQ(thrownBy([&] { createOperation(text); }),
                  std::wstring(L"It can't new ") + text + L" operation");
}

TEST_F(OperationsTest, MarksThatHaveToActMissTheirCounterpart) {
    for (const wchar_t* symbol : {L"(", L")", L"#"}) {
        push("a");
        EXPECT_EQ(thrownBy([&] { callsOf(symbol); }), L" '(' didn't math ')'.") << symbol;
    }
    EXPECT_EQ(operands.size(), 3u);
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(OperationsTest, NotTurnsTheTruthOfItsOperand) {
    for (const auto& [truth, result] : {std::pair(0, 1), {1, 0}, {-1, 0}, {5, 0}}) {
        push("a", {.boolean = truth});
        EXPECT_THAT(callsOf(L"!"), ElementsAre("a"));
        EXPECT_EQ(popResult(), result) << truth;
    }
}

TEST_F(OperationsTest, LeftOperandIsAskedForTheComparison) {
    const struct {
        const wchar_t* symbol;
        Answers left;
        int32_t result;
        Calls calls;
    } rows[] = {
        {L"G", {.greater = 1}, 1, {"a > b"}},
        {L"G", {.less = 1, .equal = 1}, 0, {"a > b"}},
        {L"L", {.less = 1}, 1, {"a < b"}},
        {L"L", {.greater = 1, .equal = 1}, 0, {"a < b"}},
        {L"E", {.equal = 1}, 1, {"a == b"}},
        {L"E", {.greater = 1, .less = 1}, 0, {"a == b"}},
        {L"NE", {.equal = 1}, 0, {"a == b"}},
        {L"NE", {.greater = 1, .less = 1}, 1, {"a == b"}},
        {L"GE", {.greater = 1}, 1, {"a > b"}},
        {L"GE", {.equal = 1}, 1, {"a > b", "a == b"}},
        {L"GE", {.less = 1}, 0, {"a > b", "a == b"}},
        {L"LE", {.less = 1}, 1, {"a < b"}},
        {L"LE", {.equal = 1}, 1, {"a < b", "a == b"}},
        {L"LE", {.greater = 1}, 0, {"a < b", "a == b"}},
    };
    for (const auto& row : rows) {
        push("a", row.left);
        push("b", {.boolean = 1, .greater = 1, .less = 1, .equal = 1});
        EXPECT_EQ(callsOf(row.symbol), row.calls) << row.symbol;
        EXPECT_EQ(popResult(), row.result) << row.symbol;
    }
}

TEST_F(OperationsTest, RightOperandIsAskedForItsTruthOnlyWhenItDecides) {
    const struct {
        const wchar_t* symbol;
        int32_t left;
        int32_t right;
        int32_t result;
        Calls calls;
    } rows[] = {
        {L"AND", 0, 1, 0, {"a"}},      {L"AND", 1, 0, 0, {"a", "b"}},
        {L"AND", 1, 1, 1, {"a", "b"}}, {L"AND", -2, 4, 1, {"a", "b"}},
        {L"OR", 1, 1, 1, {"a"}},       {L"OR", -2, 0, 1, {"a"}},
        {L"OR", 0, 4, 1, {"a", "b"}},  {L"OR", 0, 0, 0, {"a", "b"}},
    };
    for (const auto& row : rows) {
        push("a", {.boolean = row.left});
        push("b", {.boolean = row.right});
        EXPECT_EQ(callsOf(row.symbol), row.calls) << row.symbol;
        EXPECT_EQ(popResult(), row.result) << row.symbol;
    }
}

TEST_F(OperationsTest, OperandsBelowAreLeftAlone) {
    for (const wchar_t* symbol : {L"G", L"L", L"GE", L"LE", L"E", L"NE", L"AND", L"OR"}) {
        push("below");
        push("a");
        push("b");
        callsOf(symbol);
        popResult();
        popOperand(operands)->getBoolean();
        EXPECT_EQ(calls.back(), "below") << symbol;
        EXPECT_TRUE(operands.empty());
    }

    push("below");
    push("a");
    callsOf(L"!");
    EXPECT_EQ(operands.size(), 2u);
}

TEST_F(OperationsTest, AssignmentLeavesItsLeftOperandAsTheResult) {
    push("below");
    push("a");
    const COperand* const left = operands.top().get();
    push("b");

    EXPECT_THAT(callsOf(L"="), ElementsAre("a = b"));

    EXPECT_EQ(operands.size(), 2u);
    EXPECT_EQ(operands.top().get(), left);
}

TEST_F(OperationsTest, RefusedAssignmentIsPassedOn) {
    push("a");
    static_cast<ProbeOperand&>(*operands.top()).refusesAssignment = true;
    push("b");

    EXPECT_EQ(thrownBy([&] { callsOf(L"="); }), L"refused");
}

}  // namespace
