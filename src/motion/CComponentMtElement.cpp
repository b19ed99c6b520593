#include "motion/CComponentMtElement.h"

static_assert(sizeof(CComponentMtElement) == sizeof(CMotionElement));

CComponentMtElement::CComponentMtElement(const XmlHandle& node, CContext& context)
    : CMotionElement(node, context, componentKind) {}

CComponentMtElement::CComponentMtElement(const wchar_t* elementName, const wchar_t* id,
                                         CContext& context)
    : CMotionElement(elementName, id, context, componentKind) {}
