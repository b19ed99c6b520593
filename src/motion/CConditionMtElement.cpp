#include "motion/CConditionMtElement.h"

#include <cwchar>

#include "engine/CContext.h"
#include "logging/Log.h"
#include "motion/WalkCalls.h"

static_assert(sizeof(CConditionMtElement) == sizeof(CMotionElement));

namespace {

constexpr wchar_t expressionAttribute[] = L"Expression";

}  // namespace

CConditionMtElement::CConditionMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context) {
    requireContainerKind(conditionKind);
}

void CConditionMtElement::getAttributes(std::vector<AttributeDeclaration>& list) const {
    assignDeclarations(list, conditionKind.declared);
}

bool CConditionMtElement::getAttribute(const wchar_t* attributeName,
                                       AttributeRecord& record) const {
    if (CMotionElement::getAttribute(attributeName, record))
        return true;
    if (wcscmp(attributeName, expressionAttribute) == 0)
        return false;
    if (parent == nullptr) {
        writeLog(ERROR, describe(), " don't know its parent element object.");
        return false;
    }
    return parent->getAttribute(attributeName, record);
}

int32_t CConditionMtElement::prepare(bool& descend, CContext& context) {
    AttributeRecord record;
    if (!getAttribute(expressionAttribute, record)) {
        const std::wstring message = describe() + L" element can't get the " + expressionAttribute;
        writeLog(ERROR, message);
        return fail(message, context);
    }
    const std::wstring& expression = record.value;
    announce(ACTION_CONDITION, expression, L"", context);
    try {
        descend = walkCalls.Evaluate(expression.c_str(), context);
    } catch (const std::wstring& message) {
        writeLog(ERROR, "Condition expression evaluate error:", message);
        return fail(message, context);
    }
    writeLog(INFO, expression, " expression value:", descend);
    return 0;
}

bool CConditionMtElement::isChildAllowed(const wchar_t* childName) const {
    return conditionKind.allowsChild(childName);
}
