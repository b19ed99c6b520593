#include "motion/CFragmentMtElement.h"

static_assert(sizeof(CFragmentMtElement) == sizeof(CMotionElement));

CFragmentMtElement::CFragmentMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context) {
    requireContainerKind(fragmentKind);
}

CFragmentMtElement::CFragmentMtElement(const wchar_t* elementName, const wchar_t* id,
                                       CContext& context)
    : CMotionElement(elementName, id, context) {
    requireContainerKind(fragmentKind);
}

void CFragmentMtElement::getAttributes(std::vector<AttributeDeclaration>& list) const {
    assignDeclarations(list, fragmentKind.declared);
}

bool CFragmentMtElement::isChildAllowed(const wchar_t* childName) const {
    return fragmentKind.allowsChild(childName);
}
