#include <gmock/gmock.h>

#include <cstring>
#include <optional>
#include <string_view>

#include "FailingAllocation.h"
#include "engine/CProductElement.h"
#include "expression/CExpression.h"
#include "expression/CVariableElement.h"
#include "support/ClassLayout.h"
#include "support/FakeCall.h"
#include "support/ScriptTest.h"
#include "system/TextCalls.h"

using testing::ElementsAre;

namespace {

class ReleaseTest : public ScriptTest {
protected:
    /// Makes `expression` fail and gives what it leaves on top of its operands.
    std::vector<ReleaseWatch::Block> topAfterAFailure() {
        EXPECT_THROW(expression->evaluate(L"1 AND 2 3", context), std::wstring);
        const auto& operands = memberAt<OperandStack>(*expression, sizeof(OperandStack));
        return {{operands.top().get(), "operand"}};
    }

    std::optional<CExpression> expression{std::in_place};
};

TEST_F(ReleaseTest, FactoryLeavesTheRunModeAsTheMemoryWas) {
    int32_t fresh = 0;
    std::memset(&fresh, freshByte, sizeof fresh);

    IterfaceContext* const made = CreateContextObject();

    EXPECT_EQ(made->runMode, fresh);
    FreeContextObject(made);
}

TEST_F(ReleaseTest, UnloadTakesTheProductThenTheVariablesThenTheDocument) {
    ASSERT_TRUE(loadProduct("", "<Variable Id='V' Type='string' Value='v'/>"));
    auto* const product = static_cast<CProductElement*>(context.getProduct());
    const CVariable* const variable = context.findVariable(L"V");
    const CVariableElement* const element = variable->element;
    const XmlHandlePtr root = getParentNode(product->getNode());
    const auto& variables =
        memberAt<std::vector<CVariablePtr>>(context, sizeof(IterfaceContext) + 16);
    const ReleaseWatch watch({{getParentNode(root.get())->node, "document"},
                              {variable, "variable"},
                              {context.findVariable(L"OS_BIT"), "variable"},
                              {product, "product"},
                              {element, "element of the variable"},
                              {variables.data(), "room for the variables"}});

    context.unload();

    EXPECT_THAT(watch.released(), ElementsAre("product", "variable", "variable", "document"));
    EXPECT_EQ(element->getValueText(), L"v");
}

TEST_F(ReleaseTest, NextEvaluationReleasesTheOperandsOfTheLast) {
    const ReleaseWatch watch(topAfterAFailure());

    expression->evaluate(L"1", context);

    EXPECT_THAT(watch.released(), ElementsAre("operand"));
}

TEST_F(ReleaseTest, EndOfAnExpressionReleasesItsOperands) {
    const ReleaseWatch watch(topAfterAFailure());

    expression.reset();

    EXPECT_THAT(watch.released(), ElementsAre("operand"));
}

// What is done first for a child is to convert its name.
TEST_F(ReleaseTest, ChildIsGoneBeforeTheWalkGoesOn) {
    ASSERT_TRUE(
        loadProduct("<InstallExecuteSequence><Fragment/><Feature/></InstallExecuteSequence>"));
    std::optional<size_t> liveAtFirst;
    std::optional<size_t> liveAtSecond;
    const FakeCall<textCalls, &TextCalls::MultiByteToWideChar> convert(
        [&](auto page, auto flags, const char* text, auto... rest) {
            if (std::string_view(text) == "Fragment" && !liveAtFirst)
                liveAtFirst = liveAllocations();
            if (std::string_view(text) == "Feature" && !liveAtSecond)
                liveAtSecond = liveAllocations();
            return convert.real(page, flags, text, rest...);
        });

    EXPECT_EQ(run(), 0);

    EXPECT_TRUE(liveAtFirst.has_value());
    EXPECT_EQ(liveAtSecond, liveAtFirst);
}

}  // namespace
