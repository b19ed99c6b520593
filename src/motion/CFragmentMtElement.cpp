#include "motion/CFragmentMtElement.h"

static_assert(sizeof(CFragmentMtElement) == sizeof(CMotionElement));

CFragmentMtElement::CFragmentMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, fragmentKind) {
    requireContainerKind();
}

CFragmentMtElement::CFragmentMtElement(const wchar_t* elementName, const wchar_t* id,
                                       CContext& context)
    : CMotionElement(elementName, id, context, fragmentKind) {
    requireContainerKind();
}
