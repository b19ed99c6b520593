#include "motion/CCopyFileMtElement.h"

static_assert(sizeof(CCopyFileMtElement) == sizeof(CMotionElement));

CCopyFileMtElement::CCopyFileMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context) {
    requireActionKind(copyFileKind);
}

void CCopyFileMtElement::getAttributes(std::vector<AttributeDeclaration>& list) const {
    assignDeclarations(list, copyFileKind.declared);
}

int32_t CCopyFileMtElement::execute(CContext&) {
    return 0;
}
