#include "motion/CCopyFileMtElement.h"

static_assert(sizeof(CCopyFileMtElement) == sizeof(CMotionElement));

CCopyFileMtElement::CCopyFileMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, copyFileKind) {
    requireActionKind();
}

int32_t CCopyFileMtElement::execute(CContext&) {
    return 0;
}
