#include "motion/CCautionMtElement.h"

static_assert(sizeof(CCautionMtElement) == sizeof(CMotionElement));

CCautionMtElement::CCautionMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, cautionKind) {
    requireActionKind();
}

int32_t CCautionMtElement::execute(CContext& context) {
    std::wstring title;
    if (!getAttributesText({&title}, cautionKind.fetched, context))
        return -1;
    announce(ACTION_CAUTION, L"", title, context);
    return 0;
}
