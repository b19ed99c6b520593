#include "motion/CConditionMtElement.h"

#include "engine/CContext.h"
#include "logging/Log.h"
#include "motion/WalkCalls.h"

static_assert(sizeof(CConditionMtElement) == sizeof(CMotionElement));

namespace {

constexpr wchar_t expressionAttribute[] = L"Expression";

}  // namespace

CConditionMtElement::CConditionMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, conditionKind) {
    requireContainerKind();
}

int32_t CConditionMtElement::prepare(bool& descend, CContext& context) {
    const std::wstring* expression = find(expressionAttribute);
    if (expression == nullptr) {
        const std::wstring message = describe() + L" element can't get the " + expressionAttribute;
        writeLog(ERROR, message);
        return fail(message, context);
    }
    announce(ACTION_CONDITION, *expression, L"", context);
    try {
        descend = walkCalls.Evaluate(expression->c_str(), context);
    } catch (const std::wstring& message) {
        writeLog(ERROR, "Condition expression evaluate error:", message);
        return fail(message, context);
    }
    writeLog(INFO, *expression, " expression value:", descend);
    return 0;
}
