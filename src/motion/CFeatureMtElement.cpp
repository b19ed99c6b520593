#include "motion/CFeatureMtElement.h"

static_assert(sizeof(CFeatureMtElement) == sizeof(CMotionElement));

CFeatureMtElement::CFeatureMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context) {
    requireContainerKind(featureKind);
}

CFeatureMtElement::CFeatureMtElement(const wchar_t* elementName, const wchar_t* id,
                                     CContext& context)
    : CMotionElement(elementName, id, context) {
    requireContainerKind(featureKind);
}

bool CFeatureMtElement::isChildAllowed(const wchar_t* childName) const {
    return featureKind.allowsChild(childName);
}
