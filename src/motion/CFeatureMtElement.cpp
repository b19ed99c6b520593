#include "motion/CFeatureMtElement.h"

static_assert(sizeof(CFeatureMtElement) == sizeof(CMotionElement));

CFeatureMtElement::CFeatureMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, featureKind) {
    requireContainerKind();
}

CFeatureMtElement::CFeatureMtElement(const wchar_t* elementName, const wchar_t* id,
                                     CContext& context)
    : CMotionElement(elementName, id, context, featureKind) {
    requireContainerKind();
}
